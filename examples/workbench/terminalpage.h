#pragma once

#include <workbench/page.h>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QSpinBox;
class TerminalSession;
class TerminalWidget;

/// Starts a command that is typed into a line, and shows the program in a terminal on the page or
/// in a window of its own.
class TerminalPage : public WorkbenchPage
{
    Q_OBJECT

public:
    explicit TerminalPage(QWidget *parent = nullptr);
    ~TerminalPage() override;

    QString title() const override;
    QString advice() const override;

    /// Programs that have run: a list of files, a Python session where there is Python, a crash,
    /// and a terminal window.
    QStringList shots() const override;
    void prepareShot(const QString &shot) override;

    TerminalWidget *terminalWidget() { return m_widget; }

    /// Runs a command on the page.
    void run(const QString &command);

    /// Runs a command in a window, which ends it when it is closed.
    QWidget *runInWindow(const QString &command);

private:
    QWidget *createCommandRow();
    QWidget *createOptionRow();
    void updateButtons();
    void runToEnd(const QString &command, QVector<QByteArray> input = {});
    void showWindowShot();

    TerminalSession *m_session;
    TerminalWidget *m_widget;
    QLineEdit *m_command;
    QPushButton *m_run;
    QPushButton *m_stop;
    QPushButton *m_endInput;
    QCheckBox *m_pseudoTerminal;
    QSpinBox *m_limit;
};
