#pragma once

#include "reports/printbooking.h"
#include "reports/screens/accountdocuments.h"

#include <QDialog>

class QCheckBox;
class QPushButton;
class QRadioButton;

namespace fenlark {

class Session;

// dlgPrintChoose: the booking editor's Print. A Confirmation covers the booking and
// puts the booker's e-mail on the clipboard; a Registration is for the room shown,
// then, when the user agrees, for each other room; the summary goes to the text
// editor. Each letter is opened for the user to read, change, print or mail.
class PrintChoose : public QDialog {
    Q_OBJECT
public:
    PrintChoose(Session &session, qint32 bbBookingId, qint32 bbRoomId, QWidget *parent = nullptr);

    // Opens the written files; tests replace it.
    OpenFile openFile = openWithDesktop;

    QRadioButton *opConfirmation = nullptr;
    QRadioButton *opRegistration = nullptr;
    QRadioButton *opWordpad = nullptr;
    QCheckBox *ckPdf = nullptr;
    QPushButton *cmdPrint = nullptr;
    QPushButton *cmdCancel = nullptr;

public Q_SLOTS:
    void print();

private:
    bool printLetter(PrintBooking &printer, LetterKind kind, qint32 room);
    void printToTextEditor(PrintBooking &printer);

    Session &m_session;
    qint32 m_booking;
    qint32 m_room;
};

} // namespace fenlark
