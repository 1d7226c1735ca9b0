#include "whiteboard/board_recovery.h"

#include "core/app_paths.h"
#include "core/drawing/drawing_layer.h"
#include "whiteboard/board_document.h"

#include <QBuffer>
#include <QTimer>

namespace {
const QString kType = QStringLiteral("PNG");

QDateTime now()
{
    return QDateTime::currentDateTimeUtc();
}
} // namespace

BoardRecovery::BoardRecovery(BoardDocument *document, QObject *parent)
    : QObject(parent), m_document(document), m_store(folder(), {kType}), m_id(RecoveryStore::newId()),
      m_timer(new QTimer(this))
{
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &BoardRecovery::writeNow);
    connect(m_document, &BoardDocument::stateChanged, this, &BoardRecovery::boardChanged);
}

QString BoardRecovery::folder()
{
    return AppPaths::dataPath(QStringLiteral("recovery/whiteboard"));
}

std::optional<RecoveryEntry> BoardRecovery::leftBehind()
{
    const RecoveryStore store(folder(), {kType});
    if (store.isEmpty())
        return std::nullopt;
    const QList<RecoveryEntry> copies = store.entries();
    if (copies.isEmpty())
        return std::nullopt;
    return copies.last();
}

bool BoardRecovery::restoreInto(BoardDocument *document, const RecoveryEntry &copy)
{
    QImage picture;
    if (!picture.loadFromData(copy.content, "PNG"))
        return false;
    document->restore(picture, copy.originalPath);
    return true;
}

void BoardRecovery::discardAll()
{
    RecoveryStore(folder(), {kType}).clear();
}

void BoardRecovery::boardChanged()
{
    if (m_document->isModified()) {
        // Only the first change not yet copied starts the wait; later ones do not push it back.
        m_debounce.markChanged(m_id, now());
        schedule();
        return;
    }
    // Saved, opened or started afresh: the changes are safe or were given up.
    discard();
}

void BoardRecovery::schedule()
{
    const std::optional<QDateTime> due = m_debounce.nextDue();
    if (!due) {
        m_timer->stop();
        return;
    }
    if (!m_timer->isActive())
        m_timer->start(int(qBound<qint64>(0, now().msecsTo(*due), RecoveryDebounce::kDelayMs)));
}

void BoardRecovery::writeNow()
{
    if (!m_debounce.isPending(m_id) || !m_document->isModified())
        return;
    m_debounce.markSaved(m_id);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!m_document->layer()->image().save(&buffer, "PNG"))
        return;
    RecoveryEntry entry;
    entry.id = m_id;
    entry.caption = m_document->title();
    entry.originalPath = m_document->path();
    entry.type = kType;
    entry.content = bytes;
    // A copy that cannot be written (a full disk) is tried again with the next change; the
    // user hears of it once, so they know to save while the safety net is down.
    QString error;
    if (m_store.store(entry, &error)) {
        m_stored = true;
        m_problem.clear();
        return;
    }
    const bool wasWorking = m_problem.isEmpty();
    m_problem = error.isEmpty() ? tr("the recovery folder cannot be written") : error;
    if (wasWorking)
        emit copyFailed(m_problem);
}

void BoardRecovery::discard()
{
    m_debounce.markSaved(m_id);
    m_timer->stop();
    if (m_stored)
        m_store.remove(m_id);
    m_stored = false;
}
