// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace detail {

/// The model of this embosser. Accessed through `libvantre::Singleton`; the router asks for it once.
class Embosser : public QObject
{
    Q_OBJECT

public:
    explicit Embosser(QObject* parent);

    /// Whether this is the Orvane model; false for the Pellit model and if the model is unknown.
    bool isOrvane();
};

} // namespace detail
