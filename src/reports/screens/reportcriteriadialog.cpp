#include "reports/screens/reportcriteriadialog.h"

#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/strings.h"

#include <QDateEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

namespace fenlark {

QDateEdit *makeReportDateEdit(QWidget *parent, const QString &objectName, const QDate &date)
{
    auto *edit = new QDateEdit(parent);
    edit->setObjectName(objectName);
    edit->setCalendarPopup(true);
    edit->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    edit->setDate(date.isValid() ? date : QDate::currentDate());
    return edit;
}

void makeRunButtons(QDialog *dialog, QPushButton *&run, QPushButton *&cancel)
{
    run = makeDialogButton(dialog, QStringLiteral("cmdRun"), getString(1490, QStringLiteral("&Run Report")));
    run->setDefault(true);
    cancel = makeDialogButton(dialog, QStringLiteral("cmdCancel"), getString(1369, QStringLiteral("&Cancel")));
}

ReportCriteriaDialog::ReportCriteriaDialog(int number, const ReportCriteria &defaults, QWidget *parent)
    : QDialog(parent), m_number(number), m_defaults(defaults)
{
    setObjectName(QStringLiteral("dlgXLQuery"));
    setWindowTitle(reportName(number));

    frmXL = new QGroupBox(getString(2267, QStringLiteral("Report criteria")), this);
    frmXL->setObjectName(QStringLiteral("frmXL"));
    lblSelectDatesNeededNarr =
        new QLabel(getString(1494, QStringLiteral("Select the dates you need for the report.")), frmXL);
    lblSelectDatesNeededNarr->setObjectName(QStringLiteral("lblSelectDatesNeededNarr"));
    const bool upToDate = number == report::Debtors;
    lblFrom = new QLabel(upToDate ? getString(6203, QStringLiteral(" Up to Date"))
                                  : getString(1495, QStringLiteral("From : ")),
                         frmXL);
    lblFrom->setObjectName(QStringLiteral("lblFrom"));
    lblTo = new QLabel(getString(1496, QStringLiteral("To : ")), frmXL);
    lblTo->setObjectName(QStringLiteral("lblTo"));
    dpFrom = makeReportDateEdit(frmXL, QStringLiteral("dpFrom"), defaults.from);
    dpTo = makeReportDateEdit(frmXL, QStringLiteral("dpTo"), defaults.to);
    opLandscape = new QRadioButton(getString(1492, QStringLiteral("Landscape")), frmXL);
    opLandscape->setObjectName(QStringLiteral("opLandscape"));
    opPortrait = new QRadioButton(getString(1493, QStringLiteral("Portrait")), frmXL);
    opPortrait->setObjectName(QStringLiteral("opPortrait"));
    (defaults.orientation == QLatin1Char('L') ? opLandscape : opPortrait)->setChecked(true);

    auto *fields = new QGridLayout(frmXL);
    fields->addWidget(lblSelectDatesNeededNarr, 0, 0, 1, 2);
    fields->addWidget(lblFrom, 1, 0);
    fields->addWidget(dpFrom, 1, 1);
    fields->addWidget(lblTo, 2, 0);
    fields->addWidget(dpTo, 2, 1);
    fields->addWidget(opPortrait, 3, 0);
    fields->addWidget(opLandscape, 3, 1);

    const bool withTo = takesToDate(number);
    lblTo->setVisible(withTo);
    dpTo->setVisible(withTo);
    opLandscape->setVisible(takesOrientation(number));
    opPortrait->setVisible(takesOrientation(number));

    makeRunButtons(this, cmdRun, cmdCancel);
    layOutAsking(this, frmXL, cmdRun, cmdCancel);
    connect(cmdRun, &QPushButton::clicked, this, guarded(this, &ReportCriteriaDialog::run));
    connect(opLandscape, &QRadioButton::toggled, this, guarded(this, &ReportCriteriaDialog::orientationChosen));
}

void ReportCriteriaDialog::orientationChosen()
{
    const ReportCriteria span =
        defaultCriteria(m_number, m_defaults.today, opLandscape->isChecked() ? QLatin1Char('L') : QLatin1Char('P'));
    dpFrom->setDate(span.from);
    dpTo->setDate(span.to);
}

ReportCriteria ReportCriteriaDialog::criteria() const
{
    ReportCriteria criteria = m_defaults;
    criteria.from = dpFrom->date();
    criteria.to = takesToDate(m_number) ? dpTo->date() : QDate();
    if (takesOrientation(m_number))
        criteria.orientation = opLandscape->isChecked() ? QLatin1Char('L') : QLatin1Char('P');
    return criteria;
}

void ReportCriteriaDialog::run()
{
    const Outcome checked = checkCriteria(m_number, criteria());
    if (!checked) {
        messages::show(checked.refusal());
        dpFrom->setFocus();
        return;
    }
    accept();
}

} // namespace fenlark
