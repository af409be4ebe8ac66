#include "clients/screens/ucclientsearch.h"

#include "shell/database.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/strings.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

namespace {

// Column widths of the list, from the twips the desk has always used (15 twips a pixel).
constexpr int IdWidth = 600 / 15;
constexpr int NameWidth = 5000 / 15;

} // namespace

ucClientSearch::ucClientSearch(QWidget *parent)
    : QWidget(parent)
    , m_model(new ClientSearchModel(this))
{
    txtFirstName = new QLineEdit(this);
    txtSurname = new QLineEdit(this);
    txtCompany = new QLineEdit(this);
    txtbbclientid = new QLineEdit(this);
    txtFirstName->setObjectName(QStringLiteral("txtFirstName"));
    txtSurname->setObjectName(QStringLiteral("txtSurname"));
    txtCompany->setObjectName(QStringLiteral("txtCompany"));
    txtbbclientid->setObjectName(QStringLiteral("txtbbclientid"));
    txtbbclientid->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), txtbbclientid));

    auto *boxes = new QGridLayout;
    boxes->addWidget(new QLabel(getString(5633, QStringLiteral("Firstname:")), this), 0, 0);
    boxes->addWidget(txtFirstName, 0, 1);
    boxes->addWidget(new QLabel(getString(5634, QStringLiteral("Surname:")), this), 0, 2);
    boxes->addWidget(txtSurname, 0, 3);
    boxes->addWidget(new QLabel(getString(5635, QStringLiteral("Company:")), this), 1, 0);
    boxes->addWidget(txtCompany, 1, 1);
    boxes->addWidget(new QLabel(getString(5636, QStringLiteral("ClientID:")), this), 1, 2);
    boxes->addWidget(txtbbclientid, 1, 3);

    frmClientGrid = new QGroupBox(getString(5640, QStringLiteral("Double-click to select client")), this);
    frmClientGrid->setObjectName(QStringLiteral("frmClientGrid"));
    gdClient = new QTableView(frmClientGrid);
    gdClient->setObjectName(QStringLiteral("gdClient"));
    gdClient->setModel(m_model);
    gdClient->setSelectionBehavior(QAbstractItemView::SelectRows);
    gdClient->setSelectionMode(QAbstractItemView::SingleSelection);
    gdClient->setEditTriggers(QAbstractItemView::NoEditTriggers);
    gdClient->verticalHeader()->hide();
    gdClient->setColumnWidth(ClientSearchModel::IdColumn, IdWidth);
    gdClient->setColumnWidth(ClientSearchModel::NameColumn, NameWidth);
    gdClient->setColumnHidden(ClientSearchModel::ShortNameColumn, true);
    gdClient->setToolTip(getString(5639, QStringLiteral("Double-click to select this client")));
    auto *gridLayout = new QVBoxLayout(frmClientGrid);
    gridLayout->addWidget(gdClient);

    cmdDeselect = new QPushButton(getString(5637, QStringLiteral("De-select this client")), this);
    cmdDeselect->setObjectName(QStringLiteral("cmdDeselect"));
    cmdDeselect->setEnabled(false);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(boxes);
    layout->addWidget(frmClientGrid, 1);
    layout->addWidget(cmdDeselect, 0, Qt::AlignLeft);

    for (QLineEdit *box : {txtFirstName, txtSurname, txtCompany, txtbbclientid})
        connect(box, &QLineEdit::textChanged, this, guarded([this, box] {
            search();
            box->setFocus();
        }));
    connect(gdClient->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            guarded([this](const QModelIndex &current, const QModelIndex &) { rowChanged(current); }));
    connect(gdClient, &QTableView::clicked, this, guarded([this](const QModelIndex &index) { clicked(index); }));
    connect(gdClient, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { doubleClicked(index); }));
    connect(cmdDeselect, &QPushButton::clicked, this, guarded([this] { deselect(); }));
}

void ucClientSearch::initialise(IClientSearch *owner, Database &db)
{
    m_owner = owner;
    m_db = &db;
    m_singleClickMode = false;
    gdClient->setToolTip(getString(5639, QStringLiteral("Double-click to select this client")));
}

QString ucClientSearch::FirstName() const
{
    return tidyName(txtFirstName->text());
}

QString ucClientSearch::Surname() const
{
    return tidyName(txtSurname->text());
}

QString ucClientSearch::Company() const
{
    return tidyName(txtCompany->text());
}

QString ucClientSearch::ClientType() const
{
    return txtCompany->text().isEmpty() ? QStringLiteral("I") : QStringLiteral("C");
}

bool ucClientSearch::hasName() const
{
    return !txtFirstName->text().isEmpty() || !txtSurname->text().isEmpty() || !txtCompany->text().isEmpty();
}

void ucClientSearch::singleClick()
{
    m_singleClickMode = true;
    gdClient->setToolTip(getString(5638, QStringLiteral("Click to select client")));
}

void ucClientSearch::RefreshGrid()
{
    search();
    NameFocus();
}

void ucClientSearch::NameFocus()
{
    txtSurname->setFocus();
}

void ucClientSearch::search()
{
    setChosen(0, QString());
    ClientSearchCriteria criteria{txtFirstName->text(), txtSurname->text(), txtCompany->text(), txtbbclientid->text()};
    gdClient->setUpdatesEnabled(false);
    if (criteria.isEmpty() || !m_db) {
        m_model->clear();
    } else {
        try {
            m_model->search(*m_db, criteria);
        } catch (const DatabaseError &e) {
            m_model->clear();
            messages::critical(5646, QStringLiteral("The client search failed: %1"), 5641, QStringLiteral("Client Search"),
                               {e.message()});
        }
    }
    gdClient->scrollToTop();
    gdClient->setUpdatesEnabled(true);
    if (m_singleClickMode)
        cmdDeselect->setEnabled(false);
}

void ucClientSearch::takeRow(int row)
{
    const ClientSearchRow &client = m_model->client(row);
    setChosen(client.BBClientID, client.shortName());
}

void ucClientSearch::setChosen(qint32 clientId, const QString &shortName)
{
    const bool changed = clientId != m_madeBy;
    m_madeBy = clientId;
    m_shortName = shortName;
    if (changed)
        Q_EMIT clientChanged();
}

void ucClientSearch::rowChanged(const QModelIndex &current)
{
    if (!current.isValid()) {
        setChosen(0, QString());
        if (m_singleClickMode)
            cmdDeselect->setEnabled(false);
        NameFocus();
        return;
    }
    takeRow(current.row());
    if (m_singleClickMode)
        cmdDeselect->setEnabled(true);
}

void ucClientSearch::clicked(const QModelIndex &index)
{
    if (index.isValid() && m_owner)
        m_owner->singleClick();
}

void ucClientSearch::doubleClicked(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    takeRow(index.row());
    if (m_owner)
        m_owner->doubleClick();
}

void ucClientSearch::deselect()
{
    gdClient->selectionModel()->clear();
    setChosen(0, QString());
    cmdDeselect->setEnabled(false);
    NameFocus();
}

} // namespace fenlark
