#include "shell/application_start.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vantora"));
    QApplication::setOrganizationName(QStringLiteral("Vantora"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/vantora.svg")));

    ApplicationStart start;
    start.run();
    return app.exec();
}
