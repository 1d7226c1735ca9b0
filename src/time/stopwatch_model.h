#pragma once

#include <QObject>
#include <QString>

// The stopwatch's count. The elapsed time lives only in its text "mm:ss.ff": every tick reads
// the text back and advances it by one tenth of a second, shown as a fraction that steps by
// 6 (00, 06 ... 54) before rolling into the seconds. Minutes have no upper field and simply
// grow past 59 and 99. A late or missed tick is a lost tenth; the system clock is not used.
class StopwatchModel : public QObject
{
    Q_OBJECT
public:
    explicit StopwatchModel(QObject *parent = nullptr);

    static QString startText() { return QStringLiteral("00:00.00"); }
    // One tick applied to a display text.
    static QString advance(const QString &text);

    QString text() const { return m_text; }
    bool isRunning() const { return m_running; }
    QString startCaption() const { return m_startCaption; } // lblSTART
    QString stopCaption() const { return m_stopCaption; }   // lblSTOP
    // lblSTOP does not respond while the count runs.
    bool stopEnabled() const { return !m_running; }

    // The tmrSTOPWATCH handler: advances the text while running, does nothing while halted.
    void tick();
    void clickStart(); // start, pause, resume
    void clickStop();  // reset, only while halted

    // Tests and restoring a view only: puts a display text in place.
    void setText(const QString &text);

signals:
    void textChanged(const QString &text);
    void buttonsChanged();
    void runningChanged(bool running);

private:
    void setCaptions(const QString &start, const QString &stop);

    QString m_text = startText();
    bool m_running = false;
    QString m_startCaption = QStringLiteral(" Start ");
    QString m_stopCaption = QStringLiteral(" Stop ");
};
