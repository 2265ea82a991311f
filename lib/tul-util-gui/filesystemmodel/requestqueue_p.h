#pragma once

#include <QString>
#include <QStringList>

#include <deque>
#include <utility>

/// The waiting requests of a gatherer, first in, first out. Without a lock of its own.
class RequestQueue
{
public:
    struct Request {
        QString path; ///< of a directory
        QStringList files; ///< names in it; empty for a listing of all
    };

    bool isEmpty() const { return m_requests.empty(); }

    /// Adds a request; false when an equal one waits already.
    ///
    /// By design: the oldest one is never compared. Its turn is next, so that what has changed
    /// since may come too late for it.
    bool add(const QString &path, const QStringList &files)
    {
        for (std::size_t i = m_requests.size(); i > 1; --i) {
            const Request &waiting = m_requests.at(i - 1);
            if (waiting.path == path && waiting.files == files)
                return false;
        }
        m_requests.push_back({path, files});
        return true;
    }

    /// The oldest request; there must be one.
    Request take()
    {
        Request oldest = std::move(m_requests.front());
        m_requests.pop_front();
        return oldest;
    }

private:
    std::deque<Request> m_requests;
};
