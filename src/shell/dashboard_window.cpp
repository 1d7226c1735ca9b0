#include "shell/dashboard_window.h"

#include "core/settings_store.h"
#include "core/shipped_data.h"
#include "core/widget_index.h"
#include "core/window_placement.h"
#include "shell/about_dialog.h"
#include "shell/dashboard_tile.h"
#include "shell/program_icon.h"
#include "shell/program_settings_dialog.h"
#include "shell/shell_tools.h"
#include "shell/startup_decisions.h"
#include "shell/tray_icon.h"
#include "shell/update_check.h"
#include "shell/widget_context_menu.h"
#include "shell/widget_registry.h"
#include "shell/wizard_dialog.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"
#include "themes/widget_window.h"
#include "weather/weather_station.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QIcon>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int kColumns = 4;
constexpr int kWeatherDelayMs = 1000;
const QString kSettings = QStringLiteral("mdb_SET");

enum ShowHideMode
{
    HideAll = 1,
    ShowAll = 2
};

bool isWidgetIndex(int index)
{
    return index >= 0 && index < WidgetCount;
}

void setTextColor(QWidget *w, const QColor &color)
{
    QPalette pal = w->palette();
    pal.setColor(QPalette::WindowText, color);
    w->setPalette(pal);
}

// Weight 255 gives a, 0 gives b.
QColor mix(const QColor &a, const QColor &b, int weight)
{
    return ResolveColor(BlendColor(ToOleColor(a), ToOleColor(b), weight));
}

// The background of a chosen item: darker under light text, lighter under dark text, so the
// text reads at least as well as on `background`.
QColor chosenBackground(const QColor &background, const QColor &text)
{
    const QColor away =
        RelativeLuminance(text) > RelativeLuminance(background) ? QColor(Qt::black) : QColor(Qt::white);
    return mix(away, background, 56);
}

} // namespace

DashboardWindow::DashboardWindow(QWidget *parent) : QMainWindow(parent), m_updateCheck(new UpdateCheck(this))
{
    setObjectName(QStringLiteral("mdb_IDX"));
    setWindowTitle(QStringLiteral("Vantora Dashboard"));
    setWindowIcon(ProgramIcon::forWindows()); // the tray takes it from here
    buildMenus();
    buildBody();

    WidgetRegistry &registry = WidgetRegistry::instance();
    connect(&registry, &WidgetRegistry::widgetOpened, this, &DashboardWindow::refreshState);
    connect(&registry, &WidgetRegistry::widgetClosed, this, &DashboardWindow::refreshState);
    connect(&registry, &WidgetRegistry::tileDetailChanged, this, &DashboardWindow::refreshState);
    refreshState();
    resize(sizeHint());
}

DashboardWindow::~DashboardWindow() = default;

