#include "clients/screens/viewclient.h"

#include "clients/clientnames.h"
#include "clients/screens/companylk.h"
#include "rates/ratelists.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyledItemDelegate>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

namespace {

// The field-type cell of the extras grid: a list of the type labels that stores the code.
class FieldTypeDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        auto *box = new QComboBox(parent);
        for (const QString &type : clientExtraFieldTypes())
            box->addItem(clientExtraFieldName(type), type);
        return box;
    }
    void setEditorData(QWidget *editor, const QModelIndex &index) const override
    {
        auto *box = static_cast<QComboBox *>(editor);
        box->setCurrentIndex(std::max(0, box->findData(index.data(Qt::EditRole))));
    }
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override
    {
        model->setData(index, static_cast<QComboBox *>(editor)->currentData(), Qt::EditRole);
    }
};

QTableView *makeGrid(QWidget *parent, const QString &objectName, QAbstractItemModel *model)
{
    auto *grid = new QTableView(parent);
    grid->setObjectName(objectName);
    grid->setModel(model);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setStretchLastSection(true);
    return grid;
}

QLineEdit *makeBox(QWidget *parent, const QString &objectName)
{
    auto *box = new QLineEdit(parent);
    box->setObjectName(objectName);
    return box;
}

QLabel *makeWarning(QWidget *parent, const QString &objectName)
{
    auto *label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setWordWrap(true);
    label->setStyleSheet(QStringLiteral("color: #a33;"));
    label->hide();
    return label;
}

QString label(int id, const char *text)
{
    return getString(id, QString::fromUtf8(text));
}

} // namespace

