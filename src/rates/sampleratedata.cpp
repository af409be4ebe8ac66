#include "rates/sampleratedata.h"

#include "rates/raterecords.h"
#include "shell/database.h"

#include <QDate>

namespace fenlark {

void SampleRateData::write(Database &db, unsigned seed)
{
    Q_UNUSED(seed);
    Transaction transaction(db);
    RateSheet rack;
    rack.BBRateSheetID = 1;
    rack.RateCode = QStringLiteral("RACK");
    rack.CurrencyCode = QStringLiteral("ZAR");
    rack.update(db);
    RateCode code;
    code.BBRateID = 1;
    code.Source = QStringLiteral("R");
    code.SourceID = 1;
    code.update(db);

    const QDate today = QDate::currentDate();
    for (const RoomType &type : RoomType::list(db)) {
        Rates season;
        season.BBRTID = type.BBRTID;
        season.BBMealPlanID = type.DefaultMealPlanID;
        season.BBRateSheetID = 1;
        season.RateType = QStringLiteral("1");
        season.StartDate = QDate(today.year() - 12, 1, 1);
        season.EndDate = QDate(today.year() + 12, 12, 31);
        const double base = 400 + 100 * type.OrderBy;
        season.Pax1 = base;
        season.Pax2 = base * 1.6;
        season.Pax3 = base * 2.1;
        season.WPax1 = base * 1.2;
        season.WPax2 = base * 1.9;
        season.WPax3 = base * 2.5;
        season.update(db);
    }
    transaction.commit();
}

} // namespace fenlark