void DashboardWindow::buildMenus()
{
    QMenu *file = menuBar()->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("mnuFILE"));
    QAction *settings =
        file->addAction(QStringLiteral("&Program Settings..."), this, &DashboardWindow::openProgramSettings);
    settings->setObjectName(QStringLiteral("mnuSETTINGS"));
    file->addSeparator();
    QAction *exit = file->addAction(QStringLiteral("E&xit"), this, &DashboardWindow::exitProgram);
    exit->setObjectName(QStringLiteral("mnuEXIT"));
    exit->setShortcut(QKeySequence::Quit);

    QMenu *widgets = menuBar()->addMenu(QStringLiteral("&Widgets"));
    widgets->setObjectName(QStringLiteral("mnuWIDGETS"));
    static const char *const kCaptions[] = {"&Alarm Clock", "Calc&ulator", "Calen&dar",   "&Notes",
                                            "&Stopwatch",   "&Timer",      "Whiteb&oard", "&Weather"};
    for (int i = 0; i < WidgetCount; ++i) {
        QAction *item = widgets->addAction(QString::fromLatin1(kCaptions[i]));
        item->setObjectName(QStringLiteral("mnuWIDGET_%1").arg(i));
        item->setCheckable(true);
        item->setShortcut(QKeySequence(Qt::CTRL | Qt::Key(Qt::Key_1 + i)));
        connect(item, &QAction::triggered, this, [this, i] { toggleWidget(i); });
        m_widgetItems[i] = item;
    }
    widgets->addSeparator();
    m_showAllItem = widgets->addAction(QStringLiteral("Show A&ll Opened Widgets"), this,
                                       [this] { ShowHideAll(ShowAll); });
    m_showAllItem->setObjectName(QStringLiteral("mnuSHOWALL"));
    m_hideAllItem = widgets->addAction(QStringLiteral("&Hide All Opened Widgets"), this,
                                       [this] { ShowHideAll(HideAll); });
    m_hideAllItem->setObjectName(QStringLiteral("mnuHIDEALL"));

    QMenu *tools = menuBar()->addMenu(QStringLiteral("&Tools"));
    tools->setObjectName(QStringLiteral("mnuTOOLS"));
    m_themeItem =
        tools->addAction(QStringLiteral("Edit &Theme Settings..."), this, &DashboardWindow::openThemeEditor);
    m_themeItem->setObjectName(QStringLiteral("mnuTHEME"));
    m_webcamItem =
        tools->addAction(QStringLiteral("W&ebcam Wallpaper..."), this, &DashboardWindow::openWebcam);
    m_webcamItem->setObjectName(QStringLiteral("mnuWEBCAM"));
    m_shareItem = tools->addAction(QStringLiteral("Sha&re Theme..."), this, &DashboardWindow::openShareTheme);
    m_shareItem->setObjectName(QStringLiteral("mnuSHARE"));
    // Tools become available as their parts register; look again each time the menu opens.
    connect(tools, &QMenu::aboutToShow, this, &DashboardWindow::refreshState);

    QMenu *help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->setObjectName(QStringLiteral("mnuHELP"));
    QAction *wizard = help->addAction(QStringLiteral("Wi&zard Setup..."), this, &DashboardWindow::openWizard);
    wizard->setObjectName(QStringLiteral("mnuWIZARD"));
    QAction *update =
        help->addAction(QStringLiteral("Check for &Updates..."), this, [this] { StartUpdateCheck(true); });
    update->setObjectName(QStringLiteral("mnuUPDATE"));
    update->setVisible(UpdateCheck::isEnabled());
    help->addSeparator();
    QAction *about = help->addAction(QStringLiteral("&About Vantora..."), this, &DashboardWindow::openAbout);
    about->setObjectName(QStringLiteral("mnuABOUT"));
}

