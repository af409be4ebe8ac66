#pragma once

#include <QDialog>

class QCheckBox;
class QDialogButtonBox;
class QListWidget;

namespace fenlark {

// frmLanguageSelect: picks the desk's language and keeps it in "Language".
class LanguageDialog : public QDialog {
    Q_OBJECT

public:
    explicit LanguageDialog(QWidget *parent = nullptr);

    // Shows the dialog modally; the choice is applied to every open window and
    // written to the configuration ("0" when it should be asked again at start).
    static void showDialog(QWidget *parent = nullptr);
    // Sets the language and has every open window put its texts again.
    static void applyLanguage(int languageId);

    int chosenLanguage() const;
    bool askAtStart() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();

    QListWidget *m_list;
    QCheckBox *m_showOnStartup;
    QDialogButtonBox *m_buttons;
};

} // namespace fenlark
