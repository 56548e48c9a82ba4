// SPDX-License-Identifier: MIT
// Plays random traffic on the simulated device and measures the daemon's resources. Arguments: minutes and
// seed.
#include "tests/support/ProcessFigures.h"
#include "tests/support/Waiting.h"
#include "tests/whole/soak/SoakReport.h"
#include "tests/whole/soak/SoakTraffic.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTest>
#include <QTextStream>

#include <algorithm>

namespace {

const QString defaultMinutes = QStringLiteral("30");
/// After these, the daemon has made all its one-time allocations.
constexpr int warmUpRounds = 3;
constexpr int minSamples = 4;

class Soak
{
public:
    Soak(SimulatedDevice& device, quint64 seed) : m_device(device), m_traffic(device, seed) {}

    /// Returns a sentence about a fault, or an empty string.
    QString run(double minutes)
    {
        m_clock.start();
        const qint64 end = qint64(minutes * 60'000);
        while (m_clock.elapsed() < end || m_samples.size() < minSamples) {
            const QString fault = m_traffic.playRound();
            if (!fault.isEmpty() || !m_device.isRunning()) {
                return fault.isEmpty() ? QStringLiteral("the daemon has ended") : fault;
            }
            takeSample();
        }
        return {};
    }

    const QVector<SoakSample>& samples() const { return m_samples; }
    const SoakTraffic::Counts& counts() const { return m_traffic.counts(); }

private:
    SoakSample resources() const
    {
        using namespace ProcessFigures;
        const qint64 daemon = m_device.daemon().processId();
        SoakSample sample;
        sample.pssKib = memoryKib(daemon, QStringLiteral("Pss"));
        sample.anonymousKib = memoryKib(daemon, QStringLiteral("Pss_Anon"));
        sample.residentKib = memoryKib(daemon, QStringLiteral("Rss"));
        sample.descriptors = descriptors(daemon);
        sample.threads = threads(daemon);
        return sample;
    }

    void takeSample()
    {
        SoakSample sample = resources();
        sample.seconds = double(m_clock.elapsed()) / 1000;
        const int processorMs = ProcessFigures::processorMs(m_device.daemon().processId());
        QVector<double> latencies = m_traffic.takeLatencies();
        std::sort(latencies.begin(), latencies.end());
        sample.medianMs = latencies.at(latencies.size() / 2);
        sample.maxMs = latencies.last();
        sample.processorMs = (processorMs - m_processorMs) / (sample.seconds - m_seconds);
        m_processorMs = processorMs;
        m_seconds = sample.seconds;
        if (m_traffic.counts().rounds > warmUpRounds) {
            m_samples << sample;
            QTextStream(stdout) << SoakReport::line(sample) << '\n';
        }
    }

    SimulatedDevice& m_device;
    SoakTraffic m_traffic;
    QElapsedTimer m_clock;
    double m_seconds = 0; // at the previous sample
    int m_processorMs = 0;
    QVector<SoakSample> m_samples;
};

/// Prints the results of the soak; returns the exit status.
int conclude(const Soak& soak, const QString& fault)
{
    QTextStream out(stdout);
    QStringList faults = fault.isEmpty() ? QStringList() : QStringList(fault);
    if (soak.samples().size() >= minSamples) {
        const SoakReport report = SoakReport::of(soak.samples());
        faults += report.faults;
        out << report.table.join('\n') << '\n';
    }
    const SoakTraffic::Counts& counts = soak.counts();
    out << counts.rounds << " rounds: " << counts.keys << " presses, " << counts.commands << " commands, "
        << counts.states << " changes of state, " << counts.announcements << " announcements\n";
    for (const QString& one : qAsConst(faults)) {
        out << "FAIL: " << one << '\n';
    }
    return faults.isEmpty() ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const double minutes = arguments.value(1, defaultMinutes).toDouble();
    const quint64 seed =
        arguments.size() > 2 ? arguments.at(2).toULongLong() : QRandomGenerator::system()->generate();
    if (minutes <= 0) {
        QTextStream(stderr) << "usage: soak [MINUTES [SEED]]\n";
        return 2;
    }

    SimulatedDevice device;
    const bool isStarted = device.start();
    WAIT_FOR(device.isReady() || !device.isRunning());
    if (!isStarted || !device.isReady()) {
        QTextStream(stderr) << "The device does not start. " << device.errorString() << '\n';
        return 2;
    }
    QTextStream(stdout) << "seed " << seed << '\n' << SoakReport::heading() << '\n';
    Soak soak(device, seed);
    const QString fault = soak.run(minutes);
    return conclude(soak, fault);
}
