#include "calendar/calendar_widget.h"

#include "calendar/calendar_insert_dialog.h"
#include "calendar/calendar_ruler.h"
#include "calendar/calendar_subscriber.h"
#include "calendar/day_note_dialog.h"
#include "calendar/ics_note_writer.h"
#include "calendar/month_page_view.h"
#include "calendar/picture_spot.h"
#include "core/clock_source.h"
#include "core/drawing/drawing_layer.h"
#include "core/drawing/floating_item.h"
#include "core/picture_files.h"
#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "core/widget_index.h"
#include "themes/drawing_tool_bar.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/panel_tool_style.h"
#include "themes/theme_colors.h"
#include "themes/theme_painter.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QColorDialog>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QStandardPaths>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
const QString kWindow = QStringLiteral("fcln_IDX");
const QString kWeekNumbers = QStringLiteral("Week Numbers");
const QString kFirstDay = QStringLiteral("First Day Of Week");
// Months whose drawing and undo history are kept while the window is open.
constexpr int kKeptMonths = 12;
// How often the subscriptions are looked at; each is fetched once its copy is a day old.
constexpr int kRefreshCheckMs = 60 * 60 * 1000;
// The drawing is written this long after the last change, so a run of strokes is one write.
constexpr int kSaveDelayMs = 400;
// A sticker takes this part of its day's height; a picture at most this part of the day.
constexpr qreal kStickerShare = 0.55;
constexpr qreal kPictureShare = 0.9;

QColor mix(const QColor &a, const QColor &b, qreal bShare)
{
    return QColor::fromRgbF(a.redF() + (b.redF() - a.redF()) * bShare,
                            a.greenF() + (b.greenF() - a.greenF()) * bShare,
                            a.blueF() + (b.blueF() - a.blueF()) * bShare);
}

QDate today()
{
    return ClockSource::now().date();
}

// 0 follows the locale.
Qt::DayOfWeek firstDayFor(int choice)
{
    return choice >= Qt::Monday && choice <= Qt::Sunday ? Qt::DayOfWeek(choice) : LocaleFirstDayOfWeek();
}

int storedFirstDayChoice()
{
    const int choice = ReadIntDetail(kWindow, kFirstDay, 0);
    return choice >= Qt::Monday && choice <= Qt::Sunday ? choice : 0;
}

QIcon colorIcon(const QColor &color)
{
    QPixmap swatch(14, 14);
    swatch.fill(color);
    return QIcon(swatch);
}

} // namespace

