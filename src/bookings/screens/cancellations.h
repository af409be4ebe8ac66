#pragma once

#include "bookings/bookinglistmodels.h"

#include <QDialog>

class QLineEdit;
class QTableView;

namespace fenlark {

class RateData;
class Session;

// dlgCancellations: the cancelled rooms, newest first, filtered by surname; a
// double-click restores one. Whoever opens it runs the double-booking check
// once it closes, as a restore may put a guest in a room sold meanwhile.
class Cancellations : public QDialog {
    Q_OBJECT
public:
    Cancellations(Session &session, const RateData &rates, QWidget *parent = nullptr);

    // Lists the cancelled rooms again, with the surname typed.
    void fill();
    // Asks, then restores the room of that row.
    void restoreRow(int row);

    QLineEdit *txtSearch = nullptr;
    QTableView *gdBookings = nullptr;
    CancellationsModel *model() const { return m_model; }

private:
    Session &m_session;
    const RateData &m_rates;
    CancellationsModel *m_model = nullptr;
};

} // namespace fenlark
