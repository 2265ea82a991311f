#include <tul-util/pathstring.h>

#include <QDir>

namespace
{

// Without its slash "C:" is the current directory of that drive.
bool isDrive(const QString &text)
{
    return text.size() == 2 && text.at(0).isLetter() && text.at(1) == QLatin1Char(':');
}

} // namespace

PathString::PathString(const QString &path)
    : m_path(QDir::fromNativeSeparators(path))
{
}

QString PathString::path() const
{
    const int slash = m_path.lastIndexOf(QLatin1Char('/'));
    if (slash < 0)
        return {};
    const QString directory = m_path.left(slash);
    const bool root = directory.isEmpty() || isDrive(directory);
    return root ? m_path.left(slash + 1) : directory;
}