CalendarWidget::CalendarWidget(QWidget *parent)
    : WidgetWindow(WidgetWindowName(WidgetCalendar), WidgetCalendar, tr("Vantora Calendar"), parent),
      m_store(CalendarStore::defaultFolder()), m_imported(CalendarStore::defaultFolder()),
      m_firstDayChoice(storedFirstDayChoice()),
      m_layout(today().year(), today().month(), firstDayFor(m_firstDayChoice)),
      m_layer(new DrawingLayer(this))
{
    setAcceptDrops(true);
    QStringList problems;
    m_imported.load(&problems);
    m_subscriber = new CalendarSubscriber(m_imported, this);
    m_title = AddBarTitle(bar(), tr("Calendar"));
    auto *commands = new QWidget(panel());
    buildCommandRow(commands);
    QVBoxLayout *column = AddPanelColumn(panel(), commands);
    m_tools = new DrawingToolBar(
        kWindow, {DrawingPens::Pointer, DrawingPens::Pen, DrawingPens::Highlighter, DrawingPens::Eraser},
        panel());
    column->addWidget(m_tools);
    column->addWidget(buildPageGrid(), 1);
    m_hint = new QLabel(panel());
    m_hint->setObjectName(QStringLiteral("lblHINT"));
    m_hint->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    column->addWidget(m_hint);

    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(kSaveDelayMs);
    connect(&m_saveTimer, &QTimer::timeout, this, &CalendarWidget::saveDrawingInBackground);
    m_savePool.setMaxThreadCount(1); // one write at a time, in the order they were asked for
    m_midnight.setSingleShot(true);
    m_midnight.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_midnight, &QTimer::timeout, this, &CalendarWidget::followToday);

    connect(m_page, &InkCanvas::undoStateChanged, this, &CalendarWidget::showUndoState);
    connect(m_page, &InkCanvas::placedItemChanged, this, &CalendarWidget::showHint);
    connect(m_page, &MonthPageView::dateChosen, this, &CalendarWidget::showDate);
    connect(m_page, &MonthPageView::noteRequested, this, &CalendarWidget::editNote);
    connect(m_page, &MonthPageView::noteRemovalRequested, this, &CalendarWidget::removeNote);
    connect(m_tools, &DrawingToolBar::pensChanged, this, &CalendarWidget::applyPens);

    connect(m_subscriber, &CalendarSubscriber::subscribed, this, &CalendarWidget::showEventMarks);
    connect(m_subscriber, &CalendarSubscriber::refreshed, this, &CalendarWidget::showEventMarks);
    connect(m_subscriber, &CalendarSubscriber::subscribeFailed, this, [this](const QString &message) {
        ShowNotice(tr("Cannot Subscribe to the Calendar"), message, true, this);
    });
    m_refreshTimer.setInterval(kRefreshCheckMs);
    m_refreshTimer.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_refreshTimer, &QTimer::timeout, m_subscriber, &CalendarSubscriber::refreshDue);
    m_refreshTimer.start();

    installShortcuts();
    showWeekNumbers(ReadBoolDetail(kWindow, kWeekNumbers, false));
    applyPens();
    followToday();
    showDate(today());
    m_page->setFocus(); // the arrow keys move between days as soon as the window is active
    if (!problems.isEmpty())
        ShowNotice(tr("Imported Calendar Damaged"), problems.join(QLatin1Char('\n')), true, this);
    m_subscriber->refreshDue();
}

CalendarWidget::~CalendarWidget()
{
    m_savePool.waitForDone(); // a write in progress finishes whole
}

QSize CalendarWidget::minimumUsableSize() const
{
    return QSize(520, 400);
}

QDate CalendarWidget::selectedDate() const
{
    return m_page->selectedDate();
}

// ---- building ----

void CalendarWidget::buildCommandRow(QWidget *row)
{
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    AddPanelCommand(row, QStringLiteral("btnPREVIOUS"), QStringLiteral("\u25C0"),
                    tr("Previous month (Page Up)"), [this] { showDate(selectedDate().addMonths(-1)); });
    AddPanelCommand(row, QStringLiteral("btnTODAY"), tr("Today"), tr("Back to today (Home)"),
                    [this] { showDate(today()); });
    AddPanelCommand(row, QStringLiteral("btnNEXT"), QStringLiteral("\u25B6"), tr("Next month (Page Down)"),
                    [this] { showDate(selectedDate().addMonths(1)); });
    m_month = new QLabel(row);
    m_month->setObjectName(QStringLiteral("lblMONTH"));
    QFont big = m_month->font();
    big.setPointSizeF(big.pointSizeF() * 1.35);
    big.setBold(true);
    m_month->setFont(big);
    layout->addSpacing(8);
    layout->addWidget(m_month);
    layout->addStretch(1);
    AddPanelCommand(row, QStringLiteral("btnNOTE"), tr("Note"), tr("Write the chosen day's note (Enter)"),
                    [this] { editNote(selectedDate()); });
    AddPanelCommand(row, QStringLiteral("btnINSERT"), tr("Insert"),
                    tr("Put a sticker or a picture on the chosen day (Ctrl+I)"),
                    [this] { insertOnDay(selectedDate()); });
    layout->addSpacing(8);
    m_undo =
        AddPanelCommand(row, QStringLiteral("btnUNDO"), tr("Undo"), QString(), [this] { m_page->undo(); });
    m_redo =
        AddPanelCommand(row, QStringLiteral("btnREDO"), tr("Redo"), QString(), [this] { m_page->redo(); });
    layout->addSpacing(8);
    QToolButton *calendars = AddPanelCommand(row, QStringLiteral("btnCALENDARS"), tr("Calendars"),
                                             tr("Import, subscribe to and export calendars (.ics)"), [] {});
    m_calendarsMenu = new QMenu(calendars);
    m_calendarsMenu->setObjectName(QStringLiteral("mnuCALENDARS"));
    connect(m_calendarsMenu, &QMenu::aboutToShow, this, &CalendarWidget::fillCalendarsMenu);
    calendars->setMenu(m_calendarsMenu);
    calendars->setPopupMode(QToolButton::InstantPopup);
    m_weeksButton = AddPanelCommand(row, QStringLiteral("btnWEEKS"), tr("Weeks"), tr("Show the week numbers"),
                                    [this] { showWeekNumbers(m_weeksButton->isChecked()); });
    m_weeksButton->setCheckable(true);
}

