#include "clients/sourcerename.h"

#include "shell/changelog.h"
#include "shell/database.h"
#include "shell/messages.h"
#include "shell/security.h"
#include "shell/strings.h"

#include <QSqlQuery>

namespace fenlark {

QString SourceCount::text() const
{
    return source + QStringLiteral(" ( ") + QString::number(count) + QStringLiteral(" )");
}

std::vector<SourceCount> sourceCounts(Database &db)
{
    std::vector<SourceCount> counts;
    QSqlQuery q = db.query(QStringLiteral("select source, count(*) from booking where bookingtype = 'P' "
                                          "group by source order by source"));
    while (q.next())
        counts.push_back({q.value(0).toString(), q.value(1).toInt()});
    return counts;
}

QString sourceItemWord()
{
    return getString(6983, QStringLiteral("source"));
}

bool MessageRenameQuestions::confirmReplace(const QString &oldSource, const QString &newSource)
{
    return messages::ask(6992,
                         QStringLiteral("You have chosen to replace: \n   %1\nwith\n   %2\n\nAre you sure you want to continue?"),
                         6993, QStringLiteral("Type Replacement"), false, {oldSource, newSource});
}

Result<SourceRename> renameSource(Database &db, const UserStruct &user, const std::optional<QString> &oldSource,
                                  const std::optional<QString> &newSource, RenameQuestions &questions)
{
    if (!oldSource)
        return Refusal(6989, QStringLiteral("Please select the item to be replaced."), 6990, QStringLiteral("No selection made"));
    if (!newSource)
        return Refusal(6991, QStringLiteral("Please select the item that replaces %1"), 6990, QStringLiteral("No selection made"))
            .arg(*oldSource);
    if (*oldSource == *newSource)
        return Refusal(6995, QStringLiteral("%1 and its replacement are the same: choose another target."), 6990,
                       QStringLiteral("No selection made"))
            .arg(*oldSource);
    if (!questions.confirmReplace(*oldSource, *newSource))
        return SourceRename{};

    SourceRename result;
    Transaction transaction(db);
    std::vector<qint32> bookings;
    QSqlQuery q = db.query(QStringLiteral("select bbbookingid from booking where source = ? and bookingtype = 'P'"), {*oldSource});
    while (q.next())
        bookings.push_back(q.value(0).toInt());
    for (qint32 booking : bookings) {
        db.execute(QStringLiteral("update booking set source = ? where bbbookingid = ?"), {*newSource, booking});
        ChangeLog::logUpdate(db, QStringLiteral("booking"), booking);
        result.changes.booking(booking);
    }
    SecurityAudit audit;
    audit.User(user);
    audit.setReason(QStringLiteral("Source renamed"));
    audit.addAudit(db, QStringLiteral("Old source (%1) replaced with new source (%2)").arg(*oldSource, *newSource));
    transaction.commit();
    result.renamed = true;
    result.bookings = int(bookings.size());
    return result;
}

} // namespace fenlark
