#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;
class QTableWidget;

namespace fenlark {

class Database;

// dlgSourceList: pick a marketing source already used on bookings, or type a
// new one. getSource is empty when the user left without a choice.
class SourceList : public QDialog {
    Q_OBJECT
public:
    // Lists the sources that start with searchText (all of them when empty).
    SourceList(Database &db, const QString &searchText, QWidget *parent = nullptr);

    QString getSource() const { return m_source; }

    // Takes the source of that row and closes.
    void pickRow(int row);

    QTableWidget *gdSources = nullptr;
    QLineEdit *txtNewSource = nullptr;
    QPushButton *cmdAdd = nullptr;
    QPushButton *cmdExit = nullptr;

private:
    QString m_source;
};

} // namespace fenlark
