#include "bookings/screens/confirmbooking.h"

#include "rates/ratedata.h"
#include "rates/ratescalculator.h"
#include "rates/roomrates.h"
#include "shell/screens/guard.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QVBoxLayout>

namespace fenlark {

namespace {

QSpinBox *countBox(int value)
{
    auto *box = new QSpinBox;
    box->setRange(0, 99);
    box->setValue(value);
    return box;
}

} // namespace

ConfirmBooking::ConfirmBooking(Session &session, const RateData &rates, const std::vector<qint32> &roomIds, QDate arrival,
                               int nights, QWidget *parent)
    : QDialog(parent), m_session(session), m_rates(rates), m_arrival(arrival), m_departure(arrival.addDays(nights))
{
    setObjectName(QStringLiteral("dlgBookConfirm"));
    setWindowTitle(getString(5840, QStringLiteral("Confirm Booking")));
    auto *layout = new QVBoxLayout(this);

    const QString format = QStringLiteral("ddd dd MMM yyyy");
    auto *outArriving = new QLabel(getString(5841, QStringLiteral("Arriving: ")) + deskLocale().toString(arrival, format));
    outArriving->setObjectName(QStringLiteral("outArriving"));
    auto *outLeaving = new QLabel(getString(5842, QStringLiteral("Leaving: ")) + deskLocale().toString(m_departure, format));
    outLeaving->setObjectName(QStringLiteral("outLeaving"));
    layout->addWidget(outArriving);
    layout->addWidget(outLeaving);

    clientSearch = new ucClientSearch(this);
    clientSearch->initialise(this, session.db());
    layout->addWidget(clientSearch);

    ChildPolicy policy;
    policy.fetchChildPolicy(session.db());
    gdRooms = new QTableWidget(int(roomIds.size()), ColumnCount, this);
    gdRooms->setObjectName(QStringLiteral("gdRooms"));
    const QString children = getString(5843, QStringLiteral("Children"));
    gdRooms->setHorizontalHeaderLabels({getString(5844, QStringLiteral("Room ID")), getString(5845, QStringLiteral("Room")),
                                        getString(5846, QStringLiteral("Applied Rate")),
                                        getString(5847, QStringLiteral("Adults")), children + QLatin1Char('\n') + policy.label1,
                                        children + QLatin1Char('\n') + policy.label2,
                                        getString(5987, QStringLiteral("Stay total"))});
    gdRooms->setColumnHidden(ColRoomId, true);
    gdRooms->setColumnWidth(ColRoom, 100);
    gdRooms->setColumnWidth(ColRate, 150);
    gdRooms->setColumnWidth(ColAdults, 60);
    gdRooms->setColumnWidth(ColChild1, 60);
    gdRooms->setColumnWidth(ColChild2, 60);
    gdRooms->setColumnWidth(ColStayTotal, 90);
    gdRooms->setColumnHidden(ColChild1, policy.ChildAge1 == 0);
    gdRooms->setColumnHidden(ColChild2, policy.ChildAge2 == 0);
    gdRooms->verticalHeader()->hide();
    for (int row = 0; row < int(roomIds.size()); ++row)
        addRoomRow(row, roomIds[size_t(row)]);
    layout->addWidget(gdRooms);

    lblTotal = new QLabel(this);
    lblTotal->setObjectName(QStringLiteral("lblTotal"));
    lblTotal->setAlignment(Qt::AlignRight);
    QFont bold = lblTotal->font();
    bold.setBold(true);
    lblTotal->setFont(bold);
    layout->addWidget(lblTotal);

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
    connect(buttons, &QDialogButtonBox::accepted, this, guarded(this, &ConfirmBooking::cmdOK));
    connect(buttons, &QDialogButtonBox::rejected, this, guarded(this, &QDialog::reject));
    layout->addWidget(buttons);
    // The client's rate sheet prices the stay: a change of client changes the price.
    connect(clientSearch, &ucClientSearch::clientChanged, this, guarded(this, &ConfirmBooking::showQuote));
    showQuote();
    resize(640, 580);
}

void ConfirmBooking::addRoomRow(int row, qint32 roomId)
{
    gdRooms->setItem(row, ColRoomId, new QTableWidgetItem(QString::number(roomId)));
    auto *name = new QTableWidgetItem(m_session.property().RoomName(roomId));
    name->setFlags(name->flags() & ~Qt::ItemIsEditable);
    gdRooms->setItem(row, ColRoom, name);
    auto *total = new QTableWidgetItem;
    total->setFlags(total->flags() & ~Qt::ItemIsEditable);
    total->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    gdRooms->setItem(row, ColStayTotal, total);

    auto *rate = new QComboBox;
    rate->setObjectName(QStringLiteral("ratecode%1").arg(row));
    rate->addItem(getString(5851, QStringLiteral("No rate selected")), 0);
    for (const OfferedRate &offered : offeredRates(m_rates, m_arrival, m_departure, roomId))
        rate->addItem(offered.name, offered.BBRateID);
    rate->setCurrentIndex(rate->count() > 1 ? 1 : 0);
    gdRooms->setCellWidget(row, ColRate, rate);
    connect(rate, &QComboBox::currentIndexChanged, this, guarded(this, &ConfirmBooking::showQuote));
    const qint16 adults = defaultAdults(m_session.getPreference(QStringLiteral("DEFUSER")));
    for (const auto &[column, value] : {std::pair{int(ColAdults), int(adults)}, std::pair{int(ColChild1), 0},
                                        std::pair{int(ColChild2), 0}}) {
        QSpinBox *box = countBox(value);
        gdRooms->setCellWidget(row, column, box);
        connect(box, &QSpinBox::valueChanged, this, guarded(this, &ConfirmBooking::showQuote));
    }
}

NewBookingRequest ConfirmBooking::request() const
{
    NewBookingRequest request;
    request.FromDate = m_arrival;
    request.ToDate = m_departure;
    request.BBClientID = clientSearch->MadeBy();
    request.firstName = clientSearch->FirstName();
    request.surname = clientSearch->Surname();
    request.company = clientSearch->Company();
    const auto count = [this](int row, int column) {
        return gdRooms->isColumnHidden(column) ? qint16(0)
                                               : static_cast<qint16>(static_cast<QSpinBox *>(gdRooms->cellWidget(row, column))->value());
    };
    for (int row = 0; row < gdRooms->rowCount(); ++row) {
        NewBookingRoom room;
        room.BBRoomID = gdRooms->item(row, ColRoomId)->text().toInt();
        room.BBRateID = static_cast<QComboBox *>(gdRooms->cellWidget(row, ColRate))->currentData().toInt();
        room.NoAdults = count(row, ColAdults);
        room.Child1 = count(row, ColChild1);
        room.Child2 = count(row, ColChild2);
        request.rooms.push_back(room);
    }
    return request;
}

void ConfirmBooking::showQuote()
{
    // Rows are still being added while the first ones are wired up.
    for (int row = 0; row < gdRooms->rowCount(); ++row)
        if (!gdRooms->item(row, ColRoomId) || !gdRooms->cellWidget(row, ColChild2))
            return;
    const NewBookingQuote quote = quoteNewBooking(m_session.db(), m_rates, request());
    for (int row = 0; row < gdRooms->rowCount(); ++row)
        gdRooms->item(row, ColStayTotal)->setText(formatAmount(quote.roomTotals[size_t(row)]));
    lblTotal->setText(getString(5988, QStringLiteral("Booking total: %1")).arg(formatAmount(quote.total)));
}

void ConfirmBooking::cmdOK()
{
    const NewBookingRequest wanted = request();
    Result<NewBookingResult> saved = BookingWriter(m_session.db(), m_rates, m_session.setup(), m_session.getUser())
                                         .save(wanted, m_questions);
    if (!saved) {
        messages::show(saved.refusal());
        if (wanted.BBClientID == 0 && !clientSearch->hasName())
            clientSearch->NameFocus();
        return;
    }
    m_result = *saved;
    m_session.publish(m_result.changes);
    if (m_result.total == 0)
        tellRatesNotEntered();
    accept();
}

} // namespace fenlark
