#include "themes/panel_tool_style.h"

#include "themes/theme.h"
#include "themes/theme_painter.h"

#include <QColor>
#include <QLabel>
#include <QLayout>
#include <QPalette>
#include <QToolButton>
#include <QVBoxLayout>

QString PanelToolStyleSheet(const QColor &text, const QPalette &page)
{
    const auto tint = [&text](int alpha) {
        return QColor(text.red(), text.green(), text.blue(), alpha).name(QColor::HexArgb);
    };
    return QStringLiteral(
               "QToolButton { color: %1; border: 1px solid transparent; border-radius: 3px; padding: 2px "
               "5px; }"
               "QToolButton:hover { border-color: %2; background: %3; }"
               "QToolButton:checked { background: %4; border-color: %2; }"
               "QToolButton:disabled { color: %5; }"
               "QToolButton::menu-button { border: none; background: transparent; width: 14px; }"
               "QTabBar::tab { color: %1; background: %3; border: 1px solid %2; border-bottom: none;"
               "  border-top-left-radius: 4px; border-top-right-radius: 4px; padding: 3px 8px; margin-right: "
               "2px; }"
               "QTabBar::tab:hover { background: %4; }"
               "QTabBar::tab:selected { color: %6; background: %7; }"
               "QTabWidget::pane { border: none; }"
               // A style sheet on the panel stops its text colour reaching the labels
               // through the palette; they are given it here.
               "QLabel { color: %1; }")
        .arg(text.name(), tint(110), tint(40), tint(70), tint(120), page.color(QPalette::Text).name(),
             page.color(QPalette::Base).name());
}

QToolButton *AddPanelCommand(QWidget *row, const QString &name, const QString &caption,
                             const QString &toolTip, const std::function<void()> &action)
{
    auto *button = new QToolButton(row);
    button->setObjectName(name);
    button->setText(caption);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    QObject::connect(button, &QToolButton::clicked, row, action);
    row->layout()->addWidget(button);
    return button;
}

QColor ApplyPanelToolTheme(QLabel *title, QWidget *panel)
{
    const Theme &theme = CurrentTheme();
    const QColor text = ResolveColor(theme.PanelColor);
    QFont font = title->font();
    font.setFamily(theme.BarFont);
    font.setBold(true);
    title->setFont(font);
    title->adjustSize();
    panel->setStyleSheet(PanelToolStyleSheet(text, panel->palette()));
    return text;
}

QLabel *AddBarTitle(QWidget *bar, const QString &text)
{
    auto *title = new QLabel(text, bar);
    title->setObjectName(QStringLiteral("lblTITLE"));
    title->setAttribute(Qt::WA_TransparentForMouseEvents); // the bar drags the window
    return title;
}

void PlaceBarTitle(QLabel *title, int barHeight)
{
    if (title)
        title->move(8, qMax(0, (barHeight - title->height()) / 2));
}

QVBoxLayout *AddPanelColumn(QWidget *panel, QWidget *commands)
{
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(6, 4, 6, 14);
    column->setSpacing(3);
    column->addWidget(commands);
    return column;
}
