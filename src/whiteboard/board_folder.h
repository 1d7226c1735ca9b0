#pragma once

#include <QDateTime>
#include <QList>
#include <QString>

// A saved board as the folder lists it.
struct BoardEntry
{
    QString path;
    QString name; // the file name
    QDateTime modified;
};

// The folder boards are saved in: what it holds, names for new boards, deleting.
class BoardFolder
{
public:
    explicit BoardFolder(const QString &folder);

    QString path() const { return m_path; }
    // The board pictures in the folder, the most recently changed first.
    QList<BoardEntry> boards() const;
    // "Board 1.png", or the first "Board n.png" not taken yet.
    QString freeName() const;
    // Creates the folder when it is missing. False, with *error for the user, when it cannot be.
    bool ensureExists(QString *error) const;

    // Deletes a board file. False, with *error for the user, when it could not be deleted.
    static bool remove(const QString &path, QString *error);

private:
    QString m_path;
};
