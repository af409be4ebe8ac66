#include "shell/security.h"

#include "shell/database.h"
#include "shell/messages.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"
#include "shell/textcompare.h"

#include <QDateTime>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>

namespace fenlark {

namespace {
ReasonPrompt *g_prompt = nullptr;
}

UserStruct UserStruct::autoAdmin()
{
    UserStruct user;
    user.UserName = QStringLiteral("admin");
    user.CancelBooking = user.CancelRoom = user.RunReports = user.ExtrasDelete = user.PaymentsDelete = true;
    return user;
}

bool isAllowed(const UserStruct &user, SecurityAction action)
{
    if (user.UserName == QLatin1String("admin"))
        return true;
    switch (action) {
    case SecurityAction::AdminOnly:
        return false;
    case SecurityAction::CancelBooking:
        return user.CancelBooking;
    case SecurityAction::CancelRoom:
        return user.CancelRoom;
    case SecurityAction::RunReports:
        return user.RunReports;
    case SecurityAction::ExtrasDelete:
        return user.ExtrasDelete;
    case SecurityAction::PaymentsDelete:
        return user.PaymentsDelete;
    }
    return false;
}

bool checkPermission(const UserStruct &user, SecurityAction action)
{
    if (isAllowed(user, action))
        return false;
    messages::critical(5100, QStringLiteral("Your user group permission doesn't allow this action."), 5101, QStringLiteral("Permission denied."));
    return true;
}

bool passwordsEqual(const QString &a, const QString &b)
{
    const QByteArray x = a.toUtf8();
    const QByteArray y = b.toUtf8();
    const qsizetype n = std::max(x.size(), y.size());
    unsigned diff = x.size() == y.size() ? 0u : 1u;
    for (qsizetype i = 0; i < n; ++i) {
        const unsigned char cx = i < x.size() ? static_cast<unsigned char>(x[i]) : 0;
        const unsigned char cy = i < y.size() ? static_cast<unsigned char>(y[i]) : 0;
        diff |= static_cast<unsigned>(cx ^ cy);
    }
    return diff == 0;
}

PropertyLogin::Problem PropertyLogin::check(const QString &bbidText, const QString &password)
{
    bool ok = false;
    const qlonglong bbid = bbidText.trimmed().toLongLong(&ok);
    if (!ok)
        return BBIDNotNumeric;
    if (bbid < MinimumBBID || bbid > MaximumBBID)
        return BBIDOutOfRange;
    if (password.isEmpty())
        return PasswordEmpty;
    return NoProblem;
}

bool PropertyLogin::validate(const QString &bbidText, const QString &password, Problem *problem)
{
    const Problem found = check(bbidText, password);
    if (problem)
        *problem = found;
    switch (found) {
    case BBIDNotNumeric:
        messages::critical(5102, QStringLiteral("Please enter a valid BBID"), 5103, QStringLiteral("Valid BBID required"));
        return false;
    case BBIDOutOfRange:
        messages::critical(5104, QStringLiteral("You must type in the BBID given to you by veldmoor."), 5105, QStringLiteral("Incorrect BBID"));
        return false;
    case PasswordEmpty:
        messages::critical(5106, QStringLiteral("Please enter the correct password for this BBID"), 5107, QStringLiteral("Valid password required"));
        return false;
    case NoProblem:
        break;
    }
    return true;
}

void PropertyLogin::bindProperty(Database &db, int bbid, const QString &password)
{
    Transaction transaction(db);
    BBSetup setup;
    if (!setup.fetch(db)) {
        setup.BBName = QStringLiteral("Fetching...");
        setup.CurrencyCode = QStringLiteral("ZAR");
        setup.DepositDays = 0;
        setup.SynchCounter = 0;
        setup.WVPassword = QString("");
    }
    setup.BBID = static_cast<qint16>(bbid);
    setup.Password = password;
    BBSetup::clear(db);
    setup.update(db);
    transaction.commit();
}

std::vector<std::pair<QString, qint32>> UserLogin::userList(Database &db)
{
    std::vector<std::pair<QString, qint32>> list;
    std::vector<VMUser> users = VMUser::list(db, QStringLiteral("UserID"));
    if (users.empty())
        return list;
    const NameOrder order;
    std::stable_sort(users.begin(), users.end(),
                     [&order](const VMUser &a, const VMUser &b) { return order(a.UserName, b.UserName); });
    list.emplace_back(QStringLiteral("admin"), 0);
    for (const VMUser &user : users)
        list.emplace_back(user.UserName, user.UserID);
    return list;
}

std::optional<UserStruct> UserLogin::authenticate(Database &db, qint32 userId, const QString &password)
{
    if (userId <= 0) {
        BBSetup setup;
        if (!setup.fetch(db))
            return std::nullopt;
        // Both comparisons always run, so the time says nothing about which matched.
        const bool second = passwordsEqual(setup.WVPassword, password) && !setup.WVPassword.isEmpty();
        const bool first = passwordsEqual(setup.Password, password);
        if (!(first || second))
            return std::nullopt;
        UserStruct admin;
        admin.UserName = QStringLiteral("admin");
        return admin;
    }
    VMUser row;
    if (!row.fetch(db, userId) || !passwordsEqual(row.Password, password))
        return std::nullopt;
    UserStruct user;
    user.UserID = row.UserID;
    user.UserName = row.UserName;
    VMGroup group;
    if (row.GroupID > 0 && group.fetch(db, row.GroupID)) {
        user.CancelBooking = group.CancelBooking;
        user.CancelRoom = group.CancelRoom;
        user.RunReports = group.RunReports;
        user.ExtrasDelete = group.ExtrasDelete;
        user.PaymentsDelete = group.PaymentsDelete;
    }
    return user;
}

void SecurityAudit::setPrompt(ReasonPrompt *prompt)
{
    g_prompt = prompt;
}

bool SecurityAudit::enterReason()
{
    if (!g_prompt)
        return false;
    const auto answer = g_prompt->askReason(getString(2007, QStringLiteral("Enter reason:")),
                                            getString(2008, QStringLiteral("Enter reason")));
    m_reason = answer ? answer->trimmed() : QString();
    return !m_reason.isEmpty();
}

QString SecurityAudit::note(const QString &text) const
{
    return text.trimmed() + QStringLiteral(" (") + m_reason.trimmed() + QStringLiteral(")");
}

void SecurityAudit::addAudit(Database &db, const QString &text) const
{
    db.execute(QStringLiteral("insert into audit (auditdate, UserName, Notes) values(?, ?, ?)"),
               {sqlDateTime(QDateTime::currentDateTime()), m_userName, note(text)});
}

} // namespace fenlark
