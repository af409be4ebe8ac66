#pragma once

#include "rates/raterecords.h"

#include <QHash>
#include <QString>

#include <utility>
#include <vector>

namespace fenlark {

class Database;

// The meal plans a rate can carry: a fixed list, named in the current language
// when the object is made.
class MealPlanCodes {
public:
    MealPlanCodes();
    int count() const { return static_cast<int>(m_list.size()); }
    // The id ("1" to "7") and name of the entry at index.
    const std::pair<QString, QString> &at(int index) const { return m_list.at(static_cast<std::size_t>(index)); }
    // The name of a meal plan id; empty for an unknown id.
    QString getMealPlan(const QString &id) const { return m_names.value(id); }

private:
    std::vector<std::pair<QString, QString>> m_list;
    QHash<QString, QString> m_names;
};

// The currencies a rate sheet or booking may use, by name.
class CurrencyCodes {
public:
    void initialise(Database &db);
    int count() const { return static_cast<int>(m_list.size()); }
    // The code at index; an index outside the list shows a critical message and
    // gives an empty code.
    QString getCurrencyCode(int index) const;
    // The name at index; "Error" for an index outside the list.
    QString getCurrencyName(int index) const;
    // The index of a code; -1 when it is not in the list.
    int getCurrencyIndex(const QString &code) const;

private:
    std::vector<std::pair<QString, QString>> m_list;   // code, name
};

// One entry of a rate-sheet drop-down.
struct RateSheetChoice {
    qint32 BBRateSheetID = 0;
    QString name;
};

// "RACK" (the default sheet, 0) first, then the other sheets by name as people
// sort names.
std::vector<RateSheetChoice> rateSheetList(Database &db);

// Room types and rooms in their display order.
std::vector<RoomType> getRoomTypes(Database &db);
std::vector<Room> getRooms(Database &db);

} // namespace fenlark
