#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace fenlark {

// How the person at this machine left the desk: each window's size and place and
// each list's column widths. Kept in desk.ini in the home folder, which is their
// own, apart from vmconfig.ini, which describes the machine's databases.
class DeskLayout {
public:
    static QString path();

    // A window's saved geometry (as QWidget::saveGeometry gives it); empty when
    // none was kept or what was kept is not readable.
    static QByteArray geometry(const QString &window);
    static void setGeometry(const QString &window, const QByteArray &geometry);

    // The widths a list of that many columns was left at; empty when none were
    // kept, or when what was kept does not fit the list (another column count, a
    // width that is not a number or not a sensible one).
    static QList<int> columnWidths(const QString &grid, int columns);
    static void setColumnWidths(const QString &grid, const QList<int> &widths);

    // Narrower or wider than this is not a width a person left a column at.
    static constexpr int MinimumWidth = 8;
    static constexpr int MaximumWidth = 4000;
};

} // namespace fenlark
