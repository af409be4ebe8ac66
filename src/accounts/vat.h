#pragma once

#include "accounts/accountrecords.h"

#include <vector>

namespace fenlark {

class BBSetup;

// Whether the property charges VAT: it has a VAT number.
bool isVat(const BBSetup &setup);

// The VAT within an amount that includes it at that code's rate: the rate's
// share of the amount, quotient first, then product, rounded to the cent; it
// keeps the amount's sign.
double calculateVAT(const VatCode &code, double amount);
// "Normal Rate" for code 1, "Zero Rated" for code 2, empty for any other.
QString getDescription(const VatCode &code);

// The VAT codes and whether the property is VAT-registered: what every VAT
// figure of the accounts is worked out from.
class VatRules {
public:
    VatRules() = default;
    VatRules(bool registered, std::vector<VatCode> codes);
    // The property's VAT number and its VAT codes, from the database.
    static VatRules load(Database &db);

    bool isVat() const { return m_registered; }
    // The code, or nothing when the property has no such code.
    const VatCode *getVatCode(qint16 code) const;
    // Always 1: there is no setting for it.
    static constexpr qint16 getDefaultVATCode() { return 1; }

    // The VAT within a line's amount at its code, rounded per line: 0 when the
    // property is not VAT-registered or the code is unknown.
    double lineVAT(qint16 code, double amount) const;

private:
    bool m_registered = false;
    std::vector<VatCode> m_codes;   // a handful: looked through in order
};

} // namespace fenlark
