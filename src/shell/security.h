#pragma once

#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace fenlark {

class Database;

// The person at the desk and the five rights of their group.
struct UserStruct {
    qint32 UserID = 0;
    QString UserName;
    bool CancelBooking = false;
    bool CancelRoom = false;
    bool RunReports = false;
    bool ExtrasDelete = false;
    bool PaymentsDelete = false;

    // The built-in identity with every right, used when no users are downloaded.
    static UserStruct autoAdmin();
};

// The action numbers of the permission check.
enum class SecurityAction {
    AdminOnly = 0,       // only "admin" passes (options, preferences)
    CancelBooking = 1,
    CancelRoom = 2,
    RunReports = 3,
    ExtrasDelete = 4,
    PaymentsDelete = 5,
};

// Whether the user may do the action: "admin" by name always may; anyone else
// needs the matching right of their group.
bool isAllowed(const UserStruct &user, SecurityAction action);
// True when the action is DENIED, after telling the user so.
bool checkPermission(const UserStruct &user, SecurityAction action);

// Compares two secrets in time that depends only on their lengths, not on where
// they first differ.
bool passwordsEqual(const QString &a, const QString &b);

// The property log-on: the checks of the BBID and password, in order.
class PropertyLogin {
public:
    enum Problem { NoProblem, BBIDNotNumeric, BBIDOutOfRange, PasswordEmpty };
    static constexpr int MinimumBBID = 10000;
    static constexpr int MaximumBBID = 32767;

    // The first problem of what was typed.
    static Problem check(const QString &bbidText, const QString &password);
    // check(), with the problem's message shown; true when the entry is good.
    static bool validate(const QString &bbidText, const QString &password, Problem *problem = nullptr);
    // Binds the database to the property: the bbsetup row is created when absent
    // ("Fetching...", "ZAR") and takes the BBID and password.
    static void bindProperty(Database &db, int bbid, const QString &password);
};

// The user log-on against vmuser, vmgroup and the property's passwords.
class UserLogin {
public:
    // The entries of the user list: "admin" (id 0) first, then each user by name.
    // Empty when no user is downloaded: then no log-on is asked.
    static std::vector<std::pair<QString, qint32>> userList(Database &db);
    // The user when the password is right (exact, case-sensitive); nothing otherwise.
    // Id 0 is "admin", opened by the property's WVPassword (when set) or Password.
    static std::optional<UserStruct> authenticate(Database &db, qint32 userId, const QString &password);
};

// Where a reason for an audited action is asked; the desk installs a dialog,
// tests a fake. nullopt means Cancel.
class ReasonPrompt {
public:
    virtual ~ReasonPrompt() = default;
    virtual std::optional<QString> askReason(const QString &prompt, const QString &title) = 0;
};

// One audited action: the user, an optional reason, and a row in "audit".
class SecurityAudit {
public:
    static void setPrompt(ReasonPrompt *prompt);

    void User(const UserStruct &user) { m_userName = user.UserName; }
    // Asks "Enter reason:"; false (the caller stops) on Cancel or an empty answer.
    bool enterReason();
    // A reason the caller supplies itself ("Client Retired", "Rooms swapped").
    void setReason(const QString &reason) { m_reason = reason.trimmed(); }
    QString reason() const { return m_reason; }

    // "<text> (<reason>)", both trimmed; empty brackets when no reason was given.
    QString note(const QString &text) const;
    void addAudit(Database &db, const QString &text) const;

private:
    QString m_userName;
    QString m_reason;
};

} // namespace fenlark
