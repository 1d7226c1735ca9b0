#include "notes/picture_panel.h"

#include "themes/folder_browser.h"

#include <QFileInfo>
#include <QImageReader>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kPreviewHeight = 140;
// The preview is scaled from a copy this big at most, so that resizing the panel stays quick
// with a photo of many million pixels.
constexpr int kThumbnailSize = 512;
} // namespace

PicturePanel::PicturePanel(QWidget *parent) : QWidget(parent)
{
    m_browser = new FolderBrowser(FolderBrowser::Pictures);
    m_preview = new QLabel;
    m_preview->setObjectName(QStringLiteral("imgPREVIEW"));
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setWordWrap(true);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_preview->setFixedHeight(kPreviewHeight);
    m_preview->setToolTip(tr("Preview of the chosen picture"));
    m_insert = new QPushButton(tr("In&sert Picture"));
    m_insert->setObjectName(QStringLiteral("btnINSPICTURE"));
    m_insert->setToolTip(tr("Insert the previewed picture into the document at the caret"));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 2);
    layout->setSpacing(3);
    layout->addWidget(m_browser, 1);
    layout->addWidget(m_preview);
    layout->addWidget(m_insert);

    connect(m_browser, &FolderBrowser::fileSelected, this, &PicturePanel::showPicture);
    connect(m_browser, &FolderBrowser::fileActivated, this, &PicturePanel::showPicture);
    connect(m_browser, &FolderBrowser::folderChanged, this, [this] { showPicture(QString()); });
    connect(m_insert, &QPushButton::clicked, this, [this] {
        if (!m_picture.isNull())
            emit insertPicture(m_path, m_picture);
    });
    showPicture(QString());
}

QString PicturePanel::previewText() const
{
    return m_preview->text();
}

void PicturePanel::showPicture(const QString &path)
{
    m_picture = QImage();
    m_thumbnail = QImage();
    m_path = path;
    if (path.isEmpty()) {
        showNote(tr("No picture"));
        return;
    }
    if (QFileInfo(path).suffix().compare(QLatin1String("wmf"), Qt::CaseInsensitive) == 0) {
        showNote(tr("Metafile pictures (WMF) cannot be shown or inserted here."));
        return;
    }
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QImage image = reader.read();
    if (image.isNull()) {
        showNote(tr("This picture cannot be read."));
        return;
    }
    m_picture = image;
    m_thumbnail =
        image.width() > kThumbnailSize || image.height() > kThumbnailSize
            ? image.scaled(kThumbnailSize, kThumbnailSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : image;
    m_preview->setToolTip(
        tr("%1, %2 \u00d7 %3 pixels").arg(QFileInfo(path).fileName()).arg(image.width()).arg(image.height()));
    m_insert->setEnabled(true);
    scalePreview();
}

void PicturePanel::showNote(const QString &text)
{
    m_preview->setPixmap(QPixmap());
    m_preview->setText(text);
    m_preview->setToolTip(tr("Preview of the chosen picture"));
    m_insert->setEnabled(false);
}

void PicturePanel::scalePreview()
{
    if (m_thumbnail.isNull())
        return;
    // Small pictures keep their size; larger ones shrink to fit, keeping their shape.
    const QSize room = m_preview->contentsRect().size().boundedTo(m_thumbnail.size()).expandedTo(QSize(1, 1));
    m_preview->setPixmap(
        QPixmap::fromImage(m_thumbnail.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

void PicturePanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    scalePreview();
}
