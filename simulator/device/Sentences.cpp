// SPDX-License-Identifier: MIT
#include "simulator/device/Sentences.h"

#include "vocabulary/Vocabulary.h"

#include <translation/Sid.h>

#include <QHash>

namespace {

using libtranslation::Sid::EmbosserCore;
using libtranslation::Sid::EmbosserError;
using libtranslation::Sid::EmbosserMenu;

using Texts = QHash<int, QString>;

const Texts& coreTexts()
{
    static const Texts texts{{int(EmbosserCore::KeyOn), QStringLiteral("On")},
                             {int(EmbosserCore::KeyOff), QStringLiteral("Off")},
                             {int(EmbosserCore::KeyFeed), QStringLiteral("Feed")},
                             {int(EmbosserCore::KeyHelp), QStringLiteral("Help")},
                             {int(EmbosserCore::KeyMenu), QStringLiteral("Menu")},
                             {int(EmbosserCore::KeyBack), QStringLiteral("Back")},
                             {int(EmbosserCore::KeyRight), QStringLiteral("Right")},
                             {int(EmbosserCore::KeyUp), QStringLiteral("Up")},
                             {int(EmbosserCore::KeyDown), QStringLiteral("Down")},
                             {int(EmbosserCore::KeyOk), QStringLiteral("OK")},
                             {int(EmbosserCore::KeyChs), QStringLiteral("Character set")},
                             {int(EmbosserCore::KeyOne), QStringLiteral("One")},
                             {int(EmbosserCore::KeyTen), QStringLiteral("Ten")},
                             {int(EmbosserCore::KeyFunctionOrvane), QStringLiteral("Function")},
                             {int(EmbosserCore::KeyFunction), QStringLiteral("Function")}};
    return texts;
}

const Texts& errorTexts()
{
    static const Texts texts{{int(EmbosserError::StartingUp), QStringLiteral("The device is starting up.")}};
    return texts;
}

const Texts& menuTexts()
{
    static const Texts texts{{int(EmbosserMenu::FactoryReset), QStringLiteral("Factory reset.")}};
    return texts;
}

} // namespace

namespace Sentences {

QString textOf(int file, int sentence)
{
    static const QHash<int, Texts> files{{vocabulary::coreSentences, coreTexts()},
                                         {vocabulary::errorSentences, errorTexts()},
                                         {vocabulary::menuSentences, menuTexts()}};
    return files.value(file).value(sentence);
}

} // namespace Sentences
