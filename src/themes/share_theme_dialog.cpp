#include "themes/share_theme_dialog.h"

#include "themes/painted_frame.h"
#include "themes/theme_painter.h"
#include "themes/theme_presets.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QVBoxLayout>

namespace {

QPointer<ShareThemeDialog> g_dialog;
ShareThemeDialog::FileChooser g_fileChooser;

const char *const kFilter = QT_TRANSLATE_NOOP("ShareThemeDialog", "Theme presets (*.dcp);;All files (*)");

} // namespace

ShareThemeDialog::ShareThemeDialog(QWidget *parent)
    : ThemedDialog(QStringLiteral("mdb_SHR"), tr("Vantora Share Theme"), parent)
{
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout;
    layout->setSpacing(12);

    auto *intro = new QLabel(tr("Share your theme: export it to a preset file (.dcp) to pass on, or import a "
                                "preset file someone gave you. An imported theme is applied at once and kept "
                                "in the \"custom\" group of the theme editor."),
                             panel());
    intro->setObjectName(QStringLiteral("lblDESCRIPTION"));
    intro->setWordWrap(true);
    intro->setMinimumWidth(360);
    layout->addWidget(intro);

    auto *buttons = new QHBoxLayout;
    auto *exportButton = new QPushButton(tr("&Export Current Theme..."), panel());
    exportButton->setObjectName(QStringLiteral("btnEXPORT"));
    auto *importButton = new QPushButton(tr("&Import Theme..."), panel());
    importButton->setObjectName(QStringLiteral("btnIMPORT"));
    auto *closeButton = new QPushButton(tr("&Close"), panel());
    closeButton->setObjectName(QStringLiteral("btnCLOSE"));
    buttons->addWidget(exportButton);
    buttons->addWidget(importButton);
    buttons->addStretch(1);
    buttons->addWidget(closeButton);
    layout->addLayout(buttons);
    // Export and import each open a file chooser; Enter only closes.
    setDefaultButton(closeButton);

    m_status = new QLabel(panel());
    m_status->setObjectName(QStringLiteral("lblSTATUS"));
    m_status->setWordWrap(true);
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_status);
    setPanelLayout(layout);

    connect(exportButton, &QPushButton::clicked, this, &ShareThemeDialog::exportTheme);
    connect(importButton, &QPushButton::clicked, this, &ShareThemeDialog::importTheme);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::accept);
}

ShareThemeDialog *ShareThemeDialog::showDialog()
{
    if (!g_dialog)
        g_dialog = new ShareThemeDialog();
    g_dialog->show();
    g_dialog->raise();
    g_dialog->activateWindow();
    return g_dialog;
}

void ShareThemeDialog::setFileChooserForTesting(FileChooser chooser)
{
    g_fileChooser = std::move(chooser);
}

QString ShareThemeDialog::statusText() const
{
    return m_status->text();
}

QString ShareThemeDialog::chooseFile(bool save, const QString &suggestion)
{
    if (g_fileChooser)
        return g_fileChooser(save, suggestion);
    const QString filter = tr(kFilter);
    return save ? QFileDialog::getSaveFileName(this, tr("Export Theme"), suggestion, filter)
                : QFileDialog::getOpenFileName(this, tr("Import Theme"), suggestion, filter);
}

void ShareThemeDialog::exportTheme()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString path = chooseFile(true, QDir(documents).filePath(tr("My theme.dcp")));
    if (path.isEmpty())
        return;
    QString written;
    QString error;
    if (ExportTheme(path, CurrentTheme(), &written, &error))
        setStatus(tr("The theme was saved to %1.").arg(QDir::toNativeSeparators(written)));
    else
        setStatus(tr("The theme could not be saved to %1 (%2). Choose a folder you can write to.")
                      .arg(QDir::toNativeSeparators(written), error));
}

void ShareThemeDialog::importTheme()
{
    const QString path =
        chooseFile(false, QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    if (path.isEmpty())
        return;
    Theme theme;
    QString copy;
    switch (ImportPresetFile(path, CurrentTheme(), &theme, &copy)) {
    case ImportResult::NotAPreset:
        setStatus(tr("%1 is not a theme preset; nothing was changed.").arg(QFileInfo(path).fileName()));
        return;
    case ImportResult::CopyFailed:
        setStatus(
            tr("%1 could not be copied into the theme folder %2; nothing was changed.")
                .arg(QFileInfo(path).fileName(), QDir::toNativeSeparators(PresetFolderPath(QString()))));
        return;
    case ImportResult::Imported:
        break;
    }
    SetCurrentTheme(theme);
    SaveThemeToRegistry();
    setStatus(tr("The theme %1 is now in use.").arg(QFileInfo(copy).completeBaseName()));
}

void ShareThemeDialog::setStatus(const QString &text)
{
    m_status->setText(text);
}
