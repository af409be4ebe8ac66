#include "shell/screens/logindialogs.h"

#include "shell/databasefiles.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/session.h"
#include "shell/setuprecords.h"
#include "shell/strings.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

namespace {

void translateButtons(QDialogButtonBox *buttons)
{
    if (QPushButton *ok = buttons->button(QDialogButtonBox::Ok))
        ok->setText(getString(5116, QStringLiteral("OK")));
    if (QPushButton *cancel = buttons->button(QDialogButtonBox::Cancel))
        cancel->setText(getString(5120, QStringLiteral("Cancel")));
}

} // namespace

LoginDialog::LoginDialog(Database &db, int dbNumber, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_dbNumber(dbNumber)
    , m_database(new QLabel(this))
    , m_bbidLabel(new QLabel(this))
    , m_passwordLabel(new QLabel(this))
    , m_bbid(new QLineEdit(this))
    , m_password(new QLineEdit(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(QStringLiteral("dlgLogin"));
    m_database->setObjectName(QStringLiteral("lblDatabase"));
    m_bbid->setObjectName(QStringLiteral("txtBBID"));
    m_password->setObjectName(QStringLiteral("txtPassword"));
    m_password->setEchoMode(QLineEdit::Password);
    m_bbid->setMaxLength(5);

    BBSetup setup;
    if (setup.fetch(db)) {
        m_bbid->setText(setup.BBID > 0 ? QString::number(setup.BBID) : QString());
        m_password->setText(setup.Password);
    }

    auto *form = new QFormLayout;
    form->addRow(m_bbidLabel, m_bbid);
    form->addRow(m_passwordLabel, m_password);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_database);
    layout->addLayout(form);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, guarded(this, &LoginDialog::accept));
    connect(m_buttons, &QDialogButtonBox::rejected, this, guarded(this, &QDialog::reject));
    retranslate();
    setMinimumWidth(380);
}

void LoginDialog::retranslate()
{
    setWindowTitle(getString(5121, QStringLiteral("Log on to veldmoor")));
    m_database->setText(m_dbNumber > 0 ? getDBName(m_dbNumber) : getString(5122, QStringLiteral("Default database")));
    m_bbidLabel->setText(getString(5123, QStringLiteral("BBID:")));
    m_passwordLabel->setText(getString(5124, QStringLiteral("Password:")));
    translateButtons(m_buttons);
}

void LoginDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void LoginDialog::accept()
{
    PropertyLogin::Problem problem = PropertyLogin::NoProblem;
    if (!PropertyLogin::validate(m_bbid->text(), m_password->text(), &problem)) {
        if (problem == PropertyLogin::PasswordEmpty)
            m_password->setFocus();
        else
            m_bbid->setFocus();
        return;
    }
    PropertyLogin::bindProperty(m_db, m_bbid->text().trimmed().toInt(), m_password->text());
    m_ok = true;
    QDialog::accept();
}

bool LoginDialog::login(Database &db, int dbNumber, QWidget *parent)
{
    LoginDialog dialog(db, dbNumber, parent);
    dialog.exec();
    return dialog.loginOK();
}

PasswordDialog::PasswordDialog(Database &db, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_userLabel(new QLabel(this))
    , m_passwordLabel(new QLabel(this))
    , m_users(new QComboBox(this))
    , m_password(new QLineEdit(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this))
{
    setObjectName(QStringLiteral("dlgPassword"));
    m_users->setObjectName(QStringLiteral("cboUserName"));
    m_password->setObjectName(QStringLiteral("txtPassword"));
    m_password->setEchoMode(QLineEdit::Password);
    for (const auto &[name, id] : UserLogin::userList(db))
        m_users->addItem(name, id);

    auto *form = new QFormLayout;
    form->addRow(m_userLabel, m_users);
    form->addRow(m_passwordLabel, m_password);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, guarded(this, &PasswordDialog::accept));
    connect(m_buttons, &QDialogButtonBox::rejected, this, guarded(this, &QDialog::reject));
    retranslate();
    setMinimumWidth(340);
    m_password->setFocus();
}

bool PasswordDialog::isRequired() const
{
    return m_users->count() > 0;
}

void PasswordDialog::retranslate()
{
    setWindowTitle(getString(5125, QStringLiteral("Who is at the desk?")));
    m_userLabel->setText(getString(5126, QStringLiteral("User:")));
    m_passwordLabel->setText(getString(5124, QStringLiteral("Password:")));
    translateButtons(m_buttons);
}

void PasswordDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void PasswordDialog::accept()
{
    if (m_users->currentIndex() < 0)
        return;
    m_user = UserLogin::authenticate(m_db, m_users->currentData().toInt(), m_password->text());
    if (!m_user) {
        messages::critical(5127, QStringLiteral("Incorrect password for this user."), 5128, QStringLiteral("Incorrect Password"));
        m_password->selectAll();
        m_password->setFocus();
        return;
    }
    QDialog::accept();
}

bool enterPassword(Session &session, QWidget *parent)
{
    PasswordDialog dialog(session.db(), parent);
    if (!dialog.isRequired()) {
        session.setUser(UserStruct::autoAdmin());
        return true;
    }
    if (dialog.exec() != QDialog::Accepted || !dialog.getUser())
        return false;
    session.setUser(*dialog.getUser());
    return true;
}

std::optional<QString> InputReasonPrompt::askReason(const QString &prompt, const QString &title)
{
    bool ok = false;
    const QString text = QInputDialog::getText(QApplication::activeWindow(), title, prompt, QLineEdit::Normal, QString(), &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

} // namespace fenlark
