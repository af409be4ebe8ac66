#pragma once

#include <QDialog>

class QListWidget;
class QPushButton;

namespace fenlark {

// dlgChooseDB: the list of configured databases.
class ChooseDatabaseDialog : public QDialog {
    Q_OBJECT

public:
    explicit ChooseDatabaseDialog(QWidget *parent = nullptr);

    // Shows the list with the current database selected; returns the chosen
    // number, or `current` when cancelled or when no database is listed.
    static int choose(int current, QWidget *parent);

private:
    void retranslate();

    QListWidget *m_lstDB;
    QPushButton *m_cmdOK;
    QPushButton *m_cmdCancel;
};

} // namespace fenlark