void DashboardWindow::buildBody()
{
    auto *body = new QWidget;
    auto *layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    const int em = fontMetrics().height();

    m_bar = new PaintedFrame(QStringLiteral("pfrBAR"));
    auto *barLayout = new QHBoxLayout(m_bar);
    barLayout->setContentsMargins(em, em * 2 / 3, em, em * 2 / 3);
    barLayout->setSpacing(em * 2 / 3);
    auto *icon = new QLabel;
    icon->setObjectName(QStringLiteral("imgICON"));
    icon->setPixmap(ProgramIcon::drawn(em * 2 + em / 2, devicePixelRatioF()));
    barLayout->addWidget(icon);
    auto *names = new QVBoxLayout;
    names->setSpacing(0);
    m_title = new QLabel(QStringLiteral("Vantora"));
    m_title->setObjectName(QStringLiteral("lablTITLE"));
    m_subtitle = new QLabel(QStringLiteral("Your desktop widgets"));
    m_subtitle->setObjectName(QStringLiteral("lblSUBTITLE"));
    names->addWidget(m_title);
    names->addWidget(m_subtitle);
    barLayout->addLayout(names);
    barLayout->addStretch(1);
    barLayout->addWidget(buildWeather());
    layout->addWidget(m_bar);

    m_panel = new PaintedFrame(QStringLiteral("pfrPANEL"));
    auto *panelLayout = new QVBoxLayout(m_panel);
    panelLayout->setContentsMargins(em, em, em, em * 2 / 3);
    panelLayout->setSpacing(em * 2 / 3);
    auto *grid = new QGridLayout;
    grid->setSpacing(em / 2);
    for (int i = 0; i < WidgetCount; ++i) {
        auto *tile = new DashboardTile(i);
        connect(tile, &DashboardTile::selectRequested, this, &DashboardWindow::setIndxSel);
        connect(tile, &DashboardTile::toggleRequested, this, &DashboardWindow::toggleWidget);
        connect(tile, &DashboardTile::moveRequested, this, &DashboardWindow::moveSelection);
        grid->addWidget(tile, i / kColumns, i % kColumns);
        m_tiles[i] = tile;
    }
    panelLayout->addLayout(grid, 1);

    m_notice = new QLabel;
    m_notice->setObjectName(QStringLiteral("lblNOTICE"));
    m_notice->setWordWrap(true);
    m_notice->hide();
    panelLayout->addWidget(m_notice);

    auto *footer = new QHBoxLayout;
    m_hint = new QLabel(
        QStringLiteral("Double-click a widget, or select it and press Enter, to open or close it."));
    m_hint->setObjectName(QStringLiteral("lblHINT"));
    m_hint->setWordWrap(true);
    footer->addWidget(m_hint, 1);
    m_open = new QPushButton(QStringLiteral(" Open "));
    m_open->setObjectName(QStringLiteral("btnOPEN"));
    m_open->setFocusPolicy(Qt::TabFocus);
    connect(m_open, &QPushButton::clicked, this, [this] {
        if (WidgetRegistry::instance().isOpen(m_indxSel))
            closeSelectedWidget();
        else
            openSelectedWidget();
    });
    footer->addWidget(m_open);
    panelLayout->addLayout(footer);
    layout->addWidget(m_panel, 1);

    setCentralWidget(body);
    for (int i = 0; i + 1 < WidgetCount; ++i)
        setTabOrder(m_tiles[i], m_tiles[i + 1]);
    setTabOrder(m_tiles[WidgetCount - 1], m_open);
}

void DashboardWindow::setIndxSel(int index)
{
    m_indxSel = index;
    for (DashboardTile *tile : m_tiles)
        tile->setSelected(tile->widgetIndex() == index);
    if (isWidgetIndex(index) && isVisible() && !m_tiles[index]->hasFocus() && isActiveWindow())
        m_tiles[index]->setFocus(Qt::OtherFocusReason);
    refreshState();
}

void DashboardWindow::moveSelection(int from, int dx, int dy)
{
    int column = from % kColumns + dx;
    int row = from / kColumns + dy;
    const int rows = (WidgetCount + kColumns - 1) / kColumns;
    column = (column + kColumns) % kColumns;
    row = (row + rows) % rows;
    const int to = qMin(row * kColumns + column, WidgetCount - 1);
    setIndxSel(to);
    m_tiles[to]->setFocus(Qt::TabFocusReason);
}

