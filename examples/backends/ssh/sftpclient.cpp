#include <backends/ssh/sftpclient.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QMutexLocker>
#include <QtEndian>

#include <utility>

namespace
{

constexpr quint32 protocolVersion = 3;
constexpr int lengthSize = 4;
// The longest packet of OpenSSH's server, which is the longest in use.
constexpr quint32 longestPacket = 256 * 1024;

QByteArray framed(SftpRequest request, quint32 id, const QByteArray &fields)
{
    SftpWriter packet;
    packet.number32(static_cast<quint32>(1 + lengthSize + fields.size()));
    packet.number8(static_cast<quint8>(request)).number32(id);
    return packet.bytes() + fields;
}

} // namespace

class SftpPending
{
public:
    QWaitCondition answered;
    bool done = false; // guarded by the client's mutex, as is the answer
    SftpAnswer answer;
};

struct SftpClient::Private {
    mutable QMutex mutex; // guards all below but the input
    QHash<quint32, SftpPendingPointer> pending; // by request
    quint32 lastId = 0;
    QByteArray output;
    bool greeted = false;
    bool copiesData = false;
    bool lost = false;
    QString lossReason;
    Statistics statistics;
    QElapsedTimer silence; // since something was heard, or first asked after a pause

    QByteArray input; // of the thread that carries the bytes: a packet that is not complete
};

SftpClient::SftpClient(int timeout, std::function<void()> wake)
    : m_timeout(timeout)
    , m_wake(std::move(wake))
    , d(std::make_unique<Private>())
{
}

SftpClient::~SftpClient() = default;

SftpPendingPointer SftpClient::send(SftpRequest request, const SftpWriter &fields)
{
    auto pending = std::make_shared<SftpPending>();
    {
        const QMutexLocker locker(&d->mutex);
        if (d->lost) {
            pending->done = true;
            return pending;
        }
        if (d->pending.isEmpty())
            d->silence.start();
        const quint32 id = ++d->lastId;
        d->pending.insert(id, pending);
        d->output.append(framed(request, id, fields.bytes()));
        ++d->statistics.requests;
    }
    m_wake();
    return pending;
}

SftpPendingPointer SftpClient::sendPath(SftpRequest request, const QByteArray &path)
{
    return send(request, SftpWriter().string(path));
}

SftpAnswer SftpClient::wait(const SftpPendingPointer &pending)
{
    QMutexLocker locker(&d->mutex);
    if (!pending->done)
        ++d->statistics.waits;
    const QDeadlineTimer deadline(m_timeout);
    while (!pending->done) {
        if (pending->answered.wait(&d->mutex, deadline) || pending->done)
            continue;
        giveUpLocked(
            tr("The remote machine did not answer within %1 s.").arg((m_timeout + 999) / 1000));
        locker.unlock();
        m_wake();
        return {};
    }
    return pending->answer;
}

bool SftpClient::isAnswered(const SftpPendingPointer &pending) const
{
    const QMutexLocker locker(&d->mutex);
    return pending->done;
}

SftpStatus SftpClient::ask(SftpRequest request, const SftpWriter &fields)
{
    return wait(send(request, fields)).status;
}

SftpStatus SftpClient::askPath(SftpRequest request, const QByteArray &path)
{
    return wait(sendPath(request, path)).status;
}

SftpStatus SftpClient::attributes(SftpRequest request, const QByteArray &pathOrHandle,
                                  SftpAttributes *attributes)
{
    const SftpAnswer answer = wait(sendPath(request, pathOrHandle));
    if (answer.ok())
        *attributes = SftpReader(answer.fields).attributes();
    return answer.status;
}

SftpStatus SftpClient::name(SftpRequest request, const QByteArray &path, QByteArray *name)
{
    const SftpAnswer answer = wait(sendPath(request, path));
    if (!answer.ok())
        return answer.status;
    SftpReader reader(answer.fields);
    if (reader.number32() != 1)
        return SftpStatus::BadMessage;
    *name = reader.string();
    return reader.ok() ? SftpStatus::Ok : SftpStatus::BadMessage;
}

