#pragma once

#include <QDir>
#include <QStringList>

class DialogContext;

/// Which files a dialog shows: the name filters with their box, and the kinds of entries.
class DialogFilters
{
public:
    explicit DialogFilters(DialogContext *context)
        : m_context(context)
    {
    }

    void setNameFilters(const QStringList &filters);
    const QStringList &nameFilters() const { return m_nameFilters; }

    void retranslate();

    void selectNameFilter(const QString &filter);
    QString selectedNameFilter() const;

    /// Applies the filter of a line of the box.
    void useNameFilter(int index);

    /// Fills the box again: with the filters, with or without their patterns, or, where directories
    /// are chosen, with a word that says so.
    void updateBox();

    void setEntryFilter(QDir::Filters filters);

    /// Makes the entry filter fit the modes: files are left out where only directories count.
    void updateEntryFilter();
    void toggleHidden();

private:
    QString boxText(const QString &filter) const;
    void replaceTypedSuffix(const QStringList &patterns) const;

    DialogContext *const m_context;
    QStringList m_nameFilters;
    bool m_isDefault = true; ///< none is set
    int m_used = -1; ///< the filter that is applied
};
