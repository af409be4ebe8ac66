#include "accounts/screens/clientstatement.h"

#include "accounts/statement.h"
#include "shell/config.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QUrl>

namespace fenlark {

QString ClientStatement::initialise(Session &session, qint32 clientId, const Opener &open)
{
    const auto statement = buildStatement(session.db(), clientId);
    if (!statement) {
        messages::show(statement.refusal());
        return {};
    }
    QApplication::clipboard()->setText(statementText(*statement));
    const QString path =
        QDir(config::invoiceDir(session.dbNumber())).filePath(QStringLiteral("Statement%1.xlsx").arg(clientId, 6, 10, QLatin1Char('0')));
    if (const auto written = writeStatementWorkbook(*statement, path); !written) {
        messages::show(written.refusal());
        return {};
    }
    const bool opened = open ? open(path) : QDesktopServices::openUrl(QUrl::fromLocalFile(path));
    if (!opened)
        messages::inform(6771, QStringLiteral("The statement was saved as %1 and is on the clipboard."), 6772,
                         QStringLiteral("Client statement"), {QDir::toNativeSeparators(path)});
    return path;
}

} // namespace fenlark
