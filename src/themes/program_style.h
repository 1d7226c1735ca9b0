#pragma once

#include "themes/deferred_icon_style.h"

class QColor;
class QPalette;

// The program's style: DeferredIconStyle's, plus the look of the tools on painted panels (the
// notes editor, the whiteboard, the calendar, the print preview). There the tool buttons are
// flat, tinted with the panel's text colour under the mouse and when switched on, and framed in
// it when they have the keyboard's focus; the tabs are rounded, tinted the same way, the chosen
// one in the page's colours; labels take the panel's text colour from its palette.
//
// This was a style sheet on each panel. A style sheet puts every widget under the panel, the
// text page and file lists included, through Qt's style sheet machinery, which matched its
// rules for each widget and each state before anything was drawn: about a tenth of the notes
// editor's start. Drawn here, it costs nothing for the widgets it does not touch.
class ProgramStyle : public DeferredIconStyle
{
    Q_OBJECT
public:
    // Gives the tools under `panel` this look (undone when the panel goes).
    static void markToolPanel(QWidget *panel);
    static bool isOnToolPanel(const QWidget *widget);

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                           const QWidget *widget = nullptr) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl sub,
                         const QWidget *widget = nullptr) const override;
    QRect subElementRect(SubElement element, const QStyleOption *option,
                         const QWidget *widget = nullptr) const override;

private:
    void drawToolButton(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const;
    void drawTabShape(const QStyleOption *option, QPainter *painter, const QWidget *widget) const;
};
