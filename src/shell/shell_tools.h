#pragma once

#include <functional>

class QWidget;

// The tools the dashboard's Tools menu and the shared context menu start: the theme editor, the
// webcam viewer and the share-theme window. Each part registers how its tool opens; an item whose
// tool is not registered stays disabled.
class ShellTools
{
public:
    enum Tool
    {
        ThemeEditor,
        WebcamViewer,
        ShareTheme
    };
    using Launcher = std::function<void(QWidget *owner)>;

    static void setLauncher(Tool tool, Launcher launcher);
    static bool isAvailable(Tool tool);
    // Opens the tool over `owner` (may be null); does nothing for an unregistered tool.
    static void launch(Tool tool, QWidget *owner = nullptr);

    // The webcam viewer ("mdb_WCM") is open and visible; remembered as "Start-Webcam" at exit.
    static bool isWebcamViewerOpen();
};
