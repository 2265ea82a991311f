#include <backends/ssh/sshfileengine.h>

#include <backends/ssh/remotename.h>
#include <backends/ssh/sftpdirectory.h>
#include <backends/ssh/sftpfile.h>

#include <QDateTime>
#include <QDir>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

// What is asked of an engine, beside the bits of its file flags.
constexpr uint askedSize = 0x40000000;
constexpr uint askedTime = 0x80000000;

/// Walks through a directory while its names come in.
class DirectoryIterator : public QAbstractFileEngineIterator
{
public:
    DirectoryIterator(QDir::Filters filters, const QStringList &nameFilters,
                      std::shared_ptr<SshFileSystem> files, const QByteArray &path)
        : QAbstractFileEngineIterator(filters, nameFilters)
        , m_files(std::move(files))
        , m_path(path)
        , m_changes(m_files->changeCount())
    {
        std::shared_ptr<SftpClient> client = m_files->client();
        if (client)
            m_directory = std::make_unique<SftpDirectory>(std::move(client), m_path);
    }

    bool hasNext() const override
    {
        if (!m_hasUpcoming && m_directory)
            m_hasUpcoming = m_directory->next(&m_upcoming);
        return m_hasUpcoming;
    }

    QString next() override
    {
        if (!hasNext())
            return {};
        m_hasUpcoming = false;
        m_currentName = tul::remoteNameFromBytes(m_upcoming.name);
        // The engine of this name, which the toolkit makes next, takes the attributes from there.
        if (m_upcoming.own.fields & SftpAttributes::Mode)
            m_files->remember(tul::remoteJoined(m_path, m_upcoming.name), m_upcoming, m_changes);
        return currentFilePath();
    }

    QString currentFileName() const override { return m_currentName; }

private:
    const std::shared_ptr<SshFileSystem> m_files;
    const QByteArray m_path;
    const quint32 m_changes;
    std::unique_ptr<SftpDirectory> m_directory;
    mutable SftpEntry m_upcoming;
    mutable bool m_hasUpcoming = false;
    QString m_currentName;
};

uint threeBits(uint permissions, uint read, uint write, uint execute)
{
    return ((permissions & read) ? 4U : 0U) | ((permissions & write) ? 2U : 0U)
        | ((permissions & execute) ? 1U : 0U);
}

uint userBits(const SftpAttributes &attributes, const SftpClient &client)
{
    const uint owner = (attributes.mode >> 6U) & 7U;
    const uint others = ((attributes.mode >> 3U) | attributes.mode) & 7U;
    if (client.user() == 0)
        return 6U | ((owner | others) & 1U) | (attributes.isDirectory() ? 1U : 0U);
    return attributes.user == client.user() ? owner : others;
}

QAbstractFileEngine::FileFlags permissionFlags(const SftpAttributes &attributes,
                                               const SftpClient &client)
{
    const uint mode = attributes.mode;
    const uint bits = ((mode & 0700U) << 6U) | ((mode & 070U) << 1U) | ((mode & 07U))
        | (userBits(attributes, client) << 8U);
    return QFlag(static_cast<int>(bits));
}

/// Open modes as the toolkit means them, in the words of the protocol; 0 for nonsense.
quint32 openFlags(QIODevice::OpenMode mode)
{
    if ((mode & QIODevice::NewOnly) && (mode & QIODevice::ExistingOnly))
        return 0;
    if (mode & (QIODevice::Append | QIODevice::NewOnly))
        mode |= QIODevice::WriteOnly;
    quint32 flags = 0;
    if (mode & QIODevice::ReadOnly)
        flags |= SftpFile::Read;
    if (mode & QIODevice::Truncate)
        flags |= SftpFile::Truncate; // also of what is only read, as for local files
    if (!(mode & QIODevice::WriteOnly))
        return flags;
    flags |= SftpFile::Write;
    if (!(mode & QIODevice::ExistingOnly))
        flags |= SftpFile::Create;
    if (mode & QIODevice::NewOnly)
        flags |= SftpFile::Exclusive;
    if (mode & QIODevice::Append)
        return flags | SftpFile::Append;
    const bool onlyWrites = !(mode & (QIODevice::ReadOnly | QIODevice::NewOnly));
    return onlyWrites ? flags | SftpFile::Truncate : flags;
}

} // namespace

