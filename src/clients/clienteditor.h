#pragma once

#include "clients/clientrecords.h"
#include "shell/changes.h"
#include "shell/refusal.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace fenlark {

class Database;
struct CompanyDetails;

// One row of the editor's extras grid: the stored extra it shows (0 for a row
// added on screen), its field type and its value.
struct ClientExtraRow {
    qint32 BBClientExtraID = 0;
    QString FieldType;
    QString FieldValue;

    bool operator==(const ClientExtraRow &) const = default;
};

// The questions a save asks before anything is written. The editor answers
// with Yes/No boxes; fenlarkctl and tests answer from their options.
class ClientSaveQuestions {
public:
    virtual ~ClientSaveQuestions() = default;
    // A stored client's surname or company was replaced by another one: is this
    // in fact a new client? Yes saves a new client and leaves the stored one be.
    virtual bool addAsNewClient() = 0;
    // A new client: are the details right? No saves nothing and keeps the form open.
    virtual bool happyWithDetails() = 0;
};

// The two questions as Yes/No boxes through the installed message sink.
class MessageClientSaveQuestions : public ClientSaveQuestions {
public:
    bool addAsNewClient() override;
    bool happyWithDetails() override;
};

// What a save did. saved is false when the person at the desk said No to
// "Are you happy with these details?": nothing was written.
struct ClientSaveOutcome {
    bool saved = false;
    bool madeNew = false;          // a new client row was made
    qint32 NewClientID = 0;        // the key of the client saved, new or not
    QString FullName;
    QString ShortName;
    QString Notes;
    qint16 BBRateSheetID = 0;
    Changes changes;
};

// The longest text a client field or extra value may hold (the notes have no limit).
constexpr int MaxClientTextLength = 255;

// A text field of the client as the editor and fenlarkctl name it: the column,
// the member, and its label on screen.
struct ClientTextField {
    const char *column;
    QString Client::*member;
    int labelId;
    const char *label;
    bool limited;   // held to MaxClientTextLength

    QString labelText() const;
};
const std::vector<ClientTextField> &clientTextFields();

// The rules of the client editor without its screen: what is loaded on
// opening, what a save asks and writes. The screen copies its boxes into
// client() and extras() and calls save(); fenlarkctl does the same from its options.
class ClientEditor {
public:
    explicit ClientEditor(Database &db);

    // Opens the client with that key, or a new client for a key below 1. A
    // stored client's open accounts that hold nothing are closed first, so its
    // account list shows none. A client that cannot be read is refused: the
    // editor then stays empty, and saving it is refused too.
    Outcome open(qint32 clientId);

    // The key being edited; 0 for a new client.
    qint32 clientId() const { return m_clientId; }
    bool isNew() const { return m_clientId < 1; }
    // The stored client is retired (Active "N").
    bool isRetired() const { return m_retired; }
    // "Add new client." or "Client Details (ID n)", with " - Retired" for a retired client.
    QString caption() const;

    // The values on screen: the client's fields and the extras grid in its order.
    Client &client() { return m_client; }
    const Client &client() const { return m_client; }
    std::vector<ClientExtraRow> &extras() { return m_extras; }
    const std::vector<ClientExtraRow> &extras() const { return m_extras; }

    // Takes over what the company lookup found: company, phone, address, VAT
    // number and rate sheet. True when that moved the rate sheet, which the
    // person at the desk is then told.
    bool takeCompany(const CompanyDetails &company);

    // Whether a save would ask if this is a new client: a stored client whose
    // surname, or whose company, was not empty and now holds another non-empty text.
    bool changesNameOrCompany() const;

    // Checks the values, asks the questions, then writes the client and the
    // extras grid in one transaction: a row with an empty value, and a stored
    // extra no longer in the grid, is deleted; a row of a stored extra that
    // changed is updated; a new row is inserted. A client saved as new gets
    // every non-empty row as a new extra, and the stored client keeps its own.
    Result<ClientSaveOutcome> save(ClientSaveQuestions &questions);

private:
    Outcome check() const;
    void writeExtras(qint32 clientId, bool storedKeysValid);

    Database &m_db;
    qint32 m_clientId = 0;
    bool m_retired = false;
    QString m_loadedSurname;
    QString m_loadedCompany;
    Client m_client;
    std::vector<ClientExtraRow> m_extras;
};

// What looks plainly wrong in a client's details, one line each: an e-mail
// address or VAT number that cannot be one. These warn; they never stop a save.
QStringList clientDetailWarnings(const Client &client);
bool looksLikeEmail(const QString &text);
bool looksLikeVatNumber(const QString &text);

// "Cell" for a client made on a cell phone, "PC" for one made at a desk,
// "Server" for anything else.
QString createdOnName(const QString &createdOn);

} // namespace fenlark
