#pragma once

#include <QDir>
#include <QRegExp>
#include <QStringList>

#include <vector>

struct FileNode;

/// Which files have rows, and which of these are greyed.
class NodeFilter
{
public:
    QDir::Filters filters() const { return m_filters; }
    void setFilters(QDir::Filters filters);

    QStringList nameFilters() const { return m_nameFilters; }
    void setNameFilters(const QStringList &nameFilters);

    bool nameFilterDisables() const { return m_nameFilterDisables; }
    void setNameFilterDisables(bool enable) { m_nameFilterDisables = enable; }

    /// Whether a node has a row.
    bool accepts(const FileNode &node) const;

    /// Whether a name matches a pattern as a whole. An empty list lets all pass; QDir::AllDirs,
    /// all directories.
    bool passesNames(const FileNode &node) const;

private:
    bool passesFilters(const FileNode &node) const;
    bool passesPermissions(const FileNode &node) const;
    void buildPatterns();

    QDir::Filters m_filters = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::AllDirs;
    QStringList m_nameFilters;
    std::vector<QRegExp> m_patterns; // of the names, in their order
    bool m_nameFilterDisables = true;
};
