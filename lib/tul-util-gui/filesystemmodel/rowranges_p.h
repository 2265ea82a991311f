#pragma once

#include <optional>
#include <vector>

struct FileNode;

/// Neighbouring rows, both ends included.
struct RowRange {
    int first;
    int last;
};

namespace tul
{

/// The rows of the nodes that have one, neighbours together, in ascending order. All nodes are
/// children of one directory.
std::vector<RowRange> rowRanges(const std::vector<FileNode *> &nodes);

/// Takes the last run of neighbours out of the nodes, and those without a row. The nodes need not
/// be in order; none of them is left when there is nothing to take.
std::optional<RowRange> takeLastRows(std::vector<FileNode *> &nodes);

} // namespace tul
