// SPDX-License-Identifier: MIT
#include "tests/whole/soak/SoakReport.h"

#include <algorithm>
#include <limits>

namespace {

constexpr double unlimited = std::numeric_limits<double>::infinity();
/// The heap's high-water mark may rise by a few pages if a rare command occurs late.
constexpr double maxGrowthKib = 64;
constexpr double secondsOfHour = 3600;

struct Row
{
    const char* what;
    double (*value)(const SoakSample&);
    /// The allowed increase from the first to the last quarter.
    double allowed;
    int decimals;
};

const Row rows[] = {
    {"memory (PSS), KiB", [](const SoakSample& s) { return double(s.pssKib); }, unlimited, 0},
    {"of it anonymous, KiB", [](const SoakSample& s) { return double(s.anonymousKib); }, maxGrowthKib, 0},
    {"resident memory (RSS), KiB", [](const SoakSample& s) { return double(s.residentKib); }, unlimited, 0},
    {"open descriptors", [](const SoakSample& s) { return double(s.descriptors); }, 0, 0},
    {"threads", [](const SoakSample& s) { return double(s.threads); }, 0, 0},
    {"processor time of a second, ms", [](const SoakSample& s) { return s.processorMs; }, unlimited, 2},
    {"press of Menu to its announcement, median, ms", [](const SoakSample& s) { return s.medianMs; },
     unlimited, 2},
    {"maximum between two samples, ms", [](const SoakSample& s) { return s.maxMs; }, unlimited, 2},
};

double median(const QVector<SoakSample>& samples, const Row& row)
{
    QVector<double> values;
    std::transform(samples.cbegin(), samples.cend(), std::back_inserter(values), row.value);
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// The slope of the regression line.
double trendForAnHour(const QVector<SoakSample>& samples, const Row& row)
{
    double meanTime = 0;
    double meanValue = 0;
    for (const SoakSample& sample : samples) {
        meanTime += sample.seconds / samples.size();
        meanValue += row.value(sample) / samples.size();
    }
    double product = 0;
    double square = 0;
    for (const SoakSample& sample : samples) {
        product += (sample.seconds - meanTime) * (row.value(sample) - meanValue);
        square += (sample.seconds - meanTime) * (sample.seconds - meanTime);
    }
    return product / square * secondsOfHour;
}

QString number(double value, const Row& row)
{
    return QString::number(value, 'f', row.decimals);
}

} // namespace

SoakReport SoakReport::of(const QVector<SoakSample>& samples)
{
    const int quarter = samples.size() / 4;
    SoakReport report{{QStringLiteral("| | first quarter | last quarter | trend for an hour |"),
                       QStringLiteral("|---|---|---|---|")},
                      {}};
    for (const Row& row : rows) {
        const QString what = QLatin1String(row.what);
        const double first = median(samples.mid(0, quarter), row);
        const double last = median(samples.mid(samples.size() - quarter), row);
        report.table << QStringLiteral("| %1 | %2 | %3 | %4 |")
                            .arg(what, number(first, row), number(last, row),
                                 number(trendForAnHour(samples, row), row));
        if (last - first > row.allowed) {
            report.faults << QStringLiteral("%1: has grown by %2").arg(what, number(last - first, row));
        }
    }
    return report;
}

QString SoakReport::heading()
{
    QStringList words{QStringLiteral("time")};
    for (const Row& row : rows) {
        words << QLatin1String(row.what);
    }
    return words.join(QStringLiteral(" | "));
}

QString SoakReport::line(const SoakSample& sample)
{
    QStringList words{QStringLiteral("%1 s").arg(sample.seconds, 5, 'f', 0)};
    for (const Row& row : rows) {
        words << number(row.value(sample), row);
    }
    return words.join(QStringLiteral("  "));
}
