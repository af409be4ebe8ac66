#include "synch/screens/dlgupgrade.h"

#include "shell/config.h"
#include "shell/refusal.h"
#include "shell/strings.h"
#include "synch/httpfetch.h"
#include "synch/upgrade.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <optional>

namespace fenlark {

namespace {

// The hourglass for the length of one step, put back however the step ends.
class BusyCursor {
public:
    BusyCursor() { QApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyCursor() { QApplication::restoreOverrideCursor(); }
    BusyCursor(const BusyCursor &) = delete;
    BusyCursor &operator=(const BusyCursor &) = delete;
};

} // namespace

DlgUpgrade::DlgUpgrade(QWidget *parent)
    : QDialog(parent)
    , m_lblNarrative(new QLabel(this))
    , m_lblProgress(new QLabel(this))
    , m_txtInstructions(new QPlainTextEdit(this))
    , m_cmdUpgrade(new QPushButton(this))
    , m_cmdExit(new QPushButton(this))
{
    setObjectName(QStringLiteral("dlgUpgrade"));
    setWindowTitle(getString(7327, QStringLiteral("Software Upgrade")));
    m_lblNarrative->setObjectName(QStringLiteral("lblUpgradeInstructionsNarr"));
    m_lblNarrative->setText(getString(7330, QStringLiteral("Press Upgrade to ask the veldmoor server for a new version of Fenlark. "
                                                           "Your databases are backed up first; the new version is then downloaded "
                                                           "for you to install with the system's package manager.")));
    m_lblNarrative->setWordWrap(true);
    m_lblNarrative->setMinimumWidth(420);
    m_lblProgress->setObjectName(QStringLiteral("lblProgress"));
    m_txtInstructions->setObjectName(QStringLiteral("txtInstructions"));
    m_txtInstructions->setReadOnly(true);
    m_txtInstructions->setVisible(false);
    m_cmdUpgrade->setObjectName(QStringLiteral("cmdUpgrade"));
    m_cmdUpgrade->setText(getString(7331, QStringLiteral("&Upgrade")));
    m_cmdExit->setObjectName(QStringLiteral("cmdExit"));
    m_cmdExit->setText(getString(6023, QStringLiteral("Exit")));

    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cmdUpgrade);
    buttons->addWidget(m_cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_lblNarrative);
    layout->addWidget(m_lblProgress);
    layout->addWidget(m_txtInstructions, 1);
    layout->addLayout(buttons);
    connect(m_cmdUpgrade, &QPushButton::clicked, this, &DlgUpgrade::onUpgradeClicked);
    connect(m_cmdExit, &QPushButton::clicked, this, &QDialog::reject);
}

QString DlgUpgrade::instructions() const
{
    return m_txtInstructions->toPlainText();
}

void DlgUpgrade::progress(const QString &text)
{
    m_lblProgress->setText(text);
    m_lblProgress->repaint();
}

void DlgUpgrade::onUpgradeClicked()
{
    HttpFetch fetch(HttpTransport::DefaultTimeoutMs, config::proxy());
    SoftwareUpgrade upgrade(fetch, firstDatabaseLogin());
    upgrade.setProgress([this](const QString &text) { progress(text); });

    std::optional<BusyCursor> busy(std::in_place);
    const Outcome allowed = upgrade.check();
    if (!allowed) {
        busy.reset();
        messages::show(allowed.refusal());
        return;
    }
    const Result<UpgradeOffer> offer = upgrade.fetchOffer();
    if (!offer) {
        busy.reset();
        messages::show(offer.refusal());
        return;
    }
    if (!offer->newer) {
        busy.reset();
        messages::inform(7326, QStringLiteral("This is Fenlark %1 and the server offers %2: there is nothing newer to install."), 7327,
                         QStringLiteral("Software Upgrade"), {QStringLiteral(FENLARK_VERSION), offer->version});
        return;
    }
    const Result<UpgradeDownload> ready = upgrade.upgradeSoftware(*offer);
    busy.reset();
    if (!ready) {
        messages::show(ready.refusal());
        messages::show(Refusal(7307, QStringLiteral("The upgrade did not complete. Please try again but if the problem persists,"), 7306,
                               QStringLiteral("Failure in upgrade"))
                           .thenText(QStringLiteral("\r\n"))
                           .then(7308, QStringLiteral("please call veldmoor on 021 555 0100.")));
        reject();
        return;
    }
    progress(QString());
    m_txtInstructions->setPlainText(installInstructions(*ready));
    m_txtInstructions->setVisible(true);
    m_cmdUpgrade->setEnabled(false);
    resize(width(), std::max(height(), 380));
}

} // namespace fenlark
