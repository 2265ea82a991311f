#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <workbench/remoteconnection.h>

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScopeGuard>

namespace
{

QString prefix()
{
    return QStringLiteral("remote:");
}

/// The answer of a modal box that asks about a key.
SshPrompt::Answer answerOf(QMessageBox *box, bool mayRemember)
{
    QAbstractButton *const remember = mayRemember
        ? box->addButton(RemoteConnection::tr("Connect and &Remember"), QMessageBox::AcceptRole)
        : nullptr;
    QAbstractButton *const once
        = box->addButton(RemoteConnection::tr("Connect &Once"), QMessageBox::AcceptRole);
    box->setDefaultButton(box->addButton(QMessageBox::Cancel));
    box->exec();
    if (box->clickedButton() == once)
        return SshPrompt::Answer::AcceptOnce;
    return remember && box->clickedButton() == remember ? SshPrompt::Answer::AcceptAndRemember
                                                        : SshPrompt::Answer::Refuse;
}

} // namespace

RemoteConnection::RemoteConnection(QWidget *window)
    : QObject(window)
    , m_window(window)
    , m_files(std::make_shared<SshFileSystem>(prefix()))
    , m_engines(m_files)
    , m_gatherers(m_files)
{
    RemoteFileSystemModel::setRemoteFileInfoGathererHandler(&m_gatherers);
}

RemoteConnection::~RemoteConnection()
{
    RemoteFileSystemModel::setRemoteFileInfoGathererHandler(nullptr);
}

void RemoteConnection::connectTo(const SshTarget &target, const SshSettings &settings)
{
    delete m_offer;
    SshPrompt *const prompt = this;
    m_connection = std::make_unique<SshConnection>(target, settings, prompt);
    connect(m_connection.get(), &SshConnection::opened, this, &RemoteConnection::takeOpened);
    connect(m_connection.get(), &SshConnection::failed, this, [this](const QString &message) {
        offerAnew(tr("No Connection"), message, tr("&Try Again"));
    });
    connect(m_connection.get(), &SshConnection::lost, this, [this](const QString &message) {
        offerAnew(tr("Connection Lost"), message, tr("&Reconnect"));
    });
    Q_EMIT statusChanged(tr("Connecting to %1...").arg(target.displayName()));
    m_connection->open();
}

void RemoteConnection::takeOpened()
{
    m_files->setClient(m_connection->client());
    const QString wanted = m_connection->target().directory;
    Q_EMIT statusChanged(tr("Connected to %1").arg(m_connection->target().displayName()));
    Q_EMIT opened(prefix() + (wanted.isEmpty() ? m_connection->homeDirectory() : wanted));
}

/// A message on top of a dialog that is open would otherwise be out of reach.
QWidget *RemoteConnection::messageParent() const
{
    QWidget *const dialog = QApplication::activeModalWidget();
    return dialog ? dialog : m_window.data();
}

void RemoteConnection::offerAnew(const QString &title, const QString &message,
                                 const QString &button)
{
    Q_EMIT statusChanged(title);
    auto *const box = new QMessageBox(QMessageBox::Warning, title, message, QMessageBox::Close,
                                      messageParent());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    if (m_connection->state() == SshConnection::State::Lost)
        box->setInformativeText(tr("What you have typed and chosen is still there."));
    QPushButton *const again = box->addButton(button, QMessageBox::AcceptRole);
    box->setDefaultButton(again);
    connect(again, &QPushButton::clicked, m_connection.get(), [this] {
        Q_EMIT statusChanged(tr("Connecting to %1...").arg(m_connection->target().displayName()));
        m_connection->open();
    });
    m_offer = box;
    box->open();
}

SshPrompt::Answer RemoteConnection::askHostKey(const HostKey &key)
{
    const QPointer<QMessageBox> box(new QMessageBox(messageParent()));
    const auto cleanUp = qScopeGuard([&] { delete box; });
    box->setTextFormat(Qt::PlainText);
    const bool isUnknown = key.kind == KeyKind::Unknown;
    if (isUnknown) {
        box->setIcon(QMessageBox::Question);
        box->setWindowTitle(tr("Unknown Host Key"));
        box->setText(tr("%1 was never connected to before.").arg(key.host));
        box->setInformativeText(
            tr("Its key (%1) has the fingerprint\n%2\n\nConnect only if that is "
               "what the administrator of the machine told you.")
                .arg(key.type, key.fingerprint));
    } else {
        box->setIcon(QMessageBox::Critical);
        box->setWindowTitle(tr("Changed Host Key"));
        box->setText(tr("%1 shows another key than before.").arg(key.host));
        box->setInformativeText(
            tr("Somebody may be between you and that machine, to read all that is sent. The new "
               "key "
               "(%1) has the fingerprint\n%2\n\nIf its administrator has changed the key, take the "
               "old line out of the file known_hosts.")
                .arg(key.type, key.fingerprint));
    }
    const Answer answer = answerOf(box.data(), isUnknown);
    return box ? answer : Answer::Refuse;
}

bool RemoteConnection::askSecret(const QString &question, bool echo, QByteArray *secret)
{
    const QPointer<QInputDialog> dialog(new QInputDialog(messageParent()));
    dialog->setWindowTitle(tr("Log In"));
    dialog->setLabelText(question);
    dialog->setTextEchoMode(echo ? QLineEdit::Normal : QLineEdit::Password);
    const bool given = dialog->exec() == QDialog::Accepted && dialog;
    if (given)
        *secret = dialog->textValue().toUtf8();
    delete dialog;
    return given;
}
