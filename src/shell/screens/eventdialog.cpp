#include "shell/screens/eventdialog.h"

#include "shell/calendar.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/strings.h"

#include <QDateEdit>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

EventDialog::EventDialog(Database &db, QDate date, int eventIndex, const EventData *existing, QWidget *parent)
    : QDialog(parent)
    , m_db(db)
    , m_date(date)
    , m_frame(new QGroupBox(this))
    , m_fromLabel(new QLabel(this))
    , m_toLabel(new QLabel(this))
    , m_from(new QDateEdit(this))
    , m_to(new QDateEdit(this))
    , m_text(new QPlainTextEdit(this))
    , m_ok(new QPushButton(this))
    , m_cancel(new QPushButton(this))
    , m_delete(new QPushButton(this))
{
    setObjectName(QStringLiteral("dlgEvent"));
    m_from->setObjectName(QStringLiteral("dpFrom"));
    m_to->setObjectName(QStringLiteral("dpTo"));
    m_text->setObjectName(QStringLiteral("txtEvent"));
    m_delete->setObjectName(QStringLiteral("cmdDelete"));
    m_ok->setObjectName(QStringLiteral("cmdOK"));
    m_cancel->setObjectName(QStringLiteral("cmdCancel"));
    for (QDateEdit *edit : {m_from, m_to}) {
        edit->setCalendarPopup(true);
        edit->setDisplayFormat(QStringLiteral("dd/MM/yyyy"));
    }
    if (existing) {
        m_event = *existing;
        m_from->setDate(existing->FromDate);
        m_to->setDate(existing->ToDate);
        m_text->setPlainText(existing->EventNote);
    } else {
        m_event.EventIndex = static_cast<qint16>(eventIndex);
        m_from->setDate(date);
        m_to->setDate(date);
    }
    m_delete->setVisible(existing != nullptr);

    auto *grid = new QGridLayout(m_frame);
    grid->addWidget(m_fromLabel, 0, 0);
    grid->addWidget(m_from, 0, 1);
    grid->addWidget(m_toLabel, 0, 2);
    grid->addWidget(m_to, 0, 3);
    grid->addWidget(m_text, 1, 0, 1, 4);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_delete);
    buttons->addStretch();
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_frame);
    layout->addLayout(buttons);
    m_text->setTabChangesFocus(true);
    m_text->setMinimumHeight(80);

    connect(m_ok, &QPushButton::clicked, this, guarded(this, &EventDialog::accept));
    connect(m_cancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    connect(m_delete, &QPushButton::clicked, this, guarded(this, &EventDialog::deleteEvent));
    retranslate();
    setMinimumWidth(440);
}

void EventDialog::retranslate()
{
    setWindowTitle(getString(5146, QStringLiteral("Calendar event")));
    m_frame->setTitle(getString(1698, QStringLiteral("Event note for: ")) +
                      QLocale().toString(m_date, QStringLiteral("ddd dd MMM yyyy")));
    m_fromLabel->setText(getString(5143, QStringLiteral("From:")));
    m_toLabel->setText(getString(5144, QStringLiteral("To:")));
    m_ok->setText(getString(5116, QStringLiteral("OK")));
    m_cancel->setText(getString(5120, QStringLiteral("Cancel")));
    m_delete->setText(getString(5145, QStringLiteral("&Delete")));
}

void EventDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void EventDialog::accept()
{
    const QString text = m_text->toPlainText();
    if (Outcome valid = EventRules::validate(m_db, text, m_from->date(), m_to->date(), m_event.EventIndex, m_event.BBEventID);
        !valid) {
        messages::show(valid.refusal());
        if (text.trimmed().isEmpty())
            m_text->setFocus();
        return;
    }
    m_event.FromDate = m_from->date();
    m_event.ToDate = m_to->date();
    m_event.EventNote = text;
    m_event.update(m_db);
    QDialog::accept();
}

void EventDialog::deleteEvent()
{
    if (!messages::ask(1700, QStringLiteral("Delete this event?"), 1701, QStringLiteral("Delete event"))) {
        m_text->setFocus();
        return;
    }
    EventData::remove(m_db, m_event.BBEventID);
    QDialog::accept();
}

} // namespace fenlark