QWidget *CalendarWidget::buildPageGrid()
{
    auto *area = new QWidget(panel());
    auto *grid = new QGridLayout(area);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    m_weekdays = new CalendarRuler(CalendarRuler::Weekdays, area);
    m_weekNumbers = new CalendarRuler(CalendarRuler::WeekNumbers, area);
    m_weekCorner = new QWidget(area);
    m_page = new MonthPageView(m_layer, area);
    grid->addWidget(m_weekCorner, 0, 0);
    grid->addWidget(m_weekdays, 0, 1);
    grid->addWidget(m_weekNumbers, 1, 0);
    grid->addWidget(m_page, 1, 1);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(1, 1);
    return area;
}

void CalendarWidget::installShortcuts()
{
    const auto add = [this](const QKeySequence &keys, const std::function<void()> &action) {
        AddWindowShortcut(this, keys, action);
    };
    add(QKeySequence(Qt::Key_PageUp), [this] { showDate(selectedDate().addMonths(-1)); });
    add(QKeySequence(Qt::Key_PageDown), [this] { showDate(selectedDate().addMonths(1)); });
    add(QKeySequence(Qt::CTRL | Qt::Key_PageUp), [this] { showDate(selectedDate().addYears(-1)); });
    add(QKeySequence(Qt::CTRL | Qt::Key_PageDown), [this] { showDate(selectedDate().addYears(1)); });
    add(QKeySequence(Qt::Key_Home), [this] { showDate(today()); });
    add(QKeySequence::Undo, [this] { m_page->undo(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_Y), [this] { m_page->redo(); });
    add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), [this] { m_page->redo(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_I), [this] { insertOnDay(selectedDate()); });
    add(QKeySequence(Qt::Key_S), [this] { m_tools->setTool(DrawingPens::Pointer); });
    add(QKeySequence(Qt::Key_P), [this] { m_tools->setTool(DrawingPens::Pen); });
    add(QKeySequence(Qt::Key_H), [this] { m_tools->setTool(DrawingPens::Highlighter); });
    add(QKeySequence(Qt::Key_E), [this] { m_tools->setTool(DrawingPens::Eraser); });
    add(QKeySequence(Qt::Key_BracketLeft),
        [this] { m_tools->setWidthChoice(m_tools->pens().widthChoice() - 1); });
    add(QKeySequence(Qt::Key_BracketRight),
        [this] { m_tools->setWidthChoice(m_tools->pens().widthChoice() + 1); });
}

// ---- months and days ----

void CalendarWidget::showDate(const QDate &date)
{
    if (!date.isValid())
        return;
    if (date.year() != m_layout.year() || date.month() != m_layout.month() || m_notes.month() == 0)
        loadMonth(MonthLayout(date.year(), date.month(), m_layout.firstDayOfWeek()));
    m_page->setSelectedDate(date);
    showHint();
}

void CalendarWidget::loadMonth(const MonthLayout &layout)
{
    // The month being left is written first, whole: a placed sticker is fixed.
    if (m_notes.month() != 0) {
        m_page->settle();
        saveNow();
    }
    m_layout = layout;
    QString problem;
    m_notes = m_store.loadNotes(layout.year(), layout.month(), &problem);
    m_notesUnsaved = false;
    if (!problem.isEmpty())
        ShowNotice(tr("Calendar Notes Damaged"), problem, true, this);
    m_layer = layerFor(layout);
    m_page->setLayer(m_layer);
    m_lastSaveError.clear();

    m_page->setMonth(layout, m_notes);
    showEventMarks();
    m_weekdays->setMonth(layout);
    m_weekNumbers->setMonth(layout);
    const QString title =
        QLocale().standaloneMonthName(layout.month()) + QLatin1Char(' ') + QString::number(layout.year());
    m_month->setText(title);
    m_title->setText(tr("Calendar - %1").arg(title));
    m_title->adjustSize();
    setWindowTitle(tr("Vantora Calendar - %1").arg(title));
    showUndoState();
}

