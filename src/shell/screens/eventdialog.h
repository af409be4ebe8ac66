#pragma once

#include "shell/setuprecords.h"

#include <QDate>
#include <QDialog>

class QDateEdit;
class QGroupBox;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace fenlark {

class Database;

// dlgEvent: a note on one of the calendar's three header rows over a span of days.
class EventDialog : public QDialog {
    Q_OBJECT

public:
    // A clicked date and header row (1 to 3); an existing event there is edited,
    // otherwise a new one starts on that day.
    EventDialog(Database &db, QDate date, int eventIndex, const EventData *existing, QWidget *parent = nullptr);

    QDateEdit *fromEdit() const { return m_from; }
    QDateEdit *toEdit() const { return m_to; }
    QPlainTextEdit *textEdit() const { return m_text; }
    QPushButton *deleteButton() const { return m_delete; }
    bool isUpdate() const { return m_event.BBEventID > 0; }

public Q_SLOTS:
    void accept() override;
    void deleteEvent();

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();

    Database &m_db;
    QDate m_date;
    EventData m_event;
    QGroupBox *m_frame;
    QLabel *m_fromLabel;
    QLabel *m_toLabel;
    QDateEdit *m_from;
    QDateEdit *m_to;
    QPlainTextEdit *m_text;
    QPushButton *m_ok;
    QPushButton *m_cancel;
    QPushButton *m_delete;
};

} // namespace fenlark
