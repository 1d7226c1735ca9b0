#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QtGlobal>

// Environment variables set for one test and put back as they were when it ends.
class ScopedEnvironment
{
public:
    ScopedEnvironment() = default;
    ScopedEnvironment(const ScopedEnvironment &) = delete;
    ScopedEnvironment &operator=(const ScopedEnvironment &) = delete;
    ~ScopedEnvironment()
    {
        for (auto it = m_saved.cbegin(); it != m_saved.cend(); ++it) {
            if (it.value().isNull())
                qunsetenv(it.key().constData());
            else
                qputenv(it.key().constData(), it.value());
        }
    }

    // A null value unsets the variable.
    void set(const char *name, const QString &value)
    {
        set(name, value.isNull() ? QByteArray() : value.toLocal8Bit());
    }
    void set(const char *name, const char *value) { set(name, value ? QByteArray(value) : QByteArray()); }
    void set(const char *name, const QByteArray &value)
    {
        if (!m_saved.contains(name))
            m_saved.insert(name, qEnvironmentVariableIsSet(name) ? qgetenv(name) : QByteArray());
        if (value.isNull())
            qunsetenv(name);
        else
            qputenv(name, value);
    }

private:
    QHash<QByteArray, QByteArray> m_saved;
};
