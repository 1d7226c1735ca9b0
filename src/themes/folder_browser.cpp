#include "themes/folder_browser.h"

#include "core/file_helpers.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QStorageInfo>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int kPathRole = Qt::UserRole;

struct Names
{
    const char *drives;
    const char *folders;
    const char *files;
};

Names namesFor(FolderBrowser::Kind kind)
{
    if (kind == FolderBrowser::Pictures)
        return {"drvPICTURES", "dirPICTURES", "flbLISTPICS"};
    return {"drvFOLDERS", "dirFOLDERS", "flbLIST"};
}

QString cleanAbsolute(const QString &path)
{
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

// The folder itself when it exists, else its nearest existing parent, else the home folder.
QString existingFolder(const QString &path)
{
    QString folder = path.isEmpty() ? QDir::homePath() : cleanAbsolute(path);
    while (!QFileInfo(folder).isDir()) {
        const QString parent = QFileInfo(folder).path();
        if (parent == folder)
            return QDir::homePath();
        folder = parent;
    }
    return folder;
}

// Compact lists for a narrow side panel: small icons, long names shortened in the middle
// (the tooltip gives the whole name) rather than a sideways scroll bar.
QListWidget *sideList(const char *name)
{
    auto *list = new QListWidget;
    list->setObjectName(QLatin1String(name));
    list->setIconSize(QSize(16, 16));
    list->setTextElideMode(Qt::ElideMiddle);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setUniformItemSizes(true);
    return list;
}

QListWidgetItem *pathItem(const QString &text, const QString &path, const QIcon &icon)
{
    auto *item = new QListWidgetItem(icon, text);
    item->setData(kPathRole, path);
    return item;
}

} // namespace

FolderBrowser::FolderBrowser(Kind kind, QWidget *parent) : QWidget(parent)
{
    const Names names = namesFor(kind);
    if (kind == Pictures)
        m_extensions = pictureExtensions();

    m_drives = new QComboBox;
    m_drives->setObjectName(QLatin1String(names.drives));
    m_drives->setToolTip(tr("The drive or volume to browse"));
    m_drives->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_drives->setMinimumContentsLength(12);
    m_path = new QLabel;
    m_path->setObjectName(QStringLiteral("lblFOLDERPATH"));
    m_path->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_folders = sideList(names.folders);
    m_files = sideList(names.files);
    m_folders->setAccessibleName(tr("Folders"));
    m_files->setAccessibleName(kind == Pictures ? tr("Pictures") : tr("Files"));
    m_files->setToolTip(kind == Pictures ? tr("Pictures: click one to preview it")
                                         : tr("Documents: click one or press Enter to open it"));
    m_problem = new QLabel;
    m_problem->setObjectName(QStringLiteral("lblFOLDERPROBLEM"));
    m_problem->setWordWrap(true);
    m_problem->hide();

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(3);
    layout->addWidget(m_drives);
    layout->addWidget(m_path);
    layout->addWidget(m_folders, 2);
    layout->addWidget(m_files, 3);
    layout->addWidget(m_problem);
    if (kind == Folders) {
        m_files->hide();
        layout->setStretchFactor(m_folders, 1);
    }

    connect(m_drives, &QComboBox::activated, this,
            [this](int index) { setFolder(m_drives->itemData(index).toString()); });
    connect(m_folders, &QListWidget::itemActivated, this, &FolderBrowser::enterFolder);
    // Single clicks open files; a double click also clicks twice, which activateFile ignores.
    connect(m_files, &QListWidget::itemClicked, this, &FolderBrowser::activateFile);
    connect(m_files, &QListWidget::itemActivated, this, &FolderBrowser::activateFile);
    connect(m_files, &QListWidget::currentItemChanged, this, [this](QListWidgetItem *item) {
        if (item)
            emit fileSelected(item->data(kPathRole).toString());
    });

    // Files saved or made in the shown folder, by the editor or anything else, appear without
    // a restart. Only that one folder is watched; a burst of changes lists it once.
    m_watcher = new QFileSystemWatcher(this);
    m_relist = new QTimer(this);
    m_relist->setSingleShot(true);
    m_relist->setInterval(150);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, m_relist, qOverload<>(&QTimer::start));
    connect(m_relist, &QTimer::timeout, this, &FolderBrowser::refresh);

    fillDrives();
    setFolder(QDir::homePath());
}

