#pragma once

#include <QString>
#include <QStringList>

class QPushButton;
class QTableWidget;
class QWidget;

namespace fenlark {

// A read-only list of whole rows picked one at a time, as the desk's small
// lists are: columns sized to their contents, one stretched to take the rest.
QTableWidget *makeListGrid(QWidget *parent, const QString &objectName, const QStringList &headers, int stretchColumn);

// A dialog button that Return does not press unless it has the focus.
QPushButton *makeDialogButton(QWidget *parent, const QString &objectName, const QString &text);

} // namespace fenlark