void DashboardWindow::refreshState()
{
    const WidgetRegistry &registry = WidgetRegistry::instance();
    bool anyOpen = false;
    for (int i = 0; i < WidgetCount; ++i) {
        const bool open = registry.isOpen(i);
        const bool available = registry.isAvailable(i);
        m_tiles[i]->setOpenState(open);
        m_tiles[i]->setAvailable(available);
        m_tiles[i]->setDetail(registry.tileDetail(i));
        m_widgetItems[i]->setChecked(open);
        m_widgetItems[i]->setEnabled(available);
        anyOpen = anyOpen || open;
    }
    m_showAllItem->setEnabled(anyOpen);
    m_hideAllItem->setEnabled(anyOpen);
    m_themeItem->setEnabled(ShellTools::isAvailable(ShellTools::ThemeEditor));
    m_webcamItem->setEnabled(ShellTools::isAvailable(ShellTools::WebcamViewer));
    m_shareItem->setEnabled(ShellTools::isAvailable(ShellTools::ShareTheme));

    const bool selectable = isWidgetIndex(m_indxSel) && registry.isAvailable(m_indxSel);
    m_open->setEnabled(selectable);
    const QString name = isWidgetIndex(m_indxSel) ? WidgetDisplayName(m_indxSel) : QString();
    if (selectable && registry.isOpen(m_indxSel)) {
        m_open->setText(QStringLiteral(" Close "));
        m_open->setToolTip(QStringLiteral("Close the %1").arg(name));
    } else {
        m_open->setText(QStringLiteral(" Open "));
        m_open->setToolTip(selectable ? QStringLiteral("Open the %1").arg(name)
                                      : QStringLiteral("Select a widget first"));
    }
}

void DashboardWindow::loadDashboard(int choice)
{
    // Centred until a position has been stored.
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        QRect frame(QPoint(), size());
        frame.moveCenter(screen->availableGeometry().center());
        move(frame.topLeft());
    }
    RestoreWindowPlacement(this, false);
    const StartupDecisions::DashboardLoadPlan plan = StartupDecisions::dashboardLoadPlan(choice);
    if (plan.openWebcam)
        openWebcam();
    m_startMinimised = plan.startMinimised;
    for (int index : plan.widgetsToOpen)
        WidgetRegistry::instance().open(index);
    m_startHidden = plan.startHidden;
    setIndxSel(m_indxSel);
    ApplyTheme(this);
    // Loading the dashboard fetches the weather; a moment later, so that the first window does
    // not wait for the network machinery.
    QTimer::singleShot(kWeatherDelayMs, WeatherStation::shared(), &WeatherStation::GetWeatherData);
}

void DashboardWindow::handOver(int choice)
{
    setIndxSel(choice);
    if (StartupDecisions::handOverFor(choice) == StartupDecisions::HandOver::Dashboard) {
        showDashboard();
        return;
    }
    openSelectedWidget();
    // A widget this build cannot open would leave nothing on the screen.
    if (!WidgetRegistry::instance().isOpen(choice))
        showDashboard();
}

void DashboardWindow::handOverAtStart(int choice)
{
    const bool dashboard = StartupDecisions::handOverFor(choice) == StartupDecisions::HandOver::Dashboard;
    // Without a tray icon a hidden dashboard could never come back.
    if (dashboard && m_startHidden && TrayIcon::isAvailable()) {
        setIndxSel(choice);
        return;
    }
    if (dashboard && m_startMinimised) {
        setIndxSel(choice);
        showMinimized();
        return;
    }
    handOver(choice);
}

void DashboardWindow::attachContextMenu(WidgetContextMenu *menu)
{
    connect(menu, &WidgetContextMenu::showDashboardChosen, this, &DashboardWindow::showDashboard);
    connect(menu, &WidgetContextMenu::hideDashboardChosen, this, &DashboardWindow::hideDashboard);
    connect(menu, &WidgetContextMenu::programSettingsChosen, this, &DashboardWindow::openProgramSettings);
    connect(menu, &WidgetContextMenu::wizardChosen, this, &DashboardWindow::openWizard);
    connect(menu, &WidgetContextMenu::themeEditorChosen, this, &DashboardWindow::openThemeEditor);
    connect(menu, &WidgetContextMenu::webcamChosen, this, &DashboardWindow::openWebcam);
    connect(menu, &WidgetContextMenu::shareThemeChosen, this, &DashboardWindow::openShareTheme);
    connect(menu, &WidgetContextMenu::widgetToggleChosen, this, &DashboardWindow::toggleWidget);
    connect(menu, &WidgetContextMenu::showAllChosen, this, [this] { ShowHideAll(ShowAll); });
    connect(menu, &WidgetContextMenu::hideAllChosen, this, [this] { ShowHideAll(HideAll); });
    connect(menu, &WidgetContextMenu::exitChosen, this, &DashboardWindow::exitProgram);
}