SshFileEngineHandler::SshFileEngineHandler(std::shared_ptr<SshFileSystem> files)
    : m_files(std::move(files))
{
}

QAbstractFileEngine *SshFileEngineHandler::create(const QString &fileName) const
{
    if (!fileName.startsWith(m_files->prefix()))
        return nullptr;
    return new SshFileEngine(m_files, fileName);
}

SshFileEngine::SshFileEngine(std::shared_ptr<SshFileSystem> files, const QString &fileName)
    : m_files(std::move(files))
{
    SshFileEngine::setFileName(fileName);
}

SshFileEngine::~SshFileEngine() = default;

void SshFileEngine::setFileName(const QString &fileName)
{
    m_fileName = fileName;
    m_path = m_files->remotePath(fileName);
    m_hasEntry = m_files->known(m_path, &m_entry);
    m_asked = 0;
    m_age.start();
}

bool SshFileEngine::isRemote(const QString &fileName) const
{
    return fileName.startsWith(m_files->prefix());
}

const SftpEntry &SshFileEngine::entry(uint questions) const
{
    if ((m_asked & questions) && m_age.hasExpired(SshFileSystem::freshness))
        m_hasEntry = false;
    if (!m_hasEntry) {
        m_entry = m_files->entry(m_path);
        m_hasEntry = m_entry.status != SftpStatus::ConnectionLost;
        m_asked = 0;
        m_age.start();
    }
    m_asked |= questions;
    return m_entry;
}

QString SshFileEngine::fileName(FileName which) const
{
    const int start = m_files->prefix().size();
    const int slash = m_fileName.lastIndexOf(QLatin1Char('/'));
    switch (which) {
    case DefaultName:
    case AbsoluteName:
        return m_fileName;
    case BaseName:
        return m_fileName.mid(std::max(slash + 1, start));
    case PathName:
    case AbsolutePathName:
        return m_fileName.left(std::max(slash, start));
    case LinkName:
        return linkTarget();
    case CanonicalName:
        return canonicalName();
    case CanonicalPathName: {
        const QString name = canonicalName();
        return name.isEmpty()
            ? name
            : m_files->fileName(tul::remoteDirectoryOf(m_files->remotePath(name)));
    }
    default:
        return {};
    }
}

QString SshFileEngine::linkTarget() const
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client || !entry(0).own.isLink())
        return {};
    QByteArray target;
    if (client->name(SftpRequest::ReadLink, m_path, &target) != SftpStatus::Ok)
        return {};
    if (!target.startsWith('/'))
        target = tul::remoteJoined(tul::remoteDirectoryOf(m_path), target);
    return m_files->prefix() + QDir::cleanPath(tul::remoteNameFromBytes(target));
}

QString SshFileEngine::canonicalName() const
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    QByteArray name;
    if (!client || entry(0).targetStatus != SftpStatus::Ok || entry(0).status != SftpStatus::Ok
        || client->name(SftpRequest::RealPath, m_path, &name) != SftpStatus::Ok) {
        return {};
    }
    return m_files->fileName(name);
}

QAbstractFileEngine::FileFlags SshFileEngine::fileFlags(FileFlags type) const
{
    FileFlags flags;
    if (type & Refresh) {
        m_files->distrust(m_path);
        m_hasEntry = false;
    }
    if (m_path == "/")
        flags |= RootFlag;
    const SftpEntry found = entry(static_cast<uint>(type & FileInfoAll));
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (client && found.status == SftpStatus::Ok) {
        if (found.own.isLink())
            flags |= LinkType;
        if (found.targetStatus == SftpStatus::Ok) {
            flags |= ExistsFlag | permissionFlags(found.target, *client);
            if (found.target.isDirectory())
                flags |= DirectoryType;
            else if (found.target.isFile())
                flags |= FileType;
        }
    }
    const QString name = fileName(BaseName);
    if (name.startsWith(QLatin1Char('.')))
        flags |= HiddenFlag;
    return flags & type;
}

uint SshFileEngine::ownerId(FileOwner owner) const
{
    const SftpEntry &found = entry(0);
    return owner == OwnerUser ? found.target.user : found.target.group;
}

