#pragma once

#include <QLabel>
#include <QPalette>
#include <QString>

// A link for a credit line, drawn in the label's own text colour: a link's usual blue may not
// read on a theme's panel, and the underline still marks it as a link. Rebuild it when the
// theme changes.
inline QString CreditLink(const QLabel *label, const QString &href, const QString &caption)
{
    const QString colour = label->palette().color(QPalette::WindowText).name();
    return QStringLiteral("<a style=\"color:%1\" href=\"%2\">%3</a>").arg(colour, href, caption.toHtmlEscaped());
}
