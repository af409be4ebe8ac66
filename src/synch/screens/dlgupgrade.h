#pragma once

#include <QDialog>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace fenlark {

// The software upgrade: a narrative, a progress line, Upgrade and Exit. On
// Upgrade the server is asked, the databases are backed up and the new package is
// downloaded; the dialog then shows the version and how to install it. The
// program itself is never replaced and goes on running.
class DlgUpgrade : public QDialog {
    Q_OBJECT

public:
    explicit DlgUpgrade(QWidget *parent = nullptr);

    // The instructions shown after a good upgrade (empty before).
    QString instructions() const;

private:
    void onUpgradeClicked();
    void progress(const QString &text);

    QLabel *m_lblNarrative;
    QLabel *m_lblProgress;
    QPlainTextEdit *m_txtInstructions;
    QPushButton *m_cmdUpgrade;
    QPushButton *m_cmdExit;
};

} // namespace fenlark
