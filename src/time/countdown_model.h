#pragma once

#include <QObject>
#include <QString>

class QWidget;

// The countdown timer's count. The set time (txtSUBHRS/txtSUBMIN/txtSUBSECS) is stored under
// "ftim_IDX\Details" on every change; the running time (txtHRS/txtMIN/txtSECS) is three
// two-digit texts that are the only counter. States: idle (" Start "/" Stop "), counting
// (" Pause "/" Stop "), halted (" Resume "/" Reset "). A halted count is not resumed by the
// start button: its caption test looks for "Resume " without the leading blank, which the
// halted caption never equals, so a halted timer goes back to work only through reset.
class CountdownModel : public QObject
{
    Q_OBJECT
public:
    enum Field
    {
        Hours,
        Minutes,
        Seconds
    };

    explicit CountdownModel(QObject *parent = nullptr);

    static QString windowName() { return QStringLiteral("ftim_IDX"); }

    // Reads the set time from the settings and makes it the running time (idle state).
    void load();

    QString setField(Field field) const { return m_set[field]; }
    // Stores the set field at once. While idle the running time follows it, so that the
    // idle display always shows what the next start will count down.
    void setSetField(Field field, const QString &text);
    QString runningField(Field field) const { return m_running[field]; }

    bool isCounting() const { return m_counting; }
    QString startCaption() const { return m_startCaption; } // lblBTNSTART
    QString stopCaption() const { return m_stopCaption; }   // lblBTNSTOP

    // The tmrSTARTPLAY handler, once a second while counting.
    void tick();
    void clickStart();
    void clickStop();

    // The window over which the end message is shown.
    void setMessageOwner(QWidget *owner) { m_messageOwner = owner; }

    // Tests and the halted state only: puts a running field in place.
    void setRunningField(Field field, const QString &text);

signals:
    void fieldsChanged();
    void buttonsChanged();
    void countingChanged(bool counting);

private:
    qint64 runningNumber() const;
    void setCounting(bool counting);
    void setCaptions(const QString &start, const QString &stop);
    void setRunning(qint64 hours, qint64 minutes, qint64 seconds);
    void reloadRunning();
    void finish();

    QString m_set[3];
    QString m_running[3];
    bool m_counting = false;
    bool m_finishing = false;
    QString m_startCaption = QStringLiteral(" Start ");
    QString m_stopCaption = QStringLiteral(" Stop ");
    QWidget *m_messageOwner = nullptr;
};
