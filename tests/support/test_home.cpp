#include "test_home.h"

#include <QtGlobal>

TestHome::TestHome()
    : m_previous(qgetenv("VANTORA_HOME"))
{
    if (!m_dir.isValid())
        qFatal("TestHome: cannot create a temporary folder");
    qputenv("VANTORA_HOME", m_dir.path().toLocal8Bit());
    // Only this computer's addresses may be read from here on (see core/network_policy.h).
    qputenv("VANTORA_OFFLINE", "1");
}

TestHome::~TestHome()
{
    // Only undo our own setting: when a newer TestHome took over before this one went away,
    // it owns the variable now, and resetting it here would point later tests at the real home.
    if (qgetenv("VANTORA_HOME") != m_dir.path().toLocal8Bit())
        return;
    if (m_previous.isEmpty())
        qunsetenv("VANTORA_HOME");
    else
        qputenv("VANTORA_HOME", m_previous);
}
