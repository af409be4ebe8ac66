#pragma once

#include "clients/clientlistmodels.h"

#include <QDialog>

#include <optional>

class QLineEdit;
class QPushButton;
class QTableView;

namespace fenlark {

class Database;

// dlgCompanylk: the companies earlier clients worked for, narrowed as the name
// is typed. OK or a double-click on a row reads that company's details back;
// Cancel leaves without.
class CompanyLk : public QDialog {
    Q_OBJECT
public:
    // Lists the companies that start with the company text the editor holds.
    CompanyLk(Database &db, const QString &company, QWidget *parent = nullptr);

    // The chosen company's details; nothing when none was chosen, or when its
    // clients changed since the list was read.
    const std::optional<CompanyDetails> &details() const { return m_details; }

    // Reads the row back and closes (the row stays when it is not a row).
    void chooseRow(int row);

    QLineEdit *txtCompanySearch = nullptr;
    QTableView *gdCompany = nullptr;
    QPushButton *cmdOK = nullptr;
    QPushButton *cmdCancel = nullptr;
    CompanyLookupModel *model() const { return m_model; }

private:
    void search();

    Database &m_db;
    CompanyLookupModel *m_model = nullptr;
    std::optional<CompanyDetails> m_details;
};

} // namespace fenlark
