#include <tul-util-gui/mdatable/tableaxis_p.h>

#include <tul-util-gui/mdatable/mdatableheader_p.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QScrollBar>

#include <algorithm>

long long TableAxis::forward(long long section) const
{
    const long long visible = header->visibleFrom(section);
    return visible == -1 || visible >= count() ? current : visible;
}

long long TableAxis::backward(long long section) const
{
    const long long visible = header->visibleUpTo(section);
    return visible == -1 ? current : visible;
}

long long TableAxis::fixed(long long section, int pixel) const
{
    const long long last = count() - 1;
    if (last < 0)
        return -1;
    if (section != -1)
        return section;
    return pixel < 0 ? forward(0) : backward(last);
}

void TableAxis::ensureVisible(long long section, int extent) const
{
    if (section < 0)
        return;
    const long long start = header->sectionPos(section);
    const long long size = header->isSectionHidden(section) ? 0 : header->sectionSize();
    if (start < bar->value() || size > extent)
        bar->setValue(static_cast<int>(start));
    else if (start + size > static_cast<long long>(bar->value()) + extent)
        bar->setValue(tul::clampToInt(start + size - extent));
}

bool TableAxis::cutToVisible(long long &first, long long &last, long long atStart,
                             long long atEnd) const
{
    first = header->visibleFrom(std::max({first, atStart, 0LL}));
    last = std::min(last, count() - 1);
    if (atEnd != -1)
        last = std::min(last, atEnd);
    last = header->visibleUpTo(last);
    return first != -1 && first <= last;
}
