#include "clients/screens/clientsearchdialogs.h"

#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/strings.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

dlgClientSearch::dlgClientSearch(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("dlgClientSearch"));
    setWindowTitle(getString(5641, QStringLiteral("Client Search")));
    lblInstructions = new QLabel(this);
    lblInstructions->setObjectName(QStringLiteral("lblInstructions"));
    lblInstructions->setWordWrap(true);
    auto *frmClientSearch = new QFrame(this);
    frmClientSearch->setObjectName(QStringLiteral("frmClientSearch"));
    frmClientSearch->setFrameShape(QFrame::StyledPanel);
    search = new ucClientSearch(frmClientSearch);
    auto *frameLayout = new QVBoxLayout(frmClientSearch);
    frameLayout->addWidget(search);
    cmdNew = makeDialogButton(this, QStringLiteral("cmdNew"), getString(5642, QStringLiteral("&Add New Client")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(cmdNew);
    buttons->addStretch(1);
    buttons->addWidget(cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblInstructions);
    layout->addWidget(frmClientSearch, 1);
    layout->addLayout(buttons);
    resize(520, 460);
}

void dlgClientSearch::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    search->NameFocus();
}

ClientSearch::ClientSearch(Database &db, QWidget *parent)
    : dlgClientSearch(parent)
{
    lblInstructions->setText(getString(2268, QStringLiteral("If you want to add a new client, click Add New, or use the box below "
                                                            "to search for an existing client.")));
    search->initialise(this, db);
    connect(cmdExit, &QPushButton::clicked, this, guarded([this] {
        m_result = -1;
        reject();
    }));
    connect(cmdNew, &QPushButton::clicked, this, guarded([this] {
        m_result = 0;
        accept();
    }));
}

void ClientSearch::doubleClick()
{
    m_result = search->MadeBy();
    accept();
}

ClientMaintenance::ClientMaintenance(Database &db, ClientEditorOpener &editor, QWidget *parent)
    : dlgClientSearch(parent)
    , m_editor(editor)
{
    setWindowTitle(getString(5645, QStringLiteral("Client Maintenance")));
    lblInstructions->setText(getString(5644, QStringLiteral("Search for an existing client by typing in a few letters in the box below.")));
    search->initialise(this, db);
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    connect(cmdNew, &QPushButton::clicked, this, guarded([this] { addNew(); }));
}

void ClientMaintenance::addNew()
{
    const ClientEditorOpener::Outcome outcome = m_editor.openClientEditor(this, 0);
    if (outcome.NewClientID < 1) {
        search->NameFocus();
        return;
    }
    m_result = outcome.NewClientID;
    search->RefreshGrid();
}

void ClientMaintenance::doubleClick()
{
    const ClientEditorOpener::Outcome outcome = m_editor.openClientEditor(this, search->MadeBy());
    if (outcome.ChangesMade)
        search->RefreshGrid();
}

ClientDSearch::ClientDSearch(Database &db, QWidget *parent)
    : dlgClientSearch(parent)
{
    lblInstructions->setText(getString(5644, QStringLiteral("Search for an existing client by typing in a few letters in the box below.")));
    cmdNew->hide();
    search->initialise(this, db);
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

void ClientDSearch::doubleClick()
{
    m_result = search->MadeBy();
    accept();
}

} // namespace fenlark
