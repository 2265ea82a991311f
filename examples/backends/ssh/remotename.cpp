#include <backends/ssh/remotename.h>

#include <QChar>

#include <algorithm>

namespace
{

constexpr char32_t escapeBase = 0xf700;
constexpr char32_t firstEscape = escapeBase + 0x80;
constexpr char32_t lastEscape = escapeBase + 0xff;

struct Decoded {
    char32_t character = 0;
    int length = 0; ///< in bytes; 0 for what is no UTF-8
};

/// The character at `position`, held to the letter of UTF-8: nothing overlong, no surrogates.
Decoded decode(const QByteArray &bytes, int position)
{
    const auto at = [&](int index) { return static_cast<uchar>(bytes.at(index)); };
    const uchar first = at(position);
    if (first < 0x80)
        return {first, 1};
    const int length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || position + length > bytes.size())
        return {};
    char32_t character = first & (0x7fU >> static_cast<uint>(length));
    for (int index = position + 1; index < position + length; ++index) {
        if ((at(index) & 0xc0U) != 0x80)
            return {};
        character = (character << 6U) | (at(index) & 0x3fU);
    }
    const bool overlong
        = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    if (overlong || character > 0x10ffff || (character >= 0xd800 && character <= 0xdfff)
        || (character >= firstEscape && character <= lastEscape)) {
        return {};
    }
    return {character, length};
}

bool isAscii(const QByteArray &bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(),
                       [](char byte) { return static_cast<uchar>(byte) < 0x80; });
}

} // namespace

QString tul::remoteNameFromBytes(const QByteArray &bytes)
{
    if (isAscii(bytes))
        return QString::fromLatin1(bytes.constData(), bytes.size()); // up to the end, not to a zero
    QString name;
    name.reserve(bytes.size());
    for (int position = 0; position < bytes.size();) {
        const Decoded decoded = decode(bytes, position);
        if (decoded.length == 0) {
            name.append(
                QChar(static_cast<ushort>(escapeBase + static_cast<uchar>(bytes.at(position)))));
            ++position;
            continue;
        }
        const uint character = decoded.character;
        if (QChar::requiresSurrogates(character)) {
            name.append(QChar(QChar::highSurrogate(character)));
            name.append(QChar(QChar::lowSurrogate(character)));
        } else {
            name.append(QChar(static_cast<ushort>(character)));
        }
        position += decoded.length;
    }
    return name;
}

QByteArray tul::remoteNameToBytes(const QString &name)
{
    QByteArray bytes;
    bytes.reserve(name.size());
    int start = 0; // of the text that is not escaped
    for (int index = 0; index <= name.size(); ++index) {
        const char32_t unit = index < name.size() ? name.at(index).unicode() : firstEscape;
        if (unit < firstEscape || unit > lastEscape)
            continue;
        bytes.append(name.midRef(start, index - start).toUtf8());
        if (index < name.size())
            bytes.append(static_cast<char>(unit - escapeBase));
        start = index + 1;
    }
    return bytes;
}

QByteArray tul::remoteDirectoryOf(const QByteArray &path)
{
    const int slash = path.lastIndexOf('/');
    if (slash < 0)
        return QByteArrayLiteral(".");
    return slash == 0 ? QByteArrayLiteral("/") : path.left(slash);
}

QByteArray tul::remoteJoined(const QByteArray &directory, const QByteArray &name)
{
    return directory.endsWith('/') ? directory + name : directory + '/' + name;
}
