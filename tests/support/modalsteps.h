#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVector>

#include <functional>

class QWidget;

/// Answers the modal windows that come up while a call does not return: the first one gets the
/// first step, the next one the second, and so on. A step has to close its window, or to see to it
/// that it is closed.
class ModalSteps : public QObject
{
    Q_OBJECT

public:
    using Step = std::function<void(QWidget *window)>;

    explicit ModalSteps(const QVector<Step> &steps);

    /// How many windows have come up so far.
    int shown() const { return m_shown; }

    /// A step for a window of one class; a window of another one is closed.
    template<class Window> static Step with(const std::function<void(Window *)> &step)
    {
        return [step](QWidget *window) {
            if (auto *const expected = qobject_cast<Window *>(window))
                step(expected);
            else
                refuse(window);
        };
    }

private:
    static void refuse(QWidget *window);
    void look();

    const QVector<Step> m_steps;
    QTimer m_timer;
    QPointer<QWidget> m_answered; // the next window may get its address
    int m_shown = 0;
};
