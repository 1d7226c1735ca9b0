#include "calendar/calendar_store.h"

#include "calendar/month_layout.h"
#include "calendar/month_page_remap.h"
#include "core/app_paths.h"
#include "core/file_helpers.h"
#include "core/safe_file_write.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QLocale>

namespace {

// Qt takes a PNG's compression as 0..100 and scales it to zlib's levels 0..9, so 11 is level 1,
// the fastest that packs at all. A page is mostly transparent: level 1 already makes it small,
// and Qt's default (level 6) takes about half as long again for a page full of ink.
constexpr int kPngCompression = 11;

// The PNG text key that records the first day of the week a page was drawn with (1 Monday .. 7).
const QString kFirstDayKey = QStringLiteral("First Day Of Week");

// Gives up looking for a free name to move a damaged file to after this many tries.
constexpr int kMaxSetAsideNumber = 999;

QString tr(const char *text, int n = -1)
{
    return QCoreApplication::translate("CalendarStore", text, nullptr, n);
}

QString shown(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

// "November 2026", in the user's language, for messages.
QString monthName(int year, int month)
{
    return QLocale().toString(QDate(year, month, 1), QStringLiteral("MMMM yyyy"));
}

void tell(QString *out, const QString &message)
{
    if (out)
        *out = message;
}

QImage blankPage()
{
    QImage page(MonthLayout::pageSize(), QImage::Format_ARGB32_Premultiplied);
    page.fill(Qt::transparent);
    return page;
}

// True when no pixel of the page shows: then there is no drawing to keep.
bool isFullyTransparent(const QImage &page)
{
    if (page.isNull())
        return true;
    if (!page.hasAlphaChannel())
        return false;
    const bool argb32 =
        page.format() == QImage::Format_ARGB32 || page.format() == QImage::Format_ARGB32_Premultiplied;
    const QImage argb = argb32 ? page : page.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < argb.height(); ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x)
            if (qAlpha(line[x]) != 0)
                return false;
    }
    return true;
}

// Removes a file that should no longer be there; a file already gone is fine.
bool removeIfPresent(const QString &path, QString *error)
{
    QFile file(path);
    if (file.remove() || !file.exists())
        return true;
    tell(error, tr("%1 could not be removed (%2).").arg(shown(path), file.errorString()));
    return false;
}

bool ensureFolder(const QString &folder, QString *error)
{
    if (CreateFolderIfMissing(folder))
        return true;
    tell(error, tr("The calendar folder %1 could not be created.").arg(shown(folder)));
    return false;
}

// What the user is told about a damaged file: `what` happened, and where the file went.
QString setAsideMessage(const QString &what, const QString &path)
{
    const QString aside = CalendarStore::setAside(path);
    if (aside.isEmpty())
        return tr("%1 The file could not be moved aside either: it is still %2, and saving this "
                  "month will replace it.")
            .arg(what, shown(path));
    return tr("%1 The file as it was is kept as %2.").arg(what, shown(aside));
}

QByteArray pngBytes(const QImage &page, Qt::DayOfWeek firstDayOfWeek, QString *error)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    writer.setCompression(kPngCompression);
    // The key travels as a text chunk of the PNG; setting it copies the pixels once, which is
    // small beside making the PNG.
    QImage noted = page;
    noted.setText(kFirstDayKey, QString::number(int(firstDayOfWeek)));
    if (writer.write(noted))
        return bytes;
    tell(error, tr("The drawing could not be made into a PNG picture (%1).").arg(writer.errorString()));
    return {};
}

} // namespace

CalendarStore::CalendarStore(const QString &folder) : m_folder(folder) {}

QString CalendarStore::defaultFolder()
{
    return AppPaths::dataPath(QStringLiteral("calendar"));
}

QString CalendarStore::pathOf(int year, int month, const QString &suffix) const
{
    return QDir(m_folder).filePath(MonthLayout(year, month, Qt::Monday).fileStem() + suffix);
}

QString CalendarStore::notesPath(int year, int month) const
{
    return pathOf(year, month, QStringLiteral(".txt"));
}

QString CalendarStore::drawingPath(int year, int month) const
{
    return pathOf(year, month, QStringLiteral(".png"));
}

MonthNotes CalendarStore::loadNotes(int year, int month, QString *problem) const
{
    const QString path = notesPath(year, month);
    QFile file(path);
    // Opening first keeps a month without notes, the common case, to a single failed call.
    if (!file.open(QIODevice::ReadOnly)) {
        if (file.exists())
            tell(problem, setAsideMessage(tr("The notes for %1 could not be opened (%2).")
                                              .arg(monthName(year, month), file.errorString()),
                                          path));
        return MonthNotes(year, month);
    }
    const QByteArray bytes = file.readAll();
    const bool readFailed = file.error() != QFileDevice::NoError;
    file.close();
    int badLines = 0;
    MonthNotes notes = MonthNotes::fromText(year, month, bytes, &badLines);
    if (readFailed) {
        tell(problem,
             setAsideMessage(tr("The notes for %1 could not be read to the end.").arg(monthName(year, month)),
                             path));
    } else if (badLines > 0) {
        tell(problem, setAsideMessage(tr("%n line(s) of the notes for %1 could not be read and are not "
                                         "shown.",
                                         badLines)
                                          .arg(monthName(year, month)),
                                      path));
    }
    return notes;
}

