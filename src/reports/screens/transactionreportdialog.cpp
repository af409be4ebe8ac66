#include "reports/screens/transactionreportdialog.h"

#include "reports/screens/reportcriteriadialog.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/strings.h"

#include <QComboBox>
#include <QDateEdit>
#include <QFormLayout>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>

#include <cmath>

namespace fenlark {

std::optional<double> readTypedAmount(const QString &text)
{
    const QLocale locale;
    const QString decimal = locale.decimalPoint();
    QString number = text.trimmed();
    // With a decimal comma, a full stop is a decimal point only when no comma is typed.
    if (decimal != QLatin1String(".") && number.contains(decimal)) {
        number.remove(QLatin1Char('.'));
        number.replace(decimal, QLatin1String("."));
    }
    const QString group = locale.groupSeparator();
    if (group != QLatin1String("."))
        number.remove(group);
    bool ok = false;
    const double amount = QLocale::c().toDouble(number, &ok);
    if (!ok || !std::isfinite(amount))
        return std::nullopt;
    return amount;
}

TransactionReportDialog::TransactionReportDialog(const ReportCriteria &defaults, QWidget *parent)
    : QDialog(parent), m_defaults(defaults)
{
    setObjectName(QStringLiteral("dlgClientTranSearch"));
    setWindowTitle(reportName(report::Transactions));

    cboTranType = new QComboBox(this);
    cboTranType->setObjectName(QStringLiteral("cboTranType"));
    cboTranType->addItem(getString(6211, QStringLiteral("All")), QString());
    for (const char *type : {"INV", "PMT", "CRN", "JNL"})
        cboTranType->addItem(QString::fromLatin1(type), QString::fromLatin1(type));
    txtTranNo = new QLineEdit(this);
    txtTranNo->setObjectName(QStringLiteral("txtTranNo"));
    dpStart = makeReportDateEdit(this, QStringLiteral("dpStart"), defaults.from);
    dpEnd = makeReportDateEdit(this, QStringLiteral("dpEnd"), defaults.to);
    txtReference = new QLineEdit(this);
    txtReference->setObjectName(QStringLiteral("txtReference"));
    txtAmount = new QLineEdit(this);
    txtAmount->setObjectName(QStringLiteral("txtAmount"));

    auto *fields = new QFormLayout;
    fields->addRow(getString(6212, QStringLiteral("Type:")), cboTranType);
    fields->addRow(getString(6213, QStringLiteral("Tran No:")), txtTranNo);
    fields->addRow(getString(1495, QStringLiteral("From : ")), dpStart);
    fields->addRow(getString(1496, QStringLiteral("To : ")), dpEnd);
    fields->addRow(getString(6214, QStringLiteral("Reference:")), txtReference);
    fields->addRow(getString(6215, QStringLiteral("Amount:")), txtAmount);

    makeRunButtons(this, cmdRun, cmdCancel);
    layOutAsking(this, fields, cmdRun, cmdCancel);
    connect(cmdRun, &QPushButton::clicked, this, guarded(this, &TransactionReportDialog::run));
}

ReportCriteria TransactionReportDialog::criteria() const
{
    ReportCriteria criteria = m_defaults;
    criteria.from = dpStart->date();
    criteria.to = dpEnd->date();
    criteria.tranType = cboTranType->currentData().toString();
    criteria.reference = txtReference->text().trimmed();
    bool ok = false;
    const int tranNo = txtTranNo->text().trimmed().toInt(&ok);
    criteria.tranNo = ok ? std::optional<qint32>(tranNo) : std::nullopt;
    criteria.amount = txtAmount->text().trimmed().isEmpty() ? std::nullopt : readTypedAmount(txtAmount->text());
    return criteria;
}

void TransactionReportDialog::run()
{
    const QString tranNo = txtTranNo->text().trimmed();
    bool ok = true;
    if (!tranNo.isEmpty())
        tranNo.toInt(&ok);
    if (!ok) {
        messages::show(Refusal(6224, QStringLiteral("Please type the transaction number as a whole number."), 6223,
                               QStringLiteral("Invalid report criteria")));
        txtTranNo->setFocus();
        return;
    }
    if (!txtAmount->text().trimmed().isEmpty() && !readTypedAmount(txtAmount->text())) {
        messages::show(Refusal(6225, QStringLiteral("Please type the amount as a number."), 6223,
                               QStringLiteral("Invalid report criteria")));
        txtAmount->setFocus();
        return;
    }
    const Outcome checked = checkCriteria(report::Transactions, criteria());
    if (!checked) {
        messages::show(checked.refusal());
        dpStart->setFocus();
        return;
    }
    accept();
}

} // namespace fenlark
