#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// The places that a user has been to, with what was selected there, and which of them is shown.
class NavigationHistory
{
public:
    struct Place {
        QString path;
        QStringList selected;
    };

    bool isEmpty() const { return m_places.isEmpty(); }
    bool canGoBack() const { return m_current > 0; }
    bool canGoForward() const { return m_current + 1 < m_places.size(); }
    const Place &current() const { return m_places.at(m_current); }

    /// Notes a new place; what lay ahead is forgotten. The place that is shown is not noted again.
    void visit(const QString &path)
    {
        if (!isEmpty() && current().path == path)
            return;
        m_places.resize(m_current + 1);
        m_places.append({path, {}});
        ++m_current;
    }

    void setSelected(const QStringList &paths)
    {
        if (!isEmpty())
            m_places[m_current].selected = paths;
    }

    /// Moves by one place, which must be there.
    void step(int by) { m_current += by; }

    /// Forgets the shown place, which turned out to be gone, after a step.
    void dropAfterStep(int by)
    {
        m_places.removeAt(m_current);
        m_current -= by > 0 ? 1 : 0;
        keep([](const QString &) { return true; });
    }

    /// Forgets the places that `isKept` refuses. The shown one stays in any case. What comes to
    /// stand next to its like becomes one place: a step from one to the other leads nowhere.
    template<class Predicate> void keep(Predicate isKept)
    {
        QVector<Place> kept;
        int current = m_current;
        for (int i = 0; i < m_places.size(); ++i) {
            const Place &place = m_places.at(i);
            const bool repeated = !kept.isEmpty() && kept.constLast().path == place.path;
            if (!repeated && (i == m_current || isKept(place.path)))
                kept.append(place);
            if (i == m_current)
                current = kept.size() - 1;
        }
        m_places = kept;
        m_current = current;
    }

    /// Forgets all but the shown place.
    void restart()
    {
        if (isEmpty())
            return;
        m_places = {current()};
        m_current = 0;
    }

private:
    QVector<Place> m_places;
    int m_current = -1;
};
