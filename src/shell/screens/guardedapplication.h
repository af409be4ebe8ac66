#pragma once

#include <QApplication>

namespace fenlark {

// The desk's application object. Slots and timers run through runGuarded where
// they are connected; an event handler of ours that fails is caught here, last,
// by the same guard, so that nothing ends the process.
class GuardedApplication : public QApplication {
    Q_OBJECT
public:
    GuardedApplication(int &argc, char **argv);

    bool notify(QObject *receiver, QEvent *event) override;
};

} // namespace fenlark
