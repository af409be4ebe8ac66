#include "shell/screens/settingsdialogs.h"

#include "shell/messages.h"
#include "shell/preferences.h"
#include "shell/screens/guard.h"
#include "shell/session.h"
#include "shell/strings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QVBoxLayout>

namespace fenlark {

void fillStatusList(QComboBox *combo, const StatusColours &colours, const QString &code)
{
    combo->clear();
    for (const Status &s : colours.list())
        combo->addItem(s.Description, s.Code);
    combo->setCurrentIndex(colours.list().empty() ? -1 : colours.indexOf(code));
}

ColourPickerDialog::ColourPickerDialog(Session &session, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
    , m_pending(session.statusColours().list())
    , m_statusLabel(new QLabel(this))
    , m_status(new QComboBox(this))
    , m_sample(new QFrame(this))
    , m_save(new QPushButton(this))
    , m_restore(new QPushButton(this))
    , m_cancel(new QPushButton(this))
{
    setObjectName(QStringLiteral("dlgColourPicker"));
    m_status->setObjectName(QStringLiteral("cboStatus"));
    m_sample->setObjectName(QStringLiteral("picColour"));
    m_save->setObjectName(QStringLiteral("cmdSave"));
    m_restore->setObjectName(QStringLiteral("cmdRestore"));
    m_cancel->setObjectName(QStringLiteral("cmdCancel"));
    static const char *sliderNames[] = {"slRed", "slGreen", "slBlue"};
    static const char *boxNames[] = {"txtRed", "txtGreen", "txtBlue"};

    auto *grid = new QGridLayout;
    grid->addWidget(m_statusLabel, 0, 0);
    grid->addWidget(m_status, 0, 1, 1, 2);
    for (int c = 0; c < 3; ++c) {
        m_channelLabels[c] = new QLabel(this);
        m_sliders[c] = new QSlider(Qt::Horizontal, this);
        m_sliders[c]->setObjectName(QString::fromLatin1(sliderNames[c]));
        m_sliders[c]->setRange(0, 255);
        m_boxes[c] = new QSpinBox(this);
        m_boxes[c]->setObjectName(QString::fromLatin1(boxNames[c]));
        m_boxes[c]->setRange(0, 255);
        grid->addWidget(m_channelLabels[c], c + 1, 0);
        grid->addWidget(m_sliders[c], c + 1, 1);
        grid->addWidget(m_boxes[c], c + 1, 2);
        connect(m_sliders[c], &QSlider::valueChanged, this, guarded([this, c](int v) { channelChanged(c, v); }));
        connect(m_boxes[c], &QSpinBox::valueChanged, this, guarded([this, c](int v) { channelChanged(c, v); }));
    }
    m_sample->setMinimumSize(120, 48);
    m_sample->setFrameShape(QFrame::Box);
    m_sample->setAutoFillBackground(true);
    grid->addWidget(m_sample, 4, 1, 1, 2);
    grid->setColumnStretch(1, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_restore);
    buttons->addStretch();
    buttons->addWidget(m_save);
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addLayout(buttons);

    fillStatusList(m_status, session.statusColours(), QStringLiteral("C"));
    connect(m_status, &QComboBox::currentIndexChanged, this, guarded(this, &ColourPickerDialog::showStatus));
    connect(m_save, &QPushButton::clicked, this, guarded(this, &ColourPickerDialog::save));
    connect(m_restore, &QPushButton::clicked, this, guarded(this, &ColourPickerDialog::restore));
    connect(m_cancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    retranslate();
    showStatus(m_status->currentIndex());
    setMinimumWidth(420);
}

void ColourPickerDialog::retranslate()
{
    setWindowTitle(getString(5134, QStringLiteral("Status colours")));
    m_statusLabel->setText(getString(5135, QStringLiteral("Status:")));
    m_channelLabels[0]->setText(getString(5136, QStringLiteral("Red")));
    m_channelLabels[1]->setText(getString(5137, QStringLiteral("Green")));
    m_channelLabels[2]->setText(getString(5138, QStringLiteral("Blue")));
    m_save->setText(getString(5139, QStringLiteral("&Save")));
    m_restore->setText(getString(5140, QStringLiteral("&Restore defaults")));
    m_cancel->setText(getString(5120, QStringLiteral("Cancel")));
}

void ColourPickerDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void ColourPickerDialog::showStatus(int index)
{
    if (index < 0 || index >= static_cast<int>(m_pending.size()))
        return;
    const Status &s = m_pending[static_cast<std::size_t>(index)];
    m_loading = true;
    const int values[] = {s.Red, s.Green, s.Blue};
    for (int c = 0; c < 3; ++c) {
        m_sliders[c]->setValue(values[c]);
        m_boxes[c]->setValue(values[c]);
    }
    m_loading = false;
    paintSample();
}

void ColourPickerDialog::channelChanged(int channel, int value)
{
    if (m_loading)
        return;
    const int index = m_status->currentIndex();
    if (index < 0 || index >= static_cast<int>(m_pending.size()))
        return;
    Status &s = m_pending[static_cast<std::size_t>(index)];
    qint16 *target[] = {&s.Red, &s.Green, &s.Blue};
    *target[channel] = static_cast<qint16>(value);
    m_loading = true;
    m_sliders[channel]->setValue(value);
    m_boxes[channel]->setValue(value);
    m_loading = false;
    paintSample();
}

void ColourPickerDialog::paintSample()
{
    QPalette palette = m_sample->palette();
    palette.setColor(QPalette::Window, QColor(m_sliders[0]->value(), m_sliders[1]->value(), m_sliders[2]->value()));
    m_sample->setPalette(palette);
}

void ColourPickerDialog::save()
{
    if (!messages::ask(5130, QStringLiteral("Are you sure you want to save these colours?"), 5131, QStringLiteral("Save these colours")))
        return;
    StatusColours::save(m_session.db(), m_pending);
    m_session.loadStatusColours();
    Q_EMIT coloursChanged();
    accept();
}

void ColourPickerDialog::restore()
{
    if (!messages::ask(5132, QStringLiteral("Are you happy to restore the system defaults?"), 5133, QStringLiteral("Restore defaults?")))
        return;
    StatusColours::restoreDefaults(m_session.db());
    m_session.loadStatusColours();
    Q_EMIT coloursChanged();
    m_pending = m_session.statusColours().list();
    showStatus(m_status->currentIndex());
}

PreferencesDialog::PreferencesDialog(Session &session, QWidget *parent)
    : QDialog(parent)
    , m_session(session)
    , m_guestsLabel(new QLabel(this))
    , m_guests(new QComboBox(this))
    , m_payRef(new QCheckBox(this))
    , m_ok(new QPushButton(this))
    , m_cancel(new QPushButton(this))
{
    setObjectName(QStringLiteral("dlgPreferences"));
    m_guests->setObjectName(QStringLiteral("cboDefaultGuests"));
    m_payRef->setObjectName(QStringLiteral("ckPrintPayRef"));
    m_guests->addItem(QString(), 1);
    m_guests->addItem(QString(), 2);
    auto *form = new QFormLayout;
    form->addRow(m_guestsLabel, m_guests);
    form->addRow(m_payRef);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
    connect(m_ok, &QPushButton::clicked, this, guarded(this, &PreferencesDialog::accept));
    connect(m_cancel, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    retranslate();

    const int guests = session.getPreference(QStringLiteral("DEFUSER")).toInt();
    m_guests->setCurrentIndex(guests == 1 ? 0 : 1);
    m_payRef->setChecked(session.getPreference(QStringLiteral("PAYREF")) == QLatin1String("1"));
    setMinimumWidth(380);
}

void PreferencesDialog::retranslate()
{
    setWindowTitle(getString(1360, QStringLiteral("Options")));
    m_guestsLabel->setText(getString(5142, QStringLiteral("Default number of guests:")));
    m_guests->setItemText(0, getString(1889, QStringLiteral("1 Guest")));
    m_guests->setItemText(1, getString(1890, QStringLiteral("2 Guests")));
    m_payRef->setText(getString(5141, QStringLiteral("Print the payment reference on invoices")));
    m_ok->setText(getString(5116, QStringLiteral("OK")));
    m_cancel->setText(getString(5120, QStringLiteral("Cancel")));
}

void PreferencesDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QDialog::changeEvent(event);
}

void PreferencesDialog::accept()
{
    Preferences::saveOptions(m_session.db(), m_guests->currentData().toInt(), m_payRef->isChecked());
    m_session.loadPreferences();
    messages::inform(1683, QStringLiteral("This information was saved successfully."), 1892, QStringLiteral("Save successful"));
    QDialog::accept();
}

} // namespace fenlark
