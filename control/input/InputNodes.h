// SPDX-License-Identifier: MIT
#pragma once

#include "control/input/InputNode.h"

#include <array>

namespace control {

/// The two input nodes of the front panel.
class InputNodes : public QObject
{
    Q_OBJECT

public:
    static constexpr int count = 2;

    explicit InputNodes(QObject* parent = nullptr);

    /// Opens both nodes. Returns a sentence or two about the first that cannot be opened: the cause and the
    /// remedy; empty if both are open.
    QString open();
    /// Whether the last `open` failed for lack of rights.
    bool isForbidden() const { return m_isForbidden; }
    const InputNode& node(int keyboard) const { return *m_nodes.at(static_cast<size_t>(keyboard)); }

Q_SIGNALS:
    void recorded(const InputRecord& record);
    void gapFound(const InputGap& gap);

private:
    QString faultOf(const InputNode& node, int error);

    std::array<InputNode*, count> m_nodes{};
    bool m_isForbidden = false;
};

} // namespace control
