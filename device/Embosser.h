// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace detail {

/// The model of this embosser. Reached through `libvantre::Singleton`; asked once, by the router.
class Embosser : public QObject
{
    Q_OBJECT

public:
    explicit Embosser(QObject* parent);

    /// Whether this is the Orvane model; false for the Pellit model and when the model is not known.
    bool isOrvane();
};

} // namespace detail
