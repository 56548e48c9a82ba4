// SPDX-License-Identifier: MIT
#include "model/Causes.h"

#include <algorithm>

namespace model {

QVector<int> Causes::take(const Effect& effect, int step)
{
    QVector<int> steps;
    for (size_t part = 0; part < m_setBy.size(); ++part) {
        const Parts bit = static_cast<Parts>(1U << part);
        if (Rules::read(effect.rule) & bit) {
            steps.append(m_setBy[part]);
        }
        if (Rules::written(effect.rule) & bit) {
            m_setBy[part] = step;
        }
    }
    std::sort(steps.begin(), steps.end());
    steps.erase(std::unique(steps.begin(), steps.end()), steps.end());
    return steps;
}

} // namespace model