QDateTime SshFileEngine::fileTime(FileTime time) const
{
    const SftpEntry &found = entry(askedTime);
    const SftpAttributes &attributes
        = found.targetStatus == SftpStatus::Ok ? found.target : found.own;
    if (found.status != SftpStatus::Ok || !(attributes.fields & SftpAttributes::Times))
        return {};
    if (time == ModificationTime)
        return QDateTime::fromSecsSinceEpoch(attributes.modificationTime);
    return time == AccessTime ? QDateTime::fromSecsSinceEpoch(attributes.accessTime) : QDateTime();
}

bool SshFileEngine::setFileTime(const QDateTime &newDate, FileTime time)
{
    const SftpEntry found = entry(askedTime);
    const qint64 seconds = newDate.toSecsSinceEpoch();
    const bool known = time == ModificationTime || time == AccessTime;
    if (!known || !newDate.isValid() || seconds < 0 || seconds > 0xffffffffLL)
        return fail(SftpStatus::Unsupported, QFile::UnspecifiedError);
    SftpAttributes attributes;
    attributes.fields = SftpAttributes::Times;
    attributes.accessTime = found.target.accessTime;
    attributes.modificationTime = found.target.modificationTime;
    (time == AccessTime ? attributes.accessTime : attributes.modificationTime)
        = static_cast<quint32>(seconds);
    if (m_file)
        m_file->flush(); // a write that came later would set the time anew
    return setAttributes(attributes, QFile::UnspecifiedError);
}

bool SshFileEngine::setPermissions(uint permissions)
{
    SftpAttributes attributes;
    attributes.fields = SftpAttributes::Mode;
    const uint user = threeBits(permissions, ReadUserPerm, WriteUserPerm, ExeUserPerm);
    const uint owner = threeBits(permissions, ReadOwnerPerm, WriteOwnerPerm, ExeOwnerPerm) | user;
    const uint group = threeBits(permissions, ReadGroupPerm, WriteGroupPerm, ExeGroupPerm);
    const uint others = threeBits(permissions, ReadOtherPerm, WriteOtherPerm, ExeOtherPerm);
    attributes.mode = (owner << 6U) | (group << 3U) | others;
    return setAttributes(attributes, QFile::PermissionsError);
}

bool SshFileEngine::setAttributes(const SftpAttributes &attributes, QFile::FileError kind)
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client)
        return fail(SftpStatus::NoConnection, kind);
    return finish(
        client->ask(SftpRequest::SetAttributes, SftpWriter().string(m_path).attributes(attributes)),
        kind, m_path);
}

bool SshFileEngine::open(QIODevice::OpenMode mode)
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    const quint32 flags = openFlags(mode);
    if (!client || flags == 0 || m_file)
        return fail(client ? SftpStatus::Unsupported : SftpStatus::NoConnection, QFile::OpenError);
    const SftpEntry found = m_files->entry(m_path);
    if (found.targetStatus == SftpStatus::Ok && !found.target.isFile()) {
        setError(QFile::OpenError, tr("%1 is no file").arg(m_fileName));
        return false;
    }
    auto file = std::make_unique<SftpFile>(client);
    const SftpStatus status = file->open(m_path, flags);
    if (status != SftpStatus::Ok)
        return fail(status, QFile::OpenError);
    m_file = std::move(file);
    if (flags & SftpFile::Write)
        m_files->forget(m_path);
    m_hasEntry = false;
    return true;
}

bool SshFileEngine::close()
{
    if (!m_file)
        return false;
    const std::unique_ptr<SftpFile> file = std::move(m_file);
    const bool wasWritten = file->isWritten();
    return finish(file->close(), wasWritten ? QFile::WriteError : QFile::ReadError,
                  wasWritten ? m_path : QByteArray());
}

bool SshFileEngine::flush()
{
    if (!m_file)
        return false;
    const SftpStatus status = m_file->flush();
    return status == SftpStatus::Ok || fail(status, QFile::WriteError);
}

qint64 SshFileEngine::size() const
{
    if (m_file)
        return m_file->size();
    const SftpEntry &found = entry(askedSize);
    return found.status == SftpStatus::Ok ? static_cast<qint64>(found.target.size) : 0;
}

