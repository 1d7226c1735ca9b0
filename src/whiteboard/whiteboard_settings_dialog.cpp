#include "whiteboard/whiteboard_settings_dialog.h"

#include "core/file_helpers.h"
#include "core/settings_store.h"
#include "themes/folder_browser.h"
#include "themes/message_box.h"
#include "themes/theme_painter.h"
#include "themes/tool_glyphs.h"
#include "whiteboard/whiteboard_settings.h"

#include <QDir>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QLabel *buddyLabel(const QString &text, QWidget *buddy)
{
    auto *label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

} // namespace

WhiteboardSettingsDialog::WhiteboardSettingsDialog(QWidget *parent)
    : ThemedDialog(QLatin1String(kWhiteboardSettingsName), tr("Vantora Whiteboard Settings"), parent),
      m_location(new QLineEdit), m_browser(new FolderBrowser(FolderBrowser::Folders)),
      m_colors(new QListWidget)
{
    const WhiteboardSettings s = WhiteboardSettings::load();
    m_loadedFolder = s.folder;
    const int line = fontMetrics().height();

    m_location->setObjectName(QStringLiteral("txtLOCATION"));
    m_location->setText(s.folder);
    m_location->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
    m_location->setToolTip(tr("The folder boards are saved in; type a whole path or choose a folder below"));
    m_browser->setFolder(LocalPath(s.folder));
    m_browser->setMinimumHeight(line * 12);

    m_colors->setObjectName(QStringLiteral("lstBOARDCOLOR"));
    m_colors->setToolTip(tr("The colour of the board behind the drawing"));
    m_colors->setMinimumWidth(fontMetrics().averageCharWidth() * 18);
    fillColors(s.colorName);

    auto *okButton = new QPushButton(tr("OK"));
    okButton->setObjectName(QStringLiteral("btnOK"));
    okButton->setToolTip(tr("Keep these settings"));
    setDefaultButton(okButton);
    auto *cancelButton = new QPushButton(tr("Cancel"));
    cancelButton->setObjectName(QStringLiteral("btnCANCEL"));
    cancelButton->setToolTip(tr("Close without changing anything"));

    auto *grid = new QGridLayout;
    grid->addWidget(buddyLabel(tr("Board &folder:"), m_location), 0, 0);
    grid->addWidget(m_location, 1, 0);
    grid->addWidget(m_browser, 2, 0);
    grid->addWidget(buddyLabel(tr("Board &colour:"), m_colors), 0, 1);
    grid->addWidget(m_colors, 1, 1, 2, 1);
    grid->setColumnStretch(0, 3);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(okButton);
    buttons->addWidget(cancelButton);
    auto *layout = new QVBoxLayout;
    layout->addLayout(grid);
    layout->addSpacing(line / 2);
    layout->addLayout(buttons);
    setPanelLayout(layout);

    // Connected after the browser is placed, so that only the user's choice fills the field.
    connect(m_browser, &FolderBrowser::folderChanged, this,
            [this](const QString &path) { m_location->setText(WithTrailingBackslash(path)); });
    connect(okButton, &QPushButton::clicked, this, &WhiteboardSettingsDialog::save);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
}

void WhiteboardSettingsDialog::fillColors(const QString &selectedName)
{
    const int line = fontMetrics().height();
    const QSize swatchSize(line * 2, line);
    m_colors->setIconSize(swatchSize);
    const QStringList names = BoardColorNames();
    for (const QString &name : names) {
        auto *item =
            new QListWidgetItem(ColorSwatch(BoardColorOfName(name), swatchSize, devicePixelRatioF()), name);
        if (name == QLatin1String(kWindowColorName))
            item->setToolTip(tr("Follows the desktop's colours: the background of its windows"));
        m_colors->addItem(item);
    }
    // A name the list lacks means the window background, as "Window" does.
    const int row = names.indexOf(selectedName);
    m_colors->setCurrentRow(row >= 0 ? row : names.indexOf(QLatin1String(kWindowColorName)));
}

QString WhiteboardSettingsDialog::chosenColorName() const
{
    const QListWidgetItem *item = m_colors->currentItem();
    return item ? item->text() : QLatin1String(kWindowColorName);
}

bool WhiteboardSettingsDialog::acceptableFolder(const QString &text)
{
    QString problem;
    if (text.isEmpty())
        problem = tr("Type the folder boards are saved in, or choose one in the list of folders.");
    else if (!QDir::isAbsolutePath(LocalPath(text)))
        problem = tr("\"%1\" is not a whole path. Type the folder from the top, such as %2.")
                      .arg(text, QDir::toNativeSeparators(QDir::homePath() + QStringLiteral("/Boards/")));
    else if (text.size() > kLongestSetting)
        problem = tr("The folder path is %1 characters long; a setting holds at most %2. Choose a folder "
                     "with a shorter path.")
                      .arg(text.size())
                      .arg(kLongestSetting);
    if (problem.isEmpty())
        return true;
    ShowNotice(tr("Board Folder"), problem, true, this);
    m_location->setFocus();
    return false;
}

void WhiteboardSettingsDialog::save()
{
    const QString folderText = m_location->text().trimmed();
    const bool folderChanged = folderText != m_loadedFolder;
    if (folderChanged && !acceptableFolder(folderText))
        return;
    if (folderChanged && FolderHoldsBoards(folderText))
        ShowInfoMessage(9, folderText, this);

    WhiteboardSettings s;
    s.folder = folderChanged ? folderText : m_loadedFolder;
    s.colorName = chosenColorName();
    if (!s.save(folderChanged)) {
        ShowNotice(tr("Board Folder"),
                   tr("The folder %1 could not be created, so boards cannot be saved there until it exists. "
                      "The setting is kept: the whiteboard tries to create the folder again when it saves.")
                       .arg(folderText),
                   true, this);
    }
    emit settingsSaved();
    accept();
}
