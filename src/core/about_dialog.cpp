#include "core/about_dialog.h"

#include "core/update_check.h"
#include "themes/theme_painter.h"

#include <QFile>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

AboutDialog::AboutDialog(QWidget *parent)
    : ThemedDialog(QStringLiteral("mdb_ABT"), QStringLiteral("About Vantora"), parent)
{
    auto *layout = new QVBoxLayout;
    layout->setSpacing(10);

    auto *header = new QHBoxLayout;
    const int iconSide = fontMetrics().height() * 4;
    auto *icon = new QLabel;
    icon->setObjectName(QStringLiteral("imgICON"));
    icon->setPixmap(QIcon(QStringLiteral(":/icons/vantora.svg")).pixmap(iconSide, iconSide));
    header->addWidget(icon, 0, Qt::AlignTop);

    auto *names = new QVBoxLayout;
    auto *program = new QLabel(QStringLiteral("Vantora"));
    program->setObjectName(QStringLiteral("lblPROGRAM"));
    QFont big = program->font();
    big.setPointSizeF(big.pointSizeF() * 1.8);
    big.setBold(true);
    program->setFont(big);
    auto *version = new QLabel(QStringLiteral("Version %1").arg(versionText()));
    version->setObjectName(QStringLiteral("lblVERSION"));
    auto *summary = new QLabel(QStringLiteral("Themed widgets for your desktop: clock and alarms, stopwatch, "
                                              "timer, calculator, calendar, notes, whiteboard, weather and "
                                              "webcams."));
    summary->setWordWrap(true);
    names->addWidget(program);
    names->addWidget(version);
    names->addWidget(summary);
    header->addLayout(names, 1);
    layout->addLayout(header);

    auto *attribution =
        new QLabel(QStringLiteral("<a href=\"https://open-meteo.com/\">Weather data by Open-Meteo.com</a>"));
    attribution->setObjectName(QStringLiteral("lbhOPENMETEO"));
    attribution->setOpenExternalLinks(true);
    attribution->setTextInteractionFlags(Qt::TextBrowserInteraction);
    layout->addWidget(attribution);

    if (UpdateCheck::isEnabled()) {
        const QString site = UpdateCheck::websiteAddress();
        auto *website = new QLabel(QStringLiteral("<a href=\"%1\">%1</a>").arg(site.toHtmlEscaped()));
        website->setObjectName(QStringLiteral("lbhWEBSITE"));
        website->setOpenExternalLinks(true);
        layout->addWidget(website);
    }

    auto *credits = new QTextBrowser;
    credits->setObjectName(QStringLiteral("txtCREDITS"));
    credits->setOpenExternalLinks(true);
    credits->setMarkdown(creditsText());
    const QFontMetrics fm(font());
    credits->setMinimumSize(fm.averageCharWidth() * 70, fm.height() * 14);
    layout->addWidget(credits, 1);

    auto *close = new QPushButton(QStringLiteral("&Close"));
    close->setObjectName(QStringLiteral("btnCLOSE"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(close);
    layout->addLayout(buttons);
    setPanelLayout(layout);
}

void AboutDialog::ThemeElementsUpdate()
{
    ThemedDialog::ThemeElementsUpdate();
    const QColor text = ResolveColor(CurrentTheme().PanelColor);
    for (const char *name : {"lbhOPENMETEO", "lbhWEBSITE"}) {
        if (auto *link = findChild<QLabel *>(QString::fromLatin1(name))) {
            QPalette pal = link->palette();
            pal.setColor(QPalette::Link, text);
            pal.setColor(QPalette::LinkVisited, text);
            link->setPalette(pal);
        }
    }
}

QString AboutDialog::versionText()
{
    return QStringLiteral("%1.%2.%3")
        .arg(VANTORA_VERSION_MAJOR)
        .arg(VANTORA_VERSION_MINOR)
        .arg(VANTORA_VERSION_PATCH);
}

QString AboutDialog::creditsText()
{
    QFile file(QStringLiteral(":/CREDITS.md"));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("The credits of the shipped data could not be read.");
    return QString::fromUtf8(file.readAll());
}
