#include <tul-util-gui/mdatable/headerlines_p.h>

#include <tul-util-gui/mdatable/saturated_p.h>

#include <algorithm>

long long HeaderLine::range() const
{
    return tul::saturatedCount(min, max);
}

long long HeaderLine::lastSection(long long block) const
{
    return tul::saturatedAdd(firstSection(block), stride - 1);
}

long long HeaderLine::blockCount(long long sections) const
{
    return sections / stride + (sections % stride != 0 ? 1 : 0);
}

void computeStrides(QVector<HeaderLine> &lines)
{
    long long stride = 1;
    for (HeaderLine &line : lines) {
        line.stride = stride;
        stride = tul::saturatedMul(stride, std::max(line.range(), 0LL));
    }
}

int HeaderBands::start(int line) const
{
    if (lines <= 0)
        return 0;
    return static_cast<int>((lines - line - 1LL) * extent / lines);
}
