#pragma once

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;

namespace fenlark {

class Session;

// dlgSourceCodeMT: merges a misspelt marketing source into another. Step 1
// picks the source to rename, step 2 the one it becomes; both lists show the
// sources of desk bookings with how many bookings have each.
class SourceCodeMT : public QDialog {
    Q_OBJECT
public:
    explicit SourceCodeMT(Session &session, QWidget *parent = nullptr);

    // Reads the lists again; says so when there is nothing to rename.
    void refill();

public Q_SLOTS:
    void cmdReplace();

public:
    QLabel *lblStep1 = nullptr;
    QLabel *lblStep2 = nullptr;
    QLabel *lblHint = nullptr;
    QListWidget *lstReplace = nullptr;
    QListWidget *lstTarget = nullptr;
    QPushButton *cmdReplaceButton = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    Session &m_session;
};

} // namespace fenlark