bool SshFileEngine::setSize(qint64 size)
{
    if (m_file) {
        const SftpStatus status = m_file->setSize(size);
        return finish(status, QFile::ResizeError, m_path);
    }
    SftpAttributes attributes;
    attributes.fields = SftpAttributes::Size;
    attributes.size = static_cast<quint64>(std::max<qint64>(size, 0));
    return setAttributes(attributes, QFile::ResizeError);
}

qint64 SshFileEngine::pos() const
{
    return m_file ? m_file->position() : 0;
}

bool SshFileEngine::seek(qint64 position)
{
    if (!m_file || position < 0)
        return false;
    m_file->seek(position);
    return true;
}

qint64 SshFileEngine::read(char *data, qint64 most)
{
    if (!m_file)
        return -1;
    const qint64 count = m_file->read(data, most);
    if (count < 0)
        fail(m_file->status(), QFile::ReadError);
    return count;
}

qint64 SshFileEngine::write(const char *data, qint64 size)
{
    if (!m_file)
        return -1;
    const qint64 count = m_file->write(data, size);
    if (count < 0)
        fail(m_file->status(), QFile::WriteError);
    return count;
}

bool SshFileEngine::remove()
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client)
        return fail(SftpStatus::NoConnection, QFile::RemoveError);
    return finish(client->askPath(SftpRequest::Remove, m_path), QFile::RemoveError, m_path);
}

bool SshFileEngine::rename(const QString &newName)
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client || !isRemote(newName))
        return fail(SftpStatus::NoConnection, QFile::RenameError);
    const QByteArray newPath = m_files->remotePath(newName);
    // The protocol forbids to replace, but not each server keeps to it for directories and links.
    SftpAttributes existing;
    if (client->attributes(SftpRequest::LinkAttributes, newPath, &existing) == SftpStatus::Ok) {
        setError(QFile::RenameError, tr("%1 exists already").arg(newName));
        return false;
    }
    const SftpStatus status
        = client->ask(SftpRequest::Rename, SftpWriter().string(m_path).string(newPath));
    m_files->forgetTree(m_path);
    m_files->forgetTree(newPath);
    return finish(status, QFile::RenameError, m_path);
}

bool SshFileEngine::link(const QString &newName)
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client || !isRemote(newName))
        return fail(SftpStatus::NoConnection, QFile::RenameError);
    const QByteArray newPath = m_files->remotePath(newName);
    // OpenSSH takes the target first, unlike the draft of the protocol.
    return finish(client->ask(SftpRequest::MakeLink, SftpWriter().string(m_path).string(newPath)),
                  QFile::RenameError, newPath);
}

bool SshFileEngine::copy(const QString &newName)
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client || !isRemote(newName))
        return fail(SftpStatus::NoConnection, QFile::CopyError);
    const SftpEntry source = m_files->entry(m_path);
    if (source.status != SftpStatus::Ok || !source.target.isFile())
        return fail(SftpStatus::NoSuchFile, QFile::CopyError);
    const QByteArray newPath = m_files->remotePath(newName);
    SftpFile from(client);
    SftpFile to(client);
    const quint32 newOnly = SftpFile::Write | SftpFile::Create | SftpFile::Exclusive;
    SftpStatus status = from.open(m_path, SftpFile::Read);
    if (status == SftpStatus::Ok)
        status = to.open(newPath, newOnly, source.target.mode & 0777U);
    if (status != SftpStatus::Ok)
        return fail(status, QFile::CopyError);
    const bool copied = copyData(&from, &to);
    status = to.close();
    if (!copied || status != SftpStatus::Ok) {
        const SftpStatus reason = status == SftpStatus::Ok ? from.status() : status;
        client->askPath(SftpRequest::Remove, newPath);
        return finish(reason == SftpStatus::Ok ? SftpStatus::Failure : reason, QFile::CopyError,
                      newPath);
    }
    return finish(SftpStatus::Ok, QFile::CopyError, newPath);
}

