#include <backends/ssh/sshsession.h>

#include <backends/ssh/remotename.h>
#include <backends/ssh/sshwaker.h>

#include <QFile>

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace
{

constexpr int attempts = 3; // with passwords, as usual

void wipe(QByteArray *secret)
{
    explicit_bzero(secret->data(), static_cast<std::size_t>(secret->size()));
    secret->clear();
}

} // namespace

SshSession::SshSession(const SshTarget &target, const SshSettings &settings, SshQuestions questions,
                       SshWaker *waker)
    : m_target(target)
    , m_settings(settings)
    , m_questions(std::move(questions))
    , m_waker(waker)
    , m_session(ssh_new())
{
    m_callbacks.userdata = this;
    m_callbacks.auth_function = &SshSession::askPassphrase;
    ssh_callbacks_init(&m_callbacks);
}

SshSession::~SshSession()
{
    if (!m_session)
        return;
    ssh_disconnect(m_session);
    ssh_free(m_session);
}

QString SshSession::open()
{
    if (!m_session || !setOptions())
        return tr("Cannot prepare a connection to %1: %2").arg(m_target.host, errorText());
    ssh_set_blocking(m_session, 0);
    if (settle(SSH_AGAIN, [this] { return ssh_connect(m_session); }) != SSH_OK)
        return tr("Cannot connect to %1: %2").arg(m_target.displayName(), errorText());
    const QString refused = checkHost();
    return refused.isEmpty() ? logIn() : refused;
}

bool SshSession::set(ssh_options_e option, const QString &value)
{
    return ssh_options_set(m_session, option, tul::remoteNameToBytes(value).constData()) == SSH_OK;
}

bool SshSession::setOptions()
{
    bool ok = set(SSH_OPTIONS_HOST, m_target.host)
        && ssh_set_callbacks(m_session, &m_callbacks) == SSH_OK;
    const int yes = 1;
    ssh_options_set(m_session, SSH_OPTIONS_NODELAY, &yes);
    if (m_settings.directory.isEmpty()) {
        ssh_options_parse_config(m_session, nullptr);
    } else {
        const bool no = false;
        const QString in = m_settings.directory + QLatin1Char('/');
        ok = ok && ssh_options_set(m_session, SSH_OPTIONS_PROCESS_CONFIG, &no) == SSH_OK
            && set(SSH_OPTIONS_SSH_DIR, m_settings.directory)
            && set(SSH_OPTIONS_KNOWNHOSTS, in + QStringLiteral("known_hosts"))
            && set(SSH_OPTIONS_GLOBAL_KNOWNHOSTS, in + QStringLiteral("ssh_known_hosts"))
            && set(SSH_OPTIONS_IDENTITY_AGENT, in + QStringLiteral("agent"));
    }
    // What was said for this connection goes before the configuration.
    if (!m_target.user.isEmpty())
        ok = ok && set(SSH_OPTIONS_USER, m_target.user);
    if (m_target.port != 0)
        ok = ok && ssh_options_set(m_session, SSH_OPTIONS_PORT, &m_target.port) == SSH_OK;
    if (!m_settings.proxyCommand.isEmpty())
        ok = ok && set(SSH_OPTIONS_PROXYCOMMAND, m_settings.proxyCommand);
    return ok;
}

QString SshSession::errorText() const
{
    if (m_timedOut)
        return tr("there was no answer for %1 s").arg((m_settings.timeout + 999) / 1000);
    if (!m_session)
        return tr("out of memory");
    return QString::fromLocal8Bit(ssh_get_error(m_session));
}

void SshSession::wait(int milliseconds)
{
    const bool toWrite = ssh_get_poll_flags(m_session) & SSH_WRITE_PENDING;
    m_waker->wait(ssh_get_fd(m_session), toWrite, milliseconds);
}

/// Takes a step again and again until it is done.
int SshSession::settle(int again, const std::function<int()> &step)
{
    // A socket that is not connected yet does not always wake a waiter.
    constexpr int longestNap = 20;
    m_step.start();
    for (;;) {
        const int result = step();
        if (result != again)
            return result;
        if (m_waker->stopped())
            return SSH_ERROR;
        if (m_step.hasExpired(m_settings.timeout)) {
            m_timedOut = true;
            return SSH_ERROR;
        }
        wait(longestNap);
    }
}

QString SshSession::checkHost()
{
    const ssh_known_hosts_e known = ssh_session_is_known_server(m_session);
    if (known == SSH_KNOWN_HOSTS_OK)
        return {};
    if (known == SSH_KNOWN_HOSTS_ERROR)
        return tr("Cannot tell whether %1 is known: %2").arg(m_target.host, errorText());

    ssh_key found = nullptr;
    if (ssh_get_server_publickey(m_session, &found) != SSH_OK)
        return tr("%1 shows no key: %2").arg(m_target.host, errorText());
    const std::unique_ptr<ssh_key_struct, decltype(&ssh_key_free)> key(found, &ssh_key_free);
    uchar *hash = nullptr;
    size_t size = 0;
    if (ssh_get_publickey_hash(key.get(), SSH_PUBLICKEY_HASH_SHA256, &hash, &size) != SSH_OK)
        return tr("%1 shows no proper key.").arg(m_target.host);
    char *const fingerprint = ssh_get_fingerprint_hash(SSH_PUBLICKEY_HASH_SHA256, hash, size);
    ssh_clean_pubkey_hash(&hash);

    SshPrompt::HostKey question;
    const bool isUnknown = known == SSH_KNOWN_HOSTS_UNKNOWN || known == SSH_KNOWN_HOSTS_NOT_FOUND;
    question.kind = isUnknown ? SshPrompt::KeyKind::Unknown : SshPrompt::KeyKind::Changed;
    question.host = m_target.displayName();
    question.type = QString::fromLatin1(ssh_key_type_to_char(ssh_key_type(key.get())));
    question.fingerprint = QString::fromLatin1(fingerprint);
    ssh_string_free_char(fingerprint);
    switch (m_questions.hostKey(question)) {
    case SshPrompt::Answer::Refuse:
        return tr("The key of %1 was not accepted.").arg(m_target.host);
    case SshPrompt::Answer::AcceptOnce:
        return {};
    case SshPrompt::Answer::AcceptAndRemember:
        break;
    }
    // A second line beside the old one would make every key of either right from now on.
    if (isUnknown && ssh_session_update_known_hosts(m_session) != SSH_OK)
        return tr("Cannot remember the key of %1: %2").arg(m_target.host, errorText());
    return {};
}

