#pragma once

#include <QImage>
#include <QWidget>

class FolderBrowser;
class QLabel;
class QPushButton;

// The picture side of the editor's side panel: a picture browser, a preview of the chosen
// picture and the button that inserts it into the active document.
class PicturePanel : public QWidget
{
    Q_OBJECT
public:
    explicit PicturePanel(QWidget *parent = nullptr);

    FolderBrowser *browser() const { return m_browser; }
    // The previewed picture and its file; a null image when none can be inserted.
    QImage picture() const { return m_picture; }
    QString picturePath() const { return m_path; }
    QString previewText() const;

public slots:
    // Loads `path` into the preview; an empty path clears it.
    void showPicture(const QString &path);

signals:
    void insertPicture(const QString &path, const QImage &image);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void showNote(const QString &text);
    void scalePreview();

    FolderBrowser *m_browser;
    QLabel *m_preview;
    QPushButton *m_insert;
    QImage m_picture;
    QImage m_thumbnail;
    QString m_path;
};
