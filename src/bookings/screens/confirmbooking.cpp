#include "bookings/screens/confirmbooking.h"

#include "bookings/newbooking.h"
#include "bookings/screens/viewbooking.h"
#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/screens/mainwindow.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

namespace fenlark {

namespace {

enum Column { ColRoomId, ColRoom, ColRate, ColAdults, ColChild1, ColChild2, ColumnCount };

QSpinBox *countBox(int value)
{
    auto *box = new QSpinBox;
    box->setRange(0, 99);
    box->setValue(value);
    return box;
}

} // namespace

ConfirmBooking::ConfirmBooking(MainWindow &frmMain, const std::vector<qint32> &roomIds, QDate arrival, int nights,
                               QWidget *parent)
    : QDialog(parent), m_main(frmMain), m_arrival(arrival), m_departure(arrival.addDays(nights))
{
    setObjectName(QStringLiteral("dlgBookConfirm"));
    setWindowTitle(getString(5840, QStringLiteral("Confirm Booking")));
    auto *layout = new QVBoxLayout(this);

    const QString format = QStringLiteral("ddd dd MMM yyyy");
    auto *outArriving = new QLabel(getString(5841, QStringLiteral("Arriving: ")) + QLocale().toString(arrival, format));
    outArriving->setObjectName(QStringLiteral("outArriving"));
    auto *outLeaving = new QLabel(getString(5842, QStringLiteral("Leaving: ")) + QLocale().toString(m_departure, format));
    outLeaving->setObjectName(QStringLiteral("outLeaving"));
    layout->addWidget(outArriving);
    layout->addWidget(outLeaving);

    clientSearch = new ucClientSearch(this);
    clientSearch->initialise(this, frmMain.session().db());
    layout->addWidget(clientSearch);

    ChildPolicy policy;
    policy.fetchChildPolicy(frmMain.session().db());
    gdRooms = new QTableWidget(int(roomIds.size()), ColumnCount, this);
    gdRooms->setObjectName(QStringLiteral("gdRooms"));
    const QString children = getString(5843, QStringLiteral("Children"));
    gdRooms->setHorizontalHeaderLabels({getString(5844, QStringLiteral("Room ID")), getString(5845, QStringLiteral("Room")),
                                        getString(5846, QStringLiteral("Applied Rate")),
                                        getString(5847, QStringLiteral("Adults")), children + QLatin1Char('\n') + policy.label1,
                                        children + QLatin1Char('\n') + policy.label2});
    gdRooms->setColumnHidden(ColRoomId, true);
    gdRooms->setColumnWidth(ColRoom, 100);
    gdRooms->setColumnWidth(ColRate, 150);
    gdRooms->setColumnWidth(ColAdults, 60);
    gdRooms->setColumnWidth(ColChild1, 60);
    gdRooms->setColumnWidth(ColChild2, 60);
    gdRooms->setColumnHidden(ColChild1, policy.ChildAge1 == 0);
    gdRooms->setColumnHidden(ColChild2, policy.ChildAge2 == 0);
    gdRooms->verticalHeader()->hide();
    for (int row = 0; row < int(roomIds.size()); ++row)
        addRoomRow(row, roomIds[size_t(row)]);
    layout->addWidget(gdRooms);

    auto *narr = new QLabel(getString(5848, QStringLiteral("Click on the cells if you want to make a change to the rate "
                                                           "or the number of adults/children.")));
    narr->setObjectName(QStringLiteral("lblClickToChangeNarr"));
    narr->setWordWrap(true);
    layout->addWidget(narr);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("cmdOK"));
    buttons->button(QDialogButtonBox::Ok)->setText(getString(5849, QStringLiteral("OK")));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("cmdCancel"));
    buttons->button(QDialogButtonBox::Cancel)->setText(getString(5850, QStringLiteral("Cancel")));
    connect(buttons, &QDialogButtonBox::accepted, this, &ConfirmBooking::cmdOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);
    resize(560, 560);
}

