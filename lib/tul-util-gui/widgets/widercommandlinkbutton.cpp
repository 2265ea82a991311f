#include <tul-util-gui/widgets/widercommandlinkbutton.h>

#include <QFontMetrics>
#include <QIcon>

#include <algorithm>

namespace
{

// Pixels that the toolkit leaves around icon and description.
constexpr int horizontalMargins = 17;

} // namespace

WiderCommandLinkButton::WiderCommandLinkButton(const QString &text, const QString &description,
                                               QWidget *parent)
    : QCommandLinkButton(text, description, parent)
{
    fixFontSize();
}

WiderCommandLinkButton::WiderCommandLinkButton(const QString &text, QWidget *parent)
    : QCommandLinkButton(text, parent)
{
    fixFontSize();
}

WiderCommandLinkButton::WiderCommandLinkButton(QWidget *parent)
    : QCommandLinkButton(parent)
{
    fixFontSize();
}

/// A size that was set, even if to itself, is explicit and no longer inherited.
void WiderCommandLinkButton::fixFontSize()
{
    QFont pinned = font();
    if (pinned.pointSizeF() > 0)
        pinned.setPointSizeF(pinned.pointSizeF());
    else
        pinned.setPixelSize(pinned.pixelSize()); // a font that has its size in pixels
    setFont(pinned);
}

QSize WiderCommandLinkButton::sizeHint() const
{
    const QSize hint = QCommandLinkButton::sizeHint();
    if (description().isEmpty())
        return hint;
    // By design: the widget's font, whichever one the description is painted with, and its whole
    // pixels as the toolkit rounds them.
    const int textWidth = fontMetrics().horizontalAdvance(description());
    const int iconWidth = std::max(0, icon().actualSize(iconSize()).width()); // no icon: -1
    return {std::max(hint.width(), textWidth + iconWidth + horizontalMargins), hint.height()};
}
