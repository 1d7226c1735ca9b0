#include "notes/notes_settings.h"

#include "core/app_paths.h"
#include "core/settings_store.h"
#include "themes/theme_painter.h"

#include <QDir>

namespace {

const QString kDocumentType = QStringLiteral("Document Type");
const QString kFontName = QStringLiteral("Font Name");
const QString kFontSize = QStringLiteral("Font Size");
const QString kFontColor = QStringLiteral("Font Color");
const QString kTextFolder = QStringLiteral("Text-Folder-Loc");
const QString kPictureFolder = QStringLiteral("Picture-Folder-Loc");


QString FolderOrDefault(const QString &valueName)
{
    const QString stored = ReadDetail(QLatin1String(kNotesWindowName), valueName, QString());
    if (!stored.isEmpty() && QDir(stored).exists())
        return stored;
    return AppPaths::dataFolder();
}

} // namespace

bool NewDocumentSettings::isRichText() const
{
    return documentType == QLatin1String(kRichTextChoice);
}

QColor NewDocumentSettings::resolvedFontColor() const
{
    return ResolveColor(fontColor);
}

NewDocumentSettings NewDocumentSettings::load()
{
    const QString window = QLatin1String(kNotesSettingsName);
    NewDocumentSettings s;
    s.documentType = ReadDetail(window, kDocumentType, QLatin1String(kRichTextChoice));
    s.fontName = ReadDetail(window, kFontName, QStringLiteral("Tahoma"));
    if (s.fontName.isEmpty())
        s.fontName = QStringLiteral("Tahoma");
    s.fontSize = ReadIntDetail(window, kFontSize, 12);
    if (s.fontSize < kSmallestFontSize || s.fontSize > kLargestFontSize)
        s.fontSize = 12;
    s.fontColor = TextToColor(ReadDetail(window, kFontColor, ColorToText(kDefaultFontColor)), kDefaultFontColor);
    return s;
}

void NewDocumentSettings::save() const
{
    const QString window = QLatin1String(kNotesSettingsName);
    WriteDetail(window, kDocumentType, documentType);
    WriteDetail(window, kFontName, fontName);
    WriteDetail(window, kFontSize, QString::number(fontSize));
    WriteDetail(window, kFontColor, ColorToText(fontColor));
}

QString DocumentFolderSetting()
{
    return FolderOrDefault(kTextFolder);
}

QString PictureFolderSetting()
{
    return FolderOrDefault(kPictureFolder);
}

void SetDocumentFolderSetting(const QString &folder)
{
    WriteDetail(QLatin1String(kNotesWindowName), kTextFolder, folder);
}

void SetPictureFolderSetting(const QString &folder)
{
    WriteDetail(QLatin1String(kNotesWindowName), kPictureFolder, folder);
}
