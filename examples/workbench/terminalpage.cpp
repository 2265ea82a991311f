#include <workbench/terminalpage.h>
#include <workbench/terminalsession.h>

#include <tul-util-gui/terminal/goodfont.h>
#include <tul-util-gui/terminal/terminalwidget.h>
#include <tul-util-gui/terminal/terminalwindow.h>

#include <QCheckBox>
#include <QEventLoop>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>

namespace
{

constexpr int fontSize = 10;
constexpr int mostLines = 1'000'000;
constexpr int shotPatience = 10'000;

} // namespace

TerminalPage::TerminalPage(QWidget *parent)
    : WorkbenchPage(parent)
    , m_session(new TerminalSession(this))
    , m_widget(new TerminalWidget(m_session->terminal()))
{
    m_widget->setFont(findGoodFont(fontSize));
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(createCommandRow());
    layout->addWidget(createOptionRow());
    layout->addWidget(m_widget, 1);

    connect(m_session, &TerminalSession::runningChanged, this, &TerminalPage::updateButtons);
    connect(m_session, &TerminalSession::failed, this, &WorkbenchPage::failed);
    updateButtons();
}

TerminalPage::~TerminalPage()
{
    delete m_session; // while there is somebody to show how its program ends
}

QString TerminalPage::title() const
{
    return tr("Terminal");
}

QString TerminalPage::advice() const
{
    return tr(
        "Try: make, cat, python3 -i, sh -c \"kill -SEGV $$\", yes. Typed text goes to the program; "
        "Meta+C sends an interrupt, which a pseudo-terminal passes on.");
}

QWidget *TerminalPage::createCommandRow()
{
    auto *const row = new QWidget;
    m_command = new QLineEdit(QStringLiteral("ls -l /"));
    m_command->setAccessibleName(tr("Command"));
    m_run = new QPushButton(tr("&Run"));
    auto *const window = new QPushButton(tr("Open in &window"));
    m_stop = new QPushButton(tr("&Stop"));
    m_endInput = new QPushButton(tr("&End of input"));

    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_command, 1);
    for (QPushButton *const button : {m_run, window, m_stop, m_endInput})
        layout->addWidget(button);

    connect(m_command, &QLineEdit::returnPressed, m_run, &QPushButton::click);
    connect(m_run, &QPushButton::clicked, this, [this] { run(m_command->text()); });
    connect(window, &QPushButton::clicked, this, [this] { runInWindow(m_command->text()); });
    connect(m_stop, &QPushButton::clicked, m_session, &TerminalSession::stop);
    connect(m_endInput, &QPushButton::clicked, m_session, &TerminalSession::endInput);
    return row;
}

QWidget *TerminalPage::createOptionRow()
{
    auto *const row = new QWidget;
    m_pseudoTerminal = new QCheckBox(tr("&Pseudo-terminal"));
    m_pseudoTerminal->setVisible(Terminal::isPseudoTerminalSupported());
    m_limit = new QSpinBox;
    m_limit->setRange(0, mostLines);
    m_limit->setSpecialValueText(tr("all"));
    auto *const limitLabel = new QLabel(tr("&Lines kept:"));
    limitLabel->setBuddy(m_limit);
    auto *const clear = new QPushButton(tr("&Clear"));

    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *const widget :
         std::initializer_list<QWidget *>{m_pseudoTerminal, limitLabel, m_limit, clear})
        layout->addWidget(widget);
    layout->addStretch(1);

    connect(m_pseudoTerminal, &QCheckBox::toggled, m_session, &TerminalSession::setPseudoTerminal);
    connect(m_limit, qOverload<int>(&QSpinBox::valueChanged), m_widget,
            &TerminalWidget::setMaximumBlockCount);
    connect(clear, &QPushButton::clicked, m_widget, &TerminalWidget::clear);
    return row;
}

void TerminalPage::updateButtons()
{
    const bool isRunning = m_session->isRunning();
    m_run->setEnabled(!isRunning);
    m_pseudoTerminal->setEnabled(!isRunning);
    m_stop->setEnabled(isRunning);
    m_endInput->setEnabled(isRunning);
    Q_EMIT statusChanged(isRunning ? tr("The program is running.") : QString());
}

void TerminalPage::run(const QString &command)
{
    m_session->start(command);
    if (m_session->isRunning())
        m_widget->setFocus();
}

QWidget *TerminalPage::runInWindow(const QString &command)
{
    auto *const window = new TerminalWindow(this);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setFont(findGoodFont(fontSize));
    auto *const session = new TerminalSession(this);
    connect(window, &QObject::destroyed, session, &QObject::deleteLater); // and its program
    connect(session, &TerminalSession::failed, this, &WorkbenchPage::failed);
    session->setPseudoTerminal(m_pseudoTerminal->isChecked());
    window->setTerminal(session->terminal());
    window->setWindowTitle(tr("Terminal"));
    window->show();
    session->start(command);
    return window;
}

QStringList TerminalPage::shots() const
{
    QStringList shots{QStringLiteral("terminal-list"), QStringLiteral("terminal-crash"),
                      QStringLiteral("terminal-window")};
    if (!QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty())
        shots.append(QStringLiteral("terminal-python"));
    return shots;
}

void TerminalPage::prepareShot(const QString &shot)
{
    m_widget->clear();
    m_pseudoTerminal->setChecked(shot == QLatin1String("terminal-python")); // echoes the input
    if (shot == QLatin1String("terminal-list")) {
        runToEnd(QStringLiteral("ls -l --time-style=long-iso /usr/share/common-licenses"));
    } else if (shot == QLatin1String("terminal-crash")) {
        runToEnd(QStringLiteral("sh -c \"echo 'Reading the input'; kill -SEGV $$\""));
    } else if (shot == QLatin1String("terminal-python")) {
        runToEnd(QStringLiteral("python3"),
                 {"6 * 7\n", "import math\n", "math.pi\n", "1 / 0\n", "exit(3)\n"});
    } else {
        showWindowShot();
    }
}

/// Runs a command that reads what is written at each of its prompts.
void TerminalPage::runToEnd(const QString &command, QVector<QByteArray> input)
{
    QEventLoop loop;
    connect(m_session, &TerminalSession::runningChanged, &loop, [&] {
        if (!m_session->isRunning())
            loop.quit();
    });
    connect(m_widget, &QTextEdit::textChanged, &loop, [&] {
        if (!input.isEmpty() && m_widget->toPlainText().endsWith(QLatin1String(">>> ")))
            m_session->terminal()->write(input.takeFirst());
    });
    QTimer::singleShot(shotPatience, &loop, &QEventLoop::quit);
    m_command->setText(command);
    run(command);
    if (m_session->isRunning())
        loop.exec();
}

/// Shows the window inside the page, with a frame and a title that are in the picture.
void TerminalPage::showWindowShot()
{
    m_command->setText(QStringLiteral("seq 1 8"));
    QWidget *const window = runInWindow(m_command->text());
    auto *const frame = new QMdiSubWindow(this);
    frame->setWidget(window);
    frame->show();
    frame->adjustSize();
    frame->move((width() - frame->width()) / 2, (height() - frame->height()) / 2);
    connect(this, &WorkbenchPage::statusChanged, frame, &QObject::deleteLater);
    QEventLoop loop;
    connect(window, &QWidget::windowTitleChanged, &loop, [&](const QString &text) {
        if (text.endsWith(QLatin1Char(']')))
            loop.quit();
    });
    QTimer::singleShot(shotPatience, &loop, &QEventLoop::quit);
    loop.exec();
}
