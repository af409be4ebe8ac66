#include "shell/screens/listgrid.h"

#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>

namespace fenlark {

QTableWidget *makeListGrid(QWidget *parent, const QString &objectName, const QStringList &headers, int stretchColumn)
{
    auto *grid = new QTableWidget(0, int(headers.size()), parent);
    grid->setObjectName(objectName);
    grid->setHorizontalHeaderLabels(headers);
    grid->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    grid->horizontalHeader()->setSectionResizeMode(stretchColumn, QHeaderView::Stretch);
    grid->verticalHeader()->hide();
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    return grid;
}

QPushButton *makeDialogButton(QWidget *parent, const QString &objectName, const QString &text)
{
    auto *button = new QPushButton(text, parent);
    button->setObjectName(objectName);
    button->setAutoDefault(false);
    return button;
}

} // namespace fenlark
