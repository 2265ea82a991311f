#include <support/messageguard.h>

#include <QMutexLocker>

#include <algorithm>

namespace
{

// The offscreen platform logs it for each window of limited size, a message box for example, and
// for each one that pops up.
bool isOfThePlatform(const QString &text)
{
    return text.startsWith(QLatin1String("This plugin does not support "));
}

} // namespace

MessageGuard *MessageGuard::s_guard = nullptr;

MessageGuard::MessageGuard()
{
    s_guard = this;
    m_previous = qInstallMessageHandler(&MessageGuard::handle);
}

MessageGuard::~MessageGuard()
{
    qInstallMessageHandler(m_previous);
    s_guard = nullptr;
}

void MessageGuard::announce(QtMsgType type, const QString &text)
{
    const QMutexLocker locker(&m_mutex);
    m_announced.append({type, text});
}

QStringList MessageGuard::faults() const
{
    const QMutexLocker locker(&m_mutex);
    QStringList result = m_unannounced;
    for (const Announced &announced : m_announced)
        result.append(QStringLiteral("announced, but never logged: %1").arg(announced.text));
    return result;
}

void MessageGuard::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (isOfThePlatform(text) || s_guard->take(type, text))
        return;
    s_guard->m_previous(type, context, text);
}

/// Books the message; true when it was announced and needs no printing.
bool MessageGuard::take(QtMsgType type, const QString &text)
{
    const QMutexLocker locker(&m_mutex);
    const auto found
        = std::find_if(m_announced.begin(), m_announced.end(), [&](const Announced &announced) {
              return announced.type == type && announced.text == text;
          });
    if (found != m_announced.end()) {
        m_announced.erase(found);
        return true;
    }
    if (type == QtWarningMsg || type == QtCriticalMsg)
        m_unannounced.append(QStringLiteral("not announced: %1").arg(text));
    return false;
}
