#include "filesystempaths_p.h"

namespace tul
{

QStringList splitPath(const QString &absolutePath)
{
    const QChar slash(QLatin1Char('/'));
    QStringList elements = absolutePath.split(slash, Qt::SkipEmptyParts);
    if (absolutePath.startsWith(slash))
        elements.prepend(slash);
    return elements;
}

QString joinElements(const QStringList &elements)
{
    return elements.join(QLatin1Char('/'));
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
