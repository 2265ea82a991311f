#pragma once

#include <QColor>
#include <QPoint>
#include <QStyle>

class QLine;
class QPainter;

namespace tul
{

/// The colours by which the flat buttons show their state. An invalid one is unset.
struct FlatColours {
    QColor sunken;
    QColor raised;
    QColor hover;
    QColor pressed;
    QColor disabled;
    QColor line;
};

/// What a flat button shows behind its label.
struct FlatFace {
    QColor fill; ///< invalid: nothing
    bool hasRule = false;
};

/// The face of a flat button in a state, of which Sunken, MouseOver, On and Enabled count.
FlatFace flatFace(const FlatColours &colours, QStyle::State state);

/// By how much the label of a pressed flat button moves: what the style says, at least 1 each way.
QPoint pressShift(const QStyle &style);

/// Draws a line of one device pixel, or nothing when the colour is invalid. The painter keeps the
/// pen.
void drawRule(QPainter &painter, const QColor &colour, const QLine &line);

} // namespace tul
