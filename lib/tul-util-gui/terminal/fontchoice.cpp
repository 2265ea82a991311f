#include <tul-util-gui/terminal/fontchoice_p.h>

namespace
{

/// By design: in ascending order. The last one that is installed is taken.
QStringList preferredFamilies()
{
    return {QStringLiteral("Courier New"),      QStringLiteral("Bitstream Terminal"),
            QStringLiteral("Monospace"),        QStringLiteral("Typewriter"),
            QStringLiteral("FreeMono"),         QStringLiteral("Lucidatypewriter"),
            QStringLiteral("LucidaTypewriter"), QStringLiteral("Terminus")};
}

QString choosePreferred(const FontFamilies &families)
{
    const QStringList preferred = preferredFamilies();
    QString best;
    int bestScore = 0;
    for (const QString &name : families.names) {
        const int index = preferred.indexOf(name);
        const int score = index == -1 ? 0 : 768 + index;
        if (score > bestScore && families.isUsable(name)) {
            bestScore = score;
            best = name;
        }
    }
    return best;
}

} // namespace

int tul::fontScore(const FontFamilyTraits &traits)
{
    const int scalable = traits.isSmoothlyScalable ? 128 : traits.isScalable ? 64 : 0;
    return (traits.isFixedPitch ? 512 : 0) + scalable + (traits.isSmoothAtSize ? 256 : 0)
        + (traits.hasBold ? 32 : 0) + (traits.hasItalic ? 16 : 0);
}

QString tul::chooseFontFamily(const FontFamilies &families)
{
    QString best = choosePreferred(families);
    if (!best.isEmpty())
        return best;
    int bestScore = 0;
    for (const QString &name : families.names) {
        const int score = fontScore(families.traits(name));
        if (score > bestScore && families.isUsable(name)) {
            bestScore = score;
            best = name;
        }
    }
    return best;
}
