#include "time/alarm_dialog.h"

#include "core/widget_frame.h"
#include "themes/painted_frame.h"
#include "time/alarm_scheduler.h"
#include "time/scheduler_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
constexpr int kLongestValue = 254; // the settings store gives back nothing longer

QPointer<AlarmDialog> g_open;

QString indexed(const char *name, int n)
{
    return QLatin1String(name) + QLatin1Char('_') + QString::number(n);
}

QPushButton *button(const QString &name, const QString &text)
{
    auto *b = new QPushButton(text);
    b->setObjectName(name);
    return b;
}

// The combo box lists the 96 quarter hours; a stored time that is not one of them (written
// by hand or by an older version) is listed first so that saving does not lose it.
QComboBox *timeBox(int n, const QString &stored)
{
    auto *box = new QComboBox;
    box->setObjectName(indexed("cboTIME", n));
    const QStringList times = AlarmScheduler::quarterHourTimes();
    box->addItems(times);
    if (!times.contains(stored))
        box->insertItem(0, stored);
    box->setCurrentText(stored);
    return box;
}
} // namespace

AlarmDialog::AlarmDialog(QWidget *parent)
    : ThemedDialog(AlarmPreset::windowName(), tr("Vantora Alarm Setup"), parent)
{
    auto *grid = new QGridLayout;
    grid->addWidget(new QLabel(tr("On")), 0, 0);
    grid->addWidget(new QLabel(tr("Time")), 0, 1);
    grid->addWidget(new QLabel(tr("Message")), 0, 2);
    for (int n = 0; n < AlarmScheduler::PresetCount; ++n) {
        const AlarmPreset p = AlarmPreset::load(n);
        m_armed[n] = new QCheckBox;
        m_armed[n]->setObjectName(indexed("chkSET", n));
        m_armed[n]->setChecked(p.armed);
        m_armed[n]->setAccessibleName(tr("Alarm %1 on").arg(n + 1));
        m_armed[n]->setToolTip(tr("Ring this alarm every day"));
        m_time[n] = timeBox(n, p.time);
        m_time[n]->setAccessibleName(tr("Alarm %1 time").arg(n + 1));
        m_time[n]->setToolTip(tr("Time of day"));
        m_message[n] = new QLineEdit(p.message);
        m_message[n]->setObjectName(indexed("txtMESSAGE", n));
        m_message[n]->setMaxLength(kLongestValue);
        m_message[n]->setAccessibleName(tr("Alarm %1 message").arg(n + 1));
        m_message[n]->setMinimumWidth(240);
        grid->addWidget(m_armed[n], n + 1, 0);
        grid->addWidget(m_time[n], n + 1, 1);
        grid->addWidget(m_message[n], n + 1, 2);
    }
    grid->setColumnStretch(2, 1);

    m_bell = new QRadioButton(tr("Bell"));
    m_bell->setObjectName(QStringLiteral("optBELL"));
    m_other = new QRadioButton(tr("Sound file:"));
    m_other->setObjectName(QStringLiteral("optOTHER"));
    (AlarmScheduler::useBell() ? m_bell : m_other)->setChecked(true);
    m_soundPath = new QLineEdit(AlarmScheduler::otherSound());
    m_soundPath->setObjectName(QStringLiteral("txtSOUND"));
    m_soundPath->setAccessibleName(tr("Sound file"));
    m_soundPath->setMinimumWidth(200);
    m_soundPath->setPlaceholderText(tr("A .wav file"));
    m_buttons = new QWidget;
    m_buttons->setObjectName(QStringLiteral("pfrBUTTONS"));
    QPushButton *browseButton = button(QStringLiteral("btnBROWSE"), tr("&Browse..."));
    browseButton->setToolTip(tr("Choose a WAV file to play"));
    auto *sound = new QHBoxLayout;
    sound->addWidget(m_bell);
    sound->addWidget(m_other);
    sound->addWidget(m_soundPath, 1);
    sound->addWidget(browseButton);

    m_problem = new QLabel;
    m_problem->setObjectName(QStringLiteral("lblPROBLEM"));
    m_problem->setWordWrap(true);
    m_problem->hide();

    auto *testButton = button(QStringLiteral("btnTEST"), tr("&Test"));
    testButton->setToolTip(tr("Play the bell"));
    auto *saveButton = button(QStringLiteral("btnSAVE"), tr("&Save"));
    setDefaultButton(saveButton);
    auto *cancelButton = button(QStringLiteral("btnCANCEL"), tr("Cancel"));
    auto *buttons = new QHBoxLayout(m_buttons);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(8);
    buttons->addWidget(testButton);
    buttons->addStretch(1);
    buttons->addWidget(saveButton);
    buttons->addWidget(cancelButton);

    auto *layout = new QVBoxLayout;
    layout->addLayout(grid);
    layout->addLayout(sound);
    layout->addWidget(m_problem);
    layout->addSpacing(6);
    layout->addWidget(m_buttons);
    setPanelLayout(layout);

    connect(saveButton, &QPushButton::clicked, this, &AlarmDialog::save);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(testButton, &QPushButton::clicked, this, &AlarmDialog::testSound);
    connect(browseButton, &QPushButton::clicked, this, &AlarmDialog::browse);
    connect(m_soundPath, &QLineEdit::textEdited, this, [this] { m_other->setChecked(true); });
}

AlarmDialog *AlarmDialog::showSingle(QWidget *parent)
{
    if (!g_open) {
        g_open = new AlarmDialog(parent);
        g_open->setAttribute(Qt::WA_DeleteOnClose);
    }
    g_open->show();
    g_open->raise();
    g_open->activateWindow();
    return g_open;
}

void AlarmDialog::testSound()
{
    PlayBuiltInSound(QStringLiteral("BELL"));
}

void AlarmDialog::browse()
{
    const QString start = QFileInfo(m_soundPath->text()).absolutePath();
    const QString file =
        QFileDialog::getOpenFileName(this, tr("Select a file"), start, QStringLiteral("Wav Files (*.wav)"));
    if (file.isEmpty())
        return;
    m_soundPath->setText(QDir::toNativeSeparators(file));
    m_other->setChecked(true);
}

QString AlarmDialog::soundProblem() const
{
    if (!m_other->isChecked())
        return {};
    const QString path = m_soundPath->text().trimmed();
    if (path.isEmpty())
        return tr("Choose a sound file, or use the bell.");
    if (path.size() > kLongestValue)
        return tr("The path of the sound file is too long to be kept (at most %1 characters). "
                  "Move the file to a shorter path.")
            .arg(kLongestValue);
    if (!QFileInfo(path).isFile())
        return tr("The sound file \"%1\" cannot be found.").arg(path);
    return {};
}

void AlarmDialog::showProblem(const QString &text)
{
    m_problem->setText(text);
    m_problem->setVisible(!text.isEmpty());
}

bool AlarmDialog::save()
{
    const QString problem = soundProblem();
    showProblem(problem);
    if (!problem.isEmpty())
        return false;
    AlarmScheduler::saveSound(m_bell->isChecked(), m_soundPath->text().trimmed());
    for (int n = 0; n < AlarmScheduler::PresetCount; ++n) {
        AlarmPreset p;
        p.armed = m_armed[n]->isChecked();
        p.time = m_time[n]->currentText();
        p.message = m_message[n]->text();
        p.save(n);
    }
    if (SchedulerWindow *scheduler = SchedulerWindow::instance())
        scheduler->reloadPresets();
    emit saved();
    accept();
    return true;
}
