#pragma once

#include "calendar/calendar_store.h"
#include "calendar/imported_calendars.h"
#include "calendar/month_layout.h"
#include "calendar/month_notes.h"
#include "themes/widget_window.h"

#include <QThreadPool>
#include <QTimer>

class CalendarRuler;
class CalendarSubscriber;
class DrawingLayer;
class DrawingToolBar;
class MonthPageView;
class QLabel;
class QMenu;
class QMimeData;
class QToolButton;

// fcln_IDX: a month page to write on and draw on. Each day takes a note (fcln_TXT), stickers
// and pictures (fcln_INS, or dropped on the day, placed clear of the day's text); pens and an
// eraser draw straight on the page, with undo and redo that last for the session, month by month.
//
// Other calendars (.ics files, imported or subscribed to) are shown read-only under the notes,
// each in its colour; the notes are exported as an .ics file. The first day of the week follows
// the locale or the user's choice, and a drawing keeps its ink on its days when it changes.
//
// Everything is kept in the calendar folder as soon as it changes: the month's drawing as
// "YYYY-MM.png" (in the background a moment after the last stroke, and at once when the month
// or the window changes) and its notes as "YYYY-MM.txt". A file that cannot be read is set aside with a
// message; the month then starts from what could be read.
class CalendarWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit CalendarWidget(QWidget *parent = nullptr);
    ~CalendarWidget() override;

    QSize defaultSize() const override { return QSize(780, 580); }
    QSize minimumUsableSize() const override;

    // Shows the month of `date` with that day chosen (a day of another month turns the page).
    void showDate(const QDate &date);
    const MonthLayout &shownMonth() const { return m_layout; }
    QDate selectedDate() const;
    const MonthNotes &notes() const { return m_notes; }
    MonthPageView *page() const { return m_page; }

    // Opens the note of `date` (fcln_TXT), or puts a sticker or picture on it (fcln_INS).
    void editNote(const QDate &date);
    void insertOnDay(const QDate &date);
    // Puts a dropped picture (or picture file) on the day under `pagePos` (page view pixels).
    bool dropPicture(const QMimeData *data, const QPoint &pagePos);
    // Sets the note of a day of the shown month and keeps it; an empty note removes it.
    void setNote(const QDate &date, const QString &note);

    // Imports an .ics file as a calendar shown under the notes. False when it cannot be read;
    // the user has been told why and nothing changed.
    bool importCalendar(const QString &path);
    // Starts a subscription to an .ics address; the calendar appears when it has been fetched.
    void subscribeTo(const QString &address);
    bool removeCalendar(int index);
    const ImportedCalendars &importedCalendars() const { return m_imported; }

    enum class ExportSpan
    {
        Month,
        Year,
        Everything
    };
    // Writes the notes of the shown month, its year or every month as an .ics file. False when it
    // could not be written; the user has been told.
    bool exportNotes(ExportSpan span, const QString &path);

    // The first day of the week: 0 follows the locale, else Qt::Monday .. Qt::Sunday. The page
    // is laid out again, each day's ink moving with its day; kept in the settings.
    void setFirstDayChoice(int choice);
    int firstDayChoice() const { return m_firstDayChoice; }

    // Today's note, read from the calendar folder (for the dashboard's tile).
    static QString noteForToday();

    // Writes what is not yet in the folder (the drawing waits a moment after each stroke).
    // False when something could not be written; the user has been told.
    bool saveNow();

public slots:
    void ThemeElementsUpdate() override;

protected:
    void relayout() override;
    void saveValues() override;
    bool settleBeforeClose() override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildCommandRow(QWidget *row);
    QWidget *buildPageGrid();
    void installShortcuts();
    void loadMonth(const MonthLayout &layout);
    DrawingLayer *layerFor(const MonthLayout &layout);
    void forgetOtherLayers();
    void showEventMarks();
    void fillCalendarsMenu();
    void chooseCalendarFile();
    void askForAddress();
    void chooseExportFile(ExportSpan span);
    void chooseColor(int index);
    bool isCalendarFile(const QMimeData *data, QString *path = nullptr) const;
    void removeNote(const QDate &date);
    // Puts `image` on the day to be moved and scaled, at most `share` of the day's size.
    void placePicture(const QDate &date, const QImage &image, qreal share);
    void drawingChanged();
    void saveDrawingInBackground();
    void drawingSaved(int ticket, int changes, bool saved, const QString &error);
    bool saveDrawing();
    bool saveNotes();
    void reportSaveError(const QString &error);
    void applyPens();
    void showWeekNumbers(bool shown);
    void showUndoState();
    void showHint();
    void followToday();

    CalendarStore m_store;
    ImportedCalendars m_imported;
    CalendarSubscriber *m_subscriber = nullptr;
    QTimer m_refreshTimer;
    int m_firstDayChoice = 0;
    // The drawing of each month seen in this session, with its undo history, most recent last.
    QList<QPair<QString, DrawingLayer *>> m_layers;
    MonthLayout m_layout;
    MonthNotes m_notes;
    bool m_notesUnsaved = false;
    QString m_lastSaveError;
    DrawingLayer *m_layer;
    MonthPageView *m_page = nullptr;
    CalendarRuler *m_weekdays = nullptr;
    CalendarRuler *m_weekNumbers = nullptr;
    QWidget *m_weekCorner = nullptr;
    DrawingToolBar *m_tools = nullptr;
    QLabel *m_title = nullptr;
    QLabel *m_month = nullptr;
    QLabel *m_hint = nullptr;
    QToolButton *m_undo = nullptr;
    QToolButton *m_redo = nullptr;
    QToolButton *m_weeksButton = nullptr;
    QMenu *m_calendarsMenu = nullptr;
    QTimer m_saveTimer;
    QThreadPool m_savePool;
    int m_saveTicket = 0;     // counts the writes started; only the last one's answer counts
    int m_drawingChanges = 0; // counts the drawing's changes, to tell whether a write is current
    QTimer m_midnight;
};
