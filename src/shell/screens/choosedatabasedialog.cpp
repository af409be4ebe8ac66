#include "shell/screens/choosedatabasedialog.h"

#include "shell/databasechoice.h"
#include "shell/messages.h"
#include "shell/screens/guard.h"
#include "shell/strings.h"

#include <QDialogButtonBox>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

ChooseDatabaseDialog::ChooseDatabaseDialog(QWidget *parent)
    : QDialog(parent)
    , m_lstDB(new QListWidget(this))
    , m_cmdOK(new QPushButton(this))
    , m_cmdCancel(new QPushButton(this))
{
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(m_cmdOK, QDialogButtonBox::AcceptRole);
    buttons->addButton(m_cmdCancel, QDialogButtonBox::RejectRole);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_lstDB);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, guarded(this, &QDialog::accept));
    connect(buttons, &QDialogButtonBox::rejected, this, guarded(this, &QDialog::reject));
    connect(m_lstDB, &QListWidget::itemDoubleClicked, this, guarded(this, &QDialog::accept));
    m_cmdOK->setDefault(true);
    retranslate();
    resize(360, 260);
}

void ChooseDatabaseDialog::retranslate()
{
    setWindowTitle(getString(5030, QStringLiteral("Choose Database")));
    m_cmdOK->setText(getString(5031, QStringLiteral("OK")));
    m_cmdCancel->setText(getString(5032, QStringLiteral("Cancel")));
}

int ChooseDatabaseDialog::choose(int current, QWidget *parent)
{
    const QStringList names = DatabaseChoice::names();
    if (names.isEmpty()) {
        messages::critical(462, QStringLiteral("Could not find correct database entries."), 463, QStringLiteral("Incorrect vmconfig entries."));
        return current;
    }
    ChooseDatabaseDialog dialog(parent);
    dialog.m_lstDB->addItems(names);
    dialog.m_lstDB->setCurrentRow(std::clamp(current - 1, 0, int(names.size()) - 1));
    if (dialog.exec() != QDialog::Accepted || dialog.m_lstDB->currentRow() < 0)
        return current;
    return dialog.m_lstDB->currentRow() + 1;
}

} // namespace fenlark
