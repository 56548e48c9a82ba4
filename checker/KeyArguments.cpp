// SPDX-License-Identifier: MIT
#include "checker/KeyArguments.h"

#include "checker/HelpText.h"
#include "checker/Printable.h"
#include "simulator/script/ScriptWords.h"

namespace checker {

namespace {

const QString stateOption = QStringLiteral("state");
const QString modelOption = QStringLiteral("model");
const QString orvane = QStringLiteral("Orvane");

} // namespace

KeyArguments::KeyArguments(const QString& command, const QString& subject, const QString& description)
    : m_usage(command + QStringLiteral(" [option...] ") + subject + QStringLiteral(" [path...]"))
    , m_subject(subject)
{
    m_parser.setApplicationDescription(description);
    m_parser.addOption(HelpText::option());
    m_parser.addOptions(
        {{stateOption, QStringLiteral("The operating state."), QStringLiteral("state")},
         {modelOption, QStringLiteral("The embosser's model: Pellit, if not given, or Orvane."),
          QStringLiteral("model")}});
    m_parser.addPositionalArgument(subject, {});
    m_parser.addPositionalArgument(
        QStringLiteral("path"),
        QStringLiteral("The folder of the key lists, or single files; the current folder, if not given."));
}

std::optional<Status> KeyArguments::read(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    const QString complaint = fault(arguments);
    if (m_parser.isSet(QStringLiteral("help"))) {
        out << HelpText::of(m_parser, m_usage);
        return Clean;
    }
    if (!complaint.isEmpty()) {
        err << printable(complaint) << '\n';
        return Unusable;
    }
    return std::nullopt;
}

std::optional<model::State> KeyArguments::state() const
{
    return model::Alphabet::stateOf(m_parser.value(stateOption));
}

bool KeyArguments::hasModel() const
{
    return m_parser.isSet(modelOption);
}

bool KeyArguments::isOrvane() const
{
    return m_parser.value(modelOption) == orvane;
}

QString KeyArguments::fault(const QStringList& arguments)
{
    if (!m_parser.parse(arguments)) {
        return m_parser.errorText();
    }
    if (m_parser.positionalArguments().isEmpty()) {
        return QStringLiteral("%1 is missing; --help shows the arguments.").arg(m_subject);
    }
    // The state is unknown until the state handler answers.
    if (m_parser.isSet(stateOption) && !state()) {
        return ScriptWords::checkState(m_parser.value(stateOption));
    }
    return m_parser.isSet(modelOption) ? ScriptWords::checkModel(m_parser.value(modelOption)) : QString();
}

} // namespace checker
