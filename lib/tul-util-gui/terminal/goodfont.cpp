#include <tul-util-gui/terminal/fontchoice_p.h>
#include <tul-util-gui/terminal/goodfont.h>

#include <QFontDatabase>
#include <QFontMetrics>

#include <algorithm>

namespace
{

bool isUsable(const QString &family, int pointSize)
{
    const QFontMetrics metrics(QFont(family, pointSize));
    const QLatin1String characters("0aA");
    return std::all_of(characters.begin(), characters.end(), [&](char latin) {
        const QLatin1Char character(latin);
        return metrics.inFont(character) && metrics.horizontalAdvance(character) > 0;
    });
}

FontFamilyTraits traitsOf(QFontDatabase &database, const QString &family, int pointSize)
{
    FontFamilyTraits traits;
    traits.isFixedPitch = database.isFixedPitch(family);
    traits.isSmoothlyScalable = database.isSmoothlyScalable(family);
    traits.isScalable = database.isScalable(family);
    traits.isSmoothAtSize = true;
    const QStringList styles = database.styles(family);
    for (const QString &style : styles) {
        traits.isSmoothAtSize
            = traits.isSmoothAtSize && database.smoothSizes(family, style).contains(pointSize);
        const bool isBold = database.bold(family, style);
        const bool isItalic = database.italic(family, style);
        traits.hasBold = traits.hasBold || (isBold && !isItalic);
        traits.hasItalic = traits.hasItalic || (isItalic && !isBold);
    }
    return traits;
}

QString lastResortFamily()
{
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED // the toolkit has nothing else to offer
        return QFont()
            .lastResortFamily();
    QT_WARNING_POP
}

} // namespace

QFont findGoodFont(int pointSize)
{
    QFontDatabase database;
    FontFamilies families;
    families.names = database.families();
    families.isUsable = [&](const QString &name) { return isUsable(name, pointSize); };
    families.traits = [&](const QString &name) { return traitsOf(database, name, pointSize); };
    const QString family = tul::chooseFontFamily(families);
    return QFont(family.isEmpty() ? lastResortFamily() : family, pointSize);
}
