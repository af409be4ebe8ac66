#pragma once

#include <QDialog>

class QLineEdit;

namespace fenlark {

// Asks for the access code of the emergency synchronisation, the hidden
// repair that logs every record again and sends the whole database.
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

} // namespace fenlark
