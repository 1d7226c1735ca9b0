#include "shell/about_dialog.h"

#include "shell/program_icon.h"
#include "shell/update_check.h"
#include "themes/theme_painter.h"

#include <QFile>
#include <QHBoxLayout>
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
    icon->setPixmap(ProgramIcon::drawn(iconSide, devicePixelRatioF()));
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

    auto *attribution = new QLabel;
    attribution->setObjectName(QStringLiteral("lbhOPENMETEO"));
    attribution->setProperty("href", QStringLiteral("https://open-meteo.com/"));
    attribution->setProperty("caption", QStringLiteral("Weather data by Open-Meteo.com"));
    attribution->setOpenExternalLinks(true);
    attribution->setTextInteractionFlags(Qt::TextBrowserInteraction);
    layout->addWidget(attribution);

    if (UpdateCheck::isEnabled()) {
        const QString site = UpdateCheck::websiteAddress();
        auto *website = new QLabel;
        website->setObjectName(QStringLiteral("lbhWEBSITE"));
        website->setProperty("href", site);
        website->setProperty("caption", site);
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
    setDefaultButton(close);
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
    // A label's rich text keeps the link colour it was first laid out with, whatever its
    // palette says later, so the links are written again in the panel's text colour.
    const QString colour = ResolveColor(CurrentTheme().PanelColor).name();
    for (const char *name : {"lbhOPENMETEO", "lbhWEBSITE"}) {
        if (auto *link = findChild<QLabel *>(QString::fromLatin1(name)))
            link->setText(linkHtml(link->property("href").toString(), link->property("caption").toString(), colour));
    }
}

QString AboutDialog::linkHtml(const QString &href, const QString &caption, const QString &colour)
{
    return QStringLiteral("<a href=\"%1\" style=\"color:%3\">%2</a>")
        .arg(href.toHtmlEscaped(), caption.toHtmlEscaped(), colour);
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
