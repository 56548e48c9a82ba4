// SPDX-License-Identifier: MIT
#include "device/SpeechFeedback.h"
#include "tests/fakes/FakeSpeech.h"
#include "tests/support/LogRecorder.h"

#include <speech/Speech.h>
#include <vantre/Singleton.h>

#include <QLoggingCategory>
#include <QtTest>

using libspeech::detail::Speech;
using libtranslation::Sid::EmbosserCore;
using libtranslation::Sid::EmbosserError;
using libtranslation::Sid::EmbosserMenu;

namespace {

QVector<LogLine> debugLine(const QString& category, const QString& text)
{
    return {{QtDebugMsg, category, text}};
}

} // namespace

class SpeechFeedbackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void requestHasFileAndSentence();
    void emptyArgumentsAreNotSent();
    void nothingIsSentBeforeTheEventLoopRuns();
    void requestsKeepTheirOrder();
    void cancelIsSentWithoutSpeech();
    void unknownSentenceIsSentWithoutName();
    void sentencesAreTracedByName_data();
    void sentencesAreTracedByName();
    void nothingIsTracedByDefault();
    void connectionIsForwardedAndTraced();
    void disconnectionIsOnlyTraced();
    void shutdownCancelsSpeech();
    void singletonsAreUnique();

private:
    detail::SpeechFeedback* speech = nullptr;
    QVariantList sent; // request maps, and "cancel" for cancellations
};

void SpeechFeedbackTest::initTestCase()
{
    FakeSpeech::onSpeak([this](const QVariantMap& request) { sent.append(request); });
    FakeSpeech::onCancel([this] { sent.append(QStringLiteral("cancel")); });
    speech = libvantre::Singleton<detail::SpeechFeedback>::instance();
}

void SpeechFeedbackTest::init()
{
    sent.clear();
}

void SpeechFeedbackTest::cleanup()
{
    QLoggingCategory::setFilterRules({});
}

void SpeechFeedbackTest::requestHasFileAndSentence()
{
    speech->speakFromId(EmbosserCore::KeyUp);
    speech->speakFromId(EmbosserError::StartingUp);
    speech->speakFromId(EmbosserMenu::FactoryReset);
    QCoreApplication::processEvents();
    const QVariantList expected{QVariantMap{{"serviceId", 0}, {"sentenceId", 24}},
                                QVariantMap{{"serviceId", 1}, {"sentenceId", 69}},
                                QVariantMap{{"serviceId", 2}, {"sentenceId", 487}}};
    QCOMPARE(sent, expected);
    QCOMPARE(sent.first().toMap().value("serviceId").type(), QVariant::Int);
    QCOMPARE(sent.first().toMap().value("sentenceId").type(), QVariant::Int);
}

void SpeechFeedbackTest::emptyArgumentsAreNotSent()
{
    speech->speakFromId(EmbosserCore::KeyUp, {"a", "b"});
    speech->speakFromId(EmbosserCore::KeyUp, {});
    QCoreApplication::processEvents();
    const QVariantList expected{
        QVariantMap{{"serviceId", 0}, {"sentenceId", 24}, {"arguments", QStringList{"a", "b"}}},
        QVariantMap{{"serviceId", 0}, {"sentenceId", 24}}};
    QCOMPARE(sent, expected);
}

void SpeechFeedbackTest::nothingIsSentBeforeTheEventLoopRuns()
{
    speech->speakFromId(EmbosserCore::KeyUp);
    speech->cancelAll();
    QCOMPARE(sent, QVariantList{});
    QCoreApplication::processEvents();
    QCOMPARE(sent.size(), 2);
}

void SpeechFeedbackTest::requestsKeepTheirOrder()
{
    speech->speakFromId(EmbosserCore::KeyUp);
    speech->cancelAll();
    speech->speakFromId(EmbosserCore::KeyDown);
    QCoreApplication::processEvents();
    QCOMPARE(sent.size(), 3);
    QCOMPARE(sent.at(1), QVariant("cancel"));
    QCOMPARE(sent.at(2).toMap().value("sentenceId"), QVariant(25));
}

void SpeechFeedbackTest::cancelIsSentWithoutSpeech()
{
    QLoggingCategory::setFilterRules("SpeechFeedback.speak.debug=true");
    const LogRecorder log;
    speech->cancelAll();
    QCOMPARE(log.lines(), debugLine("SpeechFeedback.speak", "Cancelling all speech-requests."));
    QCoreApplication::processEvents();
    QCOMPARE(sent, QVariantList{"cancel"});
}

