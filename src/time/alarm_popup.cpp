#include "time/alarm_popup.h"

#include "time/alarm_dialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

AlarmPopup::AlarmPopup(QWidget *parent)
    : ThemedDialog(QStringLiteral("falc_POP"), tr("Vantora Alarm"), parent)
{
    m_message = new QLabel;
    m_message->setObjectName(QStringLiteral("lablMESSAGE"));
    m_message->setWordWrap(true);
    m_message->setMinimumWidth(260);
    m_message->setAlignment(Qt::AlignCenter);
    QFont f = m_message->font();
    f.setPointSizeF(f.pointSizeF() * 1.4);
    m_message->setFont(f);

    auto *dismissButton = new QPushButton(tr("&Dismiss"));
    dismissButton->setObjectName(QStringLiteral("btnDISMISS"));
    dismissButton->setDefault(true);
    auto *editButton = new QPushButton(tr("&Edit Alarms"));
    editButton->setObjectName(QStringLiteral("btnEDIT"));

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(editButton);
    buttons->addWidget(dismissButton);
    auto *layout = new QVBoxLayout;
    layout->addWidget(m_message, 1);
    layout->addLayout(buttons);
    setPanelLayout(layout);

    connect(dismissButton, &QPushButton::clicked, this, &AlarmPopup::dismiss);
    connect(editButton, &QPushButton::clicked, this, &AlarmPopup::edit);
}

void AlarmPopup::setMessage(const QString &message)
{
    // The scheduler refills the pop-up on every check of the alarm's second.
    if (m_message->text() != message)
        m_message->setText(message);
}

QString AlarmPopup::message() const
{
    return m_message->text();
}

void AlarmPopup::dismiss()
{
    close();
}

void AlarmPopup::edit()
{
    AlarmDialog::showSingle();
    close();
}
