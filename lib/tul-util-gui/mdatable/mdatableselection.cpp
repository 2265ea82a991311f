#include <tul-util-gui/mdatable/mdatableselection.h>

#include <tul-util-gui/mdatable/saturated_p.h>

#include <algorithm>

MDATableSelection::MDATableSelection()
    : m_active(0)
    , m_inited(0)
{
}

MDATableSelection::MDATableSelection(long long row, long long col, long long row2, long long col2)
    : MDATableSelection()
{
    init(row, col);
    expandTo(row2, col2);
}

void MDATableSelection::init(long long row, long long col)
{
    m_active = 0;
    m_inited = 1;
    m_topRow = m_bottomRow = m_anchorRow = row;
    m_leftCol = m_rightCol = m_anchorCol = col;
}

void MDATableSelection::expandTo(long long row, long long col)
{
    if (!m_inited)
        return;
    m_active = 1;
    m_topRow = std::min(row, m_anchorRow);
    m_bottomRow = std::max(row, m_anchorRow);
    m_leftCol = std::min(col, m_anchorCol);
    m_rightCol = std::max(col, m_anchorCol);
}

long long MDATableSelection::numRows() const
{
    return m_topRow < 0 ? 0 : tul::saturatedCount(m_topRow, m_bottomRow);
}

long long MDATableSelection::numCols() const
{
    return m_leftCol < 0 ? 0 : tul::saturatedCount(m_leftCol, m_rightCol);
}

bool MDATableSelection::operator==(const MDATableSelection &other) const
{
    return m_active == other.m_active && m_topRow == other.m_topRow
        && m_bottomRow == other.m_bottomRow && m_leftCol == other.m_leftCol
        && m_rightCol == other.m_rightCol;
}
