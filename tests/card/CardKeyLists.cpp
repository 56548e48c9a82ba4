// SPDX-License-Identifier: MIT
#include "tests/card/CardKeyLists.h"

#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScript.h"

#include <QDir>

namespace {

using Kind = KeyRow::Kind;

/// Collects rows and numbers their actions.
class Rows
{
public:
    Rows& longPress(const QStringList& keys, int seconds, const QString& states,
                    const QString& receiver = QStringLiteral("UserMenu"))
    {
        return add({Kind::Long, {}, receiver, states, seconds, keys});
    }
    Rows& combination(const QStringList& keys, const QString& state = ls::StateId::Idle,
                      const QString& receiver = QStringLiteral("UserMenu"))
    {
        return add({Kind::Modifier, {}, receiver, state, 0, keys});
    }
    Rows& shortcut(const QStringList& keys, const QString& state = ls::StateId::Idle,
                   const QString& receiver = QStringLiteral("UserMenu"))
    {
        return add({Kind::Shortcut, {}, receiver, state, 0, keys});
    }
    /// Sets the action of the last row.
    Rows& named(const QString& action)
    {
        m_script.rows.last().action = action;
        return *this;
    }

    operator KeyLists() const { return KeyListJson::filesOf(m_script); }

private:
    Rows& add(KeyRow row)
    {
        row.action = QStringLiteral("Action%1").arg(m_script.rows.size() + 1);
        m_script.rows.append(row);
        return *this;
    }

    KeyScript m_script;
};

KeyLists longPresses()
{
    return Rows()
        .longPress({"Help"}, 1, "Idle")
        .longPress({"Help", "Up"}, 2, "Idle | Error")
        .longPress({"Up"}, 0, "Print|Idle||Idle|Startup")
        .longPress({"Down"}, -3, "Idle")
        .longPress({"Ok"}, 1, "Idle ")
        .longPress({"Chs"}, 1, "Startup")
        .longPress({"One"}, 1, "Idle", "Undefined")
        .longPress({"Bell"}, 1, "Idle")
        .longPress({"Unknown"}, 1, "Idle")
        .longPress({}, 1, "Idle")
        .longPress({"FactoryReset"}, 6, "Idle | Update")
        .longPress({"Menu"}, 1, "Idle | Undefined")
        .longPress({"Ten"}, 3000000, "Error")
        .longPress({"Right"}, 1, "Dreaming | idle");
}

KeyLists singleKeyAsAction()
{
    return Rows()
        .longPress({"Up"}, 1, "Idle")
        .named("SingleKey")
        .combination({"Help", "Menu"})
        .named("SingleKey")
        .shortcut({"Function", "Down"})
        .named("SingleKey");
}

KeyLists longerRowHidesOthers()
{
    return Rows()
        .combination({"Help", "Ok"})
        .combination({})
        .combination({"Help", "Up", "Down", "Feed"})
        .combination({"Help", "Feed"})
        .combination({"Chs", "Up"})
        .combination({"Help", "Feed"}, "Print")
        .combination({"Chs", "Up", "Down"})
        .combination({"Help", "Feed"});
}

KeyLists shortcuts()
{
    return Rows()
        .shortcut({"Function", "Up"}, "Idle", "Undefined")
        .shortcut({"Function", "Up"})
        .shortcut({"Feed"}, "Print")
        .shortcut({"Help", "Bell", "Menu"})
        .shortcut({"Menu", "Down"})
        .shortcut({"Ok", "Chs"}, "Idle|Print")
        .shortcut({"Ok", "Chs"})
        .shortcut({"One", "Ten"}, "Startup")
        .shortcut({"Ten", "One"}, "Undefined")
        .shortcut({"Bell", "One"})
        .shortcut({"FactoryReset", "One"}, "Update")
        .shortcut({});
}

KeyLists oddTexts()
{
    const QString longText =
        QString(3000, 'x') + ' ' + QString::fromUtf8("\xD0\x96 %1 %2 \xF0\x9F\x94\x91\n");
    return Rows()
        .longPress({"Up"}, 1, "Print", longText)
        .named(longText)
        .shortcut({"Function", "Up"}, "%1", "%2")
        .named("%3 %4")
        .combination({"Function", "Up"}, "Idle", "")
        .named("");
}

} // namespace

