#pragma once

#include "shell/statuscolours.h"

#include <QDialog>

#include <vector>

class QCheckBox;
class QComboBox;
class QFrame;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;

namespace fenlark {

class Session;

// Loads the status names into a list (the code as item data) and selects the
// code; a code that is not known selects the first entry.
void fillStatusList(QComboBox *combo, const StatusColours &colours, const QString &code);

// dlgColourPicker: the calendar colour of each booking status. Changes are kept
// per status until saved; Cancel stores nothing.
class ColourPickerDialog : public QDialog {
    Q_OBJECT

public:
    explicit ColourPickerDialog(Session &session, QWidget *parent = nullptr);

    QComboBox *statusList() const { return m_status; }
    QSlider *slider(int channel) const { return m_sliders[channel]; }
    const std::vector<Status> &pending() const { return m_pending; }

public Q_SLOTS:
    void save();
    void restore();

Q_SIGNALS:
    // Stored colours changed: the calendar must be drawn again.
    void coloursChanged();

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();
    void showStatus(int index);
    void channelChanged(int channel, int value);
    void paintSample();

    Session &m_session;
    std::vector<Status> m_pending;
    bool m_loading = false;
    QLabel *m_statusLabel;
    QComboBox *m_status;
    QLabel *m_channelLabels[3];
    QSlider *m_sliders[3];
    QSpinBox *m_boxes[3];
    QFrame *m_sample;
    QPushButton *m_save;
    QPushButton *m_restore;
    QPushButton *m_cancel;
};

// dlgPreferences: default guests and the payment reference on invoices.
class PreferencesDialog : public QDialog {
    Q_OBJECT

public:
    explicit PreferencesDialog(Session &session, QWidget *parent = nullptr);

    QComboBox *defaultGuests() const { return m_guests; }
    QCheckBox *printPayRef() const { return m_payRef; }

public Q_SLOTS:
    void accept() override;

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();

    Session &m_session;
    QLabel *m_guestsLabel;
    QComboBox *m_guests;
    QCheckBox *m_payRef;
    QPushButton *m_ok;
    QPushButton *m_cancel;
};

} // namespace fenlark
