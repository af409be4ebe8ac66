#include "bookings/screens/quickquotedialog.h"

#include "bookings/newbooking.h"
#include "rates/ratelists.h"
#include "rates/ratescalculator.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QFontDatabase>
#include <QFormLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace fenlark {

namespace {

QLineEdit *countBox(QWidget *parent, const QString &name, const QString &text)
{
    auto *box = new QLineEdit(text, parent);
    box->setObjectName(name);
    box->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,3}")), box));
    return box;
}

} // namespace

QuickQuoteDialog::QuickQuoteDialog(Session &session, const RateData &rates, QDate arrival, int nights, QWidget *parent)
    : QDialog(parent), m_session(session), m_rates(rates)
{
    setObjectName(QStringLiteral("dlgQuickQuote"));
    setWindowTitle(getString(6561, QStringLiteral("Quick Quote")));
    dpFrom = new QDateEdit(arrival, this);
    dpFrom->setObjectName(QStringLiteral("dpFrom"));
    dpTo = new QDateEdit(arrival.addDays(std::max(1, nights)), this);
    dpTo->setObjectName(QStringLiteral("dpTo"));
    for (QDateEdit *edit : {dpFrom, dpTo}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("ddd dd/MM/yyyy"));
    }
    txtnoadults = countBox(this, QStringLiteral("txtnoadults"),
                           QString::number(defaultAdults(session.getPreference(QStringLiteral("DEFUSER")))));
    txtchild1 = countBox(this, QStringLiteral("txtchild1"), QStringLiteral("0"));
    txtChild2 = countBox(this, QStringLiteral("txtChild2"), QStringLiteral("0"));
    cboRateSheet = new QComboBox(this);
    cboRateSheet->setObjectName(QStringLiteral("cboRateSheet"));
    for (const RateSheetChoice &sheet : rateSheetList(session.db()))
        cboRateSheet->addItem(sheet.name, sheet.BBRateSheetID);
    txtRates = new QPlainTextEdit(this);
    txtRates->setObjectName(QStringLiteral("txtRates"));
    txtRates->setReadOnly(true);
    txtRates->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    ChildPolicy policy;
    policy.fetchChildPolicy(session.db());
    auto *form = new QFormLayout;
    form->addRow(getString(5152, QStringLiteral("Arriving:")), dpFrom);
    form->addRow(getString(5153, QStringLiteral("Leaving:")), dpTo);
    form->addRow(getString(5875, QStringLiteral("Adults")), txtnoadults);
    const QString children = getString(5876, QStringLiteral("Children"));
    form->addRow(children + QLatin1Char(' ') + policy.label1, txtchild1);
    form->addRow(children + QLatin1Char(' ') + policy.label2, txtChild2);
    form->setRowVisible(txtchild1, policy.ChildAge1 != 0);
    form->setRowVisible(txtChild2, policy.ChildAge2 != 0);
    form->addRow(getString(6563, QStringLiteral("Rate sheet:")), cboRateSheet);

    auto *refresh = makeDialogButton(this, QStringLiteral("cmdRefresh"), getString(6564, QStringLiteral("&Refresh")));
    refresh->setDefault(true);
    cmdCopyButton = makeDialogButton(this, QStringLiteral("cmdCopy"), getString(6565, QStringLiteral("&Copy")));
    auto *exit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5961, QStringLiteral("Exit")));
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(refresh);
    buttons->addWidget(cmdCopyButton);
    buttons->addStretch(1);
    buttons->addWidget(exit);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(txtRates, 1);
    layout->addLayout(buttons);
    resize(560, 600);

    connect(refresh, &QPushButton::clicked, this, guarded(this, &QuickQuoteDialog::cmdRefresh));
    connect(cmdCopyButton, &QPushButton::clicked, this, guarded(this, &QuickQuoteDialog::cmdCopy));
    connect(exit, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    connect(cboRateSheet, &QComboBox::currentIndexChanged, this, guarded(this, &QuickQuoteDialog::cmdRefresh));
    cmdRefresh();
}

void QuickQuoteDialog::cmdRefresh()
{
    QuickQuoteRequest request;
    request.from = dpFrom->date();
    request.to = dpTo->date();
    request.adults = static_cast<qint16>(txtnoadults->text().toInt());
    request.child1 = static_cast<qint16>(txtchild1->text().toInt());
    request.child2 = static_cast<qint16>(txtChild2->text().toInt());
    request.BBRateSheetID = cboRateSheet->currentData().toInt();
    Result<QuickQuote> quote = quickQuote(m_session.db(), m_session.calendar(), m_rates, m_session.property().rooms(), request);
    if (!quote) {
        m_quote.reset();
        txtRates->clear();
        cmdCopyButton->setEnabled(false);
        messages::show(quote.refusal());
        return;
    }
    m_quote = std::move(*quote);
    txtRates->setPlainText(m_quote->text());
    cmdCopyButton->setEnabled(true);
}

void QuickQuoteDialog::cmdCopy()
{
    if (!m_quote)
        return;
    ChildPolicy policy;
    policy.fetchChildPolicy(m_session.db());
    QGuiApplication::clipboard()->setText(m_quote->copyText(policy));
    messages::inform(6566, QStringLiteral("Now paste your quote to another application."), 6567, QStringLiteral("Copy/Paste Quote"));
}

} // namespace fenlark
