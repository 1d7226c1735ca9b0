#include "themes/panel_tool_style.h"

#include "themes/program_style.h"
#include "themes/theme.h"
#include "themes/theme_painter.h"

#include <QColor>
#include <QLabel>
#include <QLayout>
#include <QPalette>
#include <QToolButton>
#include <QVBoxLayout>

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

void PreparePanelTools(QWidget *panel)
{
    ProgramStyle::markToolPanel(panel);
}

QColor ApplyPanelToolTheme(QLabel *title, QWidget *panel)
{
    const Theme &theme = CurrentTheme();
    QFont font = title->font();
    font.setFamily(theme.BarFont);
    font.setBold(true);
    title->setFont(font);
    title->adjustSize();
    ProgramStyle::markToolPanel(panel);
    panel->update();
    return panel->palette().color(QPalette::WindowText);
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
