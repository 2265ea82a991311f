#include <support/testcase.h>

#include <QTest>

void TestCase::init()
{
    m_guard = std::make_unique<MessageGuard>();
}

void TestCase::cleanup()
{
    const QStringList faults = m_guard->faults();
    m_guard.reset();
    if (!faults.isEmpty())
        QFAIL(qPrintable(faults.join(QLatin1Char('\n'))));
}