ViewClient::ViewClient(Session &session, ClientScreens screens, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
    , m_screens(std::move(screens))
    , m_editor(session.db())
    , m_extras(new ClientExtrasModel(this))
    , m_accounts(new ClientAccountsModel(this))
    , m_ledger(new ClientLedgerModel(this))
{
    setObjectName(QStringLiteral("dlgClient"));
    setWindowTitle(label(6932, "Client information"));
    if (!m_screens.company) {
        Database &db = session.db();
        m_screens.company = [&db](QWidget *owner, const QString &company) {
            CompanyLk dialog(db, company, owner);
            dialog.exec();
            return dialog.details();
        };
    }

    tbClient = new QTabWidget(this);
    tbClient->setObjectName(QStringLiteral("tbClient"));
    tbClient->addTab(buildPersonal(), label(6915, "Personal information"));
    tbClient->addTab(buildAddress(), label(6916, "VAT / Address"));
    tbClient->addTab(buildExtras(), label(6917, "Extra information"));
    tbClient->addTab(buildAdditional(), label(6918, "Additional"));
    tbClient->addTab(buildAccounts(), label(6919, "Accounts"));

    cmdStatement = makeDialogButton(this, QStringLiteral("cmdStatement"), label(6941, "Statement"));
    cmdOKButton = makeDialogButton(this, QStringLiteral("cmdOK"), label(5849, "OK"));
    cmdOKButton->setDefault(true);
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), label(5850, "Cancel"));
    cmdStatement->setVisible(bool(m_screens.statement));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdStatement);
    buttons->addStretch(1);
    buttons->addWidget(cmdOKButton);
    buttons->addWidget(cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(tbClient, 1);
    layout->addLayout(buttons);
    resize(640, 480);

    connect(tbClient, &QTabWidget::currentChanged, this, guarded(this, &ViewClient::tabChanged));
    connect(cmdOKButton, &QPushButton::clicked, this, guarded(this, &ViewClient::cmdOK));
    connect(cmdCancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    connect(cmdStatement, &QPushButton::clicked, this, guarded([this] {
        if (!m_editor.isNew())
            m_screens.statement(this, m_editor.clientId());
    }));
}

QWidget *ViewClient::buildPersonal()
{
    auto *page = new QWidget(this);
    cboClientType = new QComboBox(page);
    cboClientType->setObjectName(QStringLiteral("cboClientType"));
    cboClientType->addItems(clientTypeNames());
    txtTitle = makeBox(page, QStringLiteral("txtTitle"));
    txtFirstName = makeBox(page, QStringLiteral("txtFirstName"));
    txtSurname = makeBox(page, QStringLiteral("txtSurname"));
    txtCompany = makeBox(page, QStringLiteral("txtCompany"));
    cmdCompanyLkButton = makeDialogButton(page, QStringLiteral("cmdCompanyLk"), QStringLiteral("..."));
    cmdCompanyLkButton->setToolTip(label(6920, "Search for company"));
    txtPhone = makeBox(page, QStringLiteral("txtPhone"));
    txtEmail = makeBox(page, QStringLiteral("txtEmail"));
    cmdEmailButton = makeDialogButton(page, QStringLiteral("cmdEmail"), label(6944, "Copy"));
    cmdEmailButton->setToolTip(label(6921, "Click here to copy Email. Then, click Paste in your new email."));
    lblEmailWarning = makeWarning(page, QStringLiteral("lblEmailWarning"));
    outCreated = new QLabel(page);
    outCreated->setObjectName(QStringLiteral("outCreated"));
    outCreatedOn = new QLabel(page);
    outCreatedOn->setObjectName(QStringLiteral("outCreatedOn"));

    auto *company = new QHBoxLayout;
    company->addWidget(txtCompany, 1);
    company->addWidget(cmdCompanyLkButton);
    auto *email = new QHBoxLayout;
    email->addWidget(txtEmail, 1);
    email->addWidget(cmdEmailButton);
    auto *form = new QFormLayout(page);
    form->addRow(label(6935, "Client type"), cboClientType);
    form->addRow(label(6933, "Title"), txtTitle);
    form->addRow(label(6934, "First name"), txtFirstName);
    form->addRow(label(5955, "Surname"), txtSurname);
    form->addRow(label(2156, "Company"), company);
    form->addRow(label(5620, "Phone No"), txtPhone);
    form->addRow(label(5868, "E-mail"), email);
    form->addRow(QString(), lblEmailWarning);
    form->addRow(label(6936, "Created"), outCreated);
    form->addRow(label(6940, "Created on"), outCreatedOn);

    connect(cmdCompanyLkButton, &QPushButton::clicked, this, guarded(this, &ViewClient::cmdCompanyLk));
    connect(cmdEmailButton, &QPushButton::clicked, this, guarded(this, &ViewClient::cmdEmail));
    connect(txtEmail, &QLineEdit::textChanged, this, guarded(this, &ViewClient::showWarnings));
    return page;
}

QWidget *ViewClient::buildAddress()
{
    auto *page = new QWidget(this);
    txtVATNo = makeBox(page, QStringLiteral("txtVATNo"));
    lblVatWarning = makeWarning(page, QStringLiteral("lblVatWarning"));
    txtAdd1 = makeBox(page, QStringLiteral("txtAdd1"));
    txtAdd2 = makeBox(page, QStringLiteral("txtAdd2"));
    auto *form = new QFormLayout(page);
    form->addRow(label(6937, "VAT No"), txtVATNo);
    form->addRow(QString(), lblVatWarning);
    form->addRow(label(6938, "Address line 1"), txtAdd1);
    form->addRow(label(6939, "Address line 2"), txtAdd2);
    connect(txtVATNo, &QLineEdit::textChanged, this, guarded(this, &ViewClient::showWarnings));
    return page;
}

QWidget *ViewClient::buildExtras()
{
    auto *page = new QWidget(this);
    gdExtra = makeGrid(page, QStringLiteral("gdExtra"), m_extras);
    gdExtra->setColumnHidden(ClientExtrasModel::IdColumn, true);
    gdExtra->setColumnWidth(ClientExtrasModel::TypeColumn, 160);
    gdExtra->setItemDelegateForColumn(ClientExtrasModel::TypeColumn, new FieldTypeDelegate(gdExtra));
    gdExtra->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                             QAbstractItemView::AnyKeyPressed | QAbstractItemView::SelectedClicked);
    cmdFieldAddButton = makeDialogButton(page, QStringLiteral("cmdFieldAdd"), label(6942, "Add field"));
    cmdFieldDeleteButton = makeDialogButton(page, QStringLiteral("cmdFieldDelete"), label(6943, "Delete field"));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdFieldAddButton);
    buttons->addWidget(cmdFieldDeleteButton);
    buttons->addStretch(1);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(gdExtra, 1);
    layout->addLayout(buttons);
    connect(cmdFieldAddButton, &QPushButton::clicked, this, guarded(this, &ViewClient::cmdFieldAdd));
    connect(cmdFieldDeleteButton, &QPushButton::clicked, this, guarded(this, &ViewClient::cmdFieldDelete));
    return page;
}

QWidget *ViewClient::buildAdditional()
{
    auto *page = new QWidget(this);
    cboRateSheet = new QComboBox(page);
    cboRateSheet->setObjectName(QStringLiteral("cboRateSheet"));
    txtNotes = new QPlainTextEdit(page);
    txtNotes->setObjectName(QStringLiteral("txtNotes"));
    auto *form = new QFormLayout(page);
    form->addRow(label(6945, "Rate sheet"), cboRateSheet);
    form->addRow(label(5877, "Notes"), txtNotes);
    return page;
}

