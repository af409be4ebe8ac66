#include "shell/screens/listgrid.h"

#include "shell/screens/guard.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

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

QHBoxLayout *buttonRow(std::initializer_list<QPushButton *> left, std::initializer_list<QPushButton *> right)
{
    auto *row = new QHBoxLayout;
    for (QPushButton *b : left)
        row->addWidget(b);
    row->addStretch(1);
    for (QPushButton *b : right)
        row->addWidget(b);
    return row;
}

namespace {

QVBoxLayout *askingLayout(QDialog *dialog, QPushButton *cancel)
{
    QObject::connect(cancel, &QPushButton::clicked, dialog, guarded(dialog, &QDialog::reject));
    return new QVBoxLayout(dialog);
}

} // namespace

void layOutAsking(QDialog *dialog, QLayout *fields, QPushButton *ok, QPushButton *cancel)
{
    auto *layout = askingLayout(dialog, cancel);
    layout->addLayout(fields);
    layout->addLayout(buttonRow({}, {ok, cancel}));
}

void layOutAsking(QDialog *dialog, QWidget *fields, QPushButton *ok, QPushButton *cancel)
{
    auto *layout = askingLayout(dialog, cancel);
    layout->addWidget(fields);
    layout->addLayout(buttonRow({}, {ok, cancel}));
}

} // namespace fenlark
