#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/terminal/goodfont.h>
#include <tul-util-gui/terminal/terminalwindow.h>
#include <workbench/remoteactions.h>
#include <workbench/remoteconnection.h>
#include <workbench/remoteterminal.h>

#include <QAction>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenu>
#include <QProgressDialog>

namespace
{

constexpr int terminalFontSize = 10; // points

} // namespace

RemoteActions::RemoteActions(QMenu *menu, QWidget *window)
    : QObject(window)
    , m_window(window)
    , m_address(QStringLiteral("ssh://"))
{
    menu->addAction(tr("&Connect to Remote Machine..."), this, &RemoteActions::askAddress);
    m_openAction
        = menu->addAction(tr("Open from &Remote Machine..."), this, &RemoteActions::chooseFile);
    m_runAction = menu->addAction(tr("Run Command on Remote &Machine..."), this,
                                  &RemoteActions::askCommand);
    updateActions();
    connect(&m_fetcher, &FileFetcher::fetched, this, [this](const QString &localFileName) {
        delete m_progress;
        Q_EMIT fetched(localFileName);
    });
    connect(&m_fetcher, &FileFetcher::failed, this, [this](const QString &message) {
        delete m_progress;
        Q_EMIT failed(message);
    });
    connect(&m_fetcher, &FileFetcher::progress, this, [this](qint64 done, qint64 all) {
        // Parts of a thousand: files may have more bytes than the dialog can count.
        if (m_progress && all > 0)
            m_progress->setValue(static_cast<int>(qMin(done, all) * 1000 / all));
    });
}

RemoteActions::~RemoteActions()
{
    delete m_progress;
}

void RemoteActions::setFilter(const QString &filter)
{
    m_filter = filter;
    updateActions();
}

void RemoteActions::updateActions()
{
    const bool isConnected = !m_directory.isEmpty();
    m_openAction->setEnabled(isConnected && !m_filter.isEmpty());
    m_runAction->setEnabled(isConnected);
}

void RemoteActions::connectTo(const SshTarget &target, const SshSettings &settings)
{
    if (!m_remote) {
        m_remote = new RemoteConnection(m_window);
        connect(m_remote, &RemoteConnection::opened, this, &RemoteActions::takeOpened);
        connect(m_remote, &RemoteConnection::statusChanged, this, &RemoteActions::statusChanged);
    }
    m_directory.clear();
    updateActions();
    m_remote->connectTo(target, settings);
}

void RemoteActions::takeOpened(const QString &directory)
{
    // After a reconnection all is as it was; a dialog may be open, and goes on.
    if (m_directory == directory)
        return;
    m_directory = directory;
    RemoteFileDialog::setRemoteHomeDirectory(RemoteFileDialog::remotePrefix()
                                             + m_remote->connection()->homeDirectory());
    RemoteFileDialog::setDefaultWorkingDirectory(directory);
    updateActions();
    Q_EMIT opened(directory);
}

void RemoteActions::askAddress()
{
    auto *const dialog = new QInputDialog(m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Connect"));
    dialog->setLabelText(tr("Address, as ssh://user@host:port/directory:"));
    dialog->setTextValue(m_address);
    connect(dialog, &QInputDialog::textValueSelected, this, [this](const QString &text) {
        m_address = text.trimmed();
        SshTarget target;
        const QString fault = SshTarget::parse(m_address, &target);
        if (fault.isEmpty())
            connectTo(target, SshSettings());
        else
            Q_EMIT failed(fault);
    });
    dialog->open();
}

void RemoteActions::askCommand()
{
    auto *const dialog = new QInputDialog(m_window);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(tr("Run"));
    dialog->setLabelText(tr("Command line for the remote machine:"));
    connect(dialog, &QInputDialog::textValueSelected, this, &RemoteActions::run);
    dialog->open();
}

QWidget *RemoteActions::run(const QString &commandLine)
{
    auto *const window = new TerminalWindow(m_window);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setFont(findGoodFont(terminalFontSize));
    window->setWindowTitle(commandLine);
    window->setTerminal(new RemoteTerminal(m_remote->connection(), commandLine, window));
    window->show();
    return window;
}

void RemoteActions::chooseFile()
{
    auto *const dialog = new RemoteFileDialog(m_window, tr("Open"), QString(), m_filter);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &RemoteFileDialog::fileSelected, this, &RemoteActions::fetch);
    dialog->open();
}

void RemoteActions::fetch(const QString &fileName)
{
    delete m_progress;
    m_progress = new QProgressDialog(tr("Fetching %1").arg(QFileInfo(fileName).fileName()),
                                     tr("Cancel"), 0, 1000, m_window);
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setAutoReset(false);
    connect(m_progress, &QProgressDialog::canceled, this, [this] {
        m_fetcher.cancel();
        m_progress->deleteLater();
    });
    m_progress->setValue(0);
    m_fetcher.fetch(fileName);
}
