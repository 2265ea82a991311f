#include <tul-util-gui/filedialog/namefilters_p.h>

#include <QRegularExpression>

#include <algorithm>

namespace tul
{

namespace
{

const QLatin1String separator(";;");

/// Where the brackets at the end of a filter begin; -1 when there are none.
int detailsBegin(const QString &filter)
{
    return filter.endsWith(QLatin1Char(')')) ? filter.lastIndexOf(QLatin1Char('(')) : -1;
}

} // namespace

QStringList splitNameFilters(const QString &filters)
{
    if (filters.isEmpty())
        return {};
    QStringList result
        = filters.contains(separator) ? filters.split(separator) : filters.split(QLatin1Char('\n'));
    for (QString &filter : result)
        filter = filter.simplified();
    return result;
}

QStringList patternsOfFilter(const QString &filter)
{
    const int begin = detailsBegin(filter);
    const QString patterns = begin < 0 ? filter : filter.mid(begin + 1, filter.size() - begin - 2);
    return patterns.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QString filterWithoutDetails(const QString &filter)
{
    const QString name = filter.left(qMax(0, detailsBegin(filter))).trimmed();
    return name.isEmpty() ? filter : name;
}

QString filterShownAs(const QString &shown, const QStringList &filters)
{
    if (filters.contains(shown))
        return shown;
    const auto found = std::find_if(filters.cbegin(), filters.cend(), [&](const QString &filter) {
        return filterWithoutDetails(filter) == shown;
    });
    return found == filters.cend() ? shown : *found;
}

QString defaultSuffix(const QString &filter)
{
    const QString single = filter.trimmed();
    const int begin = detailsBegin(single);
    if (splitNameFilters(single).size() > 1 || begin < 1
        || single.at(begin - 1) != QLatin1Char(' '))
        return {};
    static const QRegularExpression between(QStringLiteral("[; ]"));
    static const QRegularExpression wildcard(QStringLiteral("[][*?]"));
    const QString pattern
        = single.mid(begin + 1, single.size() - begin - 2).split(between).constFirst();
    const int star = pattern.indexOf(QLatin1String("*."));
    const QString suffix = star < 0 ? QString() : pattern.mid(star + 2);
    return suffix.isEmpty() || suffix.contains(wildcard) ? QString() : suffix;
}

} // namespace tul
