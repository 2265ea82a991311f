#include <private/qabstractfileengine_p.h>

#include <backends/folder/folderengine.h>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <optional>
#include <utility>

namespace
{

/// A folder that is served under a prefix.
struct Served {
    QString folder; // without a slash at its end
    QString prefix;
    FolderEngine::Hooks hooks;

    bool has(const QString &path) const { return path.startsWith(prefix); }

    QString toLocal(const QString &path) const
    {
        QStringList elements;
        const QVector<QStringRef> given = path.midRef(prefix.size()).split(QLatin1Char('/'));
        for (const QStringRef &element : given) {
            if (element == QLatin1String("..") && !elements.isEmpty())
                elements.removeLast();
            else if (!element.isEmpty() && element != QLatin1String(".")
                     && element != QLatin1String(".."))
                elements.append(element.toString());
        }
        elements.prepend(folder);
        return elements.join(QLatin1Char('/'));
    }

    /// Where a link leads, as the remote side would say it.
    QString fromLocal(const QString &path) const
    {
        const bool inside = path == folder || path.startsWith(folder + QLatin1Char('/'));
        return path.isEmpty() ? path : prefix + (inside ? path.mid(folder.size()) : path);
    }

    bool admits(FolderEngine::Call call, const QString &path) const
    {
        return !hooks.admit || hooks.admit(call, path);
    }
};

QString parentOf(const QString &path)
{
    return path.left(path.lastIndexOf(QLatin1Char('/')));
}

class Listing : public QAbstractFileEngineIterator
{
public:
    Listing(const Served &served, QString path, QDir::Filters filters, const QStringList &patterns)
        : QAbstractFileEngineIterator(filters, patterns)
        , m_served(served)
        , m_path(std::move(path))
    {
        // All names: the toolkit sorts out what it was asked for.
        if (served.admits(FolderEngine::Call::List, m_path))
            m_names = QDir(served.toLocal(m_path))
                          .entryList(QDir::AllEntries | QDir::Hidden | QDir::System, QDir::NoSort);
    }

    bool hasNext() const override { return !name(m_current + 1).isNull(); }

    QString next() override
    {
        ++m_current;
        return currentFilePath();
    }

    QString currentFileName() const override { return name(m_current); }

private:
    QString name(int number) const
    {
        if (number < m_names.size())
            return m_names.value(number);
        return m_served.hooks.ghost ? m_served.hooks.ghost(m_path, number - m_names.size())
                                    : QString();
    }

    const Served &m_served;
    const QString m_path;
    QStringList m_names;
    int m_current = -1;
};

class Engine : public QAbstractFileEngine
{
public:
    Engine(const Served &served, const QString &name)
        : m_served(served)
        , m_name(name)
    {
    }

    // Names; nothing here looks at the disk except for what a link leads to.
    void setFileName(const QString &name) override
    {
        m_name = name;
        m_known.reset();
    }
    QString fileName(FileName which) const override;
    bool isRelativePath() const override { return false; }
    bool caseSensitive() const override { return true; }

    // What is known of the file.
    FileFlags fileFlags(FileFlags wanted) const override;
    qint64 size() const override { return m_file.isOpen() ? m_file.size() : known().size(); }
    QDateTime fileTime(FileTime time) const override;
    uint ownerId(FileOwner owner) const override;
    QString owner(FileOwner owner) const override;

    // Its content.
    bool open(QIODevice::OpenMode mode) override;
    bool close() override;
    bool flush() override { return m_file.flush(); }
    qint64 pos() const override { return m_file.pos(); }
    bool seek(qint64 position) override { return m_file.seek(position); }
    bool isSequential() const override { return false; }
    bool setSize(qint64 size) override;
    qint64 read(char *data, qint64 most) override;
    qint64 write(const char *data, qint64 count) override;

