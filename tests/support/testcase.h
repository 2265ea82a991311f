#pragma once

#include <support/messageguard.h>

#include <QObject>

#include <memory>

/// Base of every test class: each test function runs under a message guard, so that a warning which
/// the function did not announce fails it. A class with an init() or cleanup() of its own calls
/// these.
class TestCase : public QObject
{
    Q_OBJECT

protected:
    void announceWarning(const QString &text) { m_guard->announce(QtWarningMsg, text); }

protected Q_SLOTS:
    void init();
    void cleanup();

private:
    std::unique_ptr<MessageGuard> m_guard;
};
