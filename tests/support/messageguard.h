#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVector>

/// Catches what is logged while it lives. A warning or worse that nobody announced is a fault, and
/// so is an announced one that never came. Any thread may log; the other operations belong to the
/// thread that made the guard. One guard at a time.
class MessageGuard
{
public:
    MessageGuard();
    ~MessageGuard();
    MessageGuard(const MessageGuard &) = delete;
    MessageGuard &operator=(const MessageGuard &) = delete;

    /// Announces one message of `type` with exactly this `text`.
    void announce(QtMsgType type, const QString &text);

    /// What is wrong by now, one line each; empty when every message was announced and came.
    QStringList faults() const;

private:
    struct Announced {
        QtMsgType type;
        QString text;
    };

    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);
    bool take(QtMsgType type, const QString &text);

    static MessageGuard *s_guard;

    mutable QMutex m_mutex; // guards m_announced and m_unannounced
    QVector<Announced> m_announced;
    QStringList m_unannounced;
    QtMessageHandler m_previous;
};
