#include <support/modalsteps.h>

#include <QApplication>
#include <QWidget>
#include <QtTest>

namespace
{

constexpr int pollMilliseconds = 5;

} // namespace

ModalSteps::ModalSteps(const QVector<Step> &steps)
    : m_steps(steps)
{
    connect(&m_timer, &QTimer::timeout, this, &ModalSteps::look);
    m_timer.start(pollMilliseconds);
}

void ModalSteps::refuse(QWidget *window)
{
    QTest::qFail("another window than expected is up", __FILE__, __LINE__);
    window->close();
}

void ModalSteps::look()
{
    QWidget *const window = QApplication::activeModalWidget();
    if (!window || !window->isVisible() || window == m_answered)
        return;
    m_answered = window;
    const int number = m_shown++;
    if (number >= m_steps.size()) {
        QTest::qFail("more windows than expected are up", __FILE__, __LINE__);
        window->close();
        return;
    }
    m_steps.at(number)(window);
}
