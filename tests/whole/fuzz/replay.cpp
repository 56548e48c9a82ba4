// SPDX-License-Identifier: MIT
// Replaces libFuzzer in ordinary builds: runs a target on each file of the folders in the arguments,
// repeatedly, so that growth from run to run is detected.
#include <QDirIterator>
#include <QFile>
#include <QStringList>

#include <algorithm>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

constexpr int minRuns = 300; // more than the warm-up runs of Resources

bool replay(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(path));
        return false;
    }
    // Printed first, because a failing run aborts.
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    const QByteArray content = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(content.constData()),
                           static_cast<size_t>(content.size()));
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    QStringList inputs;
    for (int i = 1; i < argc; ++i) {
        QDirIterator files(QString::fromLocal8Bit(argv[i]), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            inputs << files.next();
        }
    }
    int runs = 0;
    while (runs < minRuns && !inputs.isEmpty()) {
        if (!std::all_of(inputs.cbegin(), inputs.cend(), replay)) {
            return 1;
        }
        runs += inputs.size();
    }
    std::printf("%d runs of %d inputs\n", runs, static_cast<int>(inputs.size()));
    return runs > 0 ? 0 : 1;
}
