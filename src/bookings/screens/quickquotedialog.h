#pragma once

#include "bookings/quickquote.h"

#include <QDate>
#include <QDialog>

#include <optional>

class QComboBox;
class QDateEdit;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace fenlark {

class RateData;
class Session;

// dlgQuickQuote: for a stay and a head count, the room types with free rooms
// and the price of each of their rates, and a text to paste into a mail.
// Nothing is written.
class QuickQuoteDialog : public QDialog {
    Q_OBJECT
public:
    // The stay starts as the new-booking panel has it.
    QuickQuoteDialog(Session &session, const RateData &rates, QDate arrival, int nights, QWidget *parent = nullptr);

    // The quote shown; nothing before the first calculation or after a refused one.
    const std::optional<QuickQuote> &quote() const { return m_quote; }

public Q_SLOTS:
    // Prices the stay as the fields now have it.
    void cmdRefresh();
    // Puts the quote on the clipboard.
    void cmdCopy();

public:
    QDateEdit *dpFrom = nullptr;
    QDateEdit *dpTo = nullptr;
    QLineEdit *txtnoadults = nullptr;
    QLineEdit *txtchild1 = nullptr;
    QLineEdit *txtChild2 = nullptr;
    QComboBox *cboRateSheet = nullptr;
    QPlainTextEdit *txtRates = nullptr;
    QPushButton *cmdCopyButton = nullptr;

private:
    Session &m_session;
    const RateData &m_rates;
    std::optional<QuickQuote> m_quote;
};

} // namespace fenlark
