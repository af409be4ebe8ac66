#include "accounts/screens/accountwidgets.h"

#include "accounts/payments.h"
#include "accounts/paymenttypes.h"
#include "shell/amounttext.h"
#include "shell/money.h"
#include "shell/strings.h"
#include "shell/textformat.h"

#include <QComboBox>
#include <QEvent>
#include <QHeaderView>
#include <QInputDialog>
#include <QLineEdit>
#include <QTableView>
#include <QTimer>

namespace fenlark {

namespace {

// Selects a box's text when it gets the focus, and shows an amount as "0.00"
// when it loses it.
class AmountBoxFilter : public QObject {
public:
    AmountBoxFilter(QLineEdit *box, bool money) : QObject(box), m_box(box), m_money(money) { box->installEventFilter(this); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn)
            QTimer::singleShot(0, m_box, &QLineEdit::selectAll);
        else if (event->type() == QEvent::FocusOut && m_money && !m_box->text().trimmed().isEmpty()) {
            if (const auto amount = parseAmount(m_box->text(), deskLocale()))
                m_box->setText(formatAmount(*amount));
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QLineEdit *m_box;
    bool m_money;
};

} // namespace

QTableView *makeRowsView(QWidget *parent, const QString &objectName, QAbstractItemModel *model, int stretchColumn)
{
    auto *view = new QTableView(parent);
    view->setObjectName(objectName);
    view->setModel(model);
    view->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    view->horizontalHeader()->setSectionResizeMode(stretchColumn, QHeaderView::Stretch);
    view->verticalHeader()->hide();
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setSelectionMode(QAbstractItemView::SingleSelection);
    return view;
}

int currentRow(const QTableView *view)
{
    const QModelIndexList rows = view->selectionModel() ? view->selectionModel()->selectedRows() : QModelIndexList();
    return rows.isEmpty() ? -1 : rows.front().row();
}

QLineEdit *makeAmountBox(QWidget *parent, const QString &objectName, bool money)
{
    auto *box = new QLineEdit(parent);
    box->setObjectName(objectName);
    box->setAlignment(Qt::AlignRight);
    new AmountBoxFilter(box, money);
    return box;
}

QComboBox *makePaymentTypeBox(QWidget *parent, const QString &objectName)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(objectName);
    for (const QString &code : paymenttype::codes())
        box->addItem(paymentTypeName(code), code);
    return box;
}

std::optional<QString> DialogFirstNumberPrompter::askFirstNumber(const QString &prompt, const QString &title)
{
    bool ok = false;
    const QString answer = QInputDialog::getText(m_parent, title, prompt, QLineEdit::Normal, QString(), &ok);
    if (!ok)
        return std::nullopt;
    return answer;
}

void DialogFirstNumberPrompter::refuseFirstNumber(const Refusal &why)
{
    messages::show(why);
}

} // namespace fenlark
