#include "clients/screens/companylk.h"

#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/strings.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

CompanyLk::CompanyLk(Database &db, const QString &company, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_model(new CompanyLookupModel(this))
{
    setObjectName(QStringLiteral("dlgCompanylk"));
    setWindowTitle(getString(6979, QStringLiteral("Company Lookup")));

    txtCompanySearch = new QLineEdit(company, this);
    txtCompanySearch->setObjectName(QStringLiteral("txtCompanySearch"));
    gdCompany = new QTableView(this);
    gdCompany->setObjectName(QStringLiteral("gdCompany"));
    gdCompany->setModel(m_model);
    gdCompany->setSelectionBehavior(QAbstractItemView::SelectRows);
    gdCompany->setSelectionMode(QAbstractItemView::SingleSelection);
    gdCompany->setEditTriggers(QAbstractItemView::NoEditTriggers);
    gdCompany->verticalHeader()->hide();
    gdCompany->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    gdCompany->horizontalHeader()->setStretchLastSection(true);
    gdCompany->setColumnWidth(0, 220);
    gdCompany->setColumnWidth(1, 130);
    cmdOK = makeDialogButton(this, QStringLiteral("cmdOK"), getString(5849, QStringLiteral("OK")));
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5850, QStringLiteral("Cancel")));

    auto *searchRow = new QHBoxLayout;
    searchRow->addWidget(new QLabel(getString(5635, QStringLiteral("Company:")), this));
    searchRow->addWidget(txtCompanySearch, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(searchRow);
    layout->addWidget(gdCompany, 1);
    layout->addLayout(buttons);
    resize(560, 420);

    connect(txtCompanySearch, &QLineEdit::textChanged, this, guarded([this] { search(); }));
    connect(gdCompany, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { chooseRow(index.row()); }));
    connect(cmdOK, &QPushButton::clicked, this, guarded([this] {
        const QModelIndexList chosen = gdCompany->selectionModel()->selectedRows();
        if (chosen.isEmpty())
            reject();
        else
            chooseRow(chosen.first().row());
    }));
    connect(cmdCancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    search();
}

void CompanyLk::search()
{
    m_model->setRows(lookupCompanies(m_db, txtCompanySearch->text()));
}

void CompanyLk::chooseRow(int row)
{
    if (row < 0 || row >= m_model->rowCount())
        return;
    m_details = companyDetails(m_db, m_model->company(row));
    accept();
}

} // namespace fenlark