void FolderBrowser::watch(const QString &folder)
{
    const QStringList watched = m_watcher->directories();
    if (watched == QStringList{folder})
        return;
    if (!watched.isEmpty())
        m_watcher->removePaths(watched);
    if (QFileInfo(folder).isDir())
        m_watcher->addPath(folder);
}

QStringList FolderBrowser::pictureExtensions()
{
    return {QStringLiteral("BMP"), QStringLiteral("JPG"), QStringLiteral("JPEG"),
            QStringLiteral("GIF"), QStringLiteral("WMF"), QStringLiteral("PNG")};
}

bool FolderBrowser::isBrowsableVolume(const QString &rootPath, const QByteArray &fileSystemType)
{
    static const QList<QByteArray> pseudo = {
        "proc",       "sysfs",       "tmpfs",      "devtmpfs",  "devpts",      "cgroup",          "cgroup2",
        "securityfs", "pstore",      "debugfs",    "tracefs",   "configfs",    "fusectl",         "mqueue",
        "hugetlbfs",  "bpf",         "autofs",     "ramfs",     "nsfs",        "overlay",         "squashfs",
        "efivarfs",   "binfmt_misc", "rpc_pipefs", "selinuxfs", "fuse.portal", "fuse.gvfsd-fuse", "nfsd"};
    if (pseudo.contains(fileSystemType))
        return false;
    // The root is offered as the file system itself; /run/media holds removable disks.
    if (rootPath == QLatin1String("/"))
        return false;
    if (IsSameOrInside(rootPath, QStringLiteral("/run/media")))
        return true;
    for (const char *system : {"/boot", "/run", "/sys", "/proc", "/dev", "/snap", "/var", "/tmp", "/usr"}) {
        if (IsSameOrInside(rootPath, QLatin1String(system)))
            return false;
    }
    return true;
}

QList<FolderBrowser::Drive> FolderBrowser::drives()
{
    QList<Drive> list;
#ifdef Q_OS_WIN
    for (const QFileInfo &drive : QDir::drives()) {
        const QString path = drive.absoluteFilePath();
        const QStorageInfo info(path);
        const QString label = info.isReady() ? info.name() : QString();
        const QString letter = QDir::toNativeSeparators(path);
        list.append({label.isEmpty() ? letter : letter + QLatin1Char(' ') + label, path});
    }
#else
    list.append({tr("File system"), QStringLiteral("/")});
    list.append({tr("Home"), QDir::homePath()});
    for (const QStorageInfo &volume : QStorageInfo::mountedVolumes()) {
        const QString path = volume.rootPath();
        if (!volume.isValid() || !volume.isReady() || !isBrowsableVolume(path, volume.fileSystemType()))
            continue;
        if (std::any_of(list.cbegin(), list.cend(), [&path](const Drive &d) { return d.path == path; }))
            continue;
        const QString name = volume.displayName();
        list.append({name == path ? QFileInfo(path).fileName() : name, path});
    }
#endif
    return list;
}

void FolderBrowser::fillDrives()
{
    const QSignalBlocker blocker(m_drives);
    m_drives->clear();
    const QIcon icon = style()->standardIcon(QStyle::SP_DriveHDIcon);
    for (const Drive &drive : drives()) {
        const QString shown = QDir::toNativeSeparators(drive.path);
        const QString text = drive.name == shown ? shown : tr("%1 (%2)").arg(drive.name, shown);
        m_drives->addItem(icon, text, drive.path);
        m_drives->setItemData(m_drives->count() - 1, shown, Qt::ToolTipRole);
    }
}

void FolderBrowser::selectDriveOf(const QString &path)
{
    int best = -1;
    int bestLength = -1;
    for (int i = 0; i < m_drives->count(); ++i) {
        const QString drive = m_drives->itemData(i).toString();
        if (IsSameOrInside(path, drive) && drive.size() > bestLength) {
            best = i;
            bestLength = drive.size();
        }
    }
    const QSignalBlocker blocker(m_drives);
    if (best < 0) { // a volume the list leaves out (a network share): offer it too
        const QString root = QStorageInfo(path).rootPath();
        m_drives->addItem(style()->standardIcon(QStyle::SP_DriveNetIcon), QDir::toNativeSeparators(root),
                          root);
        best = m_drives->count() - 1;
    }
    m_drives->setCurrentIndex(best);
}

