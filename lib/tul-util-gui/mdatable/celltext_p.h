#pragma once

#include <QColor>
#include <QSize>
#include <QString>

class QFont;
class QPainter;
class QRect;

// Fast ways through what the toolkit does slowly for the short numbers that arrays are made of:
// each gives the toolkit's own answer, or pixels, and leaves every other text to it.
namespace tul
{

/// Whether the toolkit's locale-independent integer (base 10) or double parser accepts the text.
bool isNumber(const QString &text);

/// Advance width and font height of a one-line text.
QSize textSize(const QFont &font, const QString &text);

/// QPainter::drawText() with the painter's font and pen. A valid `background` promises that all of
/// `rect` has that colour.
void drawText(QPainter *painter, const QRect &rect, int flags, const QString &text,
              const QColor &background = QColor());

} // namespace tul