bool CalendarStore::saveNotes(const MonthNotes &notes, QString *error) const
{
    const QString path = notesPath(notes.year(), notes.month());
    if (notes.isEmpty())
        return removeIfPresent(path, error);
    if (!ensureFolder(m_folder, error))
        return false;
    QString reason;
    if (WriteFileSafely(path, notes.toText(), &reason))
        return true;
    tell(error, tr("The notes for %1 could not be saved: %2. The file there before, if any, is unchanged.")
                    .arg(monthName(notes.year(), notes.month()), reason));
    return false;
}

QImage CalendarStore::loadDrawing(int year, int month, QString *problem) const
{
    // No first day of the week: the page as the file lays it out.
    return loadDrawing(MonthLayout(year, month, Qt::DayOfWeek(0)), problem);
}

QImage CalendarStore::loadDrawing(const MonthLayout &layout, QString *problem) const
{
    const int year = layout.year();
    const int month = layout.month();
    const QString path = drawingPath(year, month);
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (file.exists())
            tell(problem, setAsideMessage(tr("The drawing for %1 could not be opened (%2).")
                                              .arg(monthName(year, month), file.errorString()),
                                          path));
        return blankPage();
    }
    QImageReader reader(&file);
    QImage image = reader.read();
    file.close();
    bool known = false;
    const int drawnWith = image.text(kFirstDayKey).toInt(&known);
    if (image.isNull()) {
        tell(problem, setAsideMessage(tr("The drawing for %1 could not be read as a picture (%2).")
                                          .arg(monthName(year, month), reader.errorString()),
                                      path));
        return blankPage();
    }
    // Premultiplied before scaling, so that transparent pixels do not bleed their colour.
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    if (image.size() != MonthLayout::pageSize())
        image = image.scaled(MonthLayout::pageSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    if (int(layout.firstDayOfWeek()) >= Qt::Monday) {
        const Qt::DayOfWeek from = known && drawnWith >= Qt::Monday && drawnWith <= Qt::Sunday
                                       ? Qt::DayOfWeek(drawnWith)
                                       : LocaleFirstDayOfWeek();
        image = RemapPageCells(image, MonthLayout(year, month, from), layout);
    }
    return image;
}

bool CalendarStore::saveDrawing(int year, int month, const QImage &page, QString *error) const
{
    return saveDrawing(MonthLayout(year, month, LocaleFirstDayOfWeek()), page, error);
}

bool CalendarStore::saveDrawing(const MonthLayout &layout, const QImage &page, QString *error) const
{
    const int year = layout.year();
    const int month = layout.month();
    const QString path = drawingPath(year, month);
    if (isFullyTransparent(page))
        return removeIfPresent(path, error);
    const QByteArray bytes = pngBytes(page, layout.firstDayOfWeek(), error);
    if (bytes.isEmpty() || !ensureFolder(m_folder, error))
        return false;
    QString reason;
    if (WriteFileSafely(path, bytes, &reason))
        return true;
    tell(error, tr("The drawing for %1 could not be saved: %2. The file there before, if any, is unchanged.")
                    .arg(monthName(year, month), reason));
    return false;
}

QString CalendarStore::noteFor(const QDate &date) const
{
    if (!date.isValid())
        return {};
    QFile file(notesPath(date.year(), date.month()));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return MonthNotes::fromText(date.year(), date.month(), file.readAll()).note(date.day());
}

QMap<QDate, QString> CalendarStore::notesBetween(const QDate &first, const QDate &last) const
{
    QMap<QDate, QString> notes;
    const QStringList files =
        QDir(m_folder).entryList({QStringLiteral("\?\?\?\?-\?\?.txt")}, QDir::Files, QDir::Name);
    for (const QString &name : files) {
        bool yearOk = false;
        bool monthOk = false;
        const int year = name.left(4).toInt(&yearOk);
        const int month = name.mid(5, 2).toInt(&monthOk);
        const QDate firstOfMonth(year, month, 1);
        if (!yearOk || !monthOk || !firstOfMonth.isValid() || firstOfMonth > last ||
            firstOfMonth.addMonths(1) <= first)
            continue;
        QFile file(QDir(m_folder).filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const MonthNotes monthNotes = MonthNotes::fromText(year, month, file.readAll());
        for (int day : monthNotes.days()) {
            const QDate date(year, month, day);
            if (date >= first && date <= last)
                notes.insert(date, monthNotes.note(day));
        }
    }
    return notes;
}

QString CalendarStore::setAside(const QString &path)
{
    const QFileInfo info(path);
    const QString suffix = info.suffix().isEmpty() ? QString() : QLatin1Char('.') + info.suffix();
    const QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    const QString base = info.dir().filePath(info.completeBaseName() + QStringLiteral(" damaged ") + stamp);
    for (int n = 1; n <= kMaxSetAsideNumber; ++n) {
        const QString candidate =
            n == 1 ? base + suffix : QStringLiteral("%1 %2%3").arg(base).arg(n).arg(suffix);
        if (QFileInfo::exists(candidate))
            continue;
        return QFile::rename(path, candidate) ? candidate : QString();
    }
    return {};
}
