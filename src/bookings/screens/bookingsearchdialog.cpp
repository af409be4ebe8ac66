#include "bookings/screens/bookingsearchdialog.h"

#include "bookings/bookingcodes.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/screens/waitcursor.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

BookingSearchDialog::BookingSearchDialog(Session &session, std::function<void(qint32, qint32)> openBooking,
                                         std::function<void(QDate)> showOnCalendar, QWidget *parent)
    : QDialog(parent), m_session(session), m_openBooking(std::move(openBooking)), m_showOnCalendar(std::move(showOnCalendar))
{
    setObjectName(QStringLiteral("dlgSearch"));
    setWindowTitle(getString(6530, QStringLiteral("Booking Search")));
    auto *fields = new QGridLayout;
    int row = 0;
    const auto box = [this, fields, &row](const QString &name, const QString &label, bool digits) {
        auto *edit = new QLineEdit(this);
        edit->setObjectName(name);
        if (digits)
            edit->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), edit));
        fields->addWidget(new QLabel(label, this), row / 2, row % 2 * 2);
        fields->addWidget(edit, row / 2, row % 2 * 2 + 1);
        ++row;
        return edit;
    };
    txtInvoiceNo = box(QStringLiteral("txtInvoiceNo"), getString(6531, QStringLiteral("Invoice No.:")), true);
    txtProformaNo = box(QStringLiteral("txtProformaNo"), getString(6532, QStringLiteral("Pro forma No.:")), true);
    txtBBBookingID = box(QStringLiteral("txtBBBookingID"), getString(6533, QStringLiteral("Booking ID:")), true);
    txtVMID = box(QStringLiteral("txtVMID"), getString(6534, QStringLiteral("Server No.:")), true);
    txtReference = box(QStringLiteral("txtReference"), getString(6535, QStringLiteral("Reference:")), false);
    txtFirstName = box(QStringLiteral("txtFirstName"), getString(6536, QStringLiteral("First name:")), false);
    txtSurname = box(QStringLiteral("txtSurname"), getString(5634, QStringLiteral("Surname:")), false);
    txtPhone = box(QStringLiteral("txtPhone"), getString(6538, QStringLiteral("Phone:")), false);
    txtEmail = box(QStringLiteral("txtEmail"), getString(6539, QStringLiteral("E-mail:")), false);
    txtCompany = box(QStringLiteral("txtCompany"), getString(6540, QStringLiteral("Company:")), false);
    cboStatus = new QComboBox(this);
    cboStatus->setObjectName(QStringLiteral("cboStatus"));
    cboStatus->addItem(getString(6542, QStringLiteral("(any)")), QString());
    for (const StatusEntry &status : statusList(session.db()))
        cboStatus->addItem(status.name, status.code);
    fields->addWidget(new QLabel(getString(6541, QStringLiteral("Status:")), this), row / 2, row % 2 * 2);
    fields->addWidget(cboStatus, row / 2, row % 2 * 2 + 1);

    m_model = new BookingSearchModel(this);
    gdBookings = new QTableView(this);
    gdBookings->setObjectName(QStringLiteral("gdBookings"));
    gdBookings->setModel(m_model);
    gdBookings->setSelectionBehavior(QAbstractItemView::SelectRows);
    gdBookings->setSelectionMode(QAbstractItemView::SingleSelection);
    gdBookings->setEditTriggers(QAbstractItemView::NoEditTriggers);
    gdBookings->verticalHeader()->hide();
    gdBookings->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    gdBookings->horizontalHeader()->setSectionResizeMode(BookingSearchModel::GuestColumn, QHeaderView::Stretch);
    gdBookings->setColumnHidden(BookingSearchModel::RoomIdColumn, true);

    auto *search = makeDialogButton(this, QStringLiteral("cmdSearch"), getString(6543, QStringLiteral("&Search")));
    search->setDefault(true);
    cmdMoveButton = makeDialogButton(this, QStringLiteral("cmdMove"), getString(6544, QStringLiteral("&Move")));
    cmdMoveButton->setEnabled(false);
    auto *exit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5961, QStringLiteral("Exit")));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(search);
    buttons->addStretch(1);
    buttons->addWidget(cmdMoveButton);
    buttons->addWidget(exit);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(buttons);
    layout->addWidget(gdBookings, 1);
    resize(760, 560);

    connect(search, &QPushButton::clicked, this, guarded(this, &BookingSearchDialog::cmdSearch));
    connect(cmdMoveButton, &QPushButton::clicked, this, guarded(this, &BookingSearchDialog::cmdMove));
    connect(exit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    connect(gdBookings, &QTableView::doubleClicked, this, guarded([this](const QModelIndex &index) { openRow(index.row()); }));
    connect(gdBookings->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            guarded([this] { cmdMoveButton->setEnabled(gdBookings->selectionModel()->hasSelection()); }));
    connect(m_model, &QAbstractItemModel::modelReset, this, guarded([this] { cmdMoveButton->setEnabled(false); }));
}

BookingSearchCriteria BookingSearchDialog::criteria() const
{
    BookingSearchCriteria c;
    c.invoiceNo = txtInvoiceNo->text();
    c.proformaNo = txtProformaNo->text();
    c.bookingId = txtBBBookingID->text();
    c.serverId = txtVMID->text();
    c.reference = txtReference->text();
    c.firstName = txtFirstName->text();
    c.surname = txtSurname->text();
    c.phone = txtPhone->text();
    c.email = txtEmail->text();
    c.company = txtCompany->text();
    c.status = cboStatus->currentData().toString();
    return c;
}

void BookingSearchDialog::cmdSearch()
{
    WaitCursor wait;
    Result<std::vector<BookingSearchRow>> rows = searchBookings(m_session.db(), criteria());
    if (!rows) {
        messages::show(rows.refusal());
        return;
    }
    m_model->setRows(std::move(*rows));
}

void BookingSearchDialog::openRow(int row)
{
    if (row < 0 || row >= m_model->rowCount())
        return;
    const BookingSearchRow found = m_model->row(row);
    m_openBooking(found.BBBookingID, found.BBRoomID);
}

void BookingSearchDialog::cmdMove()
{
    const QModelIndexList selected = gdBookings->selectionModel()->selectedRows();
    if (selected.isEmpty())
        return;
    // The arrival stands a little right of the calendar's left edge.
    m_showOnCalendar(m_model->row(selected.front().row()).arrival.addDays(-3));
    accept();
}

} // namespace fenlark
