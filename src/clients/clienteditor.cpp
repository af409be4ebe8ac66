#include "clients/clienteditor.h"

#include "accounts/accountvalidator.h"
#include "clients/clientnames.h"
#include "clients/companylookup.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/strings.h"

#include <QRegularExpression>
#include <QSet>
#include <QSqlQuery>

namespace fenlark {

namespace {

// A stored text replaced by another one; filling in an empty one is not a change of client.
bool replaced(const QString &stored, const QString &typed)
{
    const QString before = stored.trimmed();
    const QString now = typed.trimmed();
    return !before.isEmpty() && !now.isEmpty() && before != now;
}

Refusal tooLong(const QString &label, qsizetype length)
{
    return Refusal(6946, QStringLiteral("%1 is too long (%2 characters): at most %3 fit."), 6947,
                   QStringLiteral("Text too long"))
        .arg(label)
        .arg(qint64(length))
        .arg(qint64(MaxClientTextLength));
}

} // namespace

QString ClientTextField::labelText() const
{
    return getString(labelId, QString::fromUtf8(label));
}

const std::vector<ClientTextField> &clientTextFields()
{
    static const std::vector<ClientTextField> fields = {
        {"Title", &Client::Title, 6933, "Title", true},
        {"FirstName", &Client::FirstName, 6934, "First name", true},
        {"Surname", &Client::Surname, 5955, "Surname", true},
        {"Company", &Client::Company, 2156, "Company", true},
        {"PhoneNo", &Client::PhoneNo, 5620, "Phone No", true},
        {"Email", &Client::Email, 5868, "E-mail", true},
        {"VatNo", &Client::VatNo, 6937, "VAT No", true},
        {"Add1", &Client::Add1, 6938, "Address line 1", true},
        {"Add2", &Client::Add2, 6939, "Address line 2", true},
        {"Notes", &Client::Notes, 5877, "Notes", false},
    };
    return fields;
}

bool MessageClientSaveQuestions::addAsNewClient()
{
    return messages::ask(6905, QStringLiteral("You changed name/company details. Did you mean to add a new client?"), 6906,
                         QStringLiteral("Add new client?"));
}

bool MessageClientSaveQuestions::happyWithDetails()
{
    return messages::ask(6907, QStringLiteral("Are you happy with these details?"), 6908, QStringLiteral("Save these details?"));
}

ClientEditor::ClientEditor(Database &db)
    : m_db(db)
{
}

Outcome ClientEditor::open(qint32 clientId)
{
    m_clientId = clientId < 1 ? 0 : clientId;
    m_retired = false;
    m_loadedSurname.clear();
    m_loadedCompany.clear();
    m_client = Client();
    m_client.ClientType = clienttype::Individual;
    m_extras.clear();
    if (isNew())
        return Done{};

    AccountValidator().closeEmptyAccountsForClient(m_db, m_clientId);
    Client stored;
    if (!stored.fetch(m_db, m_clientId))
        return Refusal(6903, QStringLiteral("Error: Could not fetch client. Please call veldmoor (021 555 0100)"), 6904,
                       QStringLiteral("Error: Could not fetch client"));
    m_client = stored;
    m_retired = stored.Active == QLatin1String("N");
    m_loadedSurname = stored.Surname;
    m_loadedCompany = stored.Company;
    for (const ClientExtra &extra : ClientExtra::forClient(m_db, m_clientId))
        m_extras.push_back({extra.BBClientExtraID, extra.FieldType, extra.FieldValue});
    return Done{};
}

QString ClientEditor::caption() const
{
    if (isNew())
        return getString(6900, QStringLiteral("Add new client."));
    QString caption = fillArguments(getString(6901, QStringLiteral("Client Details (ID %1)")), {QString::number(m_clientId)});
    if (m_retired)
        caption += getString(6902, QStringLiteral(" - Retired"));
    return caption;
}

bool ClientEditor::takeCompany(const CompanyDetails &company)
{
    m_client.Company = company.Company;
    m_client.PhoneNo = company.PhoneNo;
    m_client.Add1 = company.Add1;
    m_client.Add2 = company.Add2;
    m_client.VatNo = company.VatNo;
    if (company.BBRateSheetID == m_client.BBRateSheetID)
        return false;
    m_client.BBRateSheetID = company.BBRateSheetID;
    return true;
}

bool ClientEditor::changesNameOrCompany() const
{
    return !isNew() && (replaced(m_loadedSurname, m_client.Surname) || replaced(m_loadedCompany, m_client.Company));
}

Outcome ClientEditor::check() const
{
    for (const ClientTextField &field : clientTextFields()) {
        const QString &value = m_client.*field.member;
        if (field.limited && value.size() > MaxClientTextLength)
            return tooLong(field.labelText(), value.size());
    }
    const QStringList types = clientExtraFieldTypes();
    for (const ClientExtraRow &row : m_extras) {
        if (row.FieldValue.trimmed().isEmpty())
            continue;
        if (!types.contains(row.FieldType))
            return Refusal(6948, QStringLiteral("Unknown field type: %1"), 6917, QStringLiteral("Extra information"))
                .arg(row.FieldType);
        if (row.FieldValue.size() > MaxClientTextLength)
            return tooLong(clientExtraFieldName(row.FieldType), row.FieldValue.size());
    }
    return Done{};
}

Result<ClientSaveOutcome> ClientEditor::save(ClientSaveQuestions &questions)
{
    if (Outcome checked = check(); !checked)
        return checked.refusal();
    bool asNew = isNew();
    if (!isNew()) {
        if (changesNameOrCompany() && questions.addAsNewClient())
            asNew = true;
    } else if (!questions.happyWithDetails()) {
        return ClientSaveOutcome{};
    }

    Transaction transaction(m_db);
    Client record;
    if (!asNew) {
        // Another desk's synchronisation may have removed the client since it was opened.
        if (!record.fetch(m_db, m_clientId))
            return Refusal(6949, QStringLiteral("The client (%1) no longer exists: it was removed while it was open here. "
                                                "Nothing was saved."),
                           6904, QStringLiteral("Error: Could not fetch client"))
                .arg(qint64(m_clientId));
    } else {
        record.DateCreated = QDateTime::currentDateTime();
        record.CreatedOn = QStringLiteral("P");
        record.Active = QStringLiteral("Y");
    }
    record.ClientType = getClientTypeCode(getClientTypeIndex(m_client.ClientType));
    for (const ClientTextField &field : clientTextFields())
        record.*field.member = m_client.*field.member;
    record.BBRateSheetID = m_client.BBRateSheetID;
    record.update(m_db);
    writeExtras(record.BBClientID, !asNew);
    transaction.commit();

    ClientSaveOutcome outcome;
    outcome.saved = true;
    outcome.madeNew = asNew;
    outcome.NewClientID = record.BBClientID;
    outcome.FullName = record.FullName();
    outcome.ShortName = getShortName(record.FirstName, record.Surname, record.Company);
    outcome.Notes = record.Notes;
    outcome.BBRateSheetID = record.BBRateSheetID;
    outcome.changes.client(record.BBClientID);

    m_clientId = record.BBClientID;
    m_retired = record.Active == QLatin1String("N");
    m_loadedSurname = record.Surname;
    m_loadedCompany = record.Company;
    m_client = record;
    m_extras.clear();
    for (const ClientExtra &extra : ClientExtra::forClient(m_db, m_clientId))
        m_extras.push_back({extra.BBClientExtraID, extra.FieldType, extra.FieldValue});
    return outcome;
}

void ClientEditor::writeExtras(qint32 clientId, bool storedKeysValid)
{
    // Every stored extra of the client, shown or not: whatever the grid no longer holds goes.
    QSet<qint32> stored;
    if (storedKeysValid) {
        QSqlQuery q = m_db.query(QStringLiteral("select bbclientextraid from clientextra where bbclientid = ?"), {clientId});
        while (q.next())
            stored.insert(q.value(0).toInt());
    }
    for (const ClientExtraRow &row : m_extras) {
        if (row.FieldValue.trimmed().isEmpty())
            continue;
        ClientExtra extra;
        // A key is only taken for an extra of this client, and only once.
        if (stored.remove(row.BBClientExtraID) && extra.fetch(m_db, row.BBClientExtraID)) {
            if (extra.FieldType == row.FieldType && extra.FieldValue == row.FieldValue)
                continue;
        } else {
            extra = ClientExtra();
            extra.BBClientID = clientId;
        }
        extra.FieldType = row.FieldType;
        extra.FieldValue = row.FieldValue;
        extra.update(m_db);
    }
    for (qint32 key : std::as_const(stored))
        ClientExtra::remove(m_db, key);
}

QStringList clientDetailWarnings(const Client &client)
{
    QStringList warnings;
    if (!looksLikeEmail(client.Email))
        warnings << fillArguments(getString(6950, QStringLiteral("This does not look like an e-mail address: %1")), {client.Email});
    if (!looksLikeVatNumber(client.VatNo))
        warnings << fillArguments(getString(6951, QStringLiteral("This does not look like a VAT number: %1")), {client.VatNo});
    return warnings;
}

bool looksLikeEmail(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[;,\\s]+"));
    static const QRegularExpression address(QStringLiteral("^[^@\\s]+@[^@\\s.]+(\\.[^@\\s.]+)+$"));
    for (const QString &part : text.split(separators, Qt::SkipEmptyParts)) {
        if (!address.match(part).hasMatch())
            return false;
    }
    return true;
}

bool looksLikeVatNumber(const QString &text)
{
    QString bare = text;
    bare.remove(QRegularExpression(QStringLiteral("[\\s./-]")));
    if (bare.isEmpty())
        return true;
    int digits = 0;
    for (const QChar c : bare) {
        if (c.isDigit())
            ++digits;
        else if (!c.isLetter())
            return false;
    }
    return digits >= 4 && bare.size() <= 20;
}

QString createdOnName(const QString &createdOn)
{
    if (createdOn == QLatin1String("C"))
        return getString(5946, QStringLiteral("Cell"));
    if (createdOn == QLatin1String("P"))
        return getString(5945, QStringLiteral("PC"));
    return getString(6922, QStringLiteral("Server"));
}

} // namespace fenlark
