#include "bookings/screens/occupancydialog.h"

#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/screens/waitcursor.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QChart>
#include <QChartView>
#include <QDateEdit>
#include <QDateTimeAxis>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineSeries>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <QValueAxis>

namespace fenlark {

OccupancyDialog::OccupancyDialog(Session &session, const RateData &rates, QWidget *parent)
    : QDialog(parent), m_session(session), m_rates(rates)
{
    setObjectName(QStringLiteral("dlgOccupancy"));
    setWindowTitle(getString(1355, QStringLiteral("Occupancy")));

    lstRooms = new QListWidget(this);
    lstRooms->setObjectName(QStringLiteral("lstRooms"));
    for (const Room &room : session.property().rooms()) {
        auto *item = new QListWidgetItem(room.RoomName, lstRooms);
        item->setData(Qt::UserRole, room.BBRoomID);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(Qt::Checked);
    }
    const QDate today = QDate::currentDate();
    const QDate first(today.year(), today.month(), 1);
    dpStart = new QDateEdit(first, this);
    dpStart->setObjectName(QStringLiteral("dpStart"));
    dpEnd = new QDateEdit(first.addMonths(1).addDays(-1), this);
    dpEnd->setObjectName(QStringLiteral("dpEnd"));
    for (QDateEdit *edit : {dpStart, dpEnd}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("ddd dd/MM/yyyy"));
    }
    udBeds = new QSpinBox(this);
    udBeds->setObjectName(QStringLiteral("udBeds"));
    udBeds->setRange(1, 3660 * 3);
    udBeds->setValue(static_cast<int>(dpStart->date().daysTo(dpEnd->date())) + 1);

    auto *calcBeds = makeDialogButton(this, QStringLiteral("cmdCalc"), getString(6556, QStringLiteral("Calculate")));
    auto *calcRooms = makeDialogButton(this, QStringLiteral("cmdCalc2"), getString(6556, QStringLiteral("Calculate")));
    lblAvailable = new QLabel(this);
    lblAvailable->setObjectName(QStringLiteral("lblAvailable"));
    lblSold = new QLabel(this);
    lblSold->setObjectName(QStringLiteral("lblSold"));
    lblPercent = new QLabel(this);
    lblPercent->setObjectName(QStringLiteral("lblPercent"));
    QFont big = lblPercent->font();
    big.setPointSizeF(big.pointSizeF() * 1.6);
    big.setBold(true);
    lblPercent->setFont(big);
    pbGauge = new QProgressBar(this);
    pbGauge->setObjectName(QStringLiteral("pbGauge"));
    pbGauge->setRange(0, 100);
    pbGauge->setValue(0);

    auto *chart = new QChart;
    chart->setTitle(getString(6559, QStringLiteral("Occupancy by night")));
    chart->legend()->hide();
    series = new QLineSeries(chart);
    chart->addSeries(series);
    auto *nights = new QDateTimeAxis(chart);
    nights->setFormat(QStringLiteral("dd MMM yy"));
    auto *percent = new QValueAxis(chart);
    percent->setRange(0, 100);
    percent->setLabelFormat(QStringLiteral("%d%%"));
    chart->addAxis(nights, Qt::AlignBottom);
    chart->addAxis(percent, Qt::AlignLeft);
    series->attachAxis(nights);
    series->attachAxis(percent);
    chartView = new QChartView(chart, this);
    chartView->setObjectName(QStringLiteral("chartOccupancy"));
    chartView->setRenderHint(QPainter::Antialiasing);
    chartView->setMinimumSize(420, 280);

