#include "clients/screens/clientdelete.h"

#include "clients/clientrecords.h"
#include "clients/clientretirement.h"
#include "clients/screens/clientsearchdialogs.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/screens/waitcursor.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <optional>

namespace fenlark {

namespace {

// The question as a box; once agreed, the wait cursor shows until the work is done.
class RetireAnswers : public MessageRetireQuestions {
public:
    bool readyToRetire() override
    {
        const bool ready = MessageRetireQuestions::readyToRetire();
        if (ready)
            m_busy.emplace();
        return ready;
    }

private:
    std::optional<WaitCursor> m_busy;
};

QLabel *makeDisplay(QWidget *parent, const QString &objectName)
{
    auto *label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setFrameShape(QFrame::StyledPanel);
    label->setMinimumWidth(320);
    return label;
}

} // namespace

ClientDelete::ClientDelete(Session &session, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
{
    setObjectName(QStringLiteral("dlgClientDelete"));
    setWindowTitle(getString(5178, QStringLiteral("Client Retire")));
    Database &db = session.db();
    chooseClient = [&db](QWidget *owner) {
        ClientDSearch search(db, owner);
        search.exec();
        return search.BBClientID();
    };

    outRetired = makeDisplay(this, QStringLiteral("outRetired"));
    outReplacement = makeDisplay(this, QStringLiteral("outReplacement"));
    const QString choose = getString(6968, QStringLiteral("Choose..."));
    cmdChooseRetired = makeDialogButton(this, QStringLiteral("cmdChooseRetired"), choose);
    cmdChooseReplacement = makeDialogButton(this, QStringLiteral("cmdChooseReplacement"), choose);
    cmdRetireButton = makeDialogButton(this, QStringLiteral("cmdRetire"), getString(6967, QStringLiteral("&Retire")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));

    auto *grid = new QGridLayout;
    grid->addWidget(new QLabel(getString(6965, QStringLiteral("Client to retire")), this), 0, 0);
    grid->addWidget(outRetired, 0, 1);
    grid->addWidget(cmdChooseRetired, 0, 2);
    grid->addWidget(new QLabel(getString(6966, QStringLiteral("Replace with")), this), 1, 0);
    grid->addWidget(outReplacement, 1, 1);
    grid->addWidget(cmdChooseReplacement, 1, 2);
    grid->setColumnStretch(1, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdRetireButton);
    buttons->addWidget(cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addStretch(1);
    layout->addLayout(buttons);

    connect(cmdChooseRetired, &QPushButton::clicked, this, guarded([this] {
        if (const qint32 chosen = chooseClient(this))
            setRetired(chosen);
    }));
    connect(cmdChooseReplacement, &QPushButton::clicked, this, guarded([this] {
        if (const qint32 chosen = chooseClient(this))
            setReplacement(chosen);
    }));
    connect(cmdRetireButton, &QPushButton::clicked, this, guarded(this, &ClientDelete::cmdRetire));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
}

bool ClientDelete::display(qint32 clientId, QLabel *label)
{
    Client client;
    if (!client.fetch(m_session.db(), clientId)) {
        label->clear();
        messages::show(clientFetchError(clientId));
        return false;
    }
    label->setText(retireDisplayName(client));
    return true;
}

void ClientDelete::setRetired(qint32 clientId)
{
    m_retired = display(clientId, outRetired) ? clientId : 0;
}

void ClientDelete::setReplacement(qint32 clientId)
{
    m_replacement = display(clientId, outReplacement) ? clientId : 0;
}

void ClientDelete::cmdRetire()
{
    const Result<ClientRetirement> result = [this] {
        RetireAnswers answers;
        return retireClient(m_session.db(), m_session.getUser(), m_retired, m_replacement, answers);
    }();
    if (!result) {
        messages::show(result.refusal());
        return;
    }
    if (!result->retired)
        return;
    m_session.publish(result->changes);
    messages::inform(6961, QStringLiteral("This client has been retired and its details transferred."), 6962,
                     QStringLiteral("Client retired."));
    m_retired = m_replacement = 0;
    outRetired->clear();
    outReplacement->clear();
    cmdChooseRetired->setFocus();
}

} // namespace fenlark
