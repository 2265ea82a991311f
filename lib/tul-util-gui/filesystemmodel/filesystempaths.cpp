#include "filesystempaths_p.h"

#include <QDir>

namespace tul
{

namespace
{

constexpr QLatin1Char slash('/');

#ifdef Q_OS_WIN
constexpr bool doubleSlashNamesAHost = true;
#else
constexpr bool doubleSlashNamesAHost = false;
#endif

/// Whether what stands before the first slash is a root: a prefix or a drive. Without a file engine
/// the toolkit takes a prefixed path for a relative one, so the colon counts as well.
bool hasRootElement(const QString &path)
{
    return path.leftRef(path.indexOf(slash)).contains(QLatin1Char(':'))
        || QDir::isAbsolutePath(path);
}

} // namespace

QStringList splitPath(const QString &absolutePath)
{
    QStringList elements = absolutePath.split(slash, Qt::SkipEmptyParts);
    if (absolutePath.startsWith(slash))
        elements.prepend(QString(slash));
    return elements;
}

QString joinElements(const QStringList &elements)
{
    return elements.join(slash);
}

QString cleanPath(const QString &path)
{
    const QString given = QDir::fromNativeSeparators(path);
    const bool host = doubleSlashNamesAHost && given.startsWith(QLatin1String("//"));
    if (given.isEmpty() || host || (!given.startsWith(slash) && !hasRootElement(given)))
        return QDir::cleanPath(given);

    const QStringList elements = splitPath(given);
    QStringList kept;
    for (int i = 1; i < elements.size(); ++i) {
        if (!isDots(elements.at(i)))
            kept.append(elements.at(i));
        else if (elements.at(i).size() == 2 && !kept.isEmpty())
            kept.removeLast();
    }
    const QString &root = elements.constFirst();
    const QString below = joinElements(kept);
    return QDir::cleanPath(root.endsWith(slash) ? root + below : root + slash + below);
}

bool isDots(const QString &name)
{
    return name == QLatin1String(".") || name == QLatin1String("..");
}

QString requestPath(const QString &path)
{
#ifdef Q_OS_WIN
    return path;
#else
    return path.startsWith(QLatin1String("//")) ? path.mid(1) : path;
#endif
}

} // namespace tul
