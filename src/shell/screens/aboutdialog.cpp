#include "shell/screens/aboutdialog.h"

#include "shell/screens/guard.h"
#include "shell/strings.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

AboutDialog::AboutDialog(bool withOk, QWidget *parent)
    : QDialog(parent)
    , m_title(new QLabel(this))
    , m_version(new QLabel(this))
    , m_text(new QLabel(this))
    , m_ok(new QPushButton(this))
{
    setObjectName(QStringLiteral("frmAbout"));
    m_ok->setObjectName(QStringLiteral("cmdOK"));
    QFont big = m_title->font();
    big.setPointSize(big.pointSize() * 2);
    big.setBold(true);
    m_title->setFont(big);
    m_title->setAlignment(Qt::AlignCenter);
    m_version->setAlignment(Qt::AlignCenter);
    m_text->setAlignment(Qt::AlignCenter);
    m_text->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(32, 24, 32, 24);
    layout->addWidget(m_title);
    layout->addWidget(m_version);
    layout->addWidget(m_text);
    layout->addWidget(m_ok, 0, Qt::AlignCenter);
    m_ok->setVisible(withOk);
    connect(m_ok, &QPushButton::clicked, this, guarded(this, &QDialog::accept));
    if (!withOk)
        setWindowFlags(Qt::SplashScreen);
    retranslate();
    setMinimumWidth(380);
}

void AboutDialog::retranslate()
{
    setWindowTitle(getString(5117, QStringLiteral("About veldmoor")));
    m_title->setText(getString(1307, QStringLiteral("veldmoor")));
    m_version->setText(getString(5118, QStringLiteral("Version %1")).arg(QStringLiteral(FENLARK_VERSION)));
    m_text->setText(getString(5119, QStringLiteral("The booking diary of your property.")));
    m_ok->setText(getString(5116, QStringLiteral("OK")));
}

void AboutDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

} // namespace fenlark
