#include "shell/screens/languagedialog.h"

#include "shell/config.h"
#include "shell/screens/guard.h"
#include "shell/strings.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace fenlark {

LanguageDialog::LanguageDialog(QWidget *parent)
    : QDialog(parent)
    , m_list(new QListWidget(this))
    , m_showOnStartup(new QCheckBox(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok, this))
{
    setObjectName(QStringLiteral("frmLanguageSelect"));
    m_list->setObjectName(QStringLiteral("LanguageList"));
    m_showOnStartup->setObjectName(QStringLiteral("chkShowOnStartup"));
    for (int id : {EnglishLanguage, SpanishLanguage}) {
        auto *item = new QListWidgetItem(StringTable::languageName(id), m_list);
        item->setData(Qt::UserRole, id);
        if (id == StringTable::instance().language())
            m_list->setCurrentItem(item);
    }
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addWidget(m_showOnStartup);
    layout->addWidget(m_buttons);
    connect(m_buttons, &QDialogButtonBox::accepted, this, guarded(this, &QDialog::accept));
    connect(m_list, &QListWidget::itemDoubleClicked, this, guarded(this, &QDialog::accept));
    retranslate();
    resize(360, 220);
}

int LanguageDialog::chosenLanguage() const
{
    const QListWidgetItem *item = m_list->currentItem();
    return item ? item->data(Qt::UserRole).toInt() : StringTable::instance().language();
}

bool LanguageDialog::askAtStart() const
{
    return m_showOnStartup->isChecked();
}

void LanguageDialog::retranslate()
{
    setWindowTitle(getString(2247, QStringLiteral("Select Language")));
    m_showOnStartup->setText(getString(2248, QStringLiteral("Show this dialog when the program starts")));
    m_buttons->button(QDialogButtonBox::Ok)->setText(getString(5116, QStringLiteral("OK")));
}

void LanguageDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void LanguageDialog::applyLanguage(int languageId)
{
    StringTable::instance().setLanguage(languageId);
    const auto windows = QApplication::topLevelWidgets();
    for (QWidget *window : windows) {
        QEvent change(QEvent::LanguageChange);
        QApplication::sendEvent(window, &change);
    }
}

void LanguageDialog::showDialog(QWidget *parent)
{
    bool ok = false;
    const int configured = readConfig(QStringLiteral("Language"), QStringLiteral("0")).toInt(&ok);
    if (ok && configured != 0)
        StringTable::instance().setLanguage(configured);
    LanguageDialog dialog(parent);
    dialog.exec();
    applyLanguage(dialog.chosenLanguage());
    writeConfig(QStringLiteral("Language"),
                dialog.askAtStart() ? QStringLiteral("0") : QString::number(StringTable::instance().language()));
}

} // namespace fenlark
