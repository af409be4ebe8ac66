#include "accounts/screens/extrasdialogs.h"

#include "accounts/accountrefusals.h"
#include "accounts/screens/accountwidgets.h"
#include "clients/clientrecords.h"
#include "shell/amounttext.h"
#include "shell/money.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/security.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QComboBox>
#include <QDateEdit>
#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

namespace {

QString invoicedName(Database &db, qint32 clientId)
{
    Client client;
    if (client.fetch(db, clientId))
        return client.FullName();
    return getString(6686, QStringLiteral("Unknown client - ID %1")).arg(clientId);
}

} // namespace

ExtraForm::ExtraForm(Session &session, qint32 guestId, qint32 extraId, QWidget *parent)
    : QDialog(parent), m_session(session), m_guestId(guestId), m_extraId(extraId)
{
    setObjectName(QStringLiteral("dlgExtra"));
    setWindowTitle(getString(6742, QStringLiteral("Extra")));
    cboStock = new QComboBox(this);
    cboStock->setObjectName(QStringLiteral("cboStock"));
    dpExtraDate = new QDateEdit(QDate::currentDate(), this);
    dpExtraDate->setObjectName(QStringLiteral("dpExtraDate"));
    dpExtraDate->setCalendarPopup(true);
    txtQty = makeAmountBox(this, QStringLiteral("txtQty"), false);
    txtPrice = makeAmountBox(this, QStringLiteral("txtPrice"), true);
    txtPrice->installEventFilter(this);
    lblItemPriceHint = new QLabel(getString(6751, QStringLiteral("Prices include VAT.")), this);

    frmGuestAccount = new QGroupBox(getString(6744, QStringLiteral("Invoice on the...")), this);
    frmGuestAccount->setObjectName(QStringLiteral("frmGuestAccount"));
    opMainAccount = new QRadioButton(frmGuestAccount);
    opMainAccount->setObjectName(QStringLiteral("opMainAccount"));
    opGuestAccount = new QRadioButton(frmGuestAccount);
    opGuestAccount->setObjectName(QStringLiteral("opGuestAccount"));
    auto *options = new QVBoxLayout(frmGuestAccount);
    options->addWidget(opMainAccount);
    options->addWidget(opGuestAccount);
    frmSpecialAccount = new QGroupBox(getString(6747, QStringLiteral("Invoice to the")), this);
    frmSpecialAccount->setObjectName(QStringLiteral("frmSpecialAccount"));
    auto *special = new QVBoxLayout(frmSpecialAccount);
    special->addWidget(new QLabel(getString(6748, QStringLiteral("Special Account. View Client / Accounts to change.")), frmSpecialAccount));

    cmdSaveButton = makeDialogButton(this, QStringLiteral("cmdSave"), getString(5139, QStringLiteral("&Save")));
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5120, QStringLiteral("Cancel")));
    auto *form = new QFormLayout;
    form->addRow(getString(6743, QStringLiteral("Description")), cboStock);
    form->addRow(getString(6695, QStringLiteral("Date")), dpExtraDate);
    form->addRow(getString(6729, QStringLiteral("Qty")), txtQty);
    form->addRow(getString(6730, QStringLiteral("Price")), txtPrice);
    form->addRow(QString(), lblItemPriceHint);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(frmGuestAccount);
    layout->addWidget(frmSpecialAccount);
    layout->addLayout(buttonRow({}, {cmdSaveButton, cmdCancel}));

    connect(cmdSaveButton, &QPushButton::clicked, this, guarded(this, &ExtraForm::cmdSave));
    connect(cmdCancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

QString ExtraForm::accountText(const Account &account) const
{
    return getString(6749, QStringLiteral("%1 (account ID %2)"))
        .arg(invoicedName(m_session.db(), account.InvoiceTo), QString::number(account.BBAccountID));
}

bool ExtraForm::load()
{
    Database &db = m_session.db();
    if (const auto stock = canAddExtras(db); !stock) {
        messages::show(stock.refusal());
        return false;
    }
    Extra extra;
    if (m_extraId > 0) {
        if (!extra.fetch(db, m_extraId)) {
            messages::show(noExtraFound(m_extraId));
            return false;
        }
        m_guestId = extra.BBGuestID;
    }
    const auto accounts = extraAccounts(db, m_guestId);
    if (!accounts) {
        messages::show(accounts.refusal());
        return false;
    }
    for (const Stock &stock : Stock::fetchActive(db)) {
        cboStock->addItem(stock.StockName, stock.BBStockID);
        m_stockPrices.insert(stock.BBStockID, stock.Price);
    }
    if (m_extraId > 0) {
        int at = cboStock->findData(extra.BBStockID);
        Stock retired;
        if (at < 0 && retired.fetch(db, extra.BBStockID)) {
            cboStock->addItem(retired.StockName, retired.BBStockID);
            at = cboStock->count() - 1;
        }
        cboStock->setCurrentIndex(at);
        dpExtraDate->setDate(extra.ExtraDate);
        txtQty->setText(plainNumber(extra.Qty));
        txtPrice->setText(formatAmount(extra.Price));
    } else {
        cboStock->setCurrentIndex(-1);
        extra.BBAccountID = accounts->newRoomAccount ? 0 : accounts->room.BBAccountID;
    }
    showAccounts(*accounts, extra.BBAccountID);
    return true;
}

void ExtraForm::showAccounts(const ExtraAccounts &accounts, qint32 extraAccountId)
{
    const bool onMain = extraAccountId == accounts.main.BBAccountID;
    const bool onRoom = accounts.newRoomAccount ? extraAccountId == 0 : extraAccountId == accounts.room.BBAccountID;
    const bool special = !onMain && !onRoom;
    frmGuestAccount->setVisible(!special);
    frmSpecialAccount->setVisible(special);
    if (special)
        return;
    opMainAccount->setText(getString(6745, QStringLiteral("Main Account:")) + QLatin1Char(' ') + accountText(accounts.main));
    const bool roomIsMain = !accounts.newRoomAccount && accounts.room.BBAccountID == accounts.main.BBAccountID;
    opGuestAccount->setText(getString(6746, QStringLiteral("Guest Account:")) + QLatin1Char(' ')
                            + (accounts.newRoomAccount || roomIsMain
                                   ? getString(6750, QStringLiteral("%1 (a new account)"))
                                         .arg(invoicedName(m_session.db(), accounts.newRoomAccount ? accounts.roomClientId
                                                                                                   : accounts.main.InvoiceTo))
                                   : accountText(accounts.room)));
    opMainAccount->setEnabled(accounts.mainOpen());
    opGuestAccount->setEnabled(accounts.newRoomAccount || roomIsMain || accounts.roomOpen());
    if (!accounts.mainOpen())
        opGuestAccount->setChecked(true);
    else if (!opGuestAccount->isEnabled())
        opMainAccount->setChecked(true);
    else
        (onMain ? opMainAccount : opGuestAccount)->setChecked(true);
}

bool ExtraForm::eventFilter(QObject *watched, QEvent *event)
{
    // An empty or zero price takes the chosen item's price.
    if (watched == txtPrice && event->type() == QEvent::FocusIn && cboStock->currentIndex() >= 0) {
        const auto price = parseAmount(txtPrice->text(), deskLocale());
        if (!price || *price == 0)
            txtPrice->setText(formatAmount(m_stockPrices.value(cboStock->currentData().toInt())));
    }
    return QDialog::eventFilter(watched, event);
}

void ExtraForm::cmdSave()
{
    ExtraInput input;
    input.extraId = m_extraId;
    input.guestId = m_guestId;
    input.date = dpExtraDate->date();
    input.stockId = cboStock->currentIndex() >= 0 ? cboStock->currentData().toInt() : 0;
    input.qtyText = txtQty->text();
    input.priceText = txtPrice->text();
    input.onRoomAccount = !frmGuestAccount->isHidden() && opGuestAccount->isChecked();
    const auto saved = saveExtra(m_session.db(), input, m_session.getUser());
    if (!saved) {
        messages::show(saved.refusal());
        const int id = saved.refusal().id();
        if (id == 6662)
            cboStock->setFocus();
        else if (id == 6664 || id == 6653 || (id == 6620 && !parseAmount(txtQty->text(), deskLocale())))
            txtQty->setFocus();
        else if (id == 6666 || id == 6620)
            txtPrice->setFocus();
        return;
    }
    m_session.publish(saved->changes);
    accept();
}

Extras::Extras(Session &session, qint32 guestId, QWidget *parent)
    : QDialog(parent),
      m_session(session),
      m_guestId(guestId),
      m_model({{getString(6728, QStringLiteral("Extra ID")), [](const ExtraRow &r) { return QVariant(r.extra.BBExtraID); }, true},
               {getString(6695, QStringLiteral("Date")),
                [](const ExtraRow &r) { return QVariant(QLocale().toString(r.extra.ExtraDate, QLocale::ShortFormat)); }},
               {getString(6743, QStringLiteral("Description")), [](const ExtraRow &r) { return QVariant(r.stockName); }},
               {getString(6729, QStringLiteral("Qty")), [](const ExtraRow &r) { return QVariant(plainNumber(r.extra.Qty)); }, true},
               {getString(6730, QStringLiteral("Price")), [](const ExtraRow &r) { return QVariant(formatAmount(r.extra.Price)); }, true},
               {getString(6701, QStringLiteral("Total")), [](const ExtraRow &r) { return QVariant(formatAmount(r.total())); }, true},
               {getString(6731, QStringLiteral("Account ID")), [](const ExtraRow &r) { return QVariant(r.extra.BBAccountID); }, true}})
{
    setObjectName(QStringLiteral("dlgExtras"));
    setWindowTitle(getString(6727, QStringLiteral("Guest Extras")));
    extraForm = [this](QWidget *parent, qint32 guest, qint32 extra) {
        ExtraForm form(m_session, guest, extra, parent);
        return form.load() && form.exec() == QDialog::Accepted;
    };
    lblHeading = new QLabel(this);
    lblHeading->setObjectName(QStringLiteral("lblHeading"));
    gdExtras = makeRowsView(this, QStringLiteral("gdExtras"), &m_model, 2);
    lblTotal = new QLabel(this);
    lblTotal->setObjectName(QStringLiteral("lblTotal"));
    cmdAddButton = makeDialogButton(this, QStringLiteral("cmdAdd"), getString(6732, QStringLiteral("&Add")));
    cmdDeleteButton = makeDialogButton(this, QStringLiteral("cmdDelete"), getString(6733, QStringLiteral("&Delete")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblHeading);
    layout->addWidget(gdExtras, 1);
    layout->addWidget(lblTotal, 0, Qt::AlignRight);
    layout->addLayout(buttonRow({cmdAddButton, cmdDeleteButton}, {cmdExit}));
    resize(640, 360);

    connect(cmdAddButton, &QPushButton::clicked, this, guarded(this, &Extras::cmdAdd));
    connect(cmdDeleteButton, &QPushButton::clicked, this, guarded(this, &Extras::cmdDelete));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    connect(gdExtras, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { openRow(index.row()); }));
    fill();
}

void Extras::initialise(Session &session, qint32 guestId, QWidget *parent)
{
    Extras dialog(session, guestId, parent);
    dialog.exec();
}

void Extras::fill()
{
    Database &db = m_session.db();
    const qint32 account = defaultAccountOf(db, m_guestId);
    const qint32 client = invoiceToOf(db, account);
    lblHeading->setText(getString(6726, QStringLiteral("Guest Extras. Default A/C ID: %1 - %2"))
                            .arg(QString::number(account), invoicedName(db, client)));
    std::vector<ExtraRow> rows = extrasOfRoom(db, m_guestId);
    double total = 0;
    for (const ExtraRow &row : rows)
        total += row.total();
    m_model.setRows(std::move(rows));
    lblTotal->setText(getString(6701, QStringLiteral("Total")) + QStringLiteral(": ") + formatAmount(total));
}

void Extras::cmdAdd()
{
    if (extraForm(this, m_guestId, 0))
        fill();
}

void Extras::openRow(int row)
{
    if (row < 0 || row >= m_model.rowCount())
        return;
    const ExtraRow &extra = m_model.row(row);
    if (!extra.accountOpen) {
        messages::show(Refusal(6738, QStringLiteral("Account is closed. Extra can't be edited. Re-open the account if this is what you intended."),
                               6739, QStringLiteral("Account closed. Cannot edit extras")));
        return;
    }
    if (extraForm(this, m_guestId, extra.extra.BBExtraID))
        fill();
}

void Extras::cmdDelete()
{
    if (m_model.rowCount() == 0) {
        messages::show(Refusal(6734, QStringLiteral("There are no Extras to delete."), 6735, QStringLiteral("No Extras to delete")));
        return;
    }
    const int row = currentRow(gdExtras);
    if (row < 0) {
        messages::show(Refusal(6736, QStringLiteral("Click on an extra and then delete."), 6737, QStringLiteral("No extra selected for delete.")));
        return;
    }
    const ExtraRow extra = m_model.row(row);
    if (!extra.accountOpen) {
        messages::show(refusals::extraAccountClosed());
        return;
    }
    if (checkPermission(m_session.getUser(), SecurityAction::ExtrasDelete))
        return;
    if (!messages::ask(6740, QStringLiteral("Are you sure you want to delete this Extra?"), 6741, QStringLiteral("Delete Extra?")))
        return;
    SecurityAudit audit;
    audit.User(m_session.getUser());
    if (!audit.enterReason())
        return;
    const auto deleted = deleteExtra(m_session.db(), extra.extra.BBExtraID, audit.reason(), m_session.getUser());
    if (!deleted) {
        messages::show(deleted.refusal());
        return;
    }
    m_session.publish(*deleted);
    fill();
}

} // namespace fenlark