void SpeechFeedbackTest::unknownSentenceIsSentWithoutName()
{
    QLoggingCategory::setFilterRules("SpeechFeedback.speak.debug=true");
    const LogRecorder log;
    speech->speakFromId(static_cast<EmbosserCore>(0));
    QCOMPARE(log.lines(), debugLine("SpeechFeedback.speak", "SpeechFeedback::speakFromId()"));
    QCoreApplication::processEvents();
    QCOMPARE(sent, (QVariantList{QVariantMap{{"serviceId", 0}, {"sentenceId", 0}}}));
}

void SpeechFeedbackTest::sentencesAreTracedByName_data()
{
    QTest::addColumn<int>("file");
    QTest::addColumn<QString>("line");
    QTest::newRow("core") << 0 << "SpeechFeedback::speakFromId(KeyTen)";
    QTest::newRow("error") << 1 << "SpeechFeedback::speakFromId(StartingUp)";
    QTest::newRow("menu") << 2 << "SpeechFeedback::speakFromId(FactoryReset)";
}

void SpeechFeedbackTest::sentencesAreTracedByName()
{
    QFETCH(int, file);
    QFETCH(QString, line);
    QLoggingCategory::setFilterRules("SpeechFeedback.speak.debug=true");
    const LogRecorder log;
    if (file == 0) {
        speech->speakFromId(EmbosserCore::KeyTen);
    } else if (file == 1) {
        speech->speakFromId(EmbosserError::StartingUp);
    } else {
        speech->speakFromId(EmbosserMenu::FactoryReset);
    }
    QCOMPARE(log.lines(), debugLine("SpeechFeedback.speak", line));
    QCoreApplication::processEvents();
    QCOMPARE(sent.size(), 1);
}

void SpeechFeedbackTest::nothingIsTracedByDefault()
{
    const LogRecorder log;
    speech->speakFromId(EmbosserCore::KeyTen);
    speech->cancelAll();
    Q_EMIT libvantre::Singleton<Speech>::instance()->connected();
    QCoreApplication::processEvents();
    QCOMPARE(log.lines(), {});
    QCOMPARE(sent.size(), 2);
}

void SpeechFeedbackTest::connectionIsForwardedAndTraced()
{
    QLoggingCategory::setFilterRules("SpeechFeedback.debug=true");
    QSignalSpy spy(speech, &detail::SpeechFeedback::connected);
    LogRecorder log;
    Q_EMIT libvantre::Singleton<Speech>::instance()->connected();
    QCOMPARE(log.take(), debugLine("SpeechFeedback", "Connected to speech-daemon."));
    Q_EMIT libvantre::Singleton<Speech>::instance()->connected();
    QCOMPARE(log.take(), debugLine("SpeechFeedback", "Connected to speech-daemon."));
    QCOMPARE(spy.size(), 2);
}

void SpeechFeedbackTest::disconnectionIsOnlyTraced()
{
    QLoggingCategory::setFilterRules("SpeechFeedback.debug=true");
    QSignalSpy spy(speech, &detail::SpeechFeedback::connected);
    const LogRecorder log;
    Q_EMIT libvantre::Singleton<Speech>::instance()->disconnected();
    QCOMPARE(log.lines(), debugLine("SpeechFeedback", "Disconnected from speech-daemon."));
    QCoreApplication::processEvents();
    QCOMPARE(spy.size(), 0);
    QCOMPARE(sent, QVariantList{});
}

void SpeechFeedbackTest::shutdownCancelsSpeech()
{
    QMetaObject::invokeMethod(qApp, "quit", Qt::QueuedConnection);
    QCoreApplication::exec();
    QCOMPARE(sent, QVariantList{"cancel"});
}

void SpeechFeedbackTest::singletonsAreUnique()
{
    QCOMPARE(libvantre::Singleton<detail::SpeechFeedback>::instance(), speech);
    QCOMPARE(speech->parent(), nullptr);
    QCOMPARE(libvantre::Singleton<Speech>::instance()->parent(), nullptr);
}

QTEST_GUILESS_MAIN(SpeechFeedbackTest)
#include "SpeechFeedbackTest.moc"
