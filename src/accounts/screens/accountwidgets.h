#pragma once

#include "accounts/invoices.h"

#include <QString>
#include <QStringList>

class QAbstractItemModel;
class QComboBox;
class QLineEdit;
class QTableView;
class QWidget;

namespace fenlark {

// A read-only list over a model, picked a whole row at a time, as the desk's
// small lists are: columns sized to their contents, one stretched.
QTableView *makeRowsView(QWidget *parent, const QString &objectName, QAbstractItemModel *model, int stretchColumn);

// The row under the view's current index, -1 when none.
int currentRow(const QTableView *view);

// A box for money or a quantity: the text is selected on entry, and an amount
// is shown again as "0.00" when the box is left.
QLineEdit *makeAmountBox(QWidget *parent, const QString &objectName, bool money);

// The payment types, "0" Bank to "4" Commission, their codes as item data.
QComboBox *makePaymentTypeBox(QWidget *parent, const QString &objectName);

// Asks for the first number of a document series in an input box.
class DialogFirstNumberPrompter : public FirstNumberPrompter {
public:
    explicit DialogFirstNumberPrompter(QWidget *parent) : m_parent(parent) {}
    std::optional<QString> askFirstNumber(const QString &prompt, const QString &title) override;
    void refuseFirstNumber(const Refusal &why) override;

private:
    QWidget *m_parent;
};

} // namespace fenlark
