#include "bookings/screens/viewrates.h"

#include "bookings/ratesgridmodel.h"
#include "rates/ratelists.h"
#include "shell/messages.h"
#include "shell/money.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/screens/waitcursor.h"
#include "shell/session.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QTableView>
#include <QVBoxLayout>

namespace fenlark {

ViewRates::ViewRates(Session &session, const RateData &rates, qint32 bbBookingId, QWidget *parent)
    : QDialog(parent), m_session(session), m_rates(rates), m_bookingId(bbBookingId)
{
    setObjectName(QStringLiteral("dlgRates"));
    setWindowTitle(getString(6570, QStringLiteral("Daily Rates")));
    cboRateSheet = new QComboBox(this);
    cboRateSheet->setObjectName(QStringLiteral("cboRateSheet"));
    txtExchangeRate = new QLineEdit(this);
    txtExchangeRate->setObjectName(QStringLiteral("txtExchangeRate"));
    txtExchangeRate->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9.,]*")), txtExchangeRate));
    gdRates = new QTableView(this);
    gdRates->setObjectName(QStringLiteral("gdRates"));
    gdRates->verticalHeader()->hide();
    gdRates->setSelectionMode(QAbstractItemView::SingleSelection);
    gdRates->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed
                             | QAbstractItemView::AnyKeyPressed);
    lblTotal = new QLabel(this);
    lblTotal->setObjectName(QStringLiteral("lblTotal"));

    auto *form = new QFormLayout;
    form->addRow(getString(6563, QStringLiteral("Rate sheet:")), cboRateSheet);
    form->addRow(getString(6574, QStringLiteral("Exchange rate:")), txtExchangeRate);
    auto *refresh = makeDialogButton(this, QStringLiteral("cmdRefresh"), getString(6575, QStringLiteral("Refresh Rates")));
    auto *copy = makeDialogButton(this, QStringLiteral("cmdCopyRight"), getString(6576, QStringLiteral("Copy Rates Forward")));
    auto *ok = makeDialogButton(this, QStringLiteral("cmdOK"), getString(5849, QStringLiteral("OK")));
    auto *cancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(5850, QStringLiteral("Cancel")));
    auto *top = new QHBoxLayout;
    top->addLayout(form);
    top->addStretch(1);
    top->addWidget(refresh);
    top->addWidget(copy);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(getString(6583, QStringLiteral("Total:")), this));
    bottom->addWidget(lblTotal);
    bottom->addStretch(1);
    bottom->addWidget(ok);
    bottom->addWidget(cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(gdRates, 1);
    layout->addLayout(bottom);
    resize(900, 380);

    connect(cboRateSheet, &QComboBox::currentIndexChanged, this, guarded(this, &ViewRates::sheetChanged));
    connect(refresh, &QPushButton::clicked, this, guarded(this, &ViewRates::cmdRefresh));
    connect(copy, &QPushButton::clicked, this, guarded(this, &ViewRates::cmdCopyRight));
    connect(ok, &QPushButton::clicked, this, guarded(this, &ViewRates::cmdOK));
    connect(cancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

ViewRates::~ViewRates()
{
    // The view reads the model, and the model the rates: both go before the rates.
    gdRates->setModel(nullptr);
    delete m_model;
}

bool ViewRates::initialise()
{
    m_view = BookingRates::load(m_session.db(), m_bookingId);
    if (!m_view) {
        messages::show(Refusal(5827, QStringLiteral("Error: Could not fetch booking details. Call veldmoor (021 555 0108)"), 5828,
                               QStringLiteral("Could not find booking details")));
        return false;
    }
    m_loading = true;
    for (const RateSheetChoice &sheet : rateSheetList(m_session.db()))
        cboRateSheet->addItem(sheet.name, sheet.BBRateSheetID);
    if (cboRateSheet->findData(m_view->rateSheet()) < 0)
        cboRateSheet->addItem(QString::number(m_view->rateSheet()), m_view->rateSheet());
    cboRateSheet->setCurrentIndex(cboRateSheet->findData(m_view->rateSheet()));
    m_loadedExchangeRate = formatAmount(m_view->exchangeRate());
    txtExchangeRate->setText(m_loadedExchangeRate);
    m_loading = false;

    m_model = new RatesGridModel(*m_view);
    m_model->onRefused = [](const Refusal &refusal) { messages::show(refusal); };
    gdRates->setModel(m_model);
    gdRates->setColumnHidden(RatesGridModel::RoomIdColumn, true);
    gdRates->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    gdRates->verticalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(m_model, &RatesGridModel::amountEdited, this, guarded(this, &ViewRates::showTotal));
    showTotal();
    return true;
}

void ViewRates::showTotal()
{
    lblTotal->setText(formatAmount(m_view->total()));
}

void ViewRates::sheetChanged()
{
    if (m_loading)
        return;
    m_view->setRateSheet(cboRateSheet->currentData().toInt());
    if (!messages::ask(6577, QStringLiteral("Would you like to recalculate rates based on the new rate sheet?"), 6578,
                       QStringLiteral("Recalculate rates?")))
        return;
    m_view->recalculate(m_rates);
    m_model->ratesChanged();
    showTotal();
}

void ViewRates::cmdRefresh()
{
    if (!messages::ask(6579, QStringLiteral("Are you sure you want to refresh the rates?"), 6580, QStringLiteral("Refresh rates?")))
        return;
    m_view->recalculate(m_rates);
    m_model->ratesChanged();
    showTotal();
}

void ViewRates::cmdCopyRight()
{
    const QModelIndex current = gdRates->currentIndex();
    const int night = current.isValid() ? m_model->nightOf(current.column()) : -1;
    if (night < 0) {
        messages::inform(6581, QStringLiteral("Click on a night's rate first: it is copied to the nights after it."), 6576,
                         QStringLiteral("Copy Rates Forward"));
        return;
    }
    m_view->copyForward(current.row(), night);
    m_model->ratesChanged();
    showTotal();
}

void ViewRates::cmdOK()
{
    if (txtExchangeRate->text() != m_loadedExchangeRate) {
        const Result<double> rate = parseRate(txtExchangeRate->text());
        if (!rate) {
            messages::show(rate.refusal());
            txtExchangeRate->setFocus();
            return;
        }
        m_view->setExchangeRate(*rate);
    }
    Result<Changes> saved = [&] {
        WaitCursor wait;
        return m_view->save(m_session.db(), m_session.setup(), m_session.getUser());
    }();
    if (!saved) {
        messages::show(saved.refusal());
        return;
    }
    m_session.publish(*saved);
    m_saved = true;
    accept();
}

} // namespace fenlark
