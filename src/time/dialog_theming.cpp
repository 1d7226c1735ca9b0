#include "time/dialog_theming.h"

#include "themes/theme.h"
#include "themes/theme_painter.h"

#include <QPalette>
#include <QWidget>

void DialogTheming::apply(QWidget *panel, std::initializer_list<QWidget *> buttons)
{
    const Theme &t = CurrentTheme();
    QPalette pal = panel->palette();
    // Half-way between the text and the background reads as "off" on light and dark themes.
    pal.setColor(QPalette::Disabled, QPalette::WindowText,
                 ResolveColor(BlendColor(t.PanelColor, t.MainColor, 110)));
    panel->setPalette(pal);
    const QString css = PushButtonStyleSheet(t);
    for (QWidget *holder : buttons)
        holder->setStyleSheet(css);
}
