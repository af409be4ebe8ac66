#include "ctl/options.h"
#include "ctl/verb.h"

#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>
#include <optional>

namespace fenlark::ctl {

namespace {

// The stay common to both verbs: an existing database, a room of it and two dates.
struct StayArguments {
    std::unique_ptr<Database> db;
    RateData data;
    qint32 room = 0;
    QDate from;
    QDate to;
};

std::optional<StayArguments> readStay(const CommandLine &args)
{
    const QString path = args.option(QStringLiteral("db"));
    if (!path.isEmpty() && !QFileInfo::exists(path)) {
        fail(QStringLiteral("no database at %1").arg(path));
        return std::nullopt;
    }
    bool ok = false;
    StayArguments stay;
    stay.room = args.number(QStringLiteral("room"), &ok);
    if (!ok || !args.has(QStringLiteral("room"))) {
        fail(QStringLiteral("--room must be a room id"));
        return std::nullopt;
    }
    stay.from = readDate(args.option(QStringLiteral("from")));
    stay.to = readDate(args.option(QStringLiteral("to")));
    if (!stay.from.isValid() || !stay.to.isValid()) {
        fail(QStringLiteral("--from and --to must be dates as YYYY-MM-DD"));
        return std::nullopt;
    }
    if (stay.from >= stay.to) {
        fail(QStringLiteral("--to must be after --from (it is the day of leaving)"));
        return std::nullopt;
    }
    stay.db = openDatabase(args);
    if (!stay.db)
        return std::nullopt;
    stay.data = RateData::load(*stay.db);
    if (!stay.data.room(stay.room)) {
        fail(QStringLiteral("room %1 not found").arg(stay.room));
        return std::nullopt;
    }
    return stay;
}

// A count of guests: absent is the default, anything but a whole number from 0 is an error.
bool guestCount(const CommandLine &args, const char *name, int defaultValue, qint16 &count)
{
    bool ok = false;
    const int value = args.number(QString::fromLatin1(name), &ok, defaultValue);
    if (!ok || value < 0 || value > 99) {
        fail(QStringLiteral("--%1 must be a number of guests from 0 to 99").arg(QString::fromLatin1(name)));
        return false;
    }
    count = static_cast<qint16>(value);
    return true;
}

QString money(double amount)
{
    return QString::number(amount, 'f', 2);
}

int runQuote(const CommandLine &args)
{
    auto stay = readStay(args);
    if (!stay)
        return 1;
    StayRequest request;
    request.BBRoomID = stay->room;
    request.FromDate = stay->from;
    request.ToDate = stay->to;
    bool ok = false;
    request.BBRateID = args.number(QStringLiteral("rate"), &ok);
    if (!ok || !args.has(QStringLiteral("rate")))
        return fail(QStringLiteral("--rate must be a rate code id (0 for manual rates)"));
    if (request.BBRateID != 0 && !stay->data.rateCode(request.BBRateID))
        return fail(QStringLiteral("rate code %1 not found").arg(request.BBRateID));
    request.BBRateSheetID = args.number(QStringLiteral("sheet"), &ok, 0);
    if (!ok)
        return fail(QStringLiteral("--sheet must be a rate sheet id"));
    if (request.BBRateSheetID != 0) {
        RateSheet sheet;
        if (!sheet.fetch(*stay->db, request.BBRateSheetID))
            return fail(QStringLiteral("rate sheet %1 not found").arg(request.BBRateSheetID));
    }
    if (!args.has(QStringLiteral("adults")))
        return fail(QStringLiteral("--adults is required"));
    if (!guestCount(args, "adults", 0, request.adults) || !guestCount(args, "child1", 0, request.child1)
        || !guestCount(args, "child2", 0, request.child2))
        return 1;

    const StayPrice price = priceStay(stay->data, request);
    // Written by hand so that amounts keep their two decimals ("rate":160.00).
    QStringList nights;
    for (auto it = price.nights.cbegin(); it != price.nights.cend(); ++it) {
        nights << QStringLiteral("{\"date\":\"%1\",\"rate\":%2}").arg(it.key().toString(Qt::ISODate), money(it.value()));
    }
    const QString text = QStringLiteral("{\"nights\":[%1],\"total\":%2}\n").arg(nights.join(QLatin1Char(',')), money(price.total));
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stdout);
    return 0;
}

int runRates(const CommandLine &args)
{
    auto stay = readStay(args);
    if (!stay)
        return 1;
    QJsonArray rates;
    for (const OfferedRate &rate : offeredRates(stay->data, stay->from, stay->to, stay->room))
        rates.append(QJsonObject{{"rate", rate.BBRateID}, {"name", rate.name}});
    printJson(rates);
    return 0;
}

} // namespace

const std::vector<Verb> &ratesVerbs()
{
    static const std::vector<Verb> verbs = {
        {"quote",
         "quote [--db PATH] --room ID --rate ID --from DATE --to DATE --adults A [--child1 N] [--child2 N] [--sheet ID]"
         "   the price of each night of a stay",
         runQuote},
        {"rates", "rates [--db PATH] --room ID --from DATE --to DATE   the rate codes offered for a stay (dates YYYY-MM-DD)",
         runRates},
    };
    return verbs;
}

} // namespace fenlark::ctl
