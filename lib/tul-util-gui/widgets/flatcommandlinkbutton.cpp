#include <tul-util-gui/widgets/flatcolours_p.h>
#include <tul-util-gui/widgets/flatcommandlinkbutton.h>
#include <tul-util-gui/widgets/painterguard_p.h>

#include <QFontMetrics>
#include <QIcon>
#include <QLine>
#include <QPainter>
#include <QStyleOptionButton>
#include <QWindow>

#include <algorithm>

class FlatCommandLinkButtonPrivate
{
public:
    tul::FlatColours colours;
    QColor title;
    QColor description;
};

namespace
{

constexpr qreal textPoints = 9.0;
constexpr int iconGap = 6; // between icon and texts

} // namespace

FlatCommandLinkButton::FlatCommandLinkButton(QWidget *parent)
    : WiderCommandLinkButton(parent)
    , d(std::make_unique<FlatCommandLinkButtonPrivate>())
{
}

FlatCommandLinkButton::~FlatCommandLinkButton() = default;

QColor FlatCommandLinkButton::sunkenColour() const
{
    return d->colours.sunken;
}

void FlatCommandLinkButton::setSunkenColour(const QColor &colour)
{
    d->colours.sunken = colour;
}

QColor FlatCommandLinkButton::raisedColour() const
{
    return d->colours.raised;
}

void FlatCommandLinkButton::setRaisedColour(const QColor &colour)
{
    d->colours.raised = colour;
}

QColor FlatCommandLinkButton::hoverColour() const
{
    return d->colours.hover;
}

void FlatCommandLinkButton::setHoverColour(const QColor &colour)
{
    d->colours.hover = colour;
}

QColor FlatCommandLinkButton::pressedColour() const
{
    return d->colours.pressed;
}

void FlatCommandLinkButton::setPressedColour(const QColor &colour)
{
    d->colours.pressed = colour;
}

QColor FlatCommandLinkButton::disabledColour() const
{
    return d->colours.disabled;
}

void FlatCommandLinkButton::setDisabledColour(const QColor &colour)
{
    d->colours.disabled = colour;
}

QColor FlatCommandLinkButton::lineColour() const
{
    return d->colours.line;
}

void FlatCommandLinkButton::setLineColour(const QColor &colour)
{
    d->colours.line = colour;
}

QColor FlatCommandLinkButton::titleColour() const
{
    return d->title;
}

void FlatCommandLinkButton::setTitleColour(const QColor &colour)
{
    d->title = colour;
}

QColor FlatCommandLinkButton::descriptionColour() const
{
    return d->description;
}

void FlatCommandLinkButton::setDescriptionColour(const QColor &colour)
{
    d->description = colour;
}

QFont FlatCommandLinkButton::titleFont() const
{
    QFont result = font();
    result.setBold(true);
    result.setPointSizeF(textPoints);
    return result;
}

QFont FlatCommandLinkButton::descriptionFont() const
{
    QFont result = font();
    result.setPointSizeF(textPoints);
    return result;
}

/// The size of the icon as it is painted.
QSize FlatCommandLinkButton::iconExtent() const
{
    // By design: 0 x 0 without an icon, for which the toolkit says -1; the texts stand as they do
    // beside an icon of no width.
    return icon().actualSize(iconSize()).expandedTo(QSize(0, 0));
}

int FlatCommandLinkButton::textOffset() const
{
    return iconExtent().width() + leftMargin() + iconGap;
}

int FlatCommandLinkButton::descriptionOffset() const
{
    return QFontMetrics(titleFont()).height() + topMargin();
}

/// Beside the icon when there is no description below it.
QRect FlatCommandLinkButton::titleRect() const
{
    const QRect result = rect().adjusted(textOffset(), topMargin(), -rightMargin(), 0);
    if (!description().isEmpty())
        return result;
    const int spare = iconExtent().height() - QFontMetrics(titleFont()).height();
    return result.adjusted(0, std::max(spare / 2, 0), 0, 0);
}

QRect FlatCommandLinkButton::descriptionRect() const
{
    return rect().adjusted(textOffset(), descriptionOffset(), -rightMargin(), -bottomMargin());
}

void FlatCommandLinkButton::paintEvent(QPaintEvent *event)
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the painting of the bases is left out
    QWidget::paintEvent(event);
    QPainter painter(this);
    QStyleOptionButton option;
    initStyleOption(&option);
    const tul::PainterGuard guard(painter);

    const tul::FlatFace face = tul::flatFace(d->colours, option.state);
    if (face.fill.isValid())
        painter.fillRect(0, 0, width(), height(), face.fill);
    if (face.hasRule)
        tul::drawRule(painter, d->colours.line, QLine(0, height() - 1, width(), height() - 1));

    option.features |= QStyleOptionButton::CommandLinkButton;
    option.text.clear();
    option.icon = QIcon();
    const QPoint shift = isDown() ? tul::pressShift(*style()) : QPoint();

    if (!icon().isNull()) {
        const QPixmap pixmap = icon().pixmap(window()->windowHandle(), iconExtent(),
                                             isEnabled() ? QIcon::Normal : QIcon::Disabled,
                                             isChecked() ? QIcon::On : QIcon::Off);
        painter.drawPixmap(QPoint(leftMargin(), topMargin()) + shift, pixmap);
    }

    int flags = Qt::TextShowMnemonic;
    if (style()->styleHint(QStyle::SH_UnderlineShortcut, &option, this) == 0)
        flags |= Qt::TextHideMnemonic;
    const auto drawText = [&](const QString &text, const QColor &colour, const QFont &font,
                              const QRect &place, int alignment) {
        // By design: the title's colour stays for a description that has none.
        if (colour.isValid())
            option.palette.setBrush(QPalette::ButtonText, colour);
        painter.setFont(font);
        style()->drawItemText(&painter, place.translated(shift), alignment | flags, option.palette,
                              isEnabled(), text, QPalette::ButtonText);
    };
    drawText(text(), d->title, titleFont(), titleRect(), 0);
    drawText(description(), d->description, descriptionFont(), descriptionRect(),
             Qt::AlignLeft | Qt::TextWordWrap);
}

// By design: a click never toggles; the owner decides what is checked.
void FlatCommandLinkButton::nextCheckState() { }