QWidget *DashboardWindow::buildWeather()
{
    m_weather = new QWidget;
    m_weather->setObjectName(QStringLiteral("pfrWEATHER"));
    auto label = [](const char *name, Qt::Alignment alignment) {
        auto *l = new QLabel;
        l->setObjectName(QString::fromLatin1(name));
        l->setAlignment(alignment);
        return l;
    };
    m_weatherPicture = label("lblWEATHERPIC", Qt::AlignCenter);
    m_weatherTemp = label("lblWEATHERTEMP", Qt::AlignLeft | Qt::AlignVCenter);
    m_weatherPlace = label("lblWEATHERPLACE", Qt::AlignLeft | Qt::AlignBottom);
    m_weatherDesc = label("lblWEATHERDESC", Qt::AlignLeft | Qt::AlignVCenter);
    m_weatherText = label("lblWEATHERTEXT", Qt::AlignLeft | Qt::AlignTop);
    auto *lines = new QVBoxLayout;
    lines->setSpacing(0);
    lines->addWidget(m_weatherPlace);
    lines->addWidget(m_weatherDesc);
    lines->addWidget(m_weatherText);
    auto *row = new QHBoxLayout(m_weather);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_weatherPicture);
    row->addWidget(m_weatherTemp);
    row->addLayout(lines);
    m_weather->hide();

    WeatherStation *station = WeatherStation::shared();
    connect(station, &WeatherStation::readoutChanged, this, &DashboardWindow::showWeather);
    connect(station, &WeatherStation::statusChanged, this,
            [this, station] { m_weather->setToolTip(station->statusText()); });
    return m_weather;
}

void DashboardWindow::showWeather()
{
    const WeatherStation *station = WeatherStation::shared();
    const WeatherReadout &r = station->readout();
    if (!m_weatherFontLoaded)
        applyWeatherFont();
    m_weatherPicture->setText(station->pictureGlyph());
    if (station->hasReadout()) {
        m_weatherTemp->setText(r.number);
        m_weatherPlace->setText(r.place);
        m_weatherDesc->setText(r.description);
        m_weatherText->setText(r.temperatureText);
    }
    m_weather->setVisible(station->hasReadout() || !station->pictureGlyph().isEmpty());
}

void DashboardWindow::setNotice(const QString &text)
{
    // The window grows by the notice's height rather than squeezing the tiles.
    const int em = fontMetrics().height();
    const int labelWidth = qMax(em * 10, width() - 2 * em); // the panel's margins
    const auto heightOf = [&] {
        return m_notice->isHidden() ? 0 : m_notice->heightForWidth(labelWidth) + em * 2 / 3;
    };
    const int before = heightOf();
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
    const int growth = heightOf() - before;
    if (growth > 0)
        resize(width(), height() + growth);
}

void DashboardWindow::showDashboard()
{
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    if (isWidgetIndex(m_indxSel))
        m_tiles[m_indxSel]->setFocus(Qt::OtherFocusReason);
}

void DashboardWindow::hideDashboard()
{
    // Without a tray icon there would be no way back.
    if (TrayIcon::isAvailable())
        hide();
}

void DashboardWindow::openSelectedWidget()
{
    if (isWidgetIndex(m_indxSel))
        WidgetRegistry::instance().open(m_indxSel);
}

void DashboardWindow::closeSelectedWidget()
{
    if (isWidgetIndex(m_indxSel))
        WidgetRegistry::instance().close(m_indxSel);
}

void DashboardWindow::toggleWidget(int index)
{
    if (!isWidgetIndex(index))
        return;
    setIndxSel(index);
    WidgetRegistry &registry = WidgetRegistry::instance();
    registry.toggle(index);
    refreshState();
    // The keyboard goes with the widget just opened, so that it can be used at once without
    // the mouse; closing one leaves it here for the next.
    if (WidgetWindow *opened = registry.isOpen(index) ? registry.window(index) : nullptr) {
        opened->raise();
        opened->activateWindow();
    }
}

