#pragma once

#include <QString>

namespace fenlark {

// "0" Bank, "1" Cash, "2" Credit Card, "3" Other, "4" Commission; anything else "Unknown Type".
QString paymentTypeName(const QString &code);

} // namespace fenlark
