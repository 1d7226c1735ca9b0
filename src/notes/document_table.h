#pragma once

#include <QObject>
#include <QPointer>

#include <algorithm>
#include <array>

// The notes editor's open documents: a fixed table of 301 slots (0 to 300), each holding one
// document window or nothing, and the running number that names new documents ("RTF 3").
// A slot's number is the document's TagNo. The table never grows; a slot number outside
// 0-300 is out of range. Slots hold QPointers, so a window deleted behind the table's back
// leaves its slot free.
class DocumentTable
{
public:
    static constexpr int kSlotCount = 301;

    // The lowest free slot, now holding `document`; -1 when every slot is taken (or
    // `document` is null).
    int takeSlot(QObject *document);

    // Empties the slot; an out-of-range slot is ignored.
    void release(int slot);

    // The document in the slot; null when empty or out of range.
    QObject *at(int slot) const;

    // The slot holding `document`, or -1.
    int slotOf(const QObject *document) const;

    // The number of documents held.
    int count() const;

    static bool isValidSlot(int slot) { return slot >= 0 && slot < kSlotCount; }

    // The number for the next new or opened document: 1, 2, 3, ... for the life of the table.
    int takeDocumentNumber() { return m_nextNumber++; }
    // The numbers before `number` count as used: the next one taken is `number` or later.
    void skipDocumentNumbersBefore(int number) { m_nextNumber = std::max(m_nextNumber, number); }

private:
    std::array<QPointer<QObject>, kSlotCount> m_slots;
    int m_nextNumber = 1;
};
