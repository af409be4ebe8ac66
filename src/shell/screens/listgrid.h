#pragma once

#include <QString>
#include <QStringList>

#include <initializer_list>

class QDialog;
class QHBoxLayout;
class QLayout;
class QPushButton;
class QTableWidget;
class QWidget;

namespace fenlark {

// A read-only list of whole rows picked one at a time, as the desk's small
// lists are: columns sized to their contents, one stretched to take the rest.
QTableWidget *makeListGrid(QWidget *parent, const QString &objectName, const QStringList &headers, int stretchColumn);

// A dialog button that Return does not press unless it has the focus.
QPushButton *makeDialogButton(QWidget *parent, const QString &objectName, const QString &text);

// A row of dialog buttons: the left ones, a stretch, the right ones.
QHBoxLayout *buttonRow(std::initializer_list<QPushButton *> left, std::initializer_list<QPushButton *> right);

// A dialog that asks for a few values: the fields above, OK and Cancel at the
// right under them. Cancel closes it unanswered; what OK does is the caller's.
void layOutAsking(QDialog *dialog, QLayout *fields, QPushButton *ok, QPushButton *cancel);
void layOutAsking(QDialog *dialog, QWidget *fields, QPushButton *ok, QPushButton *cancel);

} // namespace fenlark