void ConfirmBooking::addRoomRow(int row, qint32 roomId)
{
    Session &session = m_main.session();
    gdRooms->setItem(row, ColRoomId, new QTableWidgetItem(QString::number(roomId)));
    auto *name = new QTableWidgetItem(session.property().RoomName(roomId));
    name->setFlags(name->flags() & ~Qt::ItemIsEditable);
    gdRooms->setItem(row, ColRoom, name);

    auto *rate = new QComboBox;
    rate->setObjectName(QStringLiteral("ratecode%1").arg(row));
    rate->addItem(getString(5851, QStringLiteral("No rate selected")), 0);
    const RateData data = RateData::load(session.db());
    for (const OfferedRate &offered : offeredRates(data, m_arrival, m_departure, roomId))
        rate->addItem(offered.name, offered.BBRateID);
    rate->setCurrentIndex(rate->count() > 1 ? 1 : 0);
    gdRooms->setCellWidget(row, ColRate, rate);
    gdRooms->setCellWidget(row, ColAdults, countBox(defaultAdults(session.getPreference(QStringLiteral("DEFUSER")))));
    gdRooms->setCellWidget(row, ColChild1, countBox(0));
    gdRooms->setCellWidget(row, ColChild2, countBox(0));
}

void ConfirmBooking::cmdOK()
{
    Session &session = m_main.session();
    NewBookingRequest request;
    request.FromDate = m_arrival;
    request.ToDate = m_departure;
    request.BBClientID = clientSearch->MadeBy();
    request.firstName = clientSearch->FirstName();
    request.surname = clientSearch->Surname();
    request.company = clientSearch->Company();
    for (int row = 0; row < gdRooms->rowCount(); ++row) {
        NewBookingRoom room;
        room.BBRoomID = gdRooms->item(row, ColRoomId)->text().toInt();
        room.BBRateID = static_cast<QComboBox *>(gdRooms->cellWidget(row, ColRate))->currentData().toInt();
        room.NoAdults = static_cast<qint16>(static_cast<QSpinBox *>(gdRooms->cellWidget(row, ColAdults))->value());
        if (!gdRooms->isColumnHidden(ColChild1))
            room.Child1 = static_cast<qint16>(static_cast<QSpinBox *>(gdRooms->cellWidget(row, ColChild1))->value());
        if (!gdRooms->isColumnHidden(ColChild2))
            room.Child2 = static_cast<qint16>(static_cast<QSpinBox *>(gdRooms->cellWidget(row, ColChild2))->value());
        request.rooms.push_back(room);
    }

    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const RateData rates = RateData::load(session.db());
    std::optional<NewBookingResult> result;
    try {
        result = BookingWriter(session.db(), rates, session.setup(), session.getUser()).save(request, &session.calendar());
    } catch (...) {
        QGuiApplication::restoreOverrideCursor();
        throw;
    }
    QGuiApplication::restoreOverrideCursor();
    if (!result) {
        if (request.BBClientID == 0 && !clientSearch->hasName())
            clientSearch->NameFocus();
        return;
    }
    m_bookingId = result->BBBookingID;
    m_firstRoomId = result->firstRoomId;
    accept();
}

void ConfirmBooking::initialise(MainWindow &frmMain, const std::vector<qint32> &roomIds, QDate arrival, int nights)
{
    ConfirmBooking dialog(frmMain, roomIds, arrival, nights, &frmMain);
    if (dialog.exec() != QDialog::Accepted)
        return;
    // The desk's own close box clears the room selection and hides the list.
    if (auto *closeBox = frmMain.findChild<QPushButton *>(QStringLiteral("cmdCloseBox")))
        closeBox->click();
    frmMain.drawCalendar();
    ViewBooking::initialise(frmMain, dialog.BBBookingID(), dialog.firstRoomId());
}

} // namespace fenlark