void DashboardWindow::ShowHideAll(int mode)
{
    WidgetRegistry::instance().setOpenedWidgetsVisible(mode == ShowAll);
}

void DashboardWindow::openProgramSettings()
{
    ProgramSettingsDialog dialog(this);
    dialog.exec();
}

bool DashboardWindow::openWizard()
{
    WizardDialog wizard(this);
    bool started = false;
    connect(&wizard, &WizardDialog::started, this, [&started] { started = true; });
    wizard.exec();
    if (started)
        runWizardChoice(wizard.choice());
    return started;
}

void DashboardWindow::runWizardChoice(int choice)
{
    QCoreApplication::processEvents();
    // Nothing is left open from before the new choice.
    for (int i = 0; i <= WidgetAll; ++i) {
        setIndxSel(i);
        closeSelectedWidget();
    }
    setIndxSel(choice);
    QCoreApplication::processEvents();
    handOver(choice);
}

void DashboardWindow::openAbout()
{
    AboutDialog about(this);
    about.exec();
}

void DashboardWindow::openThemeEditor()
{
    ShellTools::launch(ShellTools::ThemeEditor, this);
}

void DashboardWindow::openWebcam()
{
    ShellTools::launch(ShellTools::WebcamViewer, this);
}

void DashboardWindow::openShareTheme()
{
    ShellTools::launch(ShellTools::ShareTheme, this);
}

void DashboardWindow::StartUpdateCheck(bool manual)
{
    m_updateCheck->start(manual);
}

void DashboardWindow::exitProgram()
{
    m_unloading = true;
    close();
}

DashboardWindow::MenuColours DashboardWindow::menuColoursFor(const Theme &theme)
{
    const ThemeGradients g = GradientsFor(theme);
    MenuColours c;
    c.bar = ResolveColor(g.barStart);
    c.barText = ReadableOn(c.bar, ResolveColor(theme.BarColor));
    c.barSelected = chosenBackground(c.bar, c.barText);
    c.barSelectedText = ReadableOn(c.barSelected, c.barText);
    c.menu = ResolveColor(g.panelStart);
    c.menuText = ReadableOn(c.menu, ResolveColor(theme.PanelColor));
    c.menuSelected = chosenBackground(c.menu, c.menuText);
    c.menuSelectedText = ReadableOn(c.menuSelected, c.menuText);
    c.menuDisabledText = mix(c.menuText, c.menu, 120);
    c.menuLine = mix(c.menuText, c.menu, 90);
    return c;
}

void DashboardWindow::themeMenus()
{
    // The menus are the menu bar's children, so its style sheet reaches them too.
    const Theme &theme = CurrentTheme();
    const MenuColours c = menuColoursFor(theme);
    menuBar()->setStyleSheet(
        QStringLiteral("QMenuBar { background: %1; color: %2; font-family: \"%11\"; }"
                       "QMenuBar::item { background: transparent; padding: 3px 8px; }"
                       "QMenuBar::item:selected, QMenuBar::item:pressed { background: %3; color: %4; }"
                       "QMenu { background: %5; color: %6; border: 1px solid %8; padding: 3px 0px; "
                       "font-family: \"%12\"; }"
                       "QMenu::item { background: transparent; padding: 4px 24px 4px 26px; }"
                       "QMenu::item:selected { background: %9; color: %10; }"
                       "QMenu::item:disabled { color: %7; }"
                       "QMenu::indicator { width: 13px; height: 13px; left: 7px; }"
                       "QMenu::separator { height: 1px; background: %8; margin: 3px 8px; }")
            .arg(c.bar.name(), c.barText.name(), c.barSelected.name(), c.barSelectedText.name(),
                 c.menu.name(), c.menuText.name(), c.menuDisabledText.name(), c.menuLine.name(),
                 c.menuSelected.name(), c.menuSelectedText.name(), theme.BarFont)
            .arg(theme.PanelFont));
}

