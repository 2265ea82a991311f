#include <tul-util-gui/mdatable/selectionlist_p.h>

#include <algorithm>

namespace
{

bool spansRow(const MDATableSelection &block, long long row)
{
    return block.topRow() <= row && row <= block.bottomRow();
}

bool spansColumn(const MDATableSelection &block, long long col)
{
    return block.leftCol() <= col && col <= block.rightCol();
}

} // namespace

MDATableSelection SelectionList::at(int index) const
{
    if (index < 0 || index >= count())
        return {};
    return *m_blocks[static_cast<std::size_t>(index)];
}

int SelectionList::indexOf(const MDATableSelection &selection) const
{
    const auto found = std::find_if(m_blocks.begin(), m_blocks.end(),
                                    [&](const auto &block) { return *block == selection; });
    return found == m_blocks.end() ? -1 : static_cast<int>(found - m_blocks.begin());
}

int SelectionList::currentIndex() const
{
    const auto found = std::find_if(m_blocks.begin(), m_blocks.end(),
                                    [&](const auto &block) { return block.get() == m_current; });
    return found == m_blocks.end() ? -1 : static_cast<int>(found - m_blocks.begin());
}

void SelectionList::start(long long row, long long col)
{
    m_blocks.push_back(std::make_unique<MDATableSelection>());
    m_current = m_blocks.back().get();
    m_current->init(row, col);
}

int SelectionList::add(const MDATableSelection &selection, long long lastRow, long long lastCol)
{
    auto block = std::make_unique<MDATableSelection>(selection);
    block->m_bottomRow = std::min(block->m_bottomRow, lastRow);
    block->m_rightCol = std::min(block->m_rightCol, lastCol);
    m_current = block.get();
    m_blocks.push_back(std::move(block));
    return count() - 1;
}

void SelectionList::remove(int index)
{
    const auto position = m_blocks.begin() + index;
    if (position->get() == m_current)
        m_current = nullptr;
    m_blocks.erase(position);
}

void SelectionList::clear()
{
    m_current = nullptr;
    m_blocks.clear();
}

bool SelectionList::holds(long long row, long long col) const
{
    return firstHolding(row, col) != nullptr;
}

bool SelectionList::holdsRow(long long row, bool full, long long lastCol) const
{
    return std::any_of(m_blocks.begin(), m_blocks.end(), [&](const auto &block) {
        return block->isActive() && spansRow(*block, row)
            && block->rightCol() >= std::max(block->leftCol(), 0LL)
            && (!full || (block->leftCol() <= 0 && block->rightCol() >= lastCol));
    });
}

bool SelectionList::holdsColumn(long long col, bool full, long long lastRow) const
{
    return std::any_of(m_blocks.begin(), m_blocks.end(), [&](const auto &block) {
        return block->isActive() && spansColumn(*block, col)
            && block->bottomRow() >= std::max(block->topRow(), 0LL)
            && (!full || (block->topRow() <= 0 && block->bottomRow() >= lastRow));
    });
}

bool SelectionList::isInLargerBlock(long long row, long long col) const
{
    const MDATableSelection *block = firstHolding(row, col);
    return block && !block->isSingleElement();
}

const MDATableSelection *SelectionList::firstHolding(long long row, long long col) const
{
    const auto found = std::find_if(m_blocks.begin(), m_blocks.end(), [&](const auto &block) {
        return block->isActive() && spansRow(*block, row) && spansColumn(*block, col);
    });
    return found == m_blocks.end() ? nullptr : found->get();
}
