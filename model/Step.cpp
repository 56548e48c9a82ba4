// SPDX-License-Identifier: MIT
#include "model/Step.h"

#include "model/KeyFacts.h"

namespace model {

void Step::take(Input input)
{
    switch (input.kind) {
    case Input::Kind::Press:
    case Input::Kind::Release:
    case Input::Kind::Repeat:
        return takeKeyEvent(input);
    case Input::Kind::WindowEnd:
        return endWindow();
    case Input::Kind::LongPressTime:
        return completeLongPress();
    case Input::Kind::FactoryResetTime:
        return completeFactoryReset();
    case Input::Kind::ChangeState:
        m_now.state = input.newState();
        return note(Rule::StateChanges);
    case Input::Kind::StartTest:
        m_now.testMode = true;
        return note(Rule::TestBegins);
    case Input::Kind::SimulateCombination:
        return releaseForCombinations(input.key());
    case Input::Kind::SimulateShortcut:
        return pressForShortcuts(input.key());
    case Input::Kind::Tick:
        return;
    }
}

void Step::takeKeyEvent(Input input)
{
    const Key key = input.key();
    if (m_now.state == KeyFacts::startup) {
        note(input.kind == Input::Kind::Press ? Rule::StartupRefuses : Rule::StartupIgnores, key);
    } else if (input.kind == Input::Kind::Press) {
        press(key);
    } else if (input.kind == Input::Kind::Release) {
        release(key);
    } else {
        repeat(key);
    }
}

void Step::press(Key key)
{
    if (key == KeyFacts::factoryReset) {
        m_now.factoryResetRuns = true;
        note(Rule::FactoryResetStarts, key);
    }
    pressForShortcuts(key);
    stopLongPress();
}

void Step::release(Key key)
{
    if (key == KeyFacts::factoryReset && m_now.factoryResetRuns) {
        m_now.factoryResetRuns = false;
        note(Rule::FactoryResetStops, key);
    }
    releaseForCombinations(key);
    stopLongPress();
    closeShortcut();
    m_now.windowRuns = true;
    note(Rule::WindowOpens, key);
    if (m_now.state == KeyFacts::idle) {
        releaseInIdle(key);
    } else if (!m_now.testMode && key != Key::None) {
        note(Rule::KeySentAtOnce, key);
        forgetKeys();
    } else {
        releaseInTest(key);
    }
}

void Step::releaseInIdle(Key key)
{
    if (key == KeyFacts::menu && m_now.lastKey != KeyFacts::help) {
        note(Rule::MenuSentAtOnce, key);
        forgetKeys();
        return;
    }
    if (key == KeyFacts::menu) {
        note(Rule::MenuWaits, key);
    }
    if (m_now.gestureSeen) {
        note(Rule::NameSilenced, key);
    } else if (KeyFacts::isSilent(key, m_isOrvane)) {
        note(Rule::NameOmitted, key);
    } else {
        note(Rule::NameSpoken, key);
    }
    if (m_now.lastKey != Key::None) {
        note(Rule::KeyReplaced, m_now.lastKey);
    }
    m_now.lastKey = key;
    note(Rule::KeyWaits, key);
}

void Step::releaseInTest(Key key)
{
    if (KeyFacts::hasName(key)) {
        note(Rule::TestNameSpoken, key);
    }
    m_now.lastKey = key;
    note(Rule::TestCounts, key);
    if (key == KeyFacts::ten) {
        m_now.testMode = false;
        note(Rule::TestEnds, KeyFacts::ok);
        forgetKeys();
    }
}

void Step::repeat(Key key)
{
    if (m_now.longPressRuns) {
        note(Rule::LongPressContinues, m_now.armedKey);
        return;
    }
    const int row = m_rows.longPressOf(key);
    if (row >= 0) {
        m_now.armedKey = key;
        m_now.longPressRuns = true;
        note(Rule::LongPressArms, key, {List::LongPresses, row});
    }
}

void Step::endWindow()
{
    m_now.windowRuns = false;
    note(Rule::WindowCloses);
    const Key key = m_now.lastKey;
    if (key != Key::None) {
        if (m_now.state != KeyFacts::idle) {
            note(Rule::LoneKeyDropped, key);
        } else if (m_now.gestureSeen) {
            note(Rule::LoneKeyUsedUp, key);
        } else {
            note(Rule::LoneKeySent, key);
        }
    }
    forgetKeys();
}

void Step::completeLongPress()
{
    const Key key = m_now.armedKey;
    const RowId row{List::LongPresses, m_rows.longPressOf(key)};
    m_now.armedKey = Key::None;
    m_now.longPressRuns = false;
    note(Rule::LongPressCompletes, key, row);
    deliver(row, key);
}

void Step::completeFactoryReset()
{
    m_now.factoryResetRuns = false;
    note(Rule::FactoryResetCompletes, KeyFacts::factoryReset);
    markGesture();
}

void Step::pressForShortcuts(Key key)
{
    if (m_now.heldKey == Key::None) {
        const int row = m_rows.shortcutOpenedBy(key);
        if (row >= 0) {
            m_now.heldKey = key;
            note(Rule::ShortcutOpens, key, {List::Shortcuts, row});
        }
        return;
    }
    const int row = m_rows.shortcutOf(m_now.heldKey, key);
    if (row >= 0) {
        // The held key stays held: the closing key completes the row again.
        note(Rule::ShortcutCompletes, key, {List::Shortcuts, row});
        deliver({List::Shortcuts, row}, key);
    }
}

void Step::releaseForCombinations(Key key)
{
    if (m_now.firstKey == Key::None) {
        const int row = m_rows.combinationOpenedBy(key);
        if (row >= 0) {
            m_now.firstKey = key;
            extendSequence(key);
            note(Rule::CombinationOpens, key, {List::Combinations, row});
        }
        return;
    }
    for (const int row : m_rows.pairsAhead(m_now.firstKey, key)) {
        completeCombination(row, key);
    }
    if (m_rows.firstSequence() < 0) {
        return;
    }
    extendSequence(key);
    if (m_now.sequence != static_cast<quint32>(m_rows.sequence().size())) {
        note(Rule::SequenceHides, key, {List::Combinations, m_rows.firstSequence()});
        return;
    }
    completeCombination(m_rows.firstSequence(), key);
    for (const int row : m_rows.pairsBehind(m_now.firstKey, key)) {
        completeCombination(row, key);
    }
    if (m_rows.secondSequence() >= 0) {
        extendSequence(key);
        note(Rule::SequenceHides, key, {List::Combinations, m_rows.secondSequence()});
    }
}

void Step::completeCombination(int row, Key key)
{
    note(Rule::CombinationCompletes, key, {List::Combinations, row});
    deliver({List::Combinations, row}, key);
    // The first key stays open: the closing key completes the row again.
    m_now.sequence = 0;
}

void Step::extendSequence(Key key)
{
    const auto& keys = m_rows.sequence();
    const bool leadsOn = m_now.sequence < static_cast<quint32>(keys.size()) &&
                         keys.at(static_cast<int>(m_now.sequence)) == key;
    if (leadsOn) {
        ++m_now.sequence;
    } else if (!keys.isEmpty()) {
        m_now.sequence = Situation::dead;
    }
}

void Step::stopLongPress()
{
    if (m_now.longPressRuns) {
        note(Rule::LongPressStops, m_now.armedKey, {List::LongPresses, m_rows.longPressOf(m_now.armedKey)});
        m_now.armedKey = Key::None;
        m_now.longPressRuns = false;
    }
}

void Step::closeShortcut()
{
    if (m_now.heldKey != Key::None) {
        note(Rule::ShortcutCloses, m_now.heldKey);
        m_now.heldKey = Key::None;
    }
}

void Step::deliver(RowId row, Key key)
{
    const RowTables::Delivery& delivery = m_rows.delivery(row);
    if (delivery.isDropped) {
        note(Rule::DropsReceiver, key, row, delivery.total);
        return;
    }
    if (!delivery.isSingleKey) {
        markGesture();
    }
    const quint32 announced = delivery.named[static_cast<size_t>(m_now.state)];
    if (announced > 0) {
        note(Rule::Announces, key, row, announced);
    }
    if (announced < delivery.total) {
        note(Rule::RefusesState, key, row, delivery.total - announced);
    }
}

void Step::markGesture()
{
    m_now.gestureSeen = true;
    note(Rule::MarksGesture);
}

void Step::forgetKeys()
{
    stopLongPress();
    m_now.heldKey = Key::None;
    m_now.firstKey = Key::None;
    m_now.sequence = 0;
    m_now.lastKey = Key::None;
    m_now.gestureSeen = false;
    note(Rule::KeysForgotten);
}

} // namespace model
