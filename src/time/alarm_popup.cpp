#include "time/alarm_popup.h"

#include "core/widget_index.h"
#include "themes/painted_frame.h"
#include "themes/theme.h"
#include "themes/theme_painter.h"
#include "themes/widget_glyphs.h"
#include "time/alarm_dialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kIconSide = 48;
constexpr int kButtonWidth = 96;
constexpr int kNarrowest = 280;
constexpr int kWidest = 440;

QPushButton *button(const QString &name, const QString &text, QWidget *parent)
{
    auto *b = new QPushButton(text, parent);
    b->setObjectName(name);
    b->setMinimumWidth(kButtonWidth);
    b->setCursor(Qt::PointingHandCursor);
    return b;
}
} // namespace

AlarmPopup::AlarmPopup(QWidget *parent)
    : ThemedDialog(QStringLiteral("falc_POP"), tr("Vantora Alarm"), parent)
{
    m_icon = new QLabel;
    m_icon->setObjectName(QStringLiteral("imgALARM"));
    m_icon->setFixedSize(kIconSide, kIconSide);

    m_heading = new QLabel(tr("Alarm"));
    m_heading->setObjectName(QStringLiteral("lblHEADING"));
    m_heading->setTextFormat(Qt::PlainText);

    m_message = new QLabel;
    m_message->setObjectName(QStringLiteral("lablMESSAGE"));
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_message->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_message->hide();
    fitMessage();

    m_buttons = new QWidget;
    m_buttons->setObjectName(QStringLiteral("pfrBUTTONS"));
    auto *editButton = button(QStringLiteral("btnEDIT"), tr("&Edit Alarms"), m_buttons);
    editButton->setToolTip(tr("Change the alarms"));
    auto *dismissButton = button(QStringLiteral("btnDISMISS"), tr("&Dismiss"), m_buttons);
    setDefaultButton(dismissButton);
    auto *buttons = new QHBoxLayout(m_buttons);
    buttons->setContentsMargins(0, 0, 0, 0);
    buttons->setSpacing(8);
    buttons->addStretch(1);
    buttons->addWidget(editButton);
    buttons->addWidget(dismissButton);

    auto *texts = new QVBoxLayout;
    texts->setSpacing(6);
    texts->addWidget(m_heading);
    texts->addWidget(m_message, 1);
    auto *top = new QHBoxLayout;
    top->setSpacing(14);
    top->addWidget(m_icon, 0, Qt::AlignTop);
    top->addLayout(texts, 1);
    auto *layout = new QVBoxLayout;
    layout->setSpacing(16);
    layout->addLayout(top, 1);
    layout->addWidget(m_buttons);
    setPanelLayout(layout);
    layout->setContentsMargins(18, 16, 16, 14);

    connect(dismissButton, &QPushButton::clicked, this, &AlarmPopup::dismiss);
    connect(editButton, &QPushButton::clicked, this, &AlarmPopup::edit);
    dismissButton->setFocus();
}

void AlarmPopup::setMessage(const QString &message)
{
    // The scheduler refills the pop-up on every check of the alarm's second.
    if (m_message->text() == message)
        return;
    m_message->setText(message);
    m_message->setVisible(!message.isEmpty());
    fitMessage();
}

void AlarmPopup::fitMessage()
{
    // A word-wrapped label does not tell a top-level window how tall it wants to be at the
    // width it gets: fix its width (as wide as the text, within limits) and the height that
    // width needs, so that a long message is never cut off.
    const QFontMetrics fm(m_message->font());
    const int textWidth = qBound(kNarrowest, fm.horizontalAdvance(m_message->text()) + 8, kWidest);
    m_message->setFixedWidth(textWidth);
    m_message->setMinimumHeight(m_message->heightForWidth(textWidth));
    // Grow or shrink about the middle, where the pop-up was placed.
    const QPoint middle = geometry().center();
    adjustSize();
    // adjustSize() leaves a window whose layout has a height-for-width part short of it.
    if (QLayout *outer = layout())
        resize(width(), qMax(height(), outer->totalHeightForWidth(width())));
    if (isVisible())
        move(middle - QPoint(width() / 2, height() / 2));
}

QString AlarmPopup::message() const
{
    return m_message->text();
}

void AlarmPopup::setAlarmTime(const QString &time)
{
    const QString heading = time.isEmpty() ? tr("Alarm") : tr("Alarm at %1").arg(time);
    if (m_heading->text() != heading)
        m_heading->setText(heading);
}

void AlarmPopup::ThemeElementsUpdate()
{
    ThemedDialog::ThemeElementsUpdate();
    const Theme &t = CurrentTheme();

    QFont heading = m_heading->font();
    heading.setFamily(t.PanelFont);
    heading.setBold(true);
    heading.setPointSizeF(font().pointSizeF() * 1.15);
    m_heading->setFont(heading);
    QFont message = m_message->font();
    message.setFamily(t.PanelFont);
    message.setPointSizeF(font().pointSizeF() * 1.4);
    m_message->setFont(message);

    const qreal ratio = devicePixelRatioF();
    QPixmap bell(QSize(kIconSide, kIconSide) * ratio);
    bell.setDevicePixelRatio(ratio);
    bell.fill(Qt::transparent);
    QPainter painter(&bell);
    painter.setRenderHint(QPainter::Antialiasing);
    WidgetGlyphs::paint(painter, WidgetClock, QRectF(0, 0, kIconSide, kIconSide), ResolveColor(t.PanelColor));
    painter.end();
    m_icon->setPixmap(bell);

    fitMessage();
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
