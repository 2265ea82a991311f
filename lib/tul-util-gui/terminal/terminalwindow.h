#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QDialog>
#include <QPointer>
#include <QVector>

class Terminal;
class TerminalWidget;

/// A window with a TerminalWidget, as large as the terminal's window size wants it; its title is
/// the command line of the program that runs, with "[finished]" behind it when it has ended.
///
/// *Ownership*: the terminal is not owned, and may be destroyed before or after the window. Closing
/// the window ends neither the terminal nor its program.
///
/// *Threads*: GUI thread only.
class TUL_UTIL_GUI_EXPORT TerminalWindow : public QDialog
{
    Q_OBJECT

public:
    explicit TerminalWindow(QWidget *parent = nullptr);
    explicit TerminalWindow(Terminal *terminal, QWidget *parent = nullptr);
    ~TerminalWindow() override;

    /// The terminal that is shown, or null. As with the widget, one that has been replaced still
    /// reports its starts and finishes.
    Terminal *terminal() const;
    void setTerminal(Terminal *terminal);

private Q_SLOTS:
    void processFinished();

private:
    TerminalWidget *m_widget;
    QVector<QPointer<Terminal>> m_heard; // the one that is shown, and those that it has replaced
};
