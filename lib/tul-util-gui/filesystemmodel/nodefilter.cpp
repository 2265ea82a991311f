#include "nodefilter_p.h"

#include "filenode_p.h"

#include <algorithm>

void NodeFilter::setFilters(QDir::Filters filters)
{
    m_filters = filters;
    buildPatterns();
}

void NodeFilter::setNameFilters(const QStringList &nameFilters)
{
    m_nameFilters = nameFilters;
    buildPatterns();
}

bool NodeFilter::accepts(const FileNode &node) const
{
    const bool isTop = !node.parent || !node.parent->parent;
    if (isTop || node.bypassesFilters)
        return true;
    return node.hasInfo && passesFilters(node) && (m_nameFilterDisables || passesNames(node));
}

bool NodeFilter::passesNames(const FileNode &node) const
{
    if (m_patterns.empty())
        return true;
    if (m_filters.testFlag(QDir::AllDirs) && node.isDirectory())
        return true;
    return std::any_of(m_patterns.begin(), m_patterns.end(),
                       [&](const QRegExp &pattern) { return pattern.exactMatch(node.fileName); });
}

bool NodeFilter::passesFilters(const FileNode &node) const
{
    const bool isDot = node.fileName == QLatin1String(".");
    const bool isDotDot = node.fileName == QLatin1String("..");
    if ((isDot && m_filters.testFlag(QDir::NoDot))
        || (isDotDot && m_filters.testFlag(QDir::NoDotDot)))
        return false;
    switch (node.type()) {
    case RemoteExtendedInformation::Dir:
        if (!(m_filters & (QDir::Dirs | QDir::AllDirs)))
            return false;
        break;
    case RemoteExtendedInformation::File:
        if (!m_filters.testFlag(QDir::Files))
            return false;
        break;
    case RemoteExtendedInformation::System:
        if (!m_filters.testFlag(QDir::System))
            return false;
        break;
    }
    if (!m_filters.testFlag(QDir::Hidden) && !isDot && !isDotDot && node.isHidden())
        return false;
    if (m_filters.testFlag(QDir::NoSymLinks) && node.isSymLink())
        return false;
    return passesPermissions(node);
}

bool NodeFilter::passesPermissions(const FileNode &node) const
{
    // All three together are no restriction, like none.
    const QDir::Filters wanted = m_filters & QDir::PermissionMask;
    if (!wanted || wanted == QDir::PermissionMask)
        return true;
    const QFileDevice::Permissions permissions = node.permissions();
    return !(wanted.testFlag(QDir::Readable) && !permissions.testFlag(QFileDevice::ReadUser))
        && !(wanted.testFlag(QDir::Writable) && !permissions.testFlag(QFileDevice::WriteUser))
        && !(wanted.testFlag(QDir::Executable) && !permissions.testFlag(QFileDevice::ExeUser));
}

void NodeFilter::buildPatterns()
{
    const Qt::CaseSensitivity sensitivity
        = m_filters.testFlag(QDir::CaseSensitive) ? Qt::CaseSensitive : Qt::CaseInsensitive;
    m_patterns.clear();
    for (const QString &name : std::as_const(m_nameFilters))
        m_patterns.emplace_back(name, sensitivity, QRegExp::Wildcard);
}
