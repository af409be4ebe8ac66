#pragma once

namespace fenlark {

// Rounds an amount of money to two decimals. It rounds the exact binary value of
// the double (2.675 is stored as 2.67499..., so it gives 2.67), and an exact tie
// goes to the even digit (0.125 gives 0.12, 0.375 gives 0.38). Every amount that
// is stored or compared goes through here; SQLite's round() is never used for money.
double roundMoney(double amount);

} // namespace fenlark
