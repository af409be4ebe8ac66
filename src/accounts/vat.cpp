#include "accounts/vat.h"

#include "shell/setuprecords.h"

namespace fenlark {

bool isVat(const BBSetup &setup)
{
    return !setup.VatNo.trimmed().isEmpty();
}

VatRules::VatRules(bool registered, QHash<qint16, VatCode> codes)
    : m_registered(registered), m_codes(std::move(codes))
{
}

VatRules VatRules::load(Database &db)
{
    BBSetup setup;
    setup.fetch(db);
    QHash<qint16, VatCode> codes;
    for (const VatCode &code : VatCode::list(db, QStringLiteral("vatcode")))
        codes.insert(code.Code, code);
    return VatRules(fenlark::isVat(setup), std::move(codes));
}

const VatCode *VatRules::getVatCode(qint16 code) const
{
    const auto it = m_codes.constFind(code);
    return it == m_codes.constEnd() ? nullptr : &it.value();
}

double VatRules::lineVAT(qint16 code, double amount) const
{
    if (!m_registered)
        return 0;
    const VatCode *vat = getVatCode(code);
    return vat ? vat->calculateVAT(amount) : 0;
}

} // namespace fenlark
