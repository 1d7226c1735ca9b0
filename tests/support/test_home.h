#pragma once

#include <QString>
#include <QTemporaryDir>

// Points VANTORA_HOME at a fresh temporary folder for the life of the object, so that
// nothing a test does can reach the real home folder. Create one at the start of
// initTestCase() (or per test function where a clean slate matters).
class TestHome
{
public:
    TestHome();
    ~TestHome();

    QString path() const { return m_dir.path(); }
    QString filePath(const QString &relative) const { return m_dir.filePath(relative); }
    bool isValid() const { return m_dir.isValid(); }

private:
    QTemporaryDir m_dir;
    QByteArray m_previous;
};
