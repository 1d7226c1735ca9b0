#include "notes/document_table.h"

#include <algorithm>

int DocumentTable::takeSlot(QObject *document)
{
    if (!document)
        return -1;
    for (int slot = 0; slot < kSlotCount; ++slot) {
        if (m_slots[slot].isNull()) {
            m_slots[slot] = document;
            return slot;
        }
    }
    return -1;
}

void DocumentTable::release(int slot)
{
    if (isValidSlot(slot))
        m_slots[slot].clear();
}

QObject *DocumentTable::at(int slot) const
{
    return isValidSlot(slot) ? m_slots[slot].data() : nullptr;
}

int DocumentTable::slotOf(const QObject *document) const
{
    if (!document)
        return -1;
    for (int slot = 0; slot < kSlotCount; ++slot) {
        if (m_slots[slot].data() == document)
            return slot;
    }
    return -1;
}

int DocumentTable::count() const
{
    return int(std::count_if(m_slots.cbegin(), m_slots.cend(), [](const QPointer<QObject> &p) { return !p.isNull(); }));
}
