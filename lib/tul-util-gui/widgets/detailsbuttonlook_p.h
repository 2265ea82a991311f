#pragma once

#include <tul-util-gui/widgets/translucency_p.h>

#include <QFont>
#include <QPalette>
#include <QRect>
#include <QString>

#include <tuple>

class QStyle;

namespace tul
{

/// All that the picture of a details button depends on.
struct DetailsButtonLook {
    QSize size; // of the picture
    QRect bounds; // of the button, which differ when it has contents margins
    qreal ratio = 1;
    bool arrow = false;
    bool checked = false;
    bool down = false;
    bool hover = false;
    bool gradient = true;
    bool translucent = true;
    int highlight = 0; // alpha of the hover colour
    QString text;
    QFont font;
    QColor textColour;
    QColor background; // shows through where nothing can be translucent
    const QStyle *style = nullptr; // draws the arrow

    bool operator==(const DetailsButtonLook &other) const
    {
        const auto fields = [](const DetailsButtonLook &look) {
            return std::tie(look.size, look.bounds, look.ratio, look.arrow, look.checked, look.down,
                            look.hover, look.gradient, look.translucent, look.highlight, look.text,
                            look.font, look.textColour, look.background, look.style);
        };
        return fields(*this) == fields(other);
    }
};

/// The picture; null for an empty size.
QImage renderDetailsButton(const DetailsButtonLook &look);

} // namespace tul
