#include "whiteboard/board_document.h"

#include "core/drawing/drawing_layer.h"
#include "whiteboard/board_file.h"

#include <QColor>
#include <QFileInfo>

BoardDocument::BoardDocument(QObject *parent) : QObject(parent), m_layer(new DrawingLayer(this))
{
    connect(m_layer, &DrawingLayer::historyChanged, this, &BoardDocument::stateChanged);
}

QString BoardDocument::title() const
{
    return m_path.isEmpty() ? tr("Untitled Board") : QFileInfo(m_path).fileName();
}

bool BoardDocument::isModified() const
{
    return !m_layer->isClean();
}

void BoardDocument::newBoard(const QSize &size)
{
    m_path.clear();
    m_layer->reset(size);
    emit stateChanged();
}

bool BoardDocument::open(const QString &path, QString *error)
{
    const QImage picture = BoardFile::read(path, error);
    if (picture.isNull())
        return false;
    m_path = QFileInfo(path).absoluteFilePath();
    m_layer->reset(picture);
    emit stateChanged();
    return true;
}

void BoardDocument::restore(const QImage &picture, const QString &path)
{
    m_path = path;
    m_layer->reset(picture);
    m_layer->forgetCleanState();
    emit stateChanged();
}

bool BoardDocument::save(const QString &path, const QColor &background, QString *error)
{
    if (!BoardFile::write(path, m_layer->flattened(background), error))
        return false;
    m_path = QFileInfo(path).absoluteFilePath();
    m_layer->setClean();
    emit stateChanged();
    return true;
}
