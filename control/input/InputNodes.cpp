// SPDX-License-Identifier: MIT
#include "control/input/InputNodes.h"

#include "vocabulary/Vocabulary.h"

#include <cerrno>
#include <cstring>

namespace control {

InputNodes::InputNodes(QObject* parent) : QObject(parent)
{
    const std::array<QString, count> paths{vocabulary::firstDeviceNode, vocabulary::secondDeviceNode};
    for (int keyboard = 0; keyboard < count; ++keyboard) {
        auto* node = new InputNode(keyboard, paths.at(static_cast<size_t>(keyboard)), this);
        connect(node, &InputNode::recorded, this, &InputNodes::recorded);
        connect(node, &InputNode::gapFound, this, &InputNodes::gapFound);
        m_nodes.at(static_cast<size_t>(keyboard)) = node;
    }
}

QString InputNodes::open()
{
    m_isForbidden = false;
    for (InputNode* node : m_nodes) {
        const int error = node->isOpen() ? 0 : node->open();
        if (error != 0) {
            return faultOf(*node, error);
        }
    }
    return {};
}

QString InputNodes::faultOf(const InputNode& node, int error)
{
    m_isForbidden = error == EACCES || error == EPERM;
    const QString text = QStringLiteral("%1 cannot be read: %2.")
                             .arg(node.path(), QString::fromLocal8Bit(std::strerror(error)));
    const QString remedy =
        m_isForbidden
            ? QStringLiteral(" Use root, or add yourself to the group %1 (adduser NAME %1) and log in again.")
                  .arg(QStringLiteral(KEYBOARD_HANDLER_USER))
            : QStringLiteral(" Is the panel connected? See ls -l /dev/input.");
    return text + remedy;
}

} // namespace control
