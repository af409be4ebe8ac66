#pragma once

#include "bookings/bookingrates.h"

#include <QDialog>

#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

namespace fenlark {

class RateData;
class RatesGridModel;
class Session;

// dlgRates: a booking's rooms by nights, each night's rate typed over, copied
// forward or priced again from a rate sheet; the sheet and the exchange rate
// are changed here and nowhere else. OK saves every night; Cancel writes nothing.
class ViewRates : public QDialog {
    Q_OBJECT
public:
    ViewRates(Session &session, const RateData &rates, qint32 bbBookingId, QWidget *parent = nullptr);
    ~ViewRates() override;

    // Reads the booking's rates; false (after saying why) when it is missing.
    bool initialise();
    // True once the rates were saved.
    bool ok() const { return m_saved; }
    const BookingRates &rates() const { return *m_view; }

public Q_SLOTS:
    void cmdRefresh();
    void cmdCopyRight();
    void cmdOK();

public:
    QComboBox *cboRateSheet = nullptr;
    QLineEdit *txtExchangeRate = nullptr;
    QTableView *gdRates = nullptr;
    QLabel *lblTotal = nullptr;
    RatesGridModel *model() const { return m_model; }

private:
    void sheetChanged();
    void showTotal();

    Session &m_session;
    const RateData &m_rates;
    qint32 m_bookingId;
    std::optional<BookingRates> m_view;
    RatesGridModel *m_model = nullptr;
    QString m_loadedExchangeRate;
    bool m_loading = false;
    bool m_saved = false;
};

} // namespace fenlark
