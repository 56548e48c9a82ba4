// SPDX-License-Identifier: MIT
// Takes the place of libFuzzer in the ordinary builds: runs a target once on each file of the folders that
// the arguments name.
#include <QDirIterator>
#include <QFile>

#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool replay(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "%s cannot be read\n", qPrintable(path));
        return false;
    }
    // Printed before, for a run that fails ends the process.
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
    int runs = 0;
    for (int i = 1; i < argc; ++i) {
        QDirIterator files(QString::fromLocal8Bit(argv[i]), QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            if (!replay(files.next())) {
                return 1;
            }
            ++runs;
        }
    }
    std::printf("%d inputs\n", runs);
    return runs > 0 ? 0 : 1;
}
