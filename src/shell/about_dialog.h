#pragma once

#include "themes/themed_dialog.h"

// The About window ("mdb_ABT"): the program, its version, the credits of the data it ships and
// the attribution link of the live weather data.
class AboutDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit AboutDialog(QWidget *parent = nullptr);

    // "1.0.0" from the build.
    static QString versionText();
    // The shipped credits page (Markdown); a short note when the resource is missing.
    static QString creditsText();
    // A link in the given colour (a label keeps the colour its rich text was laid out with).
    static QString linkHtml(const QString &href, const QString &caption, const QString &colour);

public slots:
    // Links take the panel's text colour so they read on any theme.
    void ThemeElementsUpdate() override;
};
