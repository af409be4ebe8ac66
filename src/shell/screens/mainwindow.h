#pragma once

#include "shell/session.h"

#include <QMainWindow>

#include <memory>

namespace fenlark {

// frmMain: the desk's main window. It owns the session and is where every
// screen gets the shared data from.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(std::unique_ptr<Session> session, QWidget *parent = nullptr);

    Session &session() { return *m_session; }

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    std::unique_ptr<Session> m_session;
    bool m_exitFlag = false;
};

} // namespace fenlark