KeyLists CardKeyLists::installed()
{
    KeyLists lists;
    for (const QFileInfo& info : QDir(KEY_LISTS).entryInfoList({"*KeyList.json"})) {
        QFile file(info.filePath());
        if (file.open(QIODevice::ReadOnly)) {
            lists.insert(info.fileName(), file.readAll());
        }
    }
    return lists;
}

QMap<QString, KeyLists> CardKeyLists::odd()
{
    return {
        {"long presses", longPresses()},
        {"action SingleKey", singleKeyAsAction()},
        {"longer row hides others", longerRowHidesOthers()},
        {"shortcuts", shortcuts()},
        {"odd texts", oddTexts()},
        {"pair breaks longer row",
         Rows().combination({"Chs", "Up"}).combination({"Chs", "Up", "Down"}).combination({"Chs", "Down"})},
        {"pair takes the ends", Rows().combination({"Chs", "Up"}).combination({"Chs", "Down", "Up"})},
        {"opening key again", Rows().combination({"Chs"}).combination({"Chs", "Chs", "Up"})},
        {"rows of one key", Rows().combination({"Up"}).combination({"Ok", "Ok"}).combination({"Menu"})},
        {"Menu after a Help that opens nothing", Rows()
                                                     .combination({"Menu", "Up"})
                                                     .combination({"Chs", "Menu"})
                                                     .combination({"Menu", "Help", "Menu", "Ok"})
                                                     .combination({"Menu", "Ok"})},
        {"Menu after a Help that opens a row", Rows()
                                                   .combination({"Menu", "Up"})
                                                   .combination({"Help", "Menu"})
                                                   .combination({"Help", "Bell"})
                                                   .combination({"Chs", "Help", "Menu", "Ok"})},
        {"Menu in the middle", Rows().combination({"Chs", "Menu", "Up"}).combination({"Chs", "Up"})},
        {"combinations elsewhere", Rows()
                                       .combination({"Help", "Up"}, "Print")
                                       .combination({"Help", "Down"}, "Idle|Print")
                                       .combination({"Help", "Ok"}, "Idle", "Undefined")
                                       .combination({"Help", "FactoryReset"}, "Idle")
                                       .combination({"Help", "Ok"}, "Idle")
                                       .combination({"Help", "Ok"}, "Idle")
                                       .combination({"Help", "One"}, "")},
        {"closing key begins a longer row", Rows()
                                                .combination({"Help", "Ok"})
                                                .combination({"Ok", "Up"})
                                                .combination({"Ok", "Up", "Feed"})
                                                .combination({"Help", "Feed"})
                                                .combination({"Ok", "Feed"})},
        {"closing Menu begins a longer row",
         Rows().combination({"Help", "Menu"}).combination({"Menu", "Ok", "Feed"})},
        {"Menu closes after a Help between and begins a longer row", Rows()
                                                                         .combination({"Chs", "Menu"})
                                                                         .combination({"Menu", "Ok", "Help"})
                                                                         .combination({"Chs", "Help"})},
        {"closing key begins a longer row and breaks it", Rows()
                                                              .combination({"Chs", "Ok"})
                                                              .combination({"Ok", "Up"})
                                                              .combination({"Ok", "Up", "Ok", "Feed"})
                                                              .combination({"Chs", "Feed"})},
        {"shortcut and combination of one pair",
         Rows().shortcut({"Help", "Feed"}).combination({"Help", "Feed"})},
        {"no rows", {}},
    };
}

QMap<QString, KeyLists> CardKeyLists::all()
{
    QMap<QString, KeyLists> lists = odd();
    lists.insert("installed", installed());
    return lists;
}
