#pragma once

#include <tul-util-gui/widgets/translucency_p.h>

#include <QFont>
#include <QPalette>
#include <QRect>
#include <QString>

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
};

/// The picture; null for an empty size.
QImage renderDetailsButton(const DetailsButtonLook &look);

} // namespace tul
