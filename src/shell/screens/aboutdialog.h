#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace fenlark {

// frmAbout: the program and its version. Without its OK button it is the splash.
class AboutDialog : public QDialog {
    Q_OBJECT

public:
    explicit AboutDialog(bool withOk, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();

    QLabel *m_title;
    QLabel *m_version;
    QLabel *m_text;
    QPushButton *m_ok;
};

} // namespace fenlark
