#pragma once

#include <QString>

#include <functional>
#include <optional>

class MDATableSelection;

namespace tul
{

/// The texts of a block's cells as `textOf(row, column)` gives them: cells joined by ",", rows by
/// "\n". None for an empty block, and, with the warning "copy: selection too large: %lld cells",
/// for one whose text no string can hold.
std::optional<QString> joinedTexts(const MDATableSelection &block,
                                   const std::function<QString(long long, long long)> &textOf);

} // namespace tul
