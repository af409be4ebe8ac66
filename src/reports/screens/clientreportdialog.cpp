#include "reports/screens/clientreportdialog.h"

#include "clients/clientnames.h"
#include "reports/screens/reportcriteriadialog.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/strings.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace fenlark {

ClientReportDialog::ClientReportDialog(const ReportCriteria &defaults, QWidget *parent)
    : QDialog(parent), m_defaults(defaults)
{
    setObjectName(QStringLiteral("dlgClientRSearch"));
    setWindowTitle(reportName(report::Clients));

    frmSearch = new QGroupBox(getString(6206, QStringLiteral("Search criteria")), this);
    frmSearch->setObjectName(QStringLiteral("frmSearch"));
    lblHint = new QLabel(getString(6210, QStringLiteral("Select a client type to narrow down the report data.")), frmSearch);
    lblHint->setObjectName(QStringLiteral("lblHint"));
    lblHint->setWordWrap(true);

    cboClientType = new QComboBox(frmSearch);
    cboClientType->setObjectName(QStringLiteral("cboClientType"));
    cboClientType->addItem(getString(6211, QStringLiteral("All")), QString());
    for (int i = 0; i < 4; ++i)
        cboClientType->addItem(clientTypeName(getClientTypeCode(i)), getClientTypeCode(i));

    cboFieldType = new QComboBox(frmSearch);
    cboFieldType->setObjectName(QStringLiteral("cboFieldType"));
    cboFieldType->addItem(QString(), QString());
    for (const QString &type : clientExtraFieldTypes())
        cboFieldType->addItem(clientExtraFieldName(type), type);

    txtValue = new QLineEdit(frmSearch);
    txtValue->setObjectName(QStringLiteral("txtValue"));

    auto *fields = new QFormLayout(frmSearch);
    fields->addRow(lblHint);
    fields->addRow(getString(6207, QStringLiteral("Client Type:")), cboClientType);
    fields->addRow(getString(6208, QStringLiteral("Field Type:")), cboFieldType);
    fields->addRow(getString(6209, QStringLiteral("Value:")), txtValue);

    makeRunButtons(this, cmdRun, cmdCancel);
    layOutAsking(this, frmSearch, cmdRun, cmdCancel);
    connect(cmdRun, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
}

ReportCriteria ClientReportDialog::criteria() const
{
    ReportCriteria criteria = m_defaults;
    criteria.clientType = cboClientType->currentData().toString();
    const QString value = txtValue->text().trimmed();
    if (!value.isEmpty()) {
        criteria.fieldType = cboFieldType->currentData().toString();
        criteria.fieldValue = criteria.fieldType.isEmpty() ? QString() : value;
    }
    return criteria;
}

} // namespace fenlark
