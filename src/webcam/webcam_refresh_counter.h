#pragma once

// The webcam viewer's automatic refresh, counted in ticks of its 400 ms timer.
//
// The period comes from the program settings as a number of seconds (60 for "1 Minute"), but it
// is counted in ticks, not seconds: after each restart the next one comes after period + 1
// ticks, so "1 Minute" fetches a new snapshot about every 24.4 seconds. That is how the viewer
// has always behaved, and users know its pace; the counting is kept as it is.
class WebcamRefreshCounter
{
public:
    // No period is shorter than this many ticks.
    static constexpr int MinimumPeriod = 30;
    static constexpr int TickMilliseconds = 400;

    explicit WebcamRefreshCounter(int period = MinimumPeriod) : m_period(period) {}

    // One tick of the timer; true when the snapshot is to be fetched again now.
    bool tick();
    // As after a restart: the next one comes after period + 1 ticks.
    void restart() { m_counter = 2; }

    int period() const { return m_period; }
    void setPeriod(int period) { m_period = period; }
    int counter() const { return m_counter; }

    // The period the program settings chose, for every viewer of the run (seconds, used as ticks).
    static int programPeriod();
    static void setProgramPeriod(int period);

private:
    int m_period;
    int m_counter = 2;
};
