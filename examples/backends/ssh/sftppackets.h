#pragma once

#include <QByteArray>
#include <QMetaType>

/// What a client asks of an SFTP server, version 3 of the protocol.
enum class SftpRequest : quint8 {
    Init = 1,
    Open = 3,
    Close = 4,
    Read = 5,
    Write = 6,
    LinkAttributes = 7, ///< of the name itself, also if that is a link
    HandleAttributes = 8,
    SetAttributes = 9,
    SetHandleAttributes = 10,
    OpenDirectory = 11,
    ReadDirectory = 12,
    Remove = 13,
    MakeDirectory = 14,
    RemoveDirectory = 15,
    RealPath = 16,
    Attributes = 17, ///< of what a link leads to
    Rename = 18,
    ReadLink = 19,
    MakeLink = 20,
    Extended = 200,
};

/// What the server answers.
enum class SftpReply : quint8 {
    Version = 2,
    Status = 101,
    Handle = 102,
    Data = 103,
    Names = 104,
    Attributes = 105,
};

/// How a request ended. The server sends the first nine; the others are found out on this side.
enum class SftpStatus : quint32 {
    Ok,
    EndOfFile,
    NoSuchFile,
    PermissionDenied,
    Failure, ///< all that the protocol has no word for: it exists, it is not empty, the disk is
             ///< full
    BadMessage,
    NoConnection,
    ConnectionLost,
    Unsupported,
};

/// What the server tells of a file; fields that it left out are 0.
struct SftpAttributes {
    enum Field : quint32 {
        Size = 0x1,
        Owner = 0x2,
        Mode = 0x4,
        Times = 0x8,
        Extended = 0x80000000,
    };

    quint32 fields = 0; ///< which of the following were sent, or are to be sent
    quint64 size = 0;
    quint32 user = 0;
    quint32 group = 0;
    quint32 mode = 0; ///< type and permissions, as in POSIX
    quint32 accessTime = 0; ///< seconds since 1970
    quint32 modificationTime = 0;

    bool isDirectory() const { return type() == 0040000; }
    bool isFile() const { return type() == 0100000; }
    bool isLink() const { return type() == 0120000; }

private:
    quint32 type() const { return mode & 0170000U; }
};

/// Puts the fields of a packet together.
class SftpWriter
{
public:
    SftpWriter &number8(quint8 value);
    SftpWriter &number32(quint32 value);
    SftpWriter &number64(quint64 value);
    SftpWriter &string(const QByteArray &value);
    SftpWriter &attributes(const SftpAttributes &value);

    const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

/// Takes a packet apart. A packet that ends too early yields zeros and empty strings, and ok() is
/// false from then on.
class SftpReader
{
public:
    explicit SftpReader(const QByteArray &packet)
        : m_packet(packet)
    {
    }

    bool ok() const { return m_ok; }
    bool atEnd() const { return m_position == m_packet.size(); }
    quint8 number8() { return static_cast<quint8>(number(1)); }
    quint32 number32() { return static_cast<quint32>(number(4)); }
    quint64 number64() { return number(8); }
    QByteArray string();
    SftpAttributes attributes();

private:
    quint64 number(int size);

    const QByteArray m_packet;
    int m_position = 0;
    bool m_ok = true;
};
