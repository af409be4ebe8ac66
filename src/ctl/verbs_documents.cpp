#include "ctl/options.h"
#include "ctl/verb.h"

#include "rates/ratedata.h"
#include "reports/documenttext.h"
#include "reports/accountsdocument.h"
#include "reports/invoiceprint.h"
#include "reports/pdfconverter.h"
#include "reports/printbooking.h"
#include "shell/databasefiles.h"
#include "shell/progressline.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace fenlark::ctl {

namespace {

// Exit code when the documents were written but their PDF copies were not.
constexpr int PdfFailed = 3;

int refuse(const Refusal &refusal)
{
    return fail(refusal.text());
}

// The database chosen by --db, else --database N of the configuration (0 by default).
struct ChosenDatabase {
    std::unique_ptr<Database> db;
    int number = 0;
};

std::optional<ChosenDatabase> chooseDatabase(const CommandLine &args)
{
    bool ok = true;
    const int number = args.number(QStringLiteral("database"), &ok, 0);
    if (!ok || number < 0) {
        fail(QStringLiteral("--database must be a database number (0, 1, 2, ...)"));
        return std::nullopt;
    }
    std::unique_ptr<Database> db;
    if (args.has(QStringLiteral("db")) || number == 0) {
        db = openDatabase(args);
    } else {
        const QString path = getDBPath(number);
        if (path.isEmpty()) {
            fail(QStringLiteral("database %1 is not configured").arg(number));
            return std::nullopt;
        }
        try {
            db = Database::open(path);
        } catch (const DatabaseOpenError &e) {
            fail(QStringLiteral("Could not open database (%1): %2").arg(path, e.reason()));
        }
    }
    if (!db)
        return std::nullopt;
    return ChosenDatabase{std::move(db), number};
}

// The PDF copies of the files written; the files stay when LibreOffice fails.
int finish(QJsonObject out, const QStringList &files, bool pdf)
{
    QJsonArray written = QJsonArray::fromStringList(files);
    std::optional<Refusal> pdfFailure;
    if (pdf) {
        for (const QString &file : files) {
            ProgressLine line;
            Result<QString> copy = convertToPdf(file, line.progress());
            if (!copy) {
                pdfFailure = copy.refusal();
                break;
            }
            written.append(*copy);
        }
    }
    out.insert(QStringLiteral("files"), written);
    printJson(out);
    if (pdfFailure)
        return fail(pdfFailure->text(), PdfFailed);
    return 0;
}

int runDocument(const CommandLine &args)
{
    const auto accountId = keyOption(args, QStringLiteral("account"), QStringLiteral("an account key (a positive whole number)"));
    if (!accountId)
        return 1;
    const std::optional<DocumentType> type = documentTypeFromCode(args.option(QStringLiteral("type")));
    if (!type)
        return fail(QStringLiteral("--type must be I (invoice), P (pro forma) or C (credit note)"));
    if (args.has(QStringLiteral("number")) && *type != DocumentType::CreditNote)
        return fail(QStringLiteral("--number chooses a credit note; it goes with --type C only"));
    auto chosen = chooseDatabase(args);
    if (!chosen)
        return 1;
    Database &db = *chosen->db;

    qint32 number = 0;
    if (args.has(QStringLiteral("number"))) {
        const auto given = keyOption(args, QStringLiteral("number"), QStringLiteral("a credit note number"));
        if (!given)
            return 1;
        number = *given;
    } else {
        const Result<qint32> own = accountDocumentNumber(db, *type, *accountId);
        if (!own)
            return refuse(own.refusal());
        number = *own;
    }

    const RateData rates = loadRateNames(db);
    Result<AccountsDocument> document = AccountsDocument::build(db, rates, *type, *accountId, number);
    if (!document)
        return refuse(document.refusal());
    Result<QString> written = InvoicePrint(chosen->number, args.option(QStringLiteral("out"))).makeInvoice(*document);
    if (!written)
        return refuse(written.refusal());
    const QJsonObject out{{"type", args.option(QStringLiteral("type"))},
                          {"number", document->documentNo()},
                          {"date", document->documentDate().toString(Qt::ISODate)},
                          {"client", document->client().FullName()},
                          {"total", document->total()},
                          {"fromLiveData", document->fromLiveData()}};
    return finish(out, {*written}, args.has(QStringLiteral("pdf")));
}

int runLetter(const CommandLine &args)
{
    const auto booking = keyOption(args, QStringLiteral("booking"), QStringLiteral("a booking key (a positive whole number)"));
    if (!booking)
        return 1;
    const qint32 bookingId = *booking;
    const QString kind = args.option(QStringLiteral("kind"));
    const bool registration = kind == QLatin1String("registration");
    if (!registration && kind != QLatin1String("confirmation") && kind != QLatin1String("summary"))
        return fail(QStringLiteral("--kind must be confirmation, registration or summary"));
    if (!registration && (args.has(QStringLiteral("room")) || args.has(QStringLiteral("other-rooms"))))
        return fail(QStringLiteral("--room and --other-rooms go with --kind registration only"));
    if (kind == QLatin1String("summary") && args.has(QStringLiteral("pdf")))
        return fail(QStringLiteral("--pdf goes with the letters, not with the summary"));
    auto chosen = chooseDatabase(args);
    if (!chosen)
        return 1;
    Database &db = *chosen->db;
    const RateData rates = loadRateNames(db);
    PrintBooking printer(db, rates, chosen->number, args.option(QStringLiteral("out")));

    if (kind == QLatin1String("summary")) {
        Result<QString> written = printer.printSummary(bookingId);
        if (!written)
            return refuse(written.refusal());
        return finish(QJsonObject{{"kind", kind}}, {*written}, false);
    }
    if (!registration) {
        Result<PrintedLetter> letter = printer.printLetter(LetterKind::Confirmation, bookingId, 0);
        if (!letter)
            return refuse(letter.refusal());
        return finish(QJsonObject{{"kind", kind}, {"email", letter->email}}, {letter->path}, args.has(QStringLiteral("pdf")));
    }

    std::vector<qint32> rooms;
    if (args.has(QStringLiteral("room"))) {
        const auto room = keyOption(args, QStringLiteral("room"), QStringLiteral("a room key (a positive whole number)"));
        if (!room)
            return 1;
        rooms.push_back(*room);
    } else {
        const std::vector<qint32> all = printer.otherRooms(bookingId, 0);
        if (all.empty())
            return refuse(Refusal(2294, QStringLiteral("Could not fetch booking data (%1)"), 1934,
                                  QStringLiteral("Booking not found."))
                              .arg(bookingId));
        rooms.push_back(all.front());
    }
    if (args.has(QStringLiteral("other-rooms")))
        for (const qint32 room : printer.otherRooms(bookingId, rooms.front()))
            rooms.push_back(room);
    QStringList files;
    for (const qint32 room : rooms) {
        Result<PrintedLetter> letter = printer.printLetter(LetterKind::Registration, bookingId, room);
        if (!letter)
            return refuse(letter.refusal());
        files << letter->path;
    }
    return finish(QJsonObject{{"kind", kind}}, files, args.has(QStringLiteral("pdf")));
}

} // namespace

const std::vector<Verb> &documentVerbs()
{
    static const std::vector<Verb> verbs = {
        {"document",
         "document --account A --type I|P|C [--number N] [--out DIR] [--pdf] [--database N]   the account's invoice, pro forma\n"
         "      or credit note (the latest, or --number N) as .xlsx from the template; prints the files written\n"
         "      (exit 3: written, but no PDF)",
         runDocument},
        {"letter",
         "letter --booking B --kind confirmation|registration|summary [--room R] [--other-rooms] [--out DIR] [--pdf]\n"
         "      [--database N]   a booking letter (.docx from the template) or the text summary; a registration is for\n"
         "      room R (default the first), --other-rooms adds the booking's other rooms",
         runLetter},
    };
    return verbs;
}

} // namespace fenlark::ctl
