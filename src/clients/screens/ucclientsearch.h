#pragma once

#include "clients/clientsearchmodel.h"

#include <QWidget>

class QGroupBox;
class QLineEdit;
class QPushButton;
class QTableView;

namespace fenlark {

class Database;

// What a dialog that holds the client search is told.
class IClientSearch {
public:
    virtual ~IClientSearch() = default;
    // A row was double-clicked; MadeBy and ShortName are already set.
    virtual void doubleClick() = 0;
    // A row was clicked.
    virtual void singleClick() = 0;
};

// The incremental client search: four boxes (first name, surname, company, id)
// and the list of active clients that match, narrowed at every keystroke.
class ucClientSearch : public QWidget {
    Q_OBJECT
public:
    explicit ucClientSearch(QWidget *parent = nullptr);

    // Must be called before the owning dialog is shown.
    void initialise(IClientSearch *owner, Database &db);

    // The typed names with their first letter in upper case.
    QString FirstName() const;
    QString Surname() const;
    QString Company() const;
    // The chosen client, 0 when none is chosen.
    qint32 MadeBy() const { return m_madeBy; }
    QString ShortName() const { return m_shortName; }
    // "C" when a company was typed, else "I": the type a new client would get.
    QString ClientType() const;
    bool hasName() const;

    // From now on one click chooses a row, and the chosen row can be let go.
    void singleClick();
    bool isSingleClickMode() const { return m_singleClickMode; }
    void RefreshGrid();
    void NameFocus();

    // The parts, for the owning dialog and for tests.
    QLineEdit *txtFirstName = nullptr;
    QLineEdit *txtSurname = nullptr;
    QLineEdit *txtCompany = nullptr;
    QLineEdit *txtbbclientid = nullptr;
    QTableView *gdClient = nullptr;
    QGroupBox *frmClientGrid = nullptr;
    QPushButton *cmdDeselect = nullptr;
    ClientSearchModel *model() const { return m_model; }

Q_SIGNALS:
    // The chosen client changed (MadeBy() tells which; 0 for none).
    void clientChanged();

private:
    void search();
    void rowChanged(const QModelIndex &current);
    void clicked(const QModelIndex &index);
    void doubleClicked(const QModelIndex &index);
    void deselect();
    void takeRow(int row);
    void setChosen(qint32 clientId, const QString &shortName);

    IClientSearch *m_owner = nullptr;
    Database *m_db = nullptr;
    ClientSearchModel *m_model = nullptr;
    qint32 m_madeBy = 0;
    QString m_shortName;
    bool m_singleClickMode = false;
};

} // namespace fenlark
