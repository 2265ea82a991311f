#pragma once

#include <QByteArray>
#include <QString>

namespace tul
{

/// File names on a remote machine are bytes without a character set; paths here are texts. Bytes
/// that are proper UTF-8 become the characters that they stand for. Every other byte from 0x80 to
/// 0xff becomes one of the characters U+F780 to U+F7FF, which no script uses, and so do the three
/// bytes of a name that really holds one of those characters. So each name has a text of its own,
/// which survives URLs, the clipboard and settings, and remoteNameToBytes() gives the same bytes
/// back.
QString remoteNameFromBytes(const QByteArray &bytes);

/// The bytes of a text that came from remoteNameFromBytes(), or that a person typed. Half of a
/// surrogate pair, which no such text holds, becomes "?".
QByteArray remoteNameToBytes(const QString &name);

/// "/a" of "/a/b", "/" of "/a" and of "/"; for relative paths, "a" of "a/b" and "." of "a".
QByteArray remoteDirectoryOf(const QByteArray &path);
QByteArray remoteJoined(const QByteArray &directory, const QByteArray &name);

} // namespace tul
