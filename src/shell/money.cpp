#include "shell/money.h"

#include <cmath>
#include <cstdint>

namespace fenlark {

double roundMoney(double amount)
{
    if (!std::isfinite(amount) || amount == 0.0)
        return amount;
    int exponent = 0;
    const double fraction = std::frexp(std::fabs(amount), &exponent); // |amount| = fraction * 2^exponent
    // |amount| = mantissa * 2^shift exactly, with a 53-bit integer mantissa.
    const auto mantissa = static_cast<std::uint64_t>(std::ldexp(fraction, 53));
    const int shift = exponent - 53;
    if (shift >= 0)
        return amount; // already a whole number, far beyond cents

    const unsigned __int128 hundredfold = static_cast<unsigned __int128>(mantissa) * 100u;
    const int drop = -shift;
    if (drop >= 120)
        return std::copysign(0.0, amount);
    const unsigned __int128 one = 1;
    unsigned __int128 cents = hundredfold >> drop;
    const unsigned __int128 remainder = hundredfold & ((one << drop) - 1);
    const unsigned __int128 half = one << (drop - 1);
    if (remainder > half || (remainder == half && (cents & 1u)))
        ++cents;
    const double result = static_cast<double>(cents) / 100.0;
    return amount < 0 ? -result : result;
}

} // namespace fenlark
