#pragma once

#include "shell/security.h"

#include <QDialog>

#include <optional>

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;

namespace fenlark {

class Database;
class Session;

// dlgLogin: binds a database without a property to a BBID and password. The
// password is only kept here; the first server contact judges it.
class LoginDialog : public QDialog {
    Q_OBJECT

public:
    LoginDialog(Database &db, int dbNumber, QWidget *parent = nullptr);

    // Shows the dialog; true when the property was bound.
    static bool login(Database &db, int dbNumber, QWidget *parent = nullptr);
    bool loginOK() const { return m_ok; }

    QLineEdit *bbidEdit() const { return m_bbid; }
    QLineEdit *passwordEdit() const { return m_password; }

public Q_SLOTS:
    void accept() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();

    Database &m_db;
    int m_dbNumber;
    bool m_ok = false;
    QLabel *m_database;
    QLabel *m_bbidLabel;
    QLabel *m_passwordLabel;
    QLineEdit *m_bbid;
    QLineEdit *m_password;
    QDialogButtonBox *m_buttons;
};

// dlgPassword: picks the person at the desk from the downloaded users.
class PasswordDialog : public QDialog {
    Q_OBJECT

public:
    explicit PasswordDialog(Database &db, QWidget *parent = nullptr);

    // Whether a log-on is needed at all (users are downloaded).
    bool isRequired() const;
    std::optional<UserStruct> getUser() const { return m_user; }

    QComboBox *userList() const { return m_users; }
    QLineEdit *passwordEdit() const { return m_password; }

public Q_SLOTS:
    void accept() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();

    Database &m_db;
    std::optional<UserStruct> m_user;
    QLabel *m_userLabel;
    QLabel *m_passwordLabel;
    QComboBox *m_users;
    QLineEdit *m_password;
    QDialogButtonBox *m_buttons;
};

// The user log-on of start-up and Change User: false only when a dialog was
// cancelled. With no users downloaded the desk runs as "admin" with all rights.
bool enterPassword(Session &session, QWidget *parent = nullptr);

// Asks the reason of an audited action in an input box.
class InputReasonPrompt : public ReasonPrompt {
public:
    std::optional<QString> askReason(const QString &prompt, const QString &title) override;
};

} // namespace fenlark
