#include "clients/screens/sourcelist.h"

#include "clients/sources.h"
#include "shell/database.h"
#include "shell/errorlog.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/strings.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace fenlark {

SourceList::SourceList(Database &db, const QString &searchText, QWidget *parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("dlgSourceList"));
    setWindowTitle(getString(5647, QStringLiteral("Sources")));

    gdSources = makeListGrid(this, QStringLiteral("gdSources"), {getString(5648, QStringLiteral("Source"))}, 0);

    QStringList sources;
    try {
        sources = bookingSources(db, searchText);
    } catch (const DatabaseError &e) {
        ErrorLog::write(e.message() + QStringLiteral(" | ") + e.sql());
        messages::critical(5649, QStringLiteral("The sources could not be read: %1"), 5650, QStringLiteral("Database error"),
                           {e.message()});
    }
    gdSources->setRowCount(int(sources.size()));
    for (int row = 0; row < int(sources.size()); ++row)
        gdSources->setItem(row, 0, new QTableWidgetItem(sources[row]));

    txtNewSource = new QLineEdit(this);
    txtNewSource->setObjectName(QStringLiteral("txtNewSource"));
    cmdAdd = makeDialogButton(this, QStringLiteral("cmdAdd"), getString(5651, QStringLiteral("&Add")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));

    auto *add = new QHBoxLayout;
    add->addWidget(new QLabel(getString(5652, QStringLiteral("New source:")), this));
    add->addWidget(txtNewSource, 1);
    add->addWidget(cmdAdd);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(getString(5653, QStringLiteral("Double-click a source to use it, or type a new one.")), this));
    layout->addWidget(gdSources, 1);
    layout->addLayout(add);
    layout->addLayout(buttons);
    resize(360, 420);

    connect(gdSources, &QTableWidget::cellDoubleClicked, this, guarded([this](int row, int) { pickRow(row); }));
    connect(cmdAdd, &QPushButton::clicked, this, guarded([this] {
        m_source = txtNewSource->text();
        accept();
    }));
    connect(cmdExit, &QPushButton::clicked, this, guarded([this] {
        m_source.clear();
        reject();
    }));
}

void SourceList::pickRow(int row)
{
    const QTableWidgetItem *item = gdSources->item(row, 0);
    if (!item)
        return;
    m_source = item->text();
    accept();
}

} // namespace fenlark
