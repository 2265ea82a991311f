#include <backends/ssh/sftppackets.h>

#include <QtEndian>

namespace
{

template<typename Number> void appendNumber(QByteArray &bytes, Number value)
{
    const int end = bytes.size();
    bytes.resize(end + static_cast<int>(sizeof value));
    qToBigEndian(value, bytes.data() + end);
}

} // namespace

SftpWriter &SftpWriter::number8(quint8 value)
{
    appendNumber(m_bytes, value);
    return *this;
}

SftpWriter &SftpWriter::number32(quint32 value)
{
    appendNumber(m_bytes, value);
    return *this;
}

SftpWriter &SftpWriter::number64(quint64 value)
{
    appendNumber(m_bytes, value);
    return *this;
}

SftpWriter &SftpWriter::string(const QByteArray &value)
{
    number32(static_cast<quint32>(value.size()));
    m_bytes.append(value);
    return *this;
}

SftpWriter &SftpWriter::attributes(const SftpAttributes &value)
{
    number32(value.fields);
    if (value.fields & SftpAttributes::Size)
        number64(value.size);
    if (value.fields & SftpAttributes::Owner)
        number32(value.user).number32(value.group);
    if (value.fields & SftpAttributes::Mode)
        number32(value.mode);
    if (value.fields & SftpAttributes::Times)
        number32(value.accessTime).number32(value.modificationTime);
    return *this;
}

quint64 SftpReader::number(int size)
{
    if (size > m_packet.size() - m_position) {
        m_ok = false;
        m_position = m_packet.size();
        return 0;
    }
    quint64 value = 0;
    for (const int end = m_position + size; m_position < end; ++m_position)
        value = (value << 8U) | static_cast<uchar>(m_packet.at(m_position));
    return value;
}

QByteArray SftpReader::string()
{
    const quint32 size = number32();
    if (size > static_cast<quint32>(m_packet.size() - m_position)) {
        m_ok = false;
        m_position = m_packet.size();
        return {};
    }
    const QByteArray value = m_packet.mid(m_position, static_cast<int>(size));
    m_position += static_cast<int>(size);
    return value;
}

SftpAttributes SftpReader::attributes()
{
    SftpAttributes value;
    value.fields = number32();
    if (value.fields & SftpAttributes::Size)
        value.size = number64();
    if (value.fields & SftpAttributes::Owner) {
        value.user = number32();
        value.group = number32();
    }
    if (value.fields & SftpAttributes::Mode)
        value.mode = number32();
    if (value.fields & SftpAttributes::Times) {
        value.accessTime = number32();
        value.modificationTime = number32();
    }
    if (value.fields & SftpAttributes::Extended) {
        // Pairs of a name and a value that mean nothing to this client.
        for (quint32 left = number32(); left > 0 && m_ok; --left) {
            string();
            string();
        }
    }
    return value;
}
