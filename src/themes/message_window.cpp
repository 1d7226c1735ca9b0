#include "themes/message_window.h"

#include "core/widget_frame.h"
#include "core/window_dragger.h"
#include "core/window_placement.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"
#include "themes/themed_button.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>
#include <QWindow>

namespace {

constexpr int kWidth = 400;
// A long unbreakable word (a folder path) may widen the window up to this.
constexpr int kMaxWidth = 720;
constexpr int kBarHeight = 28;
constexpr int kOutline = 1;
// How much of the main colour the outline keeps; the rest is the panel's text colour, which
// always stands out from the main colour.
constexpr int kOutlineWeight = 170;

QPushButton *makeButton(const QString &name, QWidget *parent)
{
    auto *b = new QPushButton(parent);
    b->setObjectName(name);
    b->setCursor(Qt::PointingHandCursor);
    b->setMinimumWidth(84);
    return b;
}

QWidget *makeButtonBar(const QString &name, QWidget *parent)
{
    auto *bar = new QWidget(parent);
    bar->setObjectName(name);
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addStretch(1);
    return bar;
}

} // namespace

MessageWindow::MessageWindow(QWidget *parent) : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("msg_INF"));
    setWindowTitle(tr("Vantora Message"));
    setMinimumWidth(kWidth);
    setMaximumWidth(kMaxWidth);

    auto *layout = new QVBoxLayout(this);
    // A one-pixel margin in which the window's own background shows as an outline, so that a
    // message over a widget of the same colour (the timer's "Time Has Now Ended") stands apart.
    layout->setContentsMargins(kOutline, kOutline, kOutline, kOutline);
    layout->setSpacing(0);

    m_barFrame = new PaintedFrame(QStringLiteral("pfrBAR"), this);
    m_barFrame->setFixedHeight(kBarHeight);
    layout->addWidget(m_barFrame);
    m_panel = new PaintedFrame(QStringLiteral("pfrPANEL"), this);
    layout->addWidget(m_panel, 1);

    buildBar(m_barFrame);

    auto *panelLayout = new QVBoxLayout(m_panel);
    panelLayout->setContentsMargins(16, 14, 16, 12);
    panelLayout->setSpacing(14);
    auto *textRow = new QHBoxLayout;
    textRow->setSpacing(12);
    m_icon = new QLabel(m_panel);
    m_icon->setObjectName(QStringLiteral("imgICON"));
    const int iconSide = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    m_icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(iconSide));
    m_icon->setAlignment(Qt::AlignTop);
    m_icon->hide();
    textRow->addWidget(m_icon, 0, Qt::AlignTop);
    m_description = new QLabel(m_panel);
    m_description->setObjectName(QStringLiteral("lblDESCRIPTION"));
    m_description->setWordWrap(true);
    m_description->setTextFormat(Qt::PlainText);
    m_description->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_description->setMinimumHeight(40);
    textRow->addWidget(m_description, 1);
    panelLayout->addLayout(textRow, 1);

    m_barO = makeButtonBar(QStringLiteral("pfrBTNBARO"), m_panel);
    m_barYN = makeButtonBar(QStringLiteral("pfrBTNBARYN"), m_panel);
    m_barYNC = makeButtonBar(QStringLiteral("pfrBTNBARYNC"), m_panel);
    for (QWidget *bar : {m_barO, m_barYN, m_barYNC})
        panelLayout->addWidget(bar);

    m_btnClose = makeButton(QStringLiteral("btnCLOSE"), m_barO);
    m_btnClose->setText(tr("&Close"));
    m_barO->layout()->addWidget(m_btnClose);
    m_btnYes = makeButton(QStringLiteral("btnYES"), m_barYN);
    m_btnNo = makeButton(QStringLiteral("btnNO"), m_barYN);
    m_btnCancel = makeButton(QStringLiteral("btnCANCEL"), m_barYNC);
    m_barYNC->layout()->addWidget(m_btnCancel);

    connect(m_btnClose, &QPushButton::clicked, this, [this] { done(0); });
    connect(m_btnYes, &QPushButton::clicked, this, [this] { answerWith(6); });
    connect(m_btnNo, &QPushButton::clicked, this, [this] { answerWith(7); });
    connect(m_btnCancel, &QPushButton::clicked, this, [this] { answerWith(2); });

    m_barYN->hide();
    m_barYNC->hide();
}

void MessageWindow::buildBar(QWidget *bar)
{
    auto *barLayout = new QHBoxLayout(bar);
    barLayout->setContentsMargins(10, 0, 6, 0);
    barLayout->setSpacing(6);
    m_title = new QLabel(bar);
    m_title->setObjectName(QStringLiteral("lablTITLE"));
    m_title->setTextFormat(Qt::PlainText);
    barLayout->addWidget(m_title, 1);
    m_close = new ThemedButton(bar);
    m_close->setObjectName(QStringLiteral("picCLOSE"));
    m_close->setFixedSize(18, 18);
    m_close->setToolTip(tr("Close"));
    connect(m_close, &ThemedButton::clicked, this, [this] {
        m_close->CloseRefresh();
        reject();
    });
    barLayout->addWidget(m_close);

    auto *dragger = new WindowDragger(this);
    dragger->watch(bar);
    dragger->watch(m_title);
}

