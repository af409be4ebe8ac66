#include "shell/screens/mainwindow.h"

#include "shell/databasefiles.h"
#include "shell/ticker.h"

#include <QCloseEvent>

namespace fenlark {

MainWindow::MainWindow(std::unique_ptr<Session> session, QWidget *parent)
    : QMainWindow(parent)
    , m_session(std::move(session))
{
    QString caption = QStringLiteral("veldmoor");
    if (m_session->dbNumber() > 0)
        caption += QStringLiteral(" - ") + getDBName(m_session->dbNumber());
    setWindowTitle(caption);
    setMinimumSize(800, 460);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (mayExit(m_session->db(), m_exitFlag)) {
        event->accept();
    } else {
        m_exitFlag = false;
        event->ignore();
    }
}

} // namespace fenlark