QWidget *ViewClient::buildAccounts()
{
    auto *page = new QWidget(this);
    gdAccounts = makeGrid(page, QStringLiteral("gdAccounts"), m_accounts);
    gdAccounts->setEditTriggers(QAbstractItemView::NoEditTriggers);
    gdAccounts->setColumnWidth(ClientAccountsModel::ReferenceColumn, 320);
    gdClientTran = makeGrid(page, QStringLiteral("gdClientTran"), m_ledger);
    gdClientTran->setEditTriggers(QAbstractItemView::NoEditTriggers);
    cmdAddClientTran = makeDialogButton(page, QStringLiteral("cmdAddClientTran"), label(6952, "Add ledger entry"));
    cmdAddClientTran->setVisible(bool(m_screens.addLedgerEntry));
    auto *ledgerHead = new QHBoxLayout;
    ledgerHead->addWidget(new QLabel(label(6996, "Ledger"), page), 1);
    ledgerHead->addWidget(cmdAddClientTran);
    auto *layout = new QVBoxLayout(page);
    layout->addWidget(gdAccounts, 1);
    layout->addLayout(ledgerHead);
    layout->addWidget(gdClientTran, 1);

    connect(gdAccounts, &QTableView::doubleClicked, this, guarded(this, &ViewClient::openAccount));
    connect(gdClientTran, &QTableView::doubleClicked, this, guarded(this, &ViewClient::openLedgerRow));
    connect(cmdAddClientTran, &QPushButton::clicked, this, guarded([this] {
        if (!m_editor.isNew() && m_screens.addLedgerEntry(this, m_editor.clientId()))
            refillLedger();
    }));
    return page;
}

void ViewClient::initialise(qint32 clientId)
{
    load(clientId);
    exec();
}

void ViewClient::load(qint32 clientId)
{
    m_changesMade = false;
    m_saved = ClientSaveOutcome();
    const Outcome opened = m_editor.open(clientId);
    setWindowTitle(m_editor.caption());
    showClient();
    tbClient->setCurrentIndex(0);
    if (!opened)
        messages::show(opened.refusal());
}

void ViewClient::fillRateSheets(qint16 wanted)
{
    cboRateSheet->clear();
    for (const RateSheetChoice &choice : rateSheetList(m_session.db()))
        cboRateSheet->addItem(choice.name, choice.BBRateSheetID);
    // A sheet the setup no longer has stays the client's until someone picks another.
    if (cboRateSheet->findData(int(wanted)) < 0)
        cboRateSheet->addItem(QString::number(wanted) + label(5922, " Ratesheet not found!"), int(wanted));
    cboRateSheet->setCurrentIndex(cboRateSheet->findData(int(wanted)));
}

void ViewClient::showClient()
{
    const Client &c = m_editor.client();
    cboClientType->setCurrentIndex(getClientTypeIndex(c.ClientType));
    txtTitle->setText(c.Title);
    txtFirstName->setText(c.FirstName);
    txtSurname->setText(c.Surname);
    txtCompany->setText(c.Company);
    txtPhone->setText(c.PhoneNo);
    txtEmail->setText(c.Email);
    txtVATNo->setText(c.VatNo);
    txtAdd1->setText(c.Add1);
    txtAdd2->setText(c.Add2);
    txtNotes->setPlainText(c.Notes);
    fillRateSheets(c.BBRateSheetID);
    const bool stored = !m_editor.isNew() && c.BBClientID > 0;
    outCreated->setText(stored ? deskLocale().toString(c.DateCreated, QStringLiteral("dd MMM yyyy HH:mm")) : QString());
    outCreatedOn->setText(stored ? createdOnName(c.CreatedOn) : QString());
    m_extras->setRows(m_editor.extras());
    refillAccounts();
    refillLedger();
    cmdStatement->setEnabled(stored);
    cmdAddClientTran->setEnabled(stored);
    showWarnings();
}

void ViewClient::readScreen()
{
    Client &c = m_editor.client();
    c.ClientType = getClientTypeCode(cboClientType->currentIndex());
    c.Title = txtTitle->text();
    c.FirstName = txtFirstName->text();
    c.Surname = txtSurname->text();
    c.Company = txtCompany->text();
    c.PhoneNo = txtPhone->text();
    c.Email = txtEmail->text();
    c.Notes = txtNotes->toPlainText();
    c.VatNo = txtVATNo->text();
    c.Add1 = txtAdd1->text();
    c.Add2 = txtAdd2->text();
    c.BBRateSheetID = static_cast<qint16>(cboRateSheet->currentData().toInt());
    // A cell still being typed in counts: leaving it hands its text to the model.
    gdExtra->setCurrentIndex(QModelIndex());
    m_editor.extras() = m_extras->rows();
}

