#include "time/clock_settings_dialog.h"

#include "core/clock_source.h"
#include "core/settings_store.h"
#include "themes/painted_frame.h"
#include "time/clock_settings.h"
#include "time/date_time_formatter.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
QCheckBox *checkBox(const QString &name, const QString &text, bool on)
{
    auto *box = new QCheckBox(text);
    box->setObjectName(name);
    box->setChecked(on);
    return box;
}

QPointer<ClockSettingsDialog> g_open;
} // namespace

ClockSettingsDialog::ClockSettingsDialog(QWidget *parent)
    : ThemedDialog(ClockSettings::windowName(), tr("Vantora Clock Settings"), parent)
{
    const ClockSettings s = ClockSettings::load();
    m_modern = checkBox(QStringLiteral("chkMODERN"), tr("Modern style (seconds and am/pm beside the time)"),
                        s.modern);
    m_secs = checkBox(QStringLiteral("chkSECS"), tr("Show seconds (classic style)"), s.secsShow);
    m_ampm = checkBox(QStringLiteral("chkAMPM"), tr("Show am/pm (classic style)"), s.ampmShow);
    m_hour24 = checkBox(QStringLiteral("chk24HOUR"), tr("24-hour clock"), s.hour24);

    m_dateDefault = new QRadioButton(tr("System long date"));
    m_dateDefault->setObjectName(QStringLiteral("optDATEDEFAULT"));
    m_dateCustom = new QRadioButton(tr("Custom date format:"));
    m_dateCustom->setObjectName(QStringLiteral("optDATECUSTOM"));
    (s.dateDefault ? m_dateDefault : m_dateCustom)->setChecked(true);
    m_customFormat = new QLineEdit(s.dateCustom);
    m_customFormat->setObjectName(QStringLiteral("txtDATECUSTOM"));
    m_customFormat->setMaxLength(254); // longer values cannot be read back
    m_customFormat->setToolTip(tr("d dd ddd dddd: day; m mm mmm mmmm: month; yy yyyy: year; "
                                  "hh nn ss: time; ampm. Text in \"quotes\" is shown as written."));
    m_preview = new QLabel;
    m_preview->setObjectName(QStringLiteral("lblPREVIEW"));

    m_buttons = new QWidget;
    m_buttons->setObjectName(QStringLiteral("pfrBUTTONS"));
    auto *saveButton = new QPushButton(tr("&Save"));
    saveButton->setObjectName(QStringLiteral("btnSAVE"));
    setDefaultButton(saveButton);
    auto *cancelButton = new QPushButton(tr("Cancel"));
    cancelButton->setObjectName(QStringLiteral("btnCANCEL"));

    auto *custom = new QHBoxLayout;
    custom->addWidget(m_dateCustom);
    custom->addWidget(m_customFormat, 1);
    auto *buttons = new QHBoxLayout(m_buttons);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(8);
    buttons->addStretch(1);
    buttons->addWidget(saveButton);
    buttons->addWidget(cancelButton);

    auto *layout = new QVBoxLayout;
    for (QWidget *w :
         {static_cast<QWidget *>(m_modern), static_cast<QWidget *>(m_secs), static_cast<QWidget *>(m_ampm),
          static_cast<QWidget *>(m_hour24), static_cast<QWidget *>(m_dateDefault)})
        layout->addWidget(w);
    layout->addLayout(custom);
    layout->addWidget(m_preview);
    layout->addSpacing(6);
    layout->addWidget(m_buttons);
    setPanelLayout(layout);

    connect(saveButton, &QPushButton::clicked, this, &ClockSettingsDialog::save);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_modern, &QCheckBox::toggled, this, &ClockSettingsDialog::updateControls);
    connect(m_dateCustom, &QRadioButton::toggled, this, &ClockSettingsDialog::updateControls);
    connect(m_customFormat, &QLineEdit::textChanged, this, &ClockSettingsDialog::updatePreview);
    updateControls();
}

ClockSettingsDialog *ClockSettingsDialog::showSingle(QWidget *parent)
{
    if (!g_open) {
        g_open = new ClockSettingsDialog(parent);
        g_open->setAttribute(Qt::WA_DeleteOnClose);
    }
    g_open->show();
    g_open->raise();
    g_open->activateWindow();
    return g_open;
}

void ClockSettingsDialog::updateControls()
{
    // The two classic-only choices mean nothing in the modern style.
    m_secs->setEnabled(!m_modern->isChecked());
    m_ampm->setEnabled(!m_modern->isChecked());
    m_customFormat->setEnabled(m_dateCustom->isChecked());
    updatePreview();
}

void ClockSettingsDialog::updatePreview()
{
    const QString text = DateTimeFormatter::format(ClockSource::now(), m_customFormat->text());
    m_preview->setText(m_dateCustom->isChecked() ? tr("Preview: %1").arg(text) : QString());
}

void ClockSettingsDialog::save()
{
    ClockSettings s;
    s.modern = m_modern->isChecked();
    s.secsShow = m_secs->isChecked();
    s.ampmShow = m_ampm->isChecked();
    s.hour24 = m_hour24->isChecked();
    s.dateDefault = m_dateDefault->isChecked();
    // An empty format would leave the bar blank: keep the default instead.
    if (!m_customFormat->text().trimmed().isEmpty())
        s.dateCustom = m_customFormat->text();
    s.save();
    accept();
}
