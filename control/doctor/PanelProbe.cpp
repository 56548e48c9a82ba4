// SPDX-License-Identifier: MIT
#include "control/doctor/Probes.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <linux/input.h>
#include <linux/major.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace control {

namespace {

const QString ownProgram = QStringLiteral("keyboard-handlerctl");
constexpr int bitsPerByte = 8;

/// A set of bits as the kernel writes it.
template <int size>
class Bits
{
public:
    unsigned char* data() { return m_bytes.data(); }
    static constexpr int byteCount() { return size / bitsPerByte + 1; }
    bool has(int bit) const
    {
        return (m_bytes.at(static_cast<size_t>(bit / bitsPerByte)) >> (bit % bitsPerByte) & 1) != 0;
    }

private:
    std::array<unsigned char, size / bitsPerByte + 1> m_bytes{};
};

NodeFacts::Kind kindOf(const struct stat& status)
{
    return S_ISFIFO(status.st_mode)                                          ? NodeFacts::Kind::Fifo
           : S_ISCHR(status.st_mode) && major(status.st_rdev) == INPUT_MAJOR ? NodeFacts::Kind::InputDevice
                                                                             : NodeFacts::Kind::Other;
}

void readAbilities(NodeFacts& node, int fd)
{
    char name[256]{};
    Bits<EV_MAX> types;
    Bits<KEY_MAX> codes;
    std::array<unsigned, 2> repeat{};
    if (::ioctl(fd, EVIOCGNAME(sizeof name - 1), name) < 0 ||
        ::ioctl(fd, EVIOCGBIT(0, types.byteCount()), types.data()) < 0 ||
        ::ioctl(fd, EVIOCGBIT(EV_KEY, codes.byteCount()), codes.data()) < 0) {
        node.fault = QString::fromLocal8Bit(std::strerror(errno));
        return;
    }
    node.name = QString::fromUtf8(name);
    node.hasAutorepeat = types.has(EV_REP);
    if (node.hasAutorepeat && ::ioctl(fd, EVIOCGREP, repeat.data()) == 0) {
        node.repeatDelay = repeat[REP_DELAY];
        node.repeatPeriod = repeat[REP_PERIOD];
    }
    for (int code = 0; code < KEY_MAX; ++code) {
        if (codes.has(code)) {
            node.codes.insert(code);
        }
    }
}

/// A second descriptor takes no events away from the first one.
NodeFacts lookAt(const QString& path)
{
    NodeFacts node;
    node.path = path;
    struct stat status
    {};
    const QByteArray name = QFile::encodeName(path);
    if (::stat(name.constData(), &status) != 0) {
        node.fault = QString::fromLocal8Bit(std::strerror(errno));
        return node;
    }
    node.kind = kindOf(status);
    node.id = {status.st_dev, status.st_ino};
    if (node.kind != NodeFacts::Kind::InputDevice) {
        return node;
    }
    const int fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd == -1) {
        node.fault = QString::fromLocal8Bit(std::strerror(errno));
        return node;
    }
    readAbilities(node, fd);
    ::close(fd);
    return node;
}

QString programOf(const QString& process)
{
    QFile line(QStringLiteral("/proc/%1/cmdline").arg(process));
    if (!line.open(QIODevice::ReadOnly)) {
        return {}; // ended meanwhile
    }
    const QString program = QString::fromLocal8Bit(line.readAll().split('\0').first());
    return program.section(QLatin1Char('/'), -1);
}

/// Adds the programs that have the nodes open.
void findReaders(QVector<NodeFacts>& nodes, const QVector<qint64>& ignored)
{
    const QStringList processes =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& process : processes) {
        if (ignored.contains(process.toLongLong())) {
            continue;
        }
        const ProcessFacts facts = Probes::process(process.toLongLong());
        for (NodeFacts& node : nodes) {
            const bool isReader = facts.files && facts.files->contains(node.id) &&
                                  node.kind == NodeFacts::Kind::InputDevice &&
                                  programOf(process) != ownProgram;
            if (isReader) {
                node.readers.append(QStringLiteral("%1 (%2)").arg(programOf(process), process));
            }
        }
    }
}

/// The nodes of all input devices with these names.
QMap<QString, QString> nodesNamed(const QStringList& names)
{
    static const QRegularExpression nodeName(QStringLiteral("^H: Handlers=.*\\b(event\\d+)\\b"));
    QFile list(QStringLiteral("/proc/bus/input/devices"));
    QMap<QString, QString> nodes;
    if (!list.open(QIODevice::ReadOnly)) {
        return nodes;
    }
    QString name;
    const QStringList lines = QString::fromUtf8(list.readAll()).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (line.startsWith(QLatin1String("N: Name=\""))) {
            name = line.section(QLatin1Char('"'), 1, -2);
        }
        const QRegularExpressionMatch match = nodeName.match(line);
        if (match.hasMatch() && names.contains(name)) {
            nodes.insert(name, match.captured(1));
        }
    }
    return nodes;
}

} // namespace

PanelFacts Probes::panel(const QVector<qint64>& ignored)
{
    PanelFacts panel;
    panel.names = QStringLiteral(KEYBOARD_HANDLER_PANEL_NAMES).split(QLatin1Char('|'));
    panel.nodes = {lookAt(QStringLiteral("/dev/input/event0")), lookAt(QStringLiteral("/dev/input/event1"))};
    panel.nodesByName = nodesNamed(panel.names);
    findReaders(panel.nodes, ignored);
    return panel;
}

} // namespace control
