// A second copy of the program, as far as the settings file is concerned: writes `count`
// values named "<prefix> <n>" into the file given, one save per value, then exits.
// Used by the settings tests to run two writers at once.
#include "core/platform/reg_file_backend.h"

#include <QCoreApplication>
#include <QStringList>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() != 4)
        return 2;
    RegFileBackend backend(args.at(1));
    const QString key = QStringLiteral("SOFTWARE\\Vantora\\falc_SET\\Details");
    const int count = args.at(3).toInt();
    int failed = 0;
    for (int n = 0; n < count; ++n) {
        const QString name = QStringLiteral("%1 %2").arg(args.at(2)).arg(n);
        if (!backend.write(Hive::CurrentUser, key, name, SettingsValue::fromText(name)))
            ++failed;
    }
    return failed == 0 ? 0 : 1;
}
