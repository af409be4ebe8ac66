#include "shell/screens/dialogmessagesink.h"

#include <QApplication>
#include <QMessageBox>

namespace fenlark {

void DialogMessageSink::show(const UserMessage &message)
{
    QWidget *parent = QApplication::activeWindow();
    switch (message.kind) {
    case UserMessage::Critical:
        QMessageBox::critical(parent, message.title, message.text);
        break;
    case UserMessage::Warning:
        QMessageBox::warning(parent, message.title, message.text);
        break;
    default:
        QMessageBox::information(parent, message.title, message.text);
        break;
    }
}

bool DialogMessageSink::ask(const UserMessage &message)
{
    QMessageBox box(QMessageBox::NoIcon, message.title, message.text, QMessageBox::Yes | QMessageBox::No,
                    QApplication::activeWindow());
    if (message.defaultNo)
        box.setDefaultButton(QMessageBox::No);
    return box.exec() == QMessageBox::Yes;
}

} // namespace fenlark