    auto *controls = new QGridLayout;
    controls->addWidget(new QLabel(getString(5143, QStringLiteral("From:")), this), 0, 0);
    controls->addWidget(dpStart, 0, 1);
    controls->addWidget(new QLabel(getString(5144, QStringLiteral("To:")), this), 1, 0);
    controls->addWidget(dpEnd, 1, 1);
    controls->addWidget(new QLabel(getString(6553, QStringLiteral("Days:")), this), 2, 0);
    controls->addWidget(udBeds, 2, 1);
    controls->addWidget(new QLabel(getString(6554, QStringLiteral("Beds:")), this), 3, 0);
    controls->addWidget(calcBeds, 3, 1);
    controls->addWidget(new QLabel(getString(6555, QStringLiteral("Rooms:")), this), 4, 0);
    controls->addWidget(calcRooms, 4, 1);
    controls->addWidget(new QLabel(getString(6557, QStringLiteral("Available:")), this), 5, 0);
    controls->addWidget(lblAvailable, 5, 1);
    controls->addWidget(new QLabel(getString(6558, QStringLiteral("Sold:")), this), 6, 0);
    controls->addWidget(lblSold, 6, 1);
    controls->addWidget(lblPercent, 7, 0, 1, 2);
    controls->addWidget(pbGauge, 8, 0, 1, 2);
    controls->setRowStretch(9, 1);

    auto *exit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5961, QStringLiteral("Exit")));
    auto *top = new QHBoxLayout;
    auto *rooms = new QVBoxLayout;
    rooms->addWidget(new QLabel(getString(6560, QStringLiteral("Rooms")), this));
    rooms->addWidget(lstRooms, 1);
    top->addLayout(rooms);
    top->addLayout(controls);
    top->addWidget(chartView, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(exit);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top, 1);
    layout->addLayout(buttons);
    resize(1000, 520);

    connect(dpStart, &QDateEdit::dateChanged, this, guarded(this, &OccupancyDialog::datesChanged));
    connect(dpEnd, &QDateEdit::dateChanged, this, guarded(this, &OccupancyDialog::datesChanged));
    connect(udBeds, &QSpinBox::valueChanged, this, guarded(this, &OccupancyDialog::daysChanged));
    connect(calcBeds, &QPushButton::clicked, this, guarded([this] { calculate(OccupancyMode::Beds); }));
    connect(calcRooms, &QPushButton::clicked, this, guarded([this] { calculate(OccupancyMode::Rooms); }));
    connect(exit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
}

void OccupancyDialog::datesChanged()
{
    if (m_updating)
        return;
    const qint64 days = dpStart->date().daysTo(dpEnd->date()) + 1;
    if (days < 1)
        return;
    m_updating = true;
    udBeds->setValue(static_cast<int>(days));
    m_updating = false;
}

void OccupancyDialog::daysChanged(int days)
{
    if (m_updating)
        return;
    m_updating = true;
    dpEnd->setDate(dpStart->date().addDays(days - 1));
    m_updating = false;
}

void OccupancyDialog::calculate(OccupancyMode mode)
{
    OccupancyRequest request{dpStart->date(), dpEnd->date(), {}, mode};
    for (int i = 0; i < lstRooms->count(); ++i)
        if (lstRooms->item(i)->checkState() == Qt::Checked)
            request.rooms.push_back(lstRooms->item(i)->data(Qt::UserRole).toInt());
    Result<OccupancyFigures> figures = [&] {
        WaitCursor wait;
        return occupancy(m_session.db(), m_rates, request);
    }();
    if (!figures) {
        messages::show(figures.refusal());
        return;
    }
    m_figures = std::move(*figures);
    lblAvailable->setText(QString::number(m_figures.available));
    lblSold->setText(QString::number(m_figures.sold));
    lblPercent->setText(m_figures.percentText());
    pbGauge->setValue(m_figures.gauge());

    QList<QPointF> points;
    points.reserve(static_cast<qsizetype>(m_figures.nights.size()));
    double highest = 100;
    for (const NightOccupancy &night : m_figures.nights) {
        const double percent = night.available < 1 ? 0.0 : 100.0 * night.sold / night.available;
        highest = std::max(highest, percent);
        points << QPointF(static_cast<qreal>(night.date.startOfDay().toMSecsSinceEpoch()), percent);
    }
    series->replace(points);
    const auto axes = series->attachedAxes();
    for (QAbstractAxis *axis : axes) {
        if (auto *nights = qobject_cast<QDateTimeAxis *>(axis))
            nights->setRange(request.from.startOfDay(), request.to.startOfDay());
        else
            axis->setRange(0, highest);
    }
}

} // namespace fenlark
