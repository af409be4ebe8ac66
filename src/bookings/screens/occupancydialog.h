#pragma once

#include "bookings/occupancy.h"

#include <QDialog>

class QChartView;
class QDateEdit;
class QLabel;
class QLineSeries;
class QListWidget;
class QProgressBar;
class QSpinBox;

namespace fenlark {

class RateData;
class Session;

// dlgOccupancy: how full the ticked rooms were between two dates, by beds or by
// rooms: the figures, the percentage with its gauge, and beside them a chart of
// the occupancy of each night.
class OccupancyDialog : public QDialog {
    Q_OBJECT
public:
    OccupancyDialog(Session &session, const RateData &rates, QWidget *parent = nullptr);

    // The figures shown last; empty before a calculation.
    const OccupancyFigures &figures() const { return m_figures; }
    void calculate(OccupancyMode mode);

    QListWidget *lstRooms = nullptr;
    QDateEdit *dpStart = nullptr;
    QDateEdit *dpEnd = nullptr;
    QSpinBox *udBeds = nullptr;
    QLabel *lblAvailable = nullptr;
    QLabel *lblSold = nullptr;
    QLabel *lblPercent = nullptr;
    QProgressBar *pbGauge = nullptr;
    QChartView *chartView = nullptr;
    QLineSeries *series = nullptr;

private:
    void datesChanged();
    void daysChanged(int days);

    Session &m_session;
    const RateData &m_rates;
    OccupancyFigures m_figures;
    bool m_updating = false;
};

} // namespace fenlark
