#include "rowranges_p.h"

#include "filenode_p.h"

#include <algorithm>

namespace tul
{

std::vector<RowRange> rowRanges(const std::vector<FileNode *> &nodes)
{
    std::vector<int> rows;
    rows.reserve(nodes.size());
    for (const FileNode *const node : nodes) {
        if (node->isVisible())
            rows.push_back(node->row);
    }
    std::sort(rows.begin(), rows.end());
    std::vector<RowRange> ranges;
    for (const int row : rows) {
        if (!ranges.empty() && row <= ranges.back().last + 1)
            ranges.back().last = row;
        else
            ranges.push_back({row, row});
    }
    return ranges;
}

std::optional<RowRange> takeLastRows(std::vector<FileNode *> &nodes)
{
    const auto isHidden = [](const FileNode *node) { return !node->isVisible(); };
    nodes.erase(std::remove_if(nodes.begin(), nodes.end(), isHidden), nodes.end());
    if (nodes.empty())
        return std::nullopt;
    const auto byRow = [](const FileNode *a, const FileNode *b) { return a->row < b->row; };
    if (!std::is_sorted(nodes.begin(), nodes.end(), byRow))
        std::sort(nodes.begin(), nodes.end(), byRow);
    RowRange range{nodes.back()->row, nodes.back()->row};
    while (!nodes.empty() && nodes.back()->row >= range.first - 1) {
        range.first = nodes.back()->row;
        nodes.pop_back();
    }
    return range;
}

} // namespace tul
