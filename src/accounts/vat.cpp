#include "accounts/vat.h"

#include "shell/money.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

namespace fenlark {

bool isVat(const BBSetup &setup)
{
    return !setup.VatNo.trimmed().isEmpty();
}

double calculateVAT(const VatCode &code, double amount)
{
    return roundMoney(code.VATRate / (code.VATRate + 100) * amount);
}

QString getDescription(const VatCode &code)
{
    if (code.Code == 1)
        return getString(6600, QStringLiteral("Normal Rate"));
    if (code.Code == 2)
        return getString(6601, QStringLiteral("Zero Rated"));
    return {};
}

VatRules::VatRules(bool registered, std::vector<VatCode> codes)
    : m_registered(registered), m_codes(std::move(codes))
{
}

VatRules VatRules::load(Database &db)
{
    BBSetup setup;
    setup.fetch(db);
    std::vector<VatCode> codes;
    QSqlQuery q = db.query(QStringLiteral("select * from vatcode order by vatcode"));
    while (q.next())
        codes.emplace_back().fillFields(q.record());
    return VatRules(fenlark::isVat(setup), std::move(codes));
}

const VatCode *VatRules::getVatCode(qint16 code) const
{
    for (const VatCode &vat : m_codes) {
        if (vat.Code == code)
            return &vat;
    }
    return nullptr;
}

double VatRules::lineVAT(qint16 code, double amount) const
{
    if (!m_registered)
        return 0;
    const VatCode *vat = getVatCode(code);
    return vat ? calculateVAT(*vat, amount) : 0;
}

} // namespace fenlark
