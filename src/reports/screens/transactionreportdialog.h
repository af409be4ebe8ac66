#pragma once

#include "reports/reportcatalogue.h"

#include <QDialog>

#include <optional>

class QComboBox;
class QDateEdit;
class QLineEdit;
class QPushButton;

namespace fenlark {

// The ledger's search for the Transactions report: a type, a number, the dates,
// the start of a reference and an amount, each narrowing only when filled.
// Run refuses a number or amount it cannot read, and dates the wrong way round.
class TransactionReportDialog : public QDialog {
    Q_OBJECT
public:
    explicit TransactionReportDialog(const ReportCriteria &defaults, QWidget *parent = nullptr);

    ReportCriteria criteria() const;
    void run();

    QComboBox *cboTranType = nullptr;   // "All", "INV", "PMT", "CRN", "JNL"
    QLineEdit *txtTranNo = nullptr;
    QDateEdit *dpStart = nullptr;
    QDateEdit *dpEnd = nullptr;
    QLineEdit *txtReference = nullptr;
    QLineEdit *txtAmount = nullptr;
    QPushButton *cmdRun = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    ReportCriteria m_defaults;
};

// An amount as a person types it: the locale's decimal separator or ".", the
// thousands separator ignored. Nothing for anything else.
std::optional<double> readTypedAmount(const QString &text);

} // namespace fenlark
