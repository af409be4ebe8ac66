#include "clients/screens/sourcecodemt.h"

#include "clients/sourcerename.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/screens/listgrid.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include <optional>

namespace fenlark {

namespace {

QListWidget *makeList(QWidget *parent, const QString &objectName)
{
    auto *list = new QListWidget(parent);
    list->setObjectName(objectName);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    return list;
}

std::optional<QString> chosen(const QListWidget *list)
{
    const QList<QListWidgetItem *> items = list->selectedItems();
    if (items.isEmpty())
        return std::nullopt;
    return items.first()->data(Qt::UserRole).toString();
}

} // namespace

SourceCodeMT::SourceCodeMT(Session &session, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
{
    setObjectName(QStringLiteral("dlgSourceCodeMT"));
    setWindowTitle(getString(1359, QStringLiteral("Replace Marketing Source")));
    const QString word = sourceItemWord();
    lblStep1 = new QLabel(fillArguments(getString(6984, QStringLiteral("Select the %1 you would like to rename.")), {word}), this);
    lblStep2 = new QLabel(getString(6985, QStringLiteral("Select the target you want to replace with.")), this);
    lblHint = new QLabel(fillArguments(getString(6986, QStringLiteral("Find the %1 you want to replace in Step 1. Then find the new "
                                                                      "%1 in Step 2 and Replace.")),
                                       {word}),
                         this);
    for (QLabel *label : {lblStep1, lblStep2, lblHint})
        label->setWordWrap(true);
    lstReplace = makeList(this, QStringLiteral("lstReplace"));
    lstTarget = makeList(this, QStringLiteral("lstTarget"));
    cmdReplaceButton = makeDialogButton(this, QStringLiteral("cmdReplace"), getString(6994, QStringLiteral("&Replace")));
    cmdExit = makeDialogButton(this, QStringLiteral("cmdExit"), getString(5643, QStringLiteral("E&xit")));

    auto *lists = new QGridLayout;
    lists->addWidget(lblStep1, 0, 0);
    lists->addWidget(lblStep2, 0, 1);
    lists->addWidget(lstReplace, 1, 0);
    lists->addWidget(lstTarget, 1, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdReplaceButton);
    buttons->addWidget(cmdExit);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(lblHint);
    layout->addLayout(lists, 1);
    layout->addLayout(buttons);
    resize(560, 420);

    connect(cmdReplaceButton, &QPushButton::clicked, this, guarded(this, &SourceCodeMT::cmdReplace));
    connect(cmdExit, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    refill();
}

void SourceCodeMT::refill()
{
    lstReplace->clear();
    lstTarget->clear();
    const std::vector<SourceCount> counts = sourceCounts(m_session.db());
    for (const SourceCount &count : counts) {
        for (QListWidget *list : {lstReplace, lstTarget}) {
            auto *item = new QListWidgetItem(count.text(), list);
            item->setData(Qt::UserRole, count.source);
        }
    }
    if (counts.empty())
        messages::inform(6987, QStringLiteral("No %1 items were found."), 6988, QStringLiteral("No items found to replace"),
                         {sourceItemWord()});
}

void SourceCodeMT::cmdReplace()
{
    MessageRenameQuestions questions;
    const Result<SourceRename> result =
        renameSource(m_session.db(), m_session.getUser(), chosen(lstReplace), chosen(lstTarget), questions);
    if (!result) {
        messages::show(result.refusal());
        return;
    }
    if (!result->renamed)
        return;
    m_session.publish(result->changes);
    refill();
}

} // namespace fenlark
