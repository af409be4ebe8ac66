#include "ctl/options.h"
#include "ctl/verb.h"

#include "accounts/accounts.h"
#include "clients/clientaccounts.h"
#include "clients/clienteditor.h"
#include "clients/clienthistory.h"
#include "clients/clientnames.h"
#include "clients/clientretirement.h"
#include "clients/companylookup.h"
#include "clients/sourcerename.h"
#include "rates/ratelists.h"
#include "shell/money.h"
#include "shell/security.h"

#include <QJsonArray>
#include <QJsonObject>

#include <cstdio>

namespace fenlark::ctl {

namespace {

// The answers a script gives: running the verb is the confirmation, and a
// changed name stays the same client unless --as-new is given.
class ScriptClientAnswers : public ClientSaveQuestions, public RetireQuestions, public RenameQuestions {
public:
    explicit ScriptClientAnswers(bool asNew = false) : m_asNew(asNew) {}
    bool addAsNewClient() override { return m_asNew; }
    bool happyWithDetails() override { return true; }
    bool readyToRetire() override { return true; }
    bool confirmReplace(const QString &, const QString &) override { return true; }

private:
    bool m_asNew;
};

int refuse(const Refusal &refusal)
{
    return fail(refusal.text());
}

std::optional<qint32> clientOption(const CommandLine &args, const QString &name)
{
    return keyOption(args, name, QStringLiteral("a client key"));
}

// Opens the client --id names; false (after saying why) when there is none to open.
bool openNamedClient(ClientEditor &editor, const CommandLine &args)
{
    const auto id = clientOption(args, QStringLiteral("id"));
    if (!id)
        return false;
    if (const Outcome opened = editor.open(*id); !opened) {
        refuse(opened.refusal());
        return false;
    }
    return true;
}

QJsonValue dateTimeText(const QDateTime &dateTime)
{
    return dateTime.isValid() ? QJsonValue(dateTime.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"))) : QJsonValue();
}

QJsonObject clientJson(const Client &c)
{
    QJsonObject out{{"BBClientID", c.BBClientID},
                    {"ClientID", c.ClientID},
                    {"DateCreated", dateTimeText(c.DateCreated)},
                    {"CreatedOn", c.CreatedOn},
                    {"createdOnName", createdOnName(c.CreatedOn)},
                    {"ClientType", c.ClientType},
                    {"clientTypeName", clientTypeName(c.ClientType)},
                    {"BBRateSheetID", c.BBRateSheetID},
                    {"Active", c.Active},
                    {"fullName", c.FullName()},
                    {"shortName", getShortName(c.FirstName, c.Surname, c.Company)}};
    for (const ClientTextField &field : clientTextFields())
        out.insert(QString::fromLatin1(field.column), c.*field.member);
    return out;
}

QJsonArray extrasJson(const std::vector<ClientExtraRow> &extras)
{
    QJsonArray out;
    for (const ClientExtraRow &row : extras)
        out.append(QJsonObject{{"BBClientExtraID", row.BBClientExtraID},
                               {"FieldType", row.FieldType},
                               {"fieldTypeName", clientExtraFieldName(row.FieldType)},
                               {"FieldValue", row.FieldValue}});
    return out;
}

// The client as the editor shows it, with its open accounts and what its ledger says it owes.
QJsonObject showJson(Database &db, const ClientEditor &editor)
{
    QJsonArray open;
    for (const ClientAccount &entry : clientAccounts(db, editor.clientId())) {
        if (entry.account.Status != accountstatus::Open)
            continue;
        open.append(QJsonObject{{"BBAccountID", entry.account.BBAccountID},
                                {"Reference", entry.account.Reference},
                                {"balance", roundMoney(Account::getBalanceOnAccount(db, entry.account.BBAccountID))},
                                {"items", QJsonArray::fromStringList(entry.items)}});
    }
    return QJsonObject{{"client", clientJson(editor.client())},
                       {"caption", editor.caption()},
                       {"extras", extrasJson(editor.extras())},
                       {"openAccounts", open},
                       {"balance", ledgerBalance(db, editor.clientId())}};
}

// NAME=VALUE for the client's columns: the text fields, ClientType (I, C, T or O)
// and BBRateSheetID (a rate sheet of the property, 0 for RACK).
bool applyField(Database &db, Client &client, const QString &assignment)
{
    const qsizetype eq = assignment.indexOf(QLatin1Char('='));
    if (eq < 1) {
        fail(QStringLiteral("--field must be NAME=VALUE: %1").arg(assignment));
        return false;
    }
    const QString name = assignment.left(eq);
    const QString value = assignment.mid(eq + 1);
    for (const ClientTextField &field : clientTextFields()) {
        if (name.compare(QLatin1String(field.column), Qt::CaseInsensitive) == 0) {
            client.*field.member = value;
            return true;
        }
    }
    if (name.compare(QLatin1String("ClientType"), Qt::CaseInsensitive) == 0) {
        if (getClientTypeCode(getClientTypeIndex(value)) != value) {
            fail(QStringLiteral("ClientType must be I, C, T or O: %1").arg(value));
            return false;
        }
        client.ClientType = value;
        return true;
    }
    if (name.compare(QLatin1String("BBRateSheetID"), Qt::CaseInsensitive) == 0) {
        bool ok = false;
        const int sheet = value.toInt(&ok);
        bool known = false;
        for (const RateSheetChoice &choice : rateSheetList(db))
            known = known || (ok && choice.BBRateSheetID == sheet);
        if (!known) {
            fail(QStringLiteral("BBRateSheetID must be a rate sheet of the property (0 for RACK): %1").arg(value));
            return false;
        }
        client.BBRateSheetID = static_cast<qint16>(sheet);
        return true;
    }
    QStringList names;
    for (const ClientTextField &field : clientTextFields())
        names << QString::fromLatin1(field.column);
    fail(QStringLiteral("unknown field %1 (one of %2, ClientType, BBRateSheetID)").arg(name, names.join(QStringLiteral(", "))));
    return false;
}

// Saves what the editor holds; warnings go to stderr and do not stop the save.
int saveAndShow(Database &db, ClientEditor &editor, ScriptClientAnswers &answers)
{
    const auto saved = editor.save(answers);
    if (!saved)
        return refuse(saved.refusal());
    for (const QString &warning : clientDetailWarnings(editor.client()))
        std::fprintf(stderr, "%s\n", qUtf8Printable(warning));
    QJsonObject out = showJson(db, editor);
    out.insert(QStringLiteral("madeNew"), saved->madeNew);
    printJson(out);
    return 0;
}

int runShow(Database &db, const CommandLine &args)
{
    ClientEditor editor(db);
    if (!openNamedClient(editor, args))
        return 1;
    printJson(showJson(db, editor));
    return 0;
}

int runAddOrEdit(Database &db, const CommandLine &args, bool add)
{
    ClientEditor editor(db);
    if (!add) {
        if (!openNamedClient(editor, args))
            return 1;
    } else {
        (void)editor.open(0);
    }
    for (const QString &assignment : args.options(QStringLiteral("field")))
        if (!applyField(db, editor.client(), assignment))
            return 1;
    ScriptClientAnswers answers(args.has(QStringLiteral("as-new")));
    return saveAndShow(db, editor, answers);
}

// TYPE=VALUE sets the client's values of that type: the first stored one of the
// type takes the first value, and so on; values left over are added, stored
// ones left over are removed. An empty VALUE removes every value of the type.
int runExtras(Database &db, const CommandLine &args)
{
    ClientEditor editor(db);
    if (!openNamedClient(editor, args))
        return 1;
    QMap<QString, QStringList> values;
    for (const QString &assignment : args.options(QStringLiteral("set"))) {
        const qsizetype eq = assignment.indexOf(QLatin1Char('='));
        const QString type = assignment.left(eq);
        if (eq < 1 || !clientExtraFieldTypes().contains(type))
            return fail(QStringLiteral("--set must be TYPE=VALUE with TYPE one of %1: %2")
                            .arg(clientExtraFieldTypes().join(QStringLiteral(", ")), assignment));
        QStringList &list = values[type];
        if (!assignment.mid(eq + 1).isEmpty())
            list << assignment.mid(eq + 1);
    }
    std::vector<ClientExtraRow> rows;
    QMap<QString, int> used;
    for (const ClientExtraRow &row : editor.extras()) {
        if (!values.contains(row.FieldType)) {
            rows.push_back(row);
            continue;
        }
        const int at = used[row.FieldType]++;
        const QStringList &given = values[row.FieldType];
        if (at < given.size())
            rows.push_back({row.BBClientExtraID, row.FieldType, given.at(at)});
    }
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        for (qsizetype at = used.value(it.key()); at < it.value().size(); ++at)
            rows.push_back({0, it.key(), it.value().at(at)});
    editor.extras() = rows;
    ScriptClientAnswers answers;
    return saveAndShow(db, editor, answers);
}

int runRetire(Database &db, const CommandLine &args)
{
    const auto from = clientOption(args, QStringLiteral("from"));
    if (!from)
        return 1;
    const auto into = clientOption(args, QStringLiteral("into"));
    if (!into)
        return 1;
    ScriptClientAnswers answers;
    const auto result = retireClient(db, UserStruct::autoAdmin(), *from, *into, answers);
    if (!result)
        return refuse(result.refusal());
    const RetireCounts &c = result->counts;
    printJson(QJsonObject{{"retired", *from},
                          {"into", *into},
                          {"booking", c.bookings},
                          {"guest", c.guests},
                          {"guestSecond", c.secondGuests},
                          {"account", c.accounts},
                          {"clienttran", c.ledger}});
    return 0;
}

int runHistory(Database &db, const CommandLine &args)
{
    const auto id = clientOption(args, QStringLiteral("id"));
    if (!id)
        return 1;
    Client client;
    if (!client.fetch(db, *id))
        return refuse(clientFetchError(*id));
    QJsonArray rows;
    for (const ClientHistoryRow &row : clientHistory(db, *id))
        rows.append(QJsonObject{{"booking", row.BBBookingID},
                                {"arrival", row.FromDate.toString(Qt::ISODate)},
                                {"leaving", row.ToDate.toString(Qt::ISODate)},
                                {"nights", row.nights()},
                                {"total", row.total ? QJsonValue(roundMoney(*row.total)) : QJsonValue()}});
    printJson(QJsonObject{{"client", *id}, {"name", client.FullName()}, {"bookings", rows}});
    return 0;
}

int runClient(const CommandLine &args)
{
    static const QString usage =
        QStringLiteral("usage: client show|add|edit|extras|retire|history [--db PATH] ... (fenlarkctl alone lists the options)");
    const QStringList words = args.positional();
    if (words.size() != 1)
        return fail(usage);
    const QString what = words.at(0);
    static const QStringList known = {"show", "add", "edit", "extras", "retire", "history"};
    if (!known.contains(what))
        return fail(usage);
    auto db = openDatabase(args);
    if (!db)
        return 1;
    if (what == QLatin1String("show"))
        return runShow(*db, args);
    if (what == QLatin1String("add") || what == QLatin1String("edit"))
        return runAddOrEdit(*db, args, what == QLatin1String("add"));
    if (what == QLatin1String("extras"))
        return runExtras(*db, args);
    if (what == QLatin1String("retire"))
        return runRetire(*db, args);
    return runHistory(*db, args);
}

int runCompanies(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    QJsonArray rows;
    for (const CompanyRow &row : lookupCompanies(*db, args.option(QStringLiteral("prefix"))))
        rows.append(QJsonObject{{"Company", row.Company}, {"PhoneNo", row.PhoneNo}, {"Add1", row.Add1}});
    printJson(rows);
    return 0;
}

int runSources(const CommandLine &args)
{
    auto db = openDatabase(args);
    if (!db)
        return 1;
    const bool renaming = args.has(QStringLiteral("rename")) || args.has(QStringLiteral("to"));
    QJsonObject out;
    if (renaming) {
        const auto option = [&](const QString &name) {
            return args.has(name) ? std::optional<QString>(args.option(name)) : std::nullopt;
        };
        ScriptClientAnswers answers;
        const auto result = renameSource(*db, UserStruct::autoAdmin(), option(QStringLiteral("rename")),
                                         option(QStringLiteral("to")), answers);
        if (!result)
            return refuse(result.refusal());
        out.insert(QStringLiteral("renamed"), result->bookings);
    }
    QJsonArray sources;
    for (const SourceCount &count : sourceCounts(*db))
        sources.append(QJsonObject{{"source", count.source}, {"bookings", count.count}});
    out.insert(QStringLiteral("sources"), sources);
    printJson(out);
    return 0;
}

} // namespace

const std::vector<Verb> &clientVerbs()
{
    static const std::vector<Verb> verbs = {
        {"client",
         "client show [--db PATH] --id C       a client as the editor opens it (closing its empty accounts):\n"
         "      its record, extras, open accounts and ledger balance\n"
         "  client add [--db PATH] --field NAME=VALUE...   a new client (NAME: Title, FirstName, Surname, Company,\n"
         "      PhoneNo, Email, VatNo, Add1, Add2, Notes, ClientType, BBRateSheetID)\n"
         "  client edit [--db PATH] --id C --field NAME=VALUE... [--as-new]   change a client, or save it as a new one\n"
         "  client extras [--db PATH] --id C --set TYPE=VALUE...   set the values of an extra type (empty VALUE removes)\n"
         "  client retire [--db PATH] --from OLD --into NEW   retire a client; its bookings, rooms, accounts and ledger move\n"
         "  client history [--db PATH] --id C    every booking the client had a part in",
         runClient},
        {"companies", "companies [--db PATH] [--prefix TEXT]   companies known from clients, by company, phone and address",
         runCompanies},
        {"sources", "sources [--db PATH] [--rename OLD --to NEW]   marketing sources of desk bookings; rename one", runSources},
    };
    return verbs;
}

} // namespace fenlark::ctl
