#include "reports/documenttext.h"

#include "rates/ratedata.h"
#include "shell/database.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QDate>
#include <QHash>

namespace fenlark {

QLocale documentLocale()
{
    return StringTable::instance().language() == SpanishLanguage ? QLocale(QLocale::Spanish, QLocale::Spain)
                                                                 : QLocale(QLocale::English, QLocale::UnitedKingdom);
}

QString documentDate(const QDate &date, const QString &pattern)
{
    return documentLocale().toString(date, pattern);
}

QString propertyCurrencySymbol(Database &db)
{
    const QString code = db.scalar(QStringLiteral("select CurrencyCode from bbsetup")).toString().trimmed().toUpper();
    if (code.isEmpty())
        return {};
    static QHash<QString, QString> known;
    if (const auto found = known.constFind(code); found != known.cend())
        return *found;
    QString symbol = code + QLatin1Char(' ');
    for (const QLocale &locale : QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyTerritory)) {
        if (locale.currencySymbol(QLocale::CurrencyIsoCode) == code) {
            symbol = locale.currencySymbol(QLocale::CurrencySymbol);
            break;
        }
    }
    known.insert(code, symbol);
    return symbol;
}

RateData loadRateNames(Database &db)
{
    RateData data;
    for (const RoomType &type : RoomType::list(db))
        data.addRoomType(type);
    for (const RateCode &code : RateCode::list(db, QStringLiteral("BBRateID")))
        data.addRateCode(code);
    for (const RTMealPlan &plan : RTMealPlan::list(db, QStringLiteral("BBMealPlanRC")))
        data.addMealPlanRC(plan);
    for (const Package &package : Package::list(db))
        data.addPackage(package);
    for (const PackageRT &link : PackageRT::list(db, QStringLiteral("BBPackageRateID")))
        data.addPackageRT(link);
    return data;
}

QString moneyText(const QString &symbol, double amount)
{
    return symbol + formatAmount(amount);
}

QString guestsText(int adults, int children)
{
    QString text = QString::number(adults) + getString(2228, QStringLiteral(" Adult"));
    if (adults != 1)
        text += getString(2229, QStringLiteral("s"));
    if (children > 0) {
        text += QStringLiteral(", ") + QString::number(children) + getString(1924, QStringLiteral(" Child"));
        if (children != 1)
            text += getString(2230, QStringLiteral("ren"));
    }
    return text;
}

QString personName(const QString &title, const QString &firstName, const QString &surname)
{
    QString name = title.trimmed() + QLatin1Char(' ') + firstName.trimmed();
    while (name.startsWith(QLatin1Char(' ')))
        name.remove(0, 1);
    name += QLatin1Char(' ') + surname.trimmed();
    while (name.startsWith(QLatin1Char(' ')))
        name.remove(0, 1);
    return name;
}

} // namespace fenlark
