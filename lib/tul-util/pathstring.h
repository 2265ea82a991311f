#pragma once

#include <tul-util/tul_util_export.h>

#include <QString>

/// A file path in the toolkit's notation, "/" as separator, of which the directory part is wanted.
///
/// The path is plain text: it may name a file that does not exist or that lies on another machine,
/// with or without a prefix such as "remote:", and nothing asks a file system about it. The native
/// separators of this platform are understood too.
///
/// A value type; any thread may use its own.
class TUL_UTIL_EXPORT PathString
{
public:
    explicit PathString(const QString &path);

    /// The directory part: what stands before the last "/", as it was written. It ends with "/"
    /// only where that slash is the directory: "/" for a file in the root, "C:/" for a file in the
    /// root of a drive. A path that ends with "/" gives what stands before that slash, and a path
    /// without any, so without a directory, gives an empty string.
    QString path() const;

private:
    QString m_path;
};
