#include "core/recovery_debounce.h"

void RecoveryDebounce::markChanged(const QString &id, const QDateTime &now)
{
    if (!m_firstChange.contains(id))
        m_firstChange.insert(id, now);
}

void RecoveryDebounce::markSaved(const QString &id)
{
    m_firstChange.remove(id);
}

QStringList RecoveryDebounce::dueIds(const QDateTime &now) const
{
    QStringList due;
    for (auto it = m_firstChange.cbegin(); it != m_firstChange.cend(); ++it) {
        if (it.value().msecsTo(now) >= kDelayMs)
            due << it.key();
    }
    return due;
}

std::optional<QDateTime> RecoveryDebounce::nextDue() const
{
    std::optional<QDateTime> earliest;
    for (const QDateTime &first : m_firstChange) {
        if (!earliest || first < *earliest)
            earliest = first;
    }
    if (earliest)
        return earliest->addMSecs(kDelayMs);
    return std::nullopt;
}
