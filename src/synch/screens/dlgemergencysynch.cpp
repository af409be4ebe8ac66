#include "synch/screens/dlgemergencysynch.h"

#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/strings.h"
#include "synch/emergencysynch.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

DlgEmergencySynch::DlgEmergencySynch(QWidget *parent) : QDialog(parent), m_txtCode(new QLineEdit(this))
{
    setObjectName(QStringLiteral("dlgEmergencySynch"));
    setWindowTitle(getString(6024, QStringLiteral("Emergency Synch")));
    m_txtCode->setObjectName(QStringLiteral("txtCode"));
    m_txtCode->setEchoMode(QLineEdit::Password);
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *ok = buttons->addButton(getString(6030, QStringLiteral("OK")), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOK"));
    QPushButton *cancel = buttons->addButton(getString(6031, QStringLiteral("Cancel")), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    connect(ok, &QPushButton::clicked, this, guarded(this, &DlgEmergencySynch::onOk));
    connect(cancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(getString(6029, QStringLiteral("Access code:")), this));
    layout->addWidget(m_txtCode);
    layout->addWidget(buttons);
}

void DlgEmergencySynch::onOk()
{
    if (!emergencyAccessGranted(m_txtCode->text())) {
        messages::critical(6025, QStringLiteral("Incorrect password."), 6026, QStringLiteral("Incorrect password"));
        return;
    }
    m_good = true;
    accept();
}

} // namespace fenlark