/// Copies on the remote machine itself where its server can do that.
bool SshFileEngine::copyData(SftpFile *from, SftpFile *to)
{
    SftpClient *const client = from->client().get();
    if (client->copiesData()) {
        // In parts, so that none takes as long as a dead connection would.
        constexpr qint64 part = 16LL * 1024 * 1024;
        for (qint64 offset = 0; offset < from->size(); offset += part) {
            const auto start = static_cast<quint64>(offset);
            const auto length = static_cast<quint64>(std::min(part, from->size() - offset));
            const SftpStatus status = client->ask(SftpRequest::Extended,
                                                  SftpWriter()
                                                      .string(QByteArrayLiteral("copy-data"))
                                                      .string(from->handle())
                                                      .number64(start)
                                                      .number64(length)
                                                      .string(to->handle())
                                                      .number64(start));
            if (status != SftpStatus::Ok)
                return false;
        }
        return true;
    }
    std::array<char, 32 * 1024> buffer{};
    for (;;) {
        const qint64 count = from->read(buffer.data(), static_cast<qint64>(buffer.size()));
        if (count <= 0)
            return count == 0;
        if (to->write(buffer.data(), count) != count)
            return false;
    }
}

bool SshFileEngine::mkdir(const QString &directory, bool createParents) const
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    return client && isRemote(directory)
        && makeDirectory(client.get(), m_files->remotePath(directory), createParents);
}

bool SshFileEngine::makeDirectory(SftpClient *client, const QByteArray &path,
                                  bool createParents) const
{
    const auto make = [&] {
        const SftpStatus status = client->ask(
            SftpRequest::MakeDirectory, SftpWriter().string(path).attributes(SftpAttributes()));
        m_files->forget(path);
        return status == SftpStatus::Ok;
    };
    if (make())
        return true;
    if (!createParents)
        return false;
    if (m_files->entry(path).target.isDirectory())
        return true;
    const QByteArray above = tul::remoteDirectoryOf(path);
    return above != path && above != "." && makeDirectory(client, above, true) && make();
}

bool SshFileEngine::rmdir(const QString &directory, bool removeParents) const
{
    const std::shared_ptr<SftpClient> client = m_files->client();
    if (!client || !isRemote(directory))
        return false;
    QByteArray path = m_files->remotePath(directory);
    const SftpStatus status = client->askPath(SftpRequest::RemoveDirectory, path);
    m_files->forget(path);
    if (status != SftpStatus::Ok || !removeParents)
        return status == SftpStatus::Ok;
    // Up to the first one that is not empty.
    for (QByteArray above = tul::remoteDirectoryOf(path); above != path && above != ".";
         above = tul::remoteDirectoryOf(path)) {
        path = above;
        if (client->askPath(SftpRequest::RemoveDirectory, path) != SftpStatus::Ok)
            break;
        m_files->forget(path);
    }
    return true;
}

QAbstractFileEngine::Iterator *SshFileEngine::beginEntryList(QDir::Filters filters,
                                                             const QStringList &nameFilters)
{
    return new DirectoryIterator(filters, nameFilters, m_files, m_path);
}

/// Notes what came of a request, and that a path is no longer what it was.
bool SshFileEngine::finish(SftpStatus status, QFile::FileError kind, const QByteArray &changed)
{
    if (!changed.isEmpty()) {
        m_files->forget(changed);
        m_hasEntry = false;
    }
    return status == SftpStatus::Ok || fail(status, kind);
}

bool SshFileEngine::fail(SftpStatus status, QFile::FileError kind)
{
    setError(status == SftpStatus::PermissionDenied ? QFile::PermissionsError : kind,
             errorText(status));
    return false;
}

QString SshFileEngine::errorText(SftpStatus status) const
{
    switch (status) {
    case SftpStatus::NoSuchFile:
        return tr("No such file or directory");
    case SftpStatus::PermissionDenied:
        return tr("Permission denied");
    case SftpStatus::NoConnection:
        return tr("There is no connection to the remote machine");
    case SftpStatus::ConnectionLost: {
        const std::shared_ptr<SftpClient> client = m_files->client();
        const QString reason = client ? client->lossReason() : QString();
        return reason.isEmpty() ? tr("The connection to the remote machine was lost") : reason;
    }
    case SftpStatus::Unsupported:
        return tr("The remote machine cannot do that");
    default:
        return tr("The remote machine refused; its disk may be full");
    }
}