void ViewClient::refillAccounts()
{
    m_accounts->setAccounts(m_editor.isNew() ? std::vector<ClientAccount>{} : clientAccounts(m_session.db(), m_editor.clientId()));
}

void ViewClient::refillLedger()
{
    m_ledger->setRows(m_editor.isNew() ? std::vector<ClientTran>{} : clientLedger(m_session.db(), m_editor.clientId()));
}

void ViewClient::showWarnings()
{
    const auto show = [](QLabel *label, bool good, int id, const char *text, const QString &value) {
        label->setText(good ? QString() : fillArguments(getString(id, QString::fromUtf8(text)), {value}));
        label->setVisible(!good);
    };
    show(lblEmailWarning, looksLikeEmail(txtEmail->text()), 6950, "This does not look like an e-mail address: %1",
         txtEmail->text());
    show(lblVatWarning, looksLikeVatNumber(txtVATNo->text()), 6951, "This does not look like a VAT number: %1", txtVATNo->text());
}

void ViewClient::tabChanged(int tab)
{
    QWidget *first[] = {txtTitle, txtVATNo, gdExtra, cboRateSheet, gdAccounts};
    if (tab >= 0 && tab < int(std::size(first)))
        first[tab]->setFocus();
}

void ViewClient::updateClientView(const CompanyDetails &company)
{
    readScreen();
    const bool sheetMoved = m_editor.takeCompany(company);
    const Client &c = m_editor.client();
    txtCompany->setText(c.Company);
    txtPhone->setText(c.PhoneNo);
    txtAdd1->setText(c.Add1);
    txtAdd2->setText(c.Add2);
    txtVATNo->setText(c.VatNo);
    if (sheetMoved) {
        fillRateSheets(c.BBRateSheetID);
        messages::inform(6909, QStringLiteral("Note: The ratesheet associated with this company will now be used for this client."),
                         6910, QStringLiteral("Ratesheet on company used on client"));
    }
}

void ViewClient::cmdCompanyLk()
{
    if (const std::optional<CompanyDetails> chosen = m_screens.company(this, txtCompany->text()))
        updateClientView(*chosen);
}

void ViewClient::cmdEmail()
{
    QApplication::clipboard()->setText(txtEmail->text());
    txtEmail->setFocus();
}

void ViewClient::cmdFieldAdd()
{
    const int row = m_extras->addRow();
    const QModelIndex value = m_extras->index(row, ClientExtrasModel::ValueColumn);
    gdExtra->setCurrentIndex(value);
    gdExtra->edit(value);
}

void ViewClient::cmdFieldDelete()
{
    const QModelIndexList chosen = gdExtra->selectionModel()->selectedRows();
    if (chosen.isEmpty()) {
        messages::inform(6911, QStringLiteral("Select a field to delete"), 6912, QStringLiteral("Field not selected."));
        return;
    }
    const int row = chosen.first().row();
    const ClientExtraRow &extra = m_extras->rows().at(std::size_t(row));
    if (messages::ask(6913, QStringLiteral("Delete %1 - %2?"), 6914, QStringLiteral("Delete field information"), false,
                      {clientExtraFieldName(extra.FieldType), extra.FieldValue}))
        m_extras->removeRow(row);
}

void ViewClient::cmdOK()
{
    readScreen();
    MessageClientSaveQuestions questions;
    const Result<ClientSaveOutcome> outcome = m_editor.save(questions);
    if (!outcome) {
        messages::show(outcome.refusal());
        return;
    }
    if (!outcome->saved)
        return;
    m_saved = *outcome;
    m_changesMade = true;
    m_session.publish(outcome->changes);
    accept();
}

void ViewClient::openAccount(const QModelIndex &index)
{
    if (!index.isValid() || !m_screens.account)
        return;
    m_screens.account(this, m_accounts->accountId(index.row()));
    refillAccounts();
}

void ViewClient::openLedgerRow(const QModelIndex &index)
{
    if (!index.isValid() || !m_screens.ledgerDocument)
        return;
    const ClientTran row = m_ledger->tran(index.row());
    static const QStringList documents = {QStringLiteral("CRN"), QStringLiteral("INV"), QStringLiteral("PMT")};
    if (documents.contains(row.TranType) && m_screens.ledgerDocument(this, row))
        refillLedger();
}

ClientEditorOpener::Outcome ViewClientOpener::openClientEditor(QWidget *parent, qint32 clientId)
{
    ViewClient editor(m_session, m_screens, parent);
    editor.initialise(clientId);
    return {editor.ChangesMade() ? editor.NewClientID() : 0, editor.ChangesMade()};
}

} // namespace fenlark