void DashboardWindow::applyWeatherFont()
{
    // Loading the symbol font from the resources waits for the first weather to show: the
    // panel is hidden until then, and the first window need not wait for a font it does not show.
    m_weatherFontLoaded = true;
    QFont pictureFont(ShippedData::weatherFontFamily());
    pictureFont.setPixelSize(fontMetrics().height() * 5 / 2);
    m_weatherPicture->setFont(pictureFont);
}

void DashboardWindow::ThemeElementsUpdate()
{
    themeMenus();
    const Theme &theme = CurrentTheme();
    const QColor barText = ResolveColor(theme.BarColor);
    const QColor panelText = ResolveColor(theme.PanelColor);
    const QColor accent = ResolveColor(theme.MainColor);

    QFont titleFont = font();
    titleFont.setFamily(theme.BarFont);
    titleFont.setPointSizeF(font().pointSizeF() * 1.6);
    titleFont.setBold(true);
    m_title->setFont(titleFont);
    QFont tempFont = titleFont;
    tempFont.setBold(false);
    m_weatherTemp->setFont(tempFont);
    QFont barFont = font();
    barFont.setFamily(theme.BarFont);
    m_subtitle->setFont(barFont);
    m_weatherDesc->setFont(barFont);
    m_weatherPlace->setFont(barFont);
    m_weatherText->setFont(barFont);
    if (m_weatherFontLoaded)
        applyWeatherFont();
    for (QLabel *label :
         {m_title, m_subtitle, m_weatherTemp, m_weatherDesc, m_weatherPicture, m_weatherPlace, m_weatherText})
        setTextColor(label, barText);

    QFont panelFont = font();
    panelFont.setFamily(theme.PanelFont);
    for (QLabel *label : {m_hint, m_notice}) {
        label->setFont(panelFont);
        setTextColor(label, panelText);
    }
    m_open->setStyleSheet(PushButtonStyleSheet(theme));
    for (DashboardTile *tile : m_tiles) {
        tile->setFont(panelFont);
        tile->setColors(panelText, accent);
    }
    m_bar->update();
    m_panel->update();
}

void DashboardWindow::closeEvent(QCloseEvent *event)
{
    if (!m_unloading && StartupDecisions::closeBoxHides(event->spontaneous(), TrayIcon::isAvailable())) {
        event->ignore();
        hide();
        return;
    }
    // A widget with unsaved work may ask its user, who may cancel: then nothing ends.
    if (!WidgetRegistry::instance().closeAll()) {
        m_unloading = false;
        event->ignore();
        return;
    }
    unload();
    event->accept();
}

void DashboardWindow::changeEvent(QEvent *event)
{
    QMainWindow::changeEvent(event);
    // Coming back to the dashboard on another day shows that day's note.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refreshState();
    if (event->type() != QEvent::WindowStateChange || !isMinimized())
        return;
    if (!StartupDecisions::minimiseHides(TrayIcon::isAvailable()))
        return;
    // Hide once the minimise has finished; the tray's double click shows it in the normal state.
    QTimer::singleShot(0, this, [this] {
        if (isMinimized()) {
            hide();
            setWindowState(windowState() & ~Qt::WindowMinimized);
        }
    });
}

void DashboardWindow::unload()
{
    m_unloading = true;
    SaveWindowPlacement(this, false);
    WriteDetail(kSettings, QStringLiteral("Start-Webcam"),
                ShellTools::isWebcamViewerOpen() ? QStringLiteral("True") : QStringLiteral("False"));
    WidgetRegistry::instance().closeAll();
    // Settings dialogs, the webcam viewer and any other window: each saves its placement as it
    // closes.
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window != this && window->isVisible() && !qobject_cast<QMenu *>(window))
            window->close();
    }
    emit unloaded();
}
