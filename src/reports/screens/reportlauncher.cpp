#include "reports/screens/reportlauncher.h"

#include "reports/reporttsv.h"
#include "reports/reportxlsx.h"
#include "reports/screens/clientreportdialog.h"
#include "reports/screens/reportcriteriadialog.h"
#include "reports/screens/transactionreportdialog.h"
#include "shell/errorlog.h"
#include "shell/home.h"
#include "shell/messages.h"
#include "shell/screens/progressdialog.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QGuiApplication>
#include <QUrl>

namespace fenlark {

namespace {

std::optional<ReportCriteria> askWithDialog(QWidget *parent, int number, const ReportCriteria &defaults)
{
    switch (criteriaForm(number)) {
    case CriteriaForm::ClientSearch: {
        ClientReportDialog dialog(defaults, parent);
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        return dialog.criteria();
    }
    case CriteriaForm::TransactionSearch: {
        TransactionReportDialog dialog(defaults, parent);
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        return dialog.criteria();
    }
    case CriteriaForm::Dates:
    case CriteriaForm::OneDate:
        break;
    }
    ReportCriteriaDialog dialog(number, defaults, parent);
    if (dialog.exec() != QDialog::Accepted)
        return std::nullopt;
    return dialog.criteria();
}

bool openWithDesktop(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

// The wait cursor while the report is read and written.
class Hourglass {
public:
    Hourglass() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~Hourglass() { QGuiApplication::restoreOverrideCursor(); }
    Hourglass(const Hourglass &) = delete;
    Hourglass &operator=(const Hourglass &) = delete;
};

} // namespace

ReportLauncher::ReportLauncher(Session &session, QWidget *parent)
    : askCriteria(&askWithDialog), openFile(&openWithDesktop), m_session(session), m_parent(parent)
{
}

QString ReportLauncher::folder()
{
    return Home::file(QStringLiteral("reports"));
}

void ReportLauncher::run(int number)
{
    if (checkPermission(m_session.getUser(), SecurityAction::RunReports))
        return;
    const ReportCriteria defaults =
        defaultCriteria(number, QDate::currentDate(), rememberedOrientation(m_session.db()));
    const std::optional<ReportCriteria> criteria = askCriteria(m_parent, number, defaults);
    if (criteria)
        runWith(number, *criteria);
}

void ReportLauncher::runWith(int number, const ReportCriteria &criteria)
{
    std::optional<Hourglass> hourglass(std::in_place);
    const auto sheet = runReport(m_session.db(), number, criteria);
    if (!sheet) {
        hourglass.reset();
        messages::show(sheet.refusal());
        return;
    }
    if (takesOrientation(number))
        m_session.loadPreferences();

    QDir().mkpath(folder());
    const QString path = QDir(folder()).filePath(reportFileName(number, QDateTime::currentDateTime()));
    hourglass.reset();
    Progress progress = progressDialog(reportName(number), m_parent);
    const Outcome written = writeReportXlsx(*sheet, path, progress);
    if (progress.stopped())
        return;   // the user's own choice: nothing to report, nothing to fall back on
    if (!written)
        ErrorLog::write(written.refusal().text());
    else if (openFile(path))
        return;
    toClipboard(*sheet);
}

void ReportLauncher::toClipboard(const ReportSheet &sheet)
{
    QGuiApplication::clipboard()->setText(reportTsv(sheet));
    UserMessage message{UserMessage::Information,
                        getString(2149, QStringLiteral("No spreadsheet program was found, so this report was copied to "
                                                       "the clipboard.")) +
                            QLatin1Char('\n') + getString(2150, QStringLiteral("Open an application and click Paste.")),
                        getString(2151, QStringLiteral("Report now on the clipboard"))};
    message.id = 2149;
    messages::showMessage(message);
}

} // namespace fenlark
