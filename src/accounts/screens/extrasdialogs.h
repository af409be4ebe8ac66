#pragma once

#include "accounts/extras.h"
#include "shell/rowsmodel.h"

#include <QDialog>
#include <QHash>

#include <functional>

class QComboBox;
class QDateEdit;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableView;

namespace fenlark {

class Session;

// dlgExtra: one extra of a room, new or changed, and the account it goes on:
// the booking's (main) account or the room's own.
class ExtraForm : public QDialog {
    Q_OBJECT
public:
    ExtraForm(Session &session, qint32 guestId, qint32 extraId, QWidget *parent = nullptr);
    // Reads the room, its accounts and the extra; false (after saying why) when
    // there is no stock to choose or the extra or room cannot be read.
    bool load();

public Q_SLOTS:
    void cmdSave();

public:
    QComboBox *cboStock = nullptr;
    QDateEdit *dpExtraDate = nullptr;
    QLineEdit *txtQty = nullptr;
    QLineEdit *txtPrice = nullptr;
    QLabel *lblItemPriceHint = nullptr;
    QGroupBox *frmGuestAccount = nullptr;
    QRadioButton *opMainAccount = nullptr;
    QRadioButton *opGuestAccount = nullptr;
    QGroupBox *frmSpecialAccount = nullptr;
    QPushButton *cmdSaveButton = nullptr;
    QPushButton *cmdCancel = nullptr;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showAccounts(const ExtraAccounts &accounts, qint32 extraAccountId);
    QString accountText(const Account &account) const;

    Session &m_session;
    qint32 m_guestId;
    qint32 m_extraId;
    QHash<qint32, double> m_stockPrices;
};

// dlgExtras: the extras of one room, their total, and the commands to add,
// change and delete them.
class Extras : public QDialog {
    Q_OBJECT
public:
    Extras(Session &session, qint32 guestId, QWidget *parent = nullptr);
    static void initialise(Session &session, qint32 guestId, QWidget *parent);
    void fill();

    // Opens the extra form (extra 0 for a new one); true when it saved. Modal
    // unless replaced, as tests do.
    std::function<bool(QWidget *parent, qint32 guestId, qint32 extraId)> extraForm;

public Q_SLOTS:
    void cmdAdd();
    void cmdDelete();
    void openRow(int row);

public:
    QLabel *lblHeading = nullptr;
    QTableView *gdExtras = nullptr;
    QLabel *lblTotal = nullptr;
    QPushButton *cmdAddButton = nullptr;
    QPushButton *cmdDeleteButton = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    Session &m_session;
    qint32 m_guestId;
    RowsModel<ExtraRow> m_model;
};

} // namespace fenlark