QString SshSession::logIn()
{
    int result = settle(SSH_AUTH_AGAIN, [this] { return ssh_userauth_none(m_session, nullptr); });
    bool keysTried = false;
    int questions = 0;
    int passwords = 0;
    while (result != SSH_AUTH_SUCCESS && result != SSH_AUTH_ERROR) {
        const auto methods = static_cast<uint>(ssh_userauth_list(m_session, nullptr));
        if ((methods & SSH_AUTH_METHOD_PUBLICKEY) && !keysTried) {
            keysTried = true;
            result = tryKeys();
        } else if ((methods & SSH_AUTH_METHOD_INTERACTIVE) && questions < attempts) {
            ++questions;
            result = tryQuestions();
        } else if ((methods & SSH_AUTH_METHOD_PASSWORD) && passwords < attempts) {
            ++passwords;
            result = tryPassword();
        } else {
            return tr("%1 refused the login.").arg(m_target.displayName());
        }
        if (m_cancelled)
            return tr("The login to %1 was cancelled.").arg(m_target.displayName());
    }
    if (result == SSH_AUTH_SUCCESS)
        return {};
    return tr("Cannot log in to %1: %2").arg(m_target.displayName(), errorText());
}

/// Tries the agent's keys and those in files. A key with a passphrase that nobody gives is passed
/// over.
int SshSession::tryKeys()
{
    const int result = settle(SSH_AUTH_AGAIN, [this] {
        return ssh_userauth_publickey_auto(m_session, nullptr, nullptr);
    });
    // A key that cannot be read is no reason to stop while the server is there.
    const bool goesOn = result == SSH_AUTH_ERROR && !m_timedOut && !m_waker->stopped()
        && ssh_is_connected(m_session);
    return goesOn ? static_cast<int>(SSH_AUTH_DENIED) : result;
}

int SshSession::tryQuestions()
{
    const auto step = [this] { return ssh_userauth_kbdint(m_session, nullptr, nullptr); };
    int result = settle(SSH_AUTH_AGAIN, step);
    while (result == SSH_AUTH_INFO) {
        const int count = ssh_userauth_kbdint_getnprompts(m_session);
        for (int index = 0; index < count; ++index) {
            char echo = 0;
            const auto number = static_cast<uint>(index);
            const char *const prompt = ssh_userauth_kbdint_getprompt(m_session, number, &echo);
            QByteArray answer;
            if (!ask(QString::fromUtf8(prompt), echo != 0, &answer))
                return SSH_AUTH_DENIED;
            ssh_userauth_kbdint_setanswer(m_session, number, answer.constData());
            wipe(&answer);
        }
        result = settle(SSH_AUTH_AGAIN, step);
    }
    return result;
}

int SshSession::tryPassword()
{
    QByteArray password;
    if (!ask(tr("Password of %1:").arg(m_target.displayName()), false, &password))
        return SSH_AUTH_DENIED;
    const int result = settle(SSH_AUTH_AGAIN, [&] {
        return ssh_userauth_password(m_session, nullptr, password.constData());
    });
    wipe(&password);
    return result;
}

bool SshSession::ask(const QString &question, bool echo, QByteArray *secret)
{
    const bool given = m_questions.secret(question, echo, secret);
    m_step.start();
    m_cancelled = !given;
    return given;
}

int SshSession::askPassphrase(const char *prompt, char *buffer, size_t size, int echo, int verify,
                              void *self)
{
    Q_UNUSED(verify) // asked when a key is made, which is not done here
    auto *const session = static_cast<SshSession *>(self);
    QByteArray secret;
    const bool given = session->ask(QString::fromUtf8(prompt), echo != 0, &secret);
    // Whoever knows no passphrase may know the password.
    session->m_cancelled = false;
    const bool fits = given && static_cast<size_t>(secret.size()) < size;
    if (fits)
        std::memcpy(buffer, secret.constData(), static_cast<size_t>(secret.size()) + 1);
    wipe(&secret);
    return fits ? 0 : -1;
}

ssh_channel SshSession::openSftp()
{
    ssh_channel channel = ssh_channel_new(m_session);
    if (!channel)
        return nullptr;
    const bool opened
        = settle(SSH_AGAIN, [channel] { return ssh_channel_open_session(channel); }) == SSH_OK
        && settle(SSH_AGAIN, [channel] { return ssh_channel_request_sftp(channel); }) == SSH_OK;
    if (opened)
        return channel;
    ssh_channel_free(channel);
    return nullptr;
}
