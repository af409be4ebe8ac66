#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <QVariant>

#include <functional>
#include <utility>
#include <vector>

namespace fenlark {

// A read-only table over rows the core has read: each column has a heading and
// says how to show a row. The small lists of the accounts screens are all of
// this kind; the view shows them, the screen asks the model for the row behind
// a click.
template <class Row>
class RowsModel : public QAbstractTableModel {
public:
    struct Column {
        QString heading;
        std::function<QVariant(const Row &)> text;
        bool number = false;   // right-aligned
    };

    explicit RowsModel(std::vector<Column> columns, QObject *parent = nullptr)
        : QAbstractTableModel(parent), m_columns(std::move(columns))
    {
    }

    void setRows(std::vector<Row> rows)
    {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
    }
    const std::vector<Row> &rows() const { return m_rows; }
    const Row &row(int at) const { return m_rows.at(static_cast<std::size_t>(at)); }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
    }
    int columnCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
    }
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override
    {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
            return {};
        const Column &column = m_columns.at(static_cast<std::size_t>(index.column()));
        if (role == Qt::DisplayRole)
            return column.text(row(index.row()));
        if (role == Qt::TextAlignmentRole && column.number)
            return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
        return {};
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override
    {
        if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < columnCount())
            return m_columns.at(static_cast<std::size_t>(section)).heading;
        return QAbstractTableModel::headerData(section, orientation, role);
    }

private:
    std::vector<Column> m_columns;
    std::vector<Row> m_rows;
};

} // namespace fenlark