    // Changes.
    bool remove() override;
    bool rename(const QString &newName) override;
    bool renameOverwrite(const QString &newName) override;
    bool link(const QString &newName) override;
    bool copy(const QString &newName) override;
    bool mkdir(const QString &name, bool withParents) const override;
    bool rmdir(const QString &name, bool withParents) const override;
    bool setPermissions(uint permissions) override;
    bool setFileTime(const QDateTime &time, FileTime which) override;

    QAbstractFileEngineIterator *beginEntryList(QDir::Filters filters,
                                                const QStringList &patterns) override
    {
        return new Listing(m_served, m_name, filters, patterns);
    }

private:
    QString local() const { return m_served.toLocal(m_name); }
    const QFileInfo &known(bool anew = false) const;
    bool admits(FolderEngine::Call call) const { return m_served.admits(call, m_name); }
    bool changes(const QString &other = {});
    bool done(QFile &file, bool good);

    const Served &m_served;
    QString m_name;
    QFile m_file;
    mutable std::optional<QFileInfo> m_known; // one call for all that is asked
};

const QFileInfo &Engine::known(bool anew) const
{
    if (!m_known || anew) {
        m_known.emplace();
        if (admits(FolderEngine::Call::Stat))
            m_known->setFile(local());
    }
    return *m_known;
}

QString Engine::fileName(FileName which) const
{
    switch (which) {
    case DefaultName:
    case AbsoluteName:
        return m_name;
    case BaseName:
        return m_name.mid(m_name.lastIndexOf(QLatin1Char('/')) + 1);
    case PathName:
    case AbsolutePathName:
        return parentOf(m_name);
    case LinkName:
        return m_served.fromLocal(known().symLinkTarget());
    case CanonicalName:
        return m_served.fromLocal(known().canonicalFilePath());
    case CanonicalPathName:
        return parentOf(m_served.fromLocal(known().canonicalFilePath()));
    default:
        return {};
    }
}

QAbstractFileEngine::FileFlags Engine::fileFlags(FileFlags wanted) const
{
    const QFileInfo &info = known(wanted.testFlag(Refresh));
    FileFlags flags;
    flags.setFlag(LinkType, info.isSymLink());
    flags.setFlag(HiddenFlag, fileName(BaseName).startsWith(QLatin1Char('.')));
    if (info.exists()) {
        flags |= FileFlags(FileFlag(int(info.permissions()))) | ExistsFlag;
        flags.setFlag(DirectoryType, info.isDir());
        flags.setFlag(FileType, info.isFile());
        flags.setFlag(RootFlag, local() == m_served.folder);
    }
    return flags & wanted;
}

QDateTime Engine::fileTime(FileTime time) const
{
    switch (time) {
    case AccessTime:
        return known().lastRead();
    case BirthTime:
        return known().birthTime();
    case MetadataChangeTime:
        return known().metadataChangeTime();
    default:
        return known().lastModified();
    }
}

uint Engine::ownerId(FileOwner owner) const
{
    return owner == OwnerUser ? known().ownerId() : known().groupId();
}

QString Engine::owner(FileOwner owner) const
{
    return owner == OwnerUser ? known().owner() : known().group();
}

/// Passes on how an operation on `file` went.
bool Engine::done(QFile &file, bool good)
{
    if (!good)
        setError(file.error(), file.errorString());
    m_known.reset();
    return good;
}

/// Whether a change may begin; `other` is the second path of those that have two.
bool Engine::changes(const QString &other)
{
    if (admits(FolderEngine::Call::Change) && (other.isNull() || m_served.has(other)))
        return true;
    setError(QFile::PermissionsError, QStringLiteral("Refused"));
    return false;
}

bool Engine::open(QIODevice::OpenMode mode)
{
    if (!admits(FolderEngine::Call::Open)) {
        setError(QFile::OpenError, QStringLiteral("Refused"));
        return false;
    }
    m_file.setFileName(local());
    // The toolkit buffers above this engine, and knows about line ends there.
    mode.setFlag(QIODevice::Text, false);
    return done(m_file, m_file.open(mode | QIODevice::Unbuffered));
}

bool Engine::close()
{
    m_file.close();
    return true;
}

qint64 Engine::read(char *data, qint64 most)
{
    if (admits(FolderEngine::Call::Read))
        return m_file.read(data, most);
    setError(QFile::ReadError, QStringLiteral("Refused"));
    return -1;
}

qint64 Engine::write(const char *data, qint64 count)
{
    if (admits(FolderEngine::Call::Write))
        return m_file.write(data, count);
    setError(QFile::WriteError, QStringLiteral("Refused"));
    return -1;
}

bool Engine::setSize(qint64 size)
{
    QFile file(local());
    return changes() && done(file, file.resize(size));
}

bool Engine::remove()
{
    QFile file(local());
    return changes() && done(file, file.remove());
}

bool Engine::rename(const QString &newName)
{
    QFile file(local());
    return changes(newName) && done(file, file.rename(m_served.toLocal(newName)));
}

bool Engine::renameOverwrite(const QString &newName)
{
    if (!changes(newName))
        return false;
    QFile::remove(m_served.toLocal(newName));
    QFile file(local());
    return done(file, file.rename(m_served.toLocal(newName)));
}

bool Engine::link(const QString &newName)
{
    QFile file(local());
    return changes(newName) && done(file, file.link(m_served.toLocal(newName)));
}

bool Engine::copy(const QString &newName)
{
    QFile file(local());
    return changes(newName) && done(file, file.copy(m_served.toLocal(newName)));
}

bool Engine::mkdir(const QString &name, bool withParents) const
{
    if (!m_served.has(name) || !m_served.admits(FolderEngine::Call::Change, name))
        return false;
    const QDir root(m_served.folder);
    const QString path = m_served.toLocal(name);
    return withParents ? root.mkpath(path) : root.mkdir(path);
}

bool Engine::rmdir(const QString &name, bool withParents) const
{
    if (!m_served.has(name) || !m_served.admits(FolderEngine::Call::Change, name))
        return false;
    const QDir root(m_served.folder);
    QString path = m_served.toLocal(name);
    if (path == m_served.folder || !root.rmdir(path))
        return false;
    // As far as they are empty, but never the served folder itself.
    while (withParents && (path = parentOf(path)) != m_served.folder && root.rmdir(path)) { }
    return true;
}

bool Engine::setPermissions(uint permissions)
{
    QFile file(local());
    return changes() && done(file, file.setPermissions(QFile::Permissions(int(permissions))));
}

bool Engine::setFileTime(const QDateTime &time, FileTime which)
{
    static const QHash<int, QFileDevice::FileTime> names{
        {AccessTime, QFileDevice::FileAccessTime},
        {BirthTime, QFileDevice::FileBirthTime},
        {MetadataChangeTime, QFileDevice::FileMetadataChangeTime},
        {ModificationTime, QFileDevice::FileModificationTime}};
    return changes() && done(m_file, m_file.setFileTime(time, names.value(which)));
}

} // namespace

class FolderEngine::Handler : public QAbstractFileEngineHandler
{
public:
    // Ready-made, because the base class already lets the toolkit ask.
    explicit Handler(Served served)
        : m_served(std::move(served))
    {
    }

    // Asked for every path in the process, so nothing but the prefix is looked at.
    QAbstractFileEngine *create(const QString &fileName) const override
    {
        return m_served.has(fileName) ? new Engine(m_served, fileName) : nullptr;
    }

private:
    const Served m_served;
};

FolderEngine::FolderEngine(const QString &folder, const QString &prefix)
    : FolderEngine(folder, prefix, Hooks())
{
}

FolderEngine::FolderEngine(const QString &folder, const QString &prefix, const Hooks &hooks)
    : m_handler(std::make_unique<Handler>(Served{QDir(folder).absolutePath(), prefix, hooks}))
{
}

FolderEngine::~FolderEngine() = default;
