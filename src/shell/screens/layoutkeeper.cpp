#include "shell/screens/layoutkeeper.h"

#include "shell/desklayout.h"
#include "shell/screens/calendarview.h"
#include "shell/screens/guard.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QHeaderView>
#include <QMainWindow>
#include <QTableView>

namespace fenlark {

namespace {

// The windows whose layout is kept: the desk's own main window and dialogs, each
// known by its object name. Message boxes and menus are not.
bool kept(QObject *object)
{
    auto *widget = qobject_cast<QWidget *>(object);
    return widget && widget->isWindow() && !widget->objectName().isEmpty()
        && (qobject_cast<QMainWindow *>(widget) || qobject_cast<QDialog *>(widget)) && !widget->inherits("QMessageBox");
}

QList<QTableView *> lists(QWidget *window)
{
    QList<QTableView *> result;
    for (QTableView *view : window->findChildren<QTableView *>())
        if (!view->objectName().isEmpty() && !qobject_cast<CalendarView *>(view) && view->horizontalHeader())
            result << view;
    return result;
}

QString listKey(QWidget *window, QTableView *view)
{
    return window->objectName() + QLatin1Char('.') + view->objectName();
}

} // namespace

LayoutKeeper::LayoutKeeper(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

LayoutKeeper::~LayoutKeeper()
{
    qApp->removeEventFilter(this);
}

void LayoutKeeper::restore(QWidget *window)
{
    const QByteArray geometry = DeskLayout::geometry(window->objectName());
    if (!geometry.isEmpty())
        window->restoreGeometry(geometry);
    for (QTableView *view : lists(window)) {
        QHeaderView *header = view->horizontalHeader();
        const QList<int> widths = DeskLayout::columnWidths(listKey(window, view), header->count());
        for (int column = 0; column < widths.size(); ++column)
            if (!header->isSectionHidden(column) && header->sectionResizeMode(column) == QHeaderView::Interactive)
                header->resizeSection(column, widths[column]);
    }
}

void LayoutKeeper::save(QWidget *window)
{
    DeskLayout::setGeometry(window->objectName(), window->saveGeometry());
    for (QTableView *view : lists(window)) {
        QHeaderView *header = view->horizontalHeader();
        if (header->count() == 0)
            continue;
        QList<int> widths;
        for (int column = 0; column < header->count(); ++column)
            widths << (header->isSectionHidden(column) ? DeskLayout::MinimumWidth
                                                       : std::clamp(header->sectionSize(column), int(DeskLayout::MinimumWidth),
                                                                    int(DeskLayout::MaximumWidth)));
        DeskLayout::setColumnWidths(listKey(window, view), widths);
    }
}

bool LayoutKeeper::eventFilter(QObject *watched, QEvent *event)
{
    // Only a window's own show and hide, not the spontaneous ones of minimising.
    if ((event->type() == QEvent::Show || event->type() == QEvent::Hide) && !event->spontaneous() && kept(watched)) {
        auto *window = static_cast<QWidget *>(watched);
        runGuarded([&] {
            if (event->type() == QEvent::Show)
                restore(window);
            else
                save(window);
        });
    }
    return QObject::eventFilter(watched, event);
}

} // namespace fenlark
