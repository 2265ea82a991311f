#pragma once

#include <tul-util-gui/widgets/translucency_p.h>

#include <tuple>

namespace tul
{

/// All that the picture behind a details widget depends on.
struct SummaryBarLook {
    QSize size;
    qreal ratio = 1;
    int topHeight = 0; // of the part with the gradient
    bool gradient = true;
    bool translucent = true;
    QColor background; // shows through where nothing can be translucent

    bool operator==(const SummaryBarLook &other) const
    {
        const auto fields = [](const SummaryBarLook &look) {
            return std::tie(look.size, look.ratio, look.topHeight, look.gradient, look.translucent,
                            look.background);
        };
        return fields(*this) == fields(other);
    }
};

/// The picture; null for an empty size.
QImage renderSummaryBar(const SummaryBarLook &look);

} // namespace tul