DrawingLayer *CalendarWidget::layerFor(const MonthLayout &layout)
{
    // A month seen before in this session comes back with its history: undo goes on there.
    const QString key = layout.fileStem();
    for (int i = 0; i < m_layers.size(); ++i) {
        if (m_layers.at(i).first == key) {
            m_layers.append(m_layers.takeAt(i));
            return m_layers.last().second;
        }
    }
    DrawingLayer *layer = m_layers.isEmpty() ? m_layer : new DrawingLayer(this);
    connect(layer, &DrawingLayer::historyChanged, this, &CalendarWidget::drawingChanged,
            Qt::UniqueConnection);
    QString problem;
    layer->reset(m_store.loadDrawing(layout, &problem));
    layer->setClean();
    if (!problem.isEmpty())
        ShowNotice(tr("Calendar Drawing Damaged"), problem, true, this);
    // A month left without anything to undo is read again when it comes back; only histories
    // take memory worth keeping, and the oldest of them go first.
    for (int i = int(m_layers.size()) - 1; i >= 0; --i) {
        DrawingLayer *kept = m_layers.at(i).second;
        if (kept != m_layer && !kept->canUndo() && !kept->canRedo())
            delete m_layers.takeAt(i).second;
    }
    m_layers.append({key, layer});
    while (m_layers.size() > kKeptMonths)
        delete m_layers.takeFirst().second; // the oldest is never the one shown
    return layer;
}

void CalendarWidget::forgetOtherLayers()
{
    for (const auto &kept : std::as_const(m_layers))
        if (kept.second != m_layer)
            delete kept.second;
    m_layers.clear();
}

void CalendarWidget::showEventMarks()
{
    const QDate first = m_layout.firstShown();
    m_page->setEventMarks(
        m_imported.marksBetween(first, first.addDays(MonthLayout::kRows * MonthLayout::kColumns - 1)));
}

// ---- calendars of other programs ----

bool CalendarWidget::importCalendar(const QString &path)
{
    QString error;
    if (m_imported.addFile(path, &error) < 0) {
        ShowNotice(tr("Cannot Import the Calendar"),
                   tr("\"%1\" was not imported: %2 Nothing has been changed.")
                       .arg(QFileInfo(path).fileName(),
                            error.endsWith(QLatin1Char('.')) ? error : error + QLatin1Char('.')),
                   true, this);
        return false;
    }
    showEventMarks();
    return true;
}

void CalendarWidget::subscribeTo(const QString &address)
{
    QString error;
    if (CalendarSubscriber::fetchAddress(address, &error).isEmpty()) {
        ShowNotice(tr("Cannot Subscribe to the Calendar"), error, true, this);
        return;
    }
    m_subscriber->subscribe(address);
}

bool CalendarWidget::removeCalendar(int index)
{
    QString error;
    if (!m_imported.remove(index, &error)) {
        if (!error.isEmpty())
            ShowNotice(tr("Cannot Remove the Calendar"), error, true, this);
        return false;
    }
    showEventMarks();
    return true;
}

bool CalendarWidget::exportNotes(ExportSpan span, const QString &path)
{
    saveNotes(); // what is on the page is what is exported
    QDate first(1, 1, 1);
    QDate last(9999, 12, 31);
    if (span == ExportSpan::Month) {
        first = m_layout.firstDay();
        last = first.addDays(m_layout.daysInMonth() - 1);
    } else if (span == ExportSpan::Year) {
        first = QDate(m_layout.year(), 1, 1);
        last = QDate(m_layout.year(), 12, 31);
    }
    QString error;
    if (!IcsNoteWriter::write(path, m_store.notesBetween(first, last), QDateTime::currentDateTimeUtc(),
                              &error)) {
        ShowNotice(tr("Cannot Export the Notes"), error, true, this);
        return false;
    }
    return true;
}

