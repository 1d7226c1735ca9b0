// Saves a theme preset over and over, alternating between two themes, and prints a line after
// each save. The preset tests kill it in the middle of its saves and look at what is left.
#include "themes/theme_presets.h"

#include <QCoreApplication>
#include <QTextStream>

#include "preset_saver_themes.h"

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 2)
        return 2;
    QTextStream out(stdout);
    for (int n = 0;; ++n) {
        const bool first = n % 2 == 0;
        if (!WritePreset(args.at(1), first ? FirstSavedTheme() : SecondSavedTheme(),
                         first ? QStringLiteral("First") : QStringLiteral("Second")))
            return 1;
        out << "saved" << Qt::endl;
    }
}
