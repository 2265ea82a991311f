#include <tul-util-gui/mdatable/blocktext_p.h>

#include <tul-util-gui/mdatable/mdatableselection.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QtGlobal>

#include <algorithm>

namespace
{

const long long longestText = 1LL << 29; // characters that a string holds with room to spare

} // namespace

std::optional<QString> tul::joinedTexts(const MDATableSelection &block,
                                        const std::function<QString(long long, long long)> &textOf)
{
    // Not the block's own counts: one that begins before the first column has empty texts there.
    const long long rows = saturatedCount(block.topRow(), block.bottomRow());
    const long long columns = saturatedCount(block.leftCol(), block.rightCol());
    if (rows <= 0 || columns <= 0)
        return {};
    const long long cells = saturatedMul(rows, columns);
    QString joined;
    bool tooLong = cells > longestText;
    if (!tooLong)
        joined.reserve(static_cast<int>(std::min(cells * 8, longestText)));
    for (long long row = block.topRow(); row <= block.bottomRow() && !tooLong; ++row) {
        if (row != block.topRow())
            joined += QLatin1Char('\n');
        for (long long col = block.leftCol(); col <= block.rightCol() && !tooLong; ++col) {
            if (col != block.leftCol())
                joined += QLatin1Char(',');
            const QString text = textOf(row, col);
            tooLong = static_cast<long long>(joined.size()) + text.size() > longestText;
            if (!tooLong)
                joined += text;
        }
    }
    if (!tooLong)
        return joined;
    qWarning("copy: selection too large: %lld cells", cells);
    return {};
}
