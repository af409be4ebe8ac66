#include "reports/screens/printchoose.h"

#include "rates/ratedata.h"
#include "reports/documenttext.h"
#include "reports/pdfconverter.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/screens/progressdialog.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace fenlark {

PrintChoose::PrintChoose(Session &session, qint32 bbBookingId, qint32 bbRoomId, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
    , m_booking(bbBookingId)
    , m_room(bbRoomId)
{
    setObjectName(QStringLiteral("dlgPrintChoose"));
    setWindowTitle(getString(1540, QStringLiteral("Print Options")));
    auto *frame = new QGroupBox(getString(1541, QStringLiteral("What would you like to print?")), this);
    frame->setObjectName(QStringLiteral("frmPrintOption"));
    opConfirmation = new QRadioButton(getString(1542, QStringLiteral("Print Confirmation")), frame);
    opConfirmation->setObjectName(QStringLiteral("opConfirmation"));
    opRegistration = new QRadioButton(getString(1543, QStringLiteral("Print Registration")), frame);
    opRegistration->setObjectName(QStringLiteral("opRegistration"));
    opWordpad = new QRadioButton(getString(1544, QStringLiteral("Print to the text editor")), frame);
    opWordpad->setObjectName(QStringLiteral("opWordpad"));
    opConfirmation->setChecked(true);
    auto *options = new QVBoxLayout(frame);
    options->addWidget(opConfirmation);
    options->addWidget(opRegistration);
    options->addWidget(opWordpad);
    ckPdf = new QCheckBox(getString(6834, QStringLiteral("Also save as &PDF")), this);
    ckPdf->setObjectName(QStringLiteral("ckPdf"));
    connect(opWordpad, &QRadioButton::toggled, ckPdf, guarded([this](bool text) { ckPdf->setEnabled(!text); }));

    cmdPrint = makeDialogButton(this, QStringLiteral("cmdPrint"), getString(1395, QStringLiteral("&Print")));
    cmdPrint->setDefault(true);
    cmdCancel = makeDialogButton(this, QStringLiteral("cmdCancel"), getString(1369, QStringLiteral("&Cancel")));
    connect(cmdPrint, &QPushButton::clicked, this, guarded(this, &PrintChoose::print));
    connect(cmdCancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdPrint);
    buttons->addWidget(cmdCancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addWidget(ckPdf);
    layout->addLayout(buttons);
}

void PrintChoose::print()
{
    accept();
    const RateData rates = loadRateNames(m_session.db());
    PrintBooking printer(m_session.db(), rates, m_session.dbNumber());
    if (opRegistration->isChecked()) {
        if (!printLetter(printer, LetterKind::Registration, m_room))
            return;
        const std::vector<qint32> others = printer.otherRooms(m_booking, m_room);
        if (others.empty()
            || !messages::ask(1927, QStringLiteral("Would you like to print a Registration letter for the other rooms?"), 1928,
                              QStringLiteral("Print additional rooms?")))
            return;
        for (const qint32 room : others)
            if (!printLetter(printer, LetterKind::Registration, room))
                return;
    } else if (opConfirmation->isChecked()) {
        printLetter(printer, LetterKind::Confirmation, m_room);
    } else {
        printToTextEditor(printer);
    }
}

bool PrintChoose::printLetter(PrintBooking &printer, LetterKind kind, qint32 room)
{
    const Result<PrintedLetter> letter = printer.printLetter(kind, m_booking, room);
    if (!letter) {
        messages::show(letter.refusal());
        return false;
    }
    if (kind == LetterKind::Confirmation)
        QGuiApplication::clipboard()->setText(letter->email);
    if (ckPdf->isChecked()) {
        Progress progress = progressDialog(getString(6851, QStringLiteral("Saving as PDF")), this);
        if (Result<QString> copy = convertToPdf(letter->path, progress); !copy)
            messages::show(copy.refusal());
    }
    if (!openFile(letter->path)) {
        UserMessage message{UserMessage::Critical,
                            getString(1932, QStringLiteral("Could not start the document. This is needed for printing.")),
                            getString(1933, QStringLiteral("Could not start the document."))};
        message.id = 1932;
        messages::showMessage(message);
        return false;
    }
    return true;
}

void PrintChoose::printToTextEditor(PrintBooking &printer)
{
    const Result<QString> path = printer.printSummary(m_booking);
    if (!path) {
        messages::show(path.refusal());
        return;
    }
    if (!openFile(*path)) {
        UserMessage message{UserMessage::Critical, getString(1279, QStringLiteral("Error: Could not find the text editor.")),
                            getString(1280, QStringLiteral("Could not find the text editor."))};
        message.id = 1279;
        messages::showMessage(message);
    }
}

} // namespace fenlark
