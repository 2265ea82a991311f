#include <tul-util-gui/terminal/terminal.h>
#include <tul-util-gui/terminal/terminalwidget.h>
#include <tul-util-gui/terminal/terminalwindow.h>

#include <QVBoxLayout>

TerminalWindow::TerminalWindow(QWidget *parent)
    : QDialog(parent)
    , m_widget(new TerminalWidget(this))
{
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_widget);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

TerminalWindow::TerminalWindow(Terminal *terminal, QWidget *parent)
    : TerminalWindow(parent)
{
    setTerminal(terminal);
}

TerminalWindow::~TerminalWindow()
{
    // A child of this window may end a program when the base destructor deletes it.
    for (const QPointer<Terminal> &terminal : qAsConst(m_heard)) {
        if (terminal)
            disconnect(terminal, nullptr, this, nullptr);
    }
}

Terminal *TerminalWindow::terminal() const
{
    return m_widget->terminal();
}

void TerminalWindow::setTerminal(Terminal *terminal)
{
    m_widget->setTerminal(terminal);
    if (!terminal)
        return;
    m_heard.removeAll(nullptr);
    if (!m_heard.contains(terminal))
        m_heard.append(terminal);
    connect(terminal, &Terminal::processStarted, this, &QWidget::setWindowTitle);
    connect(terminal, &Terminal::processFinished, this, &TerminalWindow::processFinished);
}

void TerminalWindow::processFinished()
{
    setWindowTitle(windowTitle() + QLatin1Char(' ') + tr("[finished]"));
}
