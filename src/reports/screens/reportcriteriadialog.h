#pragma once

#include "reports/reportcatalogue.h"

#include <QDialog>

class QDateEdit;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace fenlark {

// dlgXLQuery: the dates of a report (From alone for In-House and Debtors) and,
// for the Calendar Printout, its orientation. Run checks the dates and stays
// open on a refusal.
class ReportCriteriaDialog : public QDialog {
    Q_OBJECT
public:
    ReportCriteriaDialog(int number, const ReportCriteria &defaults, QWidget *parent = nullptr);

    // What was chosen; read after the dialog was accepted.
    ReportCriteria criteria() const;

    // Checks the criteria and closes on success; a refusal is shown and the dialog stays.
    void run();

    QGroupBox *frmXL = nullptr;
    QLabel *lblSelectDatesNeededNarr = nullptr;
    QLabel *lblFrom = nullptr;
    QLabel *lblTo = nullptr;
    QDateEdit *dpFrom = nullptr;
    QDateEdit *dpTo = nullptr;
    QRadioButton *opLandscape = nullptr;
    QRadioButton *opPortrait = nullptr;
    QPushButton *cmdRun = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    // A new orientation brings its span: a fortnight from today, or this month.
    void orientationChosen();

    int m_number;
    ReportCriteria m_defaults;
};

// A date editor as the report dialogs use it: a calendar to pick from, dd/MM/yyyy.
QDateEdit *makeReportDateEdit(QWidget *parent, const QString &objectName, const QDate &date);

// The Run Report (the default) and Cancel buttons every report dialog ends with.
void makeRunButtons(QDialog *dialog, QPushButton *&run, QPushButton *&cancel);

} // namespace fenlark
