#pragma once

#include <QObject>

class QTableView;
class QWidget;

namespace fenlark {

// Gives every named window of the desk back the size and place it was left at,
// and every named list in it the column widths the user dragged them to: it
// watches windows being shown and hidden, so no screen has to do anything for
// it. Only columns a user can resize are kept; the calendar fits its days to its
// width and is left alone.
class LayoutKeeper : public QObject {
    Q_OBJECT

public:
    // Installs itself on the application for its lifetime.
    explicit LayoutKeeper(QObject *parent = nullptr);
    ~LayoutKeeper() override;

    static void restore(QWidget *window);
    static void save(QWidget *window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace fenlark
