#pragma once

#include <QElapsedTimer>
#include <QStringList>
#include <QWidget>

class QComboBox;
class QFileSystemWatcher;
class QTimer;
class QLabel;
class QListWidget;
class QListWidgetItem;

// A folder browser: a drive list, the sub-folders of the current folder ("..", first, goes up)
// and the files of that folder that the browser shows. Documents list every file; pictures only
// the picture types that can be inserted; folders no files at all (choosing where things go).
class FolderBrowser : public QWidget
{
    Q_OBJECT
public:
    enum Kind
    {
        Documents, // drvFOLDERS, dirFOLDERS, flbLIST
        Pictures,  // drvPICTURES, dirPICTURES, flbLISTPICS
        Folders,   // drvFOLDERS, dirFOLDERS, and no file list
    };

    // A place the drive list offers: what it shows and the folder it opens.
    struct Drive
    {
        QString name;
        QString path;
    };

    explicit FolderBrowser(Kind kind, QWidget *parent = nullptr);

    QString folder() const { return m_folder; }
    // Shows `path` (its nearest existing parent when it is gone) and selects the drive that
    // holds it.
    void setFolder(const QString &path);
    // Lists the current folder again, keeping the selected file.
    void refresh();

    // Upper-case extensions of the files shown; empty for every file.
    QStringList extensions() const { return m_extensions; }
    QString selectedFile() const;

    // The upper-case extensions of the pictures a document can take.
    static QStringList pictureExtensions();
    // The places offered on this system: drive letters on Windows; elsewhere the root, the
    // home folder and the mounted volumes a user browses.
    static QList<Drive> drives();
    // Whether a mounted volume is one a user browses rather than a system or pseudo file system.
    static bool isBrowsableVolume(const QString &rootPath, const QByteArray &fileSystemType);

signals:
    void folderChanged(const QString &path);
    void fileSelected(const QString &path);
    // A click or Enter on a file that still exists.
    void fileActivated(const QString &path);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void fillDrives();
    void selectDriveOf(const QString &path);
    void fillFolders(const QString &selectName);
    void fillFiles(const QString &selectPath);
    void enterFolder(QListWidgetItem *item);
    void activateFile(QListWidgetItem *item);
    bool shows(const QString &fileName) const;
    void setProblem(const QString &text);
    void showPath();
    void watch(const QString &folder);

    QStringList m_extensions;
    QString m_folder;
    QComboBox *m_drives;
    QLabel *m_path;
    QListWidget *m_folders;
    QListWidget *m_files;
    QLabel *m_problem;
    QFileSystemWatcher *m_watcher = nullptr;
    QTimer *m_relist = nullptr;
    QString m_lastActivated;
    QElapsedTimer m_sinceActivated;
};
