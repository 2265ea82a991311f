#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/// What the choice of a font depends on, for one family at the wanted size.
struct FontFamilyTraits {
    bool isFixedPitch = false;
    bool isSmoothlyScalable = false;
    bool isScalable = false; ///< counts when it is not smoothly scalable
    bool isSmoothAtSize = false; ///< in all of its styles
    bool hasBold = false; ///< a style that is bold and not italic
    bool hasItalic = false; ///< a style that is italic and not bold
};

/// The families among which to choose, in the order of the font database. The functions are asked
/// only where the answer matters, because it is slow to come by.
struct FontFamilies {
    QStringList names;
    std::function<bool(const QString &)> isUsable;
    std::function<FontFamilyTraits(const QString &)> traits;
};

namespace tul
{

int fontScore(const FontFamilyTraits &traits);

/// The best usable family for a terminal; empty when there is none.
QString chooseFontFamily(const FontFamilies &families);

} // namespace tul