void SftpClient::closeHandle(const QByteArray &handle)
{
    sendPath(SftpRequest::Close, handle);
}

bool SftpClient::copiesData() const
{
    const QMutexLocker locker(&d->mutex);
    return d->copiesData;
}

void SftpClient::setIdentity(quint32 user, quint32 group)
{
    m_user = user;
    m_group = group;
}

void SftpClient::giveUp(const QString &reason)
{
    {
        const QMutexLocker locker(&d->mutex);
        giveUpLocked(reason);
    }
    m_wake();
}

void SftpClient::giveUpLocked(const QString &reason)
{
    if (d->lost)
        return;
    d->lost = true;
    d->lossReason = reason;
    d->output.clear();
    const auto all = std::exchange(d->pending, {});
    for (const SftpPendingPointer &pending : all) {
        pending->done = true;
        pending->answered.wakeAll();
    }
}

QString SftpClient::lossReason() const
{
    const QMutexLocker locker(&d->mutex);
    return d->lossReason;
}

SftpClient::Statistics SftpClient::statistics() const
{
    const QMutexLocker locker(&d->mutex);
    return d->statistics;
}

void SftpClient::sendGreeting()
{
    SftpWriter packet;
    packet.number32(1 + lengthSize).number8(static_cast<quint8>(SftpRequest::Init));
    const QMutexLocker locker(&d->mutex);
    d->output.append(packet.number32(protocolVersion).bytes());
}

bool SftpClient::waitsForGreeting() const
{
    const QMutexLocker locker(&d->mutex);
    return !d->greeted && !d->lost;
}

QByteArray SftpClient::takeOutput()
{
    const QMutexLocker locker(&d->mutex);
    return std::exchange(d->output, QByteArray());
}

void SftpClient::feed(const char *data, int size)
{
    d->input.append(data, size);
    int position = 0;
    while (d->input.size() - position >= lengthSize) {
        const auto length = qFromBigEndian<quint32>(d->input.constData() + position);
        if (length == 0 || length > longestPacket) {
            giveUp(tr("The remote machine sent what is no SFTP."));
            d->input.clear();
            return;
        }
        if (static_cast<quint32>(d->input.size() - position - lengthSize) < length)
            break;
        takePacket(d->input.mid(position + lengthSize, static_cast<int>(length)));
        position += lengthSize + static_cast<int>(length);
    }
    d->input.remove(0, position);
}

void SftpClient::takePacket(const QByteArray &packet)
{
    SftpReader reader(packet);
    const auto type = static_cast<SftpReply>(reader.number8());
    const quint32 idOrVersion = reader.number32();

    const QMutexLocker locker(&d->mutex);
    d->silence.start();
    if (!d->greeted) {
        if (type != SftpReply::Version || !reader.ok() || idOrVersion < protocolVersion) {
            giveUpLocked(tr("The remote machine does not offer SFTP as it is known here."));
            return;
        }
        while (!reader.atEnd() && reader.ok()) {
            const QByteArray extension = reader.string();
            reader.string();
            d->copiesData = d->copiesData || extension == "copy-data";
        }
        d->greeted = true;
        return;
    }
    const SftpPendingPointer pending = d->pending.take(idOrVersion);
    if (!pending)
        return;
    if (type == SftpReply::Status) {
        pending->answer.status = static_cast<SftpStatus>(reader.number32());
    } else {
        pending->answer.status = SftpStatus::Ok;
        pending->answer.fields = packet.mid(1 + lengthSize);
    }
    pending->done = true;
    pending->answered.wakeAll();
}

bool SftpClient::isStalled() const
{
    const QMutexLocker locker(&d->mutex);
    return !d->pending.isEmpty() && d->silence.hasExpired(m_timeout);
}

void SftpClient::ping()
{
    // Nobody waits: that the server answers at all is what is asked.
    sendPath(SftpRequest::RealPath, QByteArrayLiteral("."));
}
