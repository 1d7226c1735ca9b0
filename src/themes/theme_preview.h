#pragma once

#include "themes/theme.h"

#include <QWidget>

class QLabel;
class PaintedFrame;

// A small widget painted in a given theme, bar above panel, with text of both: what a widget
// would look like. The theme editor shows the theme it edits here while its own controls stay
// in the desktop's style.
class ThemePreview : public QWidget
{
    Q_OBJECT
public:
    explicit ThemePreview(QWidget *parent = nullptr);

    void setTheme(const Theme &theme);

    // The average colour of the bar and of the panel as painted, what their text is read on.
    QColor barBackground() const;
    QColor panelBackground() const;

    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void layoutParts();

    PaintedFrame *m_bar;
    PaintedFrame *m_panel;
    QLabel *m_barText;
    QLabel *m_panelText;
};