void FolderBrowser::setFolder(const QString &path)
{
    const QString previous = m_folder;
    m_folder = existingFolder(path);
    // Coming up from a sub-folder, keep it selected so that Enter goes straight back.
    const QString cameFrom =
        QFileInfo(previous).path() == m_folder ? QFileInfo(previous).fileName() : QString();
    selectDriveOf(m_folder);
    showPath();
    setProblem(QFileInfo(m_folder).isReadable() ? QString() : tr("This folder cannot be read."));
    fillFolders(cameFrom);
    fillFiles(QString());
    watch(m_folder);
    if (m_folder != previous)
        emit folderChanged(m_folder);
}

void FolderBrowser::refresh()
{
    if (!QFileInfo(m_folder).isDir()) {
        setFolder(m_folder); // gone: go to what is left of it
        return;
    }
    const QListWidgetItem *folder = m_folders->currentItem();
    fillFolders(folder ? folder->text() : QString());
    fillFiles(selectedFile());
}

QString FolderBrowser::selectedFile() const
{
    const QListWidgetItem *item = m_files->currentItem();
    return item ? item->data(kPathRole).toString() : QString();
}

void FolderBrowser::fillFolders(const QString &selectName)
{
    m_folders->clear();
    const QDir dir(m_folder);
    if (!dir.isRoot()) {
        m_folders->addItem(pathItem(QStringLiteral(".."), QFileInfo(m_folder).path(),
                                    style()->standardIcon(QStyle::SP_FileDialogToParent)));
    }
    const QIcon icon = style()->standardIcon(QStyle::SP_DirIcon);
    const QFileInfoList entries = dir.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot,
                                                    QDir::Name | QDir::IgnoreCase | QDir::LocaleAware);
    for (const QFileInfo &entry : entries) {
        m_folders->addItem(pathItem(entry.fileName(), entry.absoluteFilePath(), icon));
        if (entry.fileName() == selectName)
            m_folders->setCurrentRow(m_folders->count() - 1);
    }
    if (!m_folders->currentItem() && m_folders->count() > 0)
        m_folders->setCurrentRow(0);
}

void FolderBrowser::fillFiles(const QString &selectPath)
{
    const QSignalBlocker blocker(m_files);
    m_files->clear();
    const QIcon icon = style()->standardIcon(QStyle::SP_FileIcon);
    const QLocale locale;
    const QFileInfoList entries =
        QDir(m_folder).entryInfoList(QDir::Files, QDir::Name | QDir::IgnoreCase | QDir::LocaleAware);
    for (const QFileInfo &entry : entries) {
        if (!shows(entry.fileName()))
            continue;
        QListWidgetItem *item = pathItem(entry.fileName(), entry.absoluteFilePath(), icon);
        item->setToolTip(tr("%1, %2").arg(entry.fileName(), locale.formattedDataSize(entry.size())));
        m_files->addItem(item);
        if (item->data(kPathRole).toString() == selectPath)
            m_files->setCurrentItem(item);
    }
}

bool FolderBrowser::shows(const QString &fileName) const
{
    return m_extensions.isEmpty() || m_extensions.contains(QFileInfo(fileName).suffix().toUpper());
}

void FolderBrowser::enterFolder(QListWidgetItem *item)
{
    if (item)
        setFolder(item->data(kPathRole).toString());
}

void FolderBrowser::activateFile(QListWidgetItem *item)
{
    if (!item)
        return;
    const QString path = item->data(kPathRole).toString();
    if (path == m_lastActivated && m_sinceActivated.isValid() &&
        m_sinceActivated.elapsed() < QApplication::doubleClickInterval())
        return;
    if (!QFileInfo(path).isFile()) {
        setProblem(tr("\"%1\" no longer exists.").arg(item->text()));
        fillFiles(QString());
        return;
    }
    m_lastActivated = path;
    m_sinceActivated.start();
    emit fileActivated(path);
}

void FolderBrowser::setProblem(const QString &text)
{
    m_problem->setText(text);
    m_problem->setVisible(!text.isEmpty());
    m_folders->setToolTip(
        text.isEmpty() ? tr("Folders: double-click one or press Enter to open it; \"..\" goes up") : text);
}

void FolderBrowser::showPath()
{
    const QString shown = QDir::toNativeSeparators(m_folder);
    m_path->setToolTip(shown);
    const int width = qMax(m_path->width(), 40);
    m_path->setText(m_path->fontMetrics().elidedText(shown, Qt::ElideMiddle, width));
}

void FolderBrowser::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // The drives may have changed while the panel was hidden.
    fillDrives();
    selectDriveOf(m_folder);
    refresh();
}

void FolderBrowser::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    showPath();
}
