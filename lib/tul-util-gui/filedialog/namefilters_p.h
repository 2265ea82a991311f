#pragma once

#include <QString>
#include <QStringList>

// The texts in which file dialogs write name filters: "Sources (*.c *.h);;All Files (*)".
namespace tul
{

/// The filters of a text: ";;" stands between them, or line ends when there is no ";;" at all. An
/// empty text has none; an empty filter between others counts.
QStringList splitNameFilters(const QString &filters);

/// The patterns of one filter: what stands in brackets at its end, else the whole text, parted at
/// blanks.
QStringList patternsOfFilter(const QString &filter);

/// The name of a filter, without the brackets at its end; a filter that is only patterns stays as
/// it is.
QString filterWithoutDetails(const QString &filter);

/// The filter that a dialog shows as `shown`, with or without what stands in brackets; `shown`
/// itself where none does.
QString filterShownAs(const QString &shown, const QStringList &filters);

/// The suffix, without a dot, that a file saved with this filter gets by default: that of its first
/// pattern. Null when there are several filters to choose from, or no suffix that is the same for
/// all files.
QString defaultSuffix(const QString &filter);

} // namespace tul
