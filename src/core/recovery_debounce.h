#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

// When an editor takes recovery copies: a document's changes are copied no later than
// 30 seconds after they were made, even while the user keeps typing. The clock starts at the
// first change not yet copied (later changes do not push it back) and stops when the document
// is copied or saved. Times are passed in, so the rule is testable without waiting.
class RecoveryDebounce
{
public:
    static constexpr qint64 kDelayMs = 30 * 1000;

    // The document `id` changed at `now`.
    void markChanged(const QString &id, const QDateTime &now);

    // The document's changes are safe: copied, saved to its file, or the document closed.
    void markSaved(const QString &id);

    // The documents that must be copied now, in no particular order.
    QStringList dueIds(const QDateTime &now) const;

    // When the next document falls due; nothing when no change is waiting. The editor sets
    // its single-shot timer to this.
    std::optional<QDateTime> nextDue() const;

    bool isPending(const QString &id) const { return m_firstChange.contains(id); }

private:
    QHash<QString, QDateTime> m_firstChange;
};
