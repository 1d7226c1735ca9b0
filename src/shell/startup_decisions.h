#pragma once

#include <QList>
#include <QString>

// The choices the start-up, the dashboard and the end of the program make from the stored
// settings, kept apart from the windows so that tests check them directly.
class StartupDecisions
{
public:
    // What the hand-over shows once the choice is known.
    enum class HandOver
    {
        Dashboard,    // 8 and above (all widgets); also a choice that names no widget
        SingleWidget, // 0..7: that widget alone, the dashboard stays hidden
    };

    // What the dashboard does while it loads, from "mdb_SET\Details" and the first-run choice.
    struct DashboardLoadPlan
    {
        bool openWebcam = false;     // "Start-Webcam"
        bool startMinimised = false; // "Program Minimize on Start", all-widgets mode only
        QList<int> widgetsToOpen;    // start-load flags that are set, in index order
        // "Start-Show or Hide" is "Hidden": the all-widgets start leaves the dashboard in the
        // tray instead of showing it (the widgets it opens still show). Nothing in the program
        // writes the value; it is a hand-set preference, honoured only while a tray exists.
        bool startHidden = false;
    };

    // "Program-Choice" under "msg_WIZ\Details"; missing or non-numeric text gives -1.
    static int readProgramChoice();
    static void writeProgramChoice(int choice);

    // The wizard is shown only while no choice has been made.
    static bool showsWizard(int choice) { return choice == -1; }
    // A stored 9 or more is taken as it is and behaves as 8 (all widgets).
    static bool isAllWidgetsMode(int choice) { return choice >= 8; }
    static HandOver handOverFor(int choice);

    static DashboardLoadPlan dashboardLoadPlan(int choice);

    // The dashboard's close box hides it instead of ending the program when "Program Minimize
    // on Close" is 1, but only for the user's own close and only while a tray icon can bring it
    // back. Closes the program starts itself are never cancelled.
    static bool closeBoxHides(bool userClose, bool trayAvailable);
    // Minimising hides the dashboard when "Window Minimize" is 1 and a tray icon exists.
    static bool minimiseHides(bool trayAvailable);
};
