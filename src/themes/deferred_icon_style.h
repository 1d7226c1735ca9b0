#pragma once

#include <QProxyStyle>

// The program's style: the platform's own, except that its standard icons are read when they
// are first drawn instead of when they are asked for.
//
// Qt reads a standard icon's picture the moment a widget asks for it, and the first picture read
// loads every image-format plugin installed to ask whether it knows the file. A menu bar asks
// for its overflow arrow as it is made, so the dashboard paid for all those plugins before it
// could appear, for an arrow shown only when the menu bar is too narrow.
//
// A tab's close button, and the file, folder and drive icons of the side panels' lists
// (DrawnFileIcons), are drawn, not read from pictures: the notes editor shows them in its first
// frame, and reading them would load those plugins before the editor could appear.
class DeferredIconStyle : public QProxyStyle
{
    Q_OBJECT
public:
    DeferredIconStyle();

    QIcon standardIcon(StandardPixmap icon, const QStyleOption *option = nullptr,
                       const QWidget *widget = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
};
