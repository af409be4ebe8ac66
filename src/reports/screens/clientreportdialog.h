#pragma once

#include "reports/reportcatalogue.h"

#include <QDialog>

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace fenlark {

// dlgClientRSearch: which clients the Client Report lists, by type or by the
// value of one of their fields (a nationality, a segment ...). A field without
// a value narrows nothing.
class ClientReportDialog : public QDialog {
    Q_OBJECT
public:
    explicit ClientReportDialog(const ReportCriteria &defaults, QWidget *parent = nullptr);

    ReportCriteria criteria() const;

    QGroupBox *frmSearch = nullptr;
    QLabel *lblHint = nullptr;
    QComboBox *cboClientType = nullptr;   // "All", then the four types
    QComboBox *cboFieldType = nullptr;    // none, then the client fields
    QLineEdit *txtValue = nullptr;
    QPushButton *cmdRun = nullptr;
    QPushButton *cmdCancel = nullptr;

private:
    ReportCriteria m_defaults;
};

} // namespace fenlark