void CalendarWidget::setFirstDayChoice(int choice)
{
    m_firstDayChoice = choice >= Qt::Monday && choice <= Qt::Sunday ? choice : 0;
    WriteDetail(kWindow, kFirstDay, QString::number(m_firstDayChoice));
    const Qt::DayOfWeek first = firstDayFor(m_firstDayChoice);
    if (first == m_layout.firstDayOfWeek())
        return;
    // The month is written with the first day it was drawn with, then read back for the new one;
    // the histories kept are in the old layout and go.
    m_page->settle();
    saveNow();
    forgetOtherLayers();
    const QDate selected = selectedDate();
    m_notes = MonthNotes();
    loadMonth(MonthLayout(m_layout.year(), m_layout.month(), first));
    m_page->setSelectedDate(selected);
    showHint();
}

void CalendarWidget::fillCalendarsMenu()
{
    m_calendarsMenu->clear();
    m_calendarsMenu->addAction(tr("&Import Calendar File..."), this, &CalendarWidget::chooseCalendarFile);
    m_calendarsMenu->addAction(tr("&Subscribe to a Calendar Address..."), this,
                               &CalendarWidget::askForAddress);
    QMenu *exports = m_calendarsMenu->addMenu(tr("&Export Notes"));
    exports->addAction(tr("This &Month..."), this, [this] { chooseExportFile(ExportSpan::Month); });
    exports->addAction(tr("This &Year..."), this, [this] { chooseExportFile(ExportSpan::Year); });
    exports->addAction(tr("&All Notes..."), this, [this] { chooseExportFile(ExportSpan::Everything); });

    if (m_imported.count() > 0)
        m_calendarsMenu->addSection(tr("Shown Calendars"));
    for (int i = 0; i < m_imported.count(); ++i) {
        const ImportedCalendars::Source &source = m_imported.source(i);
        QMenu *menu = m_calendarsMenu->addMenu(colorIcon(source.color), source.name);
        menu->setToolTipsVisible(true);
        if (!source.address.isEmpty()) {
            QAction *about = menu->addAction(
                source.lastProblem.isEmpty()
                    ? tr("Fetched %1")
                          .arg(QLocale().toString(source.fetched.toLocalTime(), QLocale::ShortFormat))
                    : tr("Last fetch failed: %1").arg(source.lastProblem));
            about->setEnabled(false);
            about->setToolTip(source.address);
        }
        if (!source.address.isEmpty())
            menu->addAction(tr("Fetch &Now"), this, [this, i] { m_subscriber->refresh(i); });
        menu->addAction(tr("&Colour..."), this, [this, i] { chooseColor(i); });
        menu->addAction(tr("&Remove"), this, [this, i] {
            if (ConfirmDestructiveAction(
                    tr("Remove Calendar"),
                    tr("Stop showing \"%1\"? Your own notes stay.").arg(m_imported.source(i).name),
                    tr("&Remove"), this))
                removeCalendar(i);
        });
    }

    m_calendarsMenu->addSeparator();
    QMenu *weeks = m_calendarsMenu->addMenu(tr("&First Day of the Week"));
    auto *group = new QActionGroup(weeks);
    const auto addDay = [&](int choice, const QString &name) {
        QAction *action = weeks->addAction(name, this, [this, choice] { setFirstDayChoice(choice); });
        action->setCheckable(true);
        action->setChecked(choice == m_firstDayChoice);
        group->addAction(action);
    };
    addDay(0, tr("As the Language Says (%1)").arg(QLocale().dayName(LocaleFirstDayOfWeek())));
    for (int day : {Qt::Monday, Qt::Sunday, Qt::Saturday})
        addDay(day, QLocale().dayName(day));
}

void CalendarWidget::chooseCalendarFile()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Import a Calendar"), QStandardPaths::writableLocation(QStandardPaths::DownloadLocation),
        tr("iCalendar files (*.ics *.ical *.ifb *.icalendar);;All files (*)"));
    if (!path.isEmpty())
        importCalendar(path);
}

