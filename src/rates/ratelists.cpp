#include "rates/ratelists.h"

#include "shell/database.h"
#include "shell/messages.h"
#include "shell/strings.h"
#include "shell/textcompare.h"

#include <QSqlQuery>

#include <algorithm>

namespace fenlark {

MealPlanCodes::MealPlanCodes()
{
    m_list = {
        {QStringLiteral("1"), getString(5500, QStringLiteral("Bed & Breakfast"))},
        {QStringLiteral("2"), getString(5501, QStringLiteral("Self-Catering"))},
        {QStringLiteral("3"), getString(5502, QStringLiteral("B&B and Dinner"))},
        {QStringLiteral("4"), getString(5503, QStringLiteral("Full Board"))},
        {QStringLiteral("5"), getString(5504, QStringLiteral("Room Only"))},
        {QStringLiteral("6"), getString(5505, QStringLiteral("Camp Site"))},
        {QStringLiteral("7"), getString(5506, QStringLiteral("All Inclusive"))},
    };
    for (const auto &[id, name] : m_list)
        m_names.insert(id, name);
}

void CurrencyCodes::initialise(Database &db)
{
    m_list.clear();
    QSqlQuery q = db.query(QStringLiteral("select * from currencycode order by currencyname"));
    while (q.next())
        m_list.emplace_back(q.value(QStringLiteral("CurrencyCode")).toString(), q.value(QStringLiteral("currencyname")).toString());
}

QString CurrencyCodes::getCurrencyCode(int index) const
{
    if (index < 0 || index >= count()) {
        messages::critical(5508, QStringLiteral("Incorrect index passed into getCurrencyCode(%1)"), 5509, QStringLiteral("Error"),
                           {QString::number(index)});
        return {};
    }
    return m_list[static_cast<std::size_t>(index)].first;
}

QString CurrencyCodes::getCurrencyName(int index) const
{
    if (index < 0 || index >= count())
        return getString(5509, QStringLiteral("Error"));
    return m_list[static_cast<std::size_t>(index)].second;
}

int CurrencyCodes::getCurrencyIndex(const QString &code) const
{
    for (std::size_t i = 0; i < m_list.size(); ++i) {
        if (m_list[i].first == code)
            return static_cast<int>(i);
    }
    return -1;
}

std::vector<RateSheetChoice> rateSheetList(Database &db)
{
    std::vector<RateSheetChoice> list{{0, getString(5510, QStringLiteral("RACK"))}};
    // A row for the default sheet itself (it carries its currency and deposit
    // policy) is already the first entry.
    for (const RateSheet &sheet : RateSheet::list(db, QStringLiteral("BBRateSheetID"))) {
        if (sheet.BBRateSheetID != 0)
            list.push_back({sheet.BBRateSheetID, sheet.RateCode});
    }
    const NameOrder order;
    std::stable_sort(list.begin() + 1, list.end(),
                     [&order](const RateSheetChoice &a, const RateSheetChoice &b) { return order(a.name, b.name); });
    return list;
}

std::vector<RoomType> getRoomTypes(Database &db)
{
    return RoomType::list(db, QStringLiteral("OrderBy"));
}

std::vector<Room> getRooms(Database &db)
{
    return Room::list(db, QStringLiteral("OrderBy"));
}

} // namespace fenlark
