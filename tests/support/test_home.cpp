#include "test_home.h"


TestHome::TestHome()
    : m_previous(qgetenv("VANTORA_HOME"))
{
    qputenv("VANTORA_HOME", m_dir.path().toLocal8Bit());
}

TestHome::~TestHome()
{
    if (m_previous.isEmpty())
        qunsetenv("VANTORA_HOME");
    else
        qputenv("VANTORA_HOME", m_previous);
}
