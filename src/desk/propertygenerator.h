#pragma once

#include "shell/progress.h"

#include <QDate>
#include <QString>

#include <optional>

namespace fenlark {

class Database;

// Fills an empty database with a believable property as if it had been
// downloaded from the server: settings, room types and rooms, rate data, VAT codes,
// stock, clients, and bookings with their legs, nightly rates, accounts, payments
// and extras. The same options and seed always give the same property.
class PropertyGenerator {
public:
    struct Options {
        int rooms = 40;
        QDate from;               // first day with bookings
        QDate to;                 // last day with bookings
        unsigned seed = 1;
        qint16 bbid = 20001;
        QString name = QStringLiteral("Fenlark Demo Lodge");
        QString password = QStringLiteral("demo");
        bool withUsers = true;    // desk users and groups
    };

    struct Counts {
        int roomTypes = 0;
        int rooms = 0;
        int clients = 0;
        int bookings = 0;
        int legs = 0;
        int nights = 0;
    };

    explicit PropertyGenerator(Options options);
    Counts generate(Database &db);
    // The same, reporting day by day how far the bookings have come; nothing
    // when the watcher stopped it, and then nothing was written.
    std::optional<Counts> generate(Database &db, Progress &progress);

    // Options for `years` of bookings ending a year from today.
    static Options forYears(int rooms, int years, unsigned seed);
    // The small demo property: 12 rooms in 4 room types, bookings a few weeks around today.
    static Options demo();

private:
    Options m_options;
};

} // namespace fenlark
