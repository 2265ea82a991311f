#pragma once

#include <QString>

namespace tul
{

/// What a dialog with this caption asks for, whatever the request does with it: the key under which
/// a directory is remembered.
QString purposeKey(const QString &caption);

/// The answer of a save dialog with the suffix that its filter demands. A null `suffix` demands
/// none.
QString withSuffix(const QString &answer, const QString &suffix);

} // namespace tul