void CalendarWidget::askForAddress()
{
    bool ok = false;
    const QString address = QInputDialog::getText(
        this, tr("Subscribe to a Calendar"), tr("Address of the calendar (.ics, http, https or webcal):"),
        QLineEdit::Normal, QString(), &ok);
    if (ok && !address.trimmed().isEmpty())
        subscribeTo(address);
}

void CalendarWidget::chooseExportFile(ExportSpan span)
{
    const QString name = span == ExportSpan::Month  ? tr("Calendar notes %1.ics").arg(m_month->text())
                         : span == ExportSpan::Year ? tr("Calendar notes %1.ics").arg(m_layout.year())
                                                    : tr("Calendar notes.ics");
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString path = QFileDialog::getSaveFileName(this, tr("Export Notes"), QDir(folder).filePath(name),
                                                tr("iCalendar files (*.ics)"));
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".ics");
    exportNotes(span, path);
}

void CalendarWidget::chooseColor(int index)
{
    const QColor color = QColorDialog::getColor(m_imported.source(index).color, this, tr("Calendar Colour"));
    if (!color.isValid())
        return;
    m_imported.setColor(index, color);
    showEventMarks();
}

QString CalendarWidget::noteForToday()
{
    return CalendarStore(CalendarStore::defaultFolder()).noteFor(today());
}

void CalendarWidget::followToday()
{
    m_page->setToday(today());
    emit tileDetailChanged();
    // Woken just after midnight to move the mark to the new day; nothing runs in between.
    const QDateTime now = ClockSource::now();
    const qint64 untilMidnight = now.msecsTo(QDateTime(now.date().addDays(1), QTime(0, 0))) + 1000;
    m_midnight.start(int(qBound<qint64>(1000, untilMidnight, qint64(24) * 3600 * 1000)));
}

// ---- notes ----

