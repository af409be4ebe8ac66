#pragma once

#include <QDialog>

class QLineEdit;

namespace fenlark {

class Database;

// Asks for the access code of the emergency synchronisation.
class DlgEmergencySynch : public QDialog {
    Q_OBJECT

public:
    explicit DlgEmergencySynch(QWidget *parent = nullptr);
    bool goodPassword() const { return m_good; }

private:
    void onOk();

    QLineEdit *m_txtCode;
    bool m_good = false;
};

// The menu entry "Emergency Synch": the access code, a last question, then every
// record is logged for sending again and a manual synchronisation runs. True when
// the calendar should be rebuilt.
bool synchEntireDatabase(Database &db, QWidget *parent);

} // namespace fenlark