QString MessageWindow::titleText() const
{
    return m_title->text();
}

QString MessageWindow::descriptionText() const
{
    return m_description->text();
}

void MessageWindow::showInfo(int number, const QString &extraText, QWidget *owner)
{
    MessageContent content;
    if (InfoMessageContent(number, extraText, &content))
        fill(content);
    else
        arrangeButtons(MessageContent()); // the gap keeps the texts; notices have one button
    run(owner);
}

int MessageWindow::askQuestion(int number, const QString &extraText, QWidget *owner)
{
    MessageContent content;
    if (QuestionContent(number, extraText, &content))
        fill(content);
    m_answer = m_bar == MessageBar::YesNoCancel ? 2 : 7;
    run(owner);
    return m_answer;
}

int MessageWindow::askContent(const MessageContent &content, QWidget *owner)
{
    fill(content);
    m_answer = m_bar == MessageBar::YesNoCancel ? 2 : 7;
    run(owner);
    return m_answer;
}

void MessageWindow::fill(const MessageContent &content)
{
    m_title->setText(content.title);
    m_title->setToolTip(content.title);
    QString text = content.text;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    m_description->setText(text);
    m_icon->setVisible(content.warning);
    arrangeButtons(content);
}

void MessageWindow::arrangeButtons(const MessageContent &content)
{
    m_bar = content.bar;
    m_barO->setVisible(m_bar == MessageBar::Close);
    m_barYN->setVisible(m_bar == MessageBar::YesNo);
    m_barYNC->setVisible(m_bar == MessageBar::YesNoCancel);
    if (m_bar == MessageBar::Close) {
        m_btnClose->setDefault(true);
        return;
    }
    // One pair of yes/no buttons moves to whichever bar shows.
    QWidget *target = m_bar == MessageBar::YesNo ? m_barYN : m_barYNC;
    for (QPushButton *b : {m_btnYes, m_btnNo}) {
        if (b->parentWidget() != target)
            b->setParent(target);
        target->layout()->addWidget(b);
        b->show();
    }
    m_btnYes->setText(content.yesCaption);
    m_btnNo->setText(content.noCaption);
    m_btnCancel->setText(content.cancelCaption);
    (content.noIsDefault ? m_btnNo : m_btnYes)->setDefault(true);
    (content.noIsDefault ? m_btnYes : m_btnNo)->setDefault(false);
    setTabOrder(m_btnCancel, m_btnYes);
    setTabOrder(m_btnYes, m_btnNo);
}

void MessageWindow::run(QWidget *owner)
{
    ApplyTheme(this);
    adjustSize();
    placeOver(owner);
    (m_bar == MessageBar::Close ? m_btnClose : m_btnNo->isDefault() ? m_btnNo : m_btnYes)->setFocus();
    m_running = true;
    exec();
    m_running = false;
}

void MessageWindow::placeOver(QWidget *owner)
{
    QWidget *anchor = owner ? owner->window() : QApplication::activeWindow();
    if (anchor == this)
        anchor = nullptr;
    if (anchor && anchor->isVisible()) {
        if (!windowHandle())
            create();
        if (anchor->windowHandle())
            windowHandle()->setTransientParent(anchor->windowHandle());
        move(CentredOver(anchor->frameGeometry(), size()));
        KeepInsideScreen(this); // an owner at the screen's edge must not push the box off it
        return;
    }
    if (QScreen *screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
}

void MessageWindow::answerWith(int code)
{
    m_answer = code;
    done(code);
}

void MessageWindow::reject()
{
    // Escape and the close picture: hidden, with the answer set when the question began.
    done(0);
}

void MessageWindow::ThemeElementsUpdate()
{
    const Theme &t = CurrentTheme();
    SetWindowOpacity(this, t.MainOpacity);
    QPalette pal = palette();
    pal.setColor(QPalette::Window, ResolveColor(BlendColor(t.MainColor, t.PanelColor, kOutlineWeight)));
    setPalette(pal);
    setAutoFillBackground(true);

    QFont titleFont = m_title->font();
    titleFont.setFamily(t.BarFont);
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    QPalette titlePal = m_title->palette();
    // Questions and warnings must be read whatever the theme: text that would not read on its
    // background turns black or white.
    const QColor barText = ReadableOn(ResolveColor(GradientsFor(t).barStart), ResolveColor(t.BarColor));
    titlePal.setColor(QPalette::WindowText, barText);
    m_title->setPalette(titlePal);
    m_close->setCloseGlyph(barText);

    QFont textFont = m_description->font();
    textFont.setFamily(t.PanelFont);
    m_description->setFont(textFont);
    QPalette textPal = m_description->palette();
    textPal.setColor(QPalette::WindowText,
                     ReadableOn(ResolveColor(GradientsFor(t).panelStart), ResolveColor(t.PanelColor)));
    m_description->setPalette(textPal);

    const QString css = PushButtonStyleSheet(t);
    for (QWidget *bar : {m_barO, m_barYN, m_barYNC})
        bar->setStyleSheet(css);
}
