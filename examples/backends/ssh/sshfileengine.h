#pragma once

#include <backends/ssh/sshfilesystem.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QString>

#include <memory>
#include <private/qabstractfileengine_p.h>

class SftpFile;

/// Serves the toolkit's file classes for every path that begins with the prefix of the file system:
/// while it lives, QFile, QFileInfo, QDir and QDirIterator reach the remote machine.
class SshFileEngineHandler : public QAbstractFileEngineHandler
{
public:
    explicit SshFileEngineHandler(std::shared_ptr<SshFileSystem> files);

    QAbstractFileEngine *create(const QString &fileName) const override;

private:
    const std::shared_ptr<SshFileSystem> m_files;
};

/// One file or directory of the remote machine, as the toolkit's classes ask for it.
///
/// *By design*: a rename, link or copy never replaces what is there. Permissions of "the user" are
/// those of the owner of the login directory; where it does not own a file, a permission of the
/// group or of others is taken for its own, and opening the file tells the truth. What is neither a
/// file nor a directory is not opened: a named pipe would keep the server waiting for ever.
class SshFileEngine : public QAbstractFileEngine
{
    Q_DECLARE_TR_FUNCTIONS(SshFileEngine)

public:
    SshFileEngine(std::shared_ptr<SshFileSystem> files, const QString &fileName);
    ~SshFileEngine() override;

    void setFileName(const QString &fileName) override;
    QString fileName(FileName which) const override;
    bool caseSensitive() const override { return true; }
    bool isRelativePath() const override { return false; }
    bool isSequential() const override { return false; }

    FileFlags fileFlags(FileFlags type) const override;
    uint ownerId(FileOwner owner) const override;
    QDateTime fileTime(FileTime time) const override;
    bool setFileTime(const QDateTime &newDate, FileTime time) override;
    bool setPermissions(uint permissions) override;

    bool open(QIODevice::OpenMode mode) override;
    bool close() override;
    bool flush() override;
    qint64 size() const override;
    bool setSize(qint64 size) override;
    qint64 pos() const override;
    bool seek(qint64 position) override;
    qint64 read(char *data, qint64 most) override;
    qint64 write(const char *data, qint64 size) override;

    bool remove() override;
    bool rename(const QString &newName) override;
    bool copy(const QString &newName) override;
    bool link(const QString &newName) override;
    bool mkdir(const QString &directory, bool createParents) const override;
    bool rmdir(const QString &directory, bool removeParents) const override;
    Iterator *beginEntryList(QDir::Filters filters, const QStringList &nameFilters) override;

private:
    const SftpEntry &entry(uint questions) const;
    QString linkTarget() const;
    QString canonicalName() const;
    bool isRemote(const QString &fileName) const;
    bool makeDirectory(SftpClient *client, const QByteArray &path, bool createParents) const;
    bool copyData(SftpFile *from, SftpFile *to);
    bool setAttributes(const SftpAttributes &attributes, QFile::FileError kind);
    bool finish(SftpStatus status, QFile::FileError kind, const QByteArray &changed);
    bool fail(SftpStatus status, QFile::FileError kind);
    QString errorText(SftpStatus status) const;

    const std::shared_ptr<SshFileSystem> m_files;
    QString m_fileName;
    QByteArray m_path;
    std::unique_ptr<SftpFile> m_file; // while it is open

    // The toolkit asks an engine several times for different things: they shall belong together.
    // When it asks again for the same, it wants to know anew.
    mutable SftpEntry m_entry;
    mutable bool m_hasEntry = false;
    mutable uint m_asked = 0;
    mutable QElapsedTimer m_age;
};