void CalendarWidget::editNote(const QDate &date)
{
    if (!date.isValid())
        return;
    showDate(date);
    DayNoteDialog dialog(date, m_notes.note(date.day()), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    setNote(date, dialog.deleteRequested() ? QString() : dialog.note());
}

void CalendarWidget::setNote(const QDate &date, const QString &note)
{
    if (!m_layout.isInMonth(date))
        return;
    m_notes.setNote(date.day(), note);
    m_notesUnsaved = true;
    m_page->setNotes(m_notes);
    saveNotes();
    showHint();
    if (date == today())
        emit tileDetailChanged();
}

void CalendarWidget::removeNote(const QDate &date)
{
    if (!m_layout.isInMonth(date) || m_notes.note(date.day()).isEmpty())
        return;
    if (!ConfirmDestructiveAction(
            tr("Delete Note"),
            tr("Delete the note of %1?").arg(QLocale().toString(date, QLocale::LongFormat)), tr("&Delete"),
            this))
        return;
    setNote(date, QString());
}

// ---- pictures and stickers ----

void CalendarWidget::placePicture(const QDate &date, const QImage &image, qreal share)
{
    // It arrives beside the day's text, not over it, to be moved and scaled.
    FloatingItem item = FloatingItem::picture(image);
    item.setRect(ClearSpotForPicture(m_layout.dayRect(date), m_page->textArea(date), image.size(), share));
    m_page->placeItem(item);
}

void CalendarWidget::insertOnDay(const QDate &date)
{
    if (!date.isValid())
        return;
    showDate(date);
    CalendarInsertDialog dialog(date, this);
    const QRectF day = m_layout.dayRect(date);
    const int stickerSide = qRound(day.height() * kStickerShare);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QImage image = dialog.chosenImage(stickerSide);
    if (!image.isNull())
        placePicture(date, image, dialog.isPicture() ? kPictureShare : 1.0);
}

// ---- pictures dropped on a day ----

bool CalendarWidget::isCalendarFile(const QMimeData *data, QString *path) const
{
    for (const QUrl &url : data->urls()) {
        const QString file = url.toLocalFile();
        if (!file.isEmpty() &&
            QFileInfo(file).suffix().compare(QLatin1String("ics"), Qt::CaseInsensitive) == 0) {
            if (path)
                *path = file;
            return true;
        }
    }
    return false;
}

void CalendarWidget::dragEnterEvent(QDragEnterEvent *event)
{
    if (isCalendarFile(event->mimeData()) || event->mimeData()->hasImage() ||
        !FirstPictureFile(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void CalendarWidget::dropEvent(QDropEvent *event)
{
    QString calendar;
    if (isCalendarFile(event->mimeData(), &calendar)) {
        event->acceptProposedAction();
        importCalendar(calendar);
        return;
    }
    if (dropPicture(event->mimeData(), m_page->mapFrom(this, event->position().toPoint())))
        event->acceptProposedAction();
}

bool CalendarWidget::dropPicture(const QMimeData *data, const QPoint &pagePos)
{
    if (!m_page->rect().contains(pagePos))
        return false;
    QImage image = qvariant_cast<QImage>(data->imageData());
    if (image.isNull()) {
        const QString file = FirstPictureFile(data);
        QString error;
        image = ReadPictureFile(file, &error);
        if (image.isNull()) {
            ShowNotice(tr("Cannot Insert the Picture"),
                       tr("\"%1\" could not be read as a picture: %2.").arg(file, error), true, this);
            return false;
        }
    }
    const QDate date = m_page->dateAt(pagePos);
    showDate(date);
    placePicture(date, image, kPictureShare);
    return true;
}

// ---- saving ----

void CalendarWidget::drawingChanged()
{
    ++m_drawingChanges;
    showUndoState();
    if (!m_layer->isClean())
        m_saveTimer.start();
}

void CalendarWidget::saveDrawingInBackground()
{
    if (m_layer->isClean())
        return;
    // Making the PNG takes tens of milliseconds: it is done away from the window, on a copy
    // of the page that the next stroke does not touch (the image is shared until written to).
    const int ticket = ++m_saveTicket;
    const int changes = m_drawingChanges;
    const MonthLayout layout = m_layout;
    const QImage page = m_layer->image();
    const QString folder = m_store.folder();
    m_savePool.start([this, ticket, changes, layout, page, folder] {
        QString error;
        const bool saved = CalendarStore(folder).saveDrawing(layout, page, &error);
        // Queued to the window's thread; the window waits for this task before it is deleted.
        QMetaObject::invokeMethod(
            this, [this, ticket, changes, saved, error] { drawingSaved(ticket, changes, saved, error); },
            Qt::QueuedConnection);
    });
}

void CalendarWidget::drawingSaved(int ticket, int changes, bool saved, const QString &error)
{
    if (ticket != m_saveTicket)
        return; // a later save has the last word
    if (!saved) {
        reportSaveError(error);
        return;
    }
    // Drawn on since the copy was taken: the timer is running again for the rest.
    if (changes == m_drawingChanges)
        m_layer->setClean();
    m_lastSaveError.clear();
}

bool CalendarWidget::saveDrawing()
{
    m_saveTimer.stop();
    m_savePool.waitForDone();
    ++m_saveTicket; // what the background write reports no longer counts
    if (m_layer->isClean())
        return true;
    QString error;
    if (!m_store.saveDrawing(m_layout, m_layer->image(), &error)) {
        reportSaveError(error);
        return false;
    }
    m_layer->setClean();
    m_lastSaveError.clear();
    return true;
}

bool CalendarWidget::saveNotes()
{
    if (!m_notesUnsaved)
        return true;
    QString error;
    if (!m_store.saveNotes(m_notes, &error)) {
        reportSaveError(error);
        return false;
    }
    m_notesUnsaved = false;
    m_lastSaveError.clear();
    return true;
}

void CalendarWidget::reportSaveError(const QString &error)
{
    // Told once per failure, not after every stroke; the change stays on screen and is
    // written with the next one once there is room again.
    if (error == m_lastSaveError)
        return;
    m_lastSaveError = error;
    ShowNotice(tr("Cannot Keep the Calendar"),
               error + QLatin1Char(' ') +
                   tr("Your change is still shown and will be written with the next one."),
               true, this);
}

bool CalendarWidget::saveNow()
{
    const bool drawing = saveDrawing();
    return saveNotes() && drawing;
}

// ---- state shown ----

void CalendarWidget::applyPens()
{
    const DrawingPens &pens = m_tools->pens();
    m_page->setTool(pens.tool() == DrawingPens::Pointer ? InkCanvas::Tool::Pointer : InkCanvas::Tool::Ink);
    m_page->setPen(pens.pen(m_page->layerScale()));
    showHint();
}

void CalendarWidget::showWeekNumbers(bool shown)
{
    m_weeksButton->setChecked(shown);
    m_weekNumbers->setVisible(shown);
    m_weekCorner->setVisible(shown);
}

void CalendarWidget::showUndoState()
{
    m_undo->setEnabled(m_page->canUndo());
    m_redo->setEnabled(m_layer->canRedo() && !m_page->hasPlacedItem());
    m_undo->setToolTip(m_page->hasPlacedItem() ? tr("Take the sticker or picture being placed away (Ctrl+Z)")
                       : m_layer->canUndo()    ? tr("Undo %1 (Ctrl+Z)").arg(m_layer->undoLabel())
                                               : tr("Nothing to undo"));
    m_redo->setToolTip(m_layer->canRedo() ? tr("Redo %1 (Ctrl+Y)").arg(m_layer->redoLabel())
                                          : tr("Nothing to redo"));
}

void CalendarWidget::showHint()
{
    if (!m_hint)
        return;
    QString hint;
    if (m_page->hasPlacedItem()) {
        hint =
            tr("Drag to move it, drag a corner to scale it; Enter or a click beside it puts it on the day, "
               "Escape takes it away.");
    } else if (m_tools->pens().tool() == DrawingPens::Pointer) {
        const QDate date = selectedDate();
        const QString day = QLocale().toString(date, QLocale::LongFormat);
        hint = m_notes.note(date.day()).isEmpty() || !m_layout.isInMonth(date)
                   ? tr("%1: double-click or press Enter to write a note.").arg(day)
                   : tr("%1: double-click or press Enter to change its note, Delete to remove it.").arg(day);
    } else {
        hint = tr("Drawing on %1: Shift draws a straight line, Ctrl a rectangle; Undo takes a stroke back.")
                   .arg(m_month->text());
    }
    m_hint->setText(hint);
}

// ---- theme and window ----

void CalendarWidget::ThemeElementsUpdate()
{
    WidgetWindow::ThemeElementsUpdate();
    const QColor text = ApplyPanelToolTheme(m_title, panel());
    const QColor main = ResolveColor(CurrentTheme().MainColor);
    m_tools->setInk(text);
    m_weekdays->setTextColor(text);
    m_weekNumbers->setTextColor(text);

    // The page is paper tinted with the theme's colour, so ink and notes read under any theme.
    MonthPageView::Colors colors;
    colors.paper = mix(Qt::white, main, 0.04);
    colors.weekend = mix(Qt::white, main, 0.10);
    colors.otherMonth = mix(QColor(236, 236, 236), main, 0.06);
    colors.line = mix(QColor(190, 190, 190), main, 0.30);
    colors.accent = ReadableOn(colors.paper, main.darker(main.lightness() > 150 ? 160 : 100), 3.0);
    m_page->setColors(colors);
}

void CalendarWidget::relayout()
{
    PlaceBarTitle(m_title, barHeight());
    // Pen widths are in screen pixels: the page's scale changes with the window.
    if (m_page)
        applyPens();
}

void CalendarWidget::saveValues()
{
    m_tools->pens().save();
    WriteDetail(kWindow, kWeekNumbers, SettingFromBool(m_weeksButton->isChecked()));
}

bool CalendarWidget::settleBeforeClose()
{
    m_page->settle();
    return saveNow() || AskChoice(tr("Close the Calendar?"),
                                  tr("Some changes to %1 could not be written to the calendar folder. Close "
                                     "anyway and lose them?")
                                      .arg(m_month->text()),
                                  tr("&Close"), tr("&Keep Open"), false, this);
}

void CalendarWidget::closeEvent(QCloseEvent *event)
{
    if (!isClosingSettled() && !settleBeforeClose()) {
        event->ignore();
        return;
    }
    WidgetWindow::closeEvent(event);
}
