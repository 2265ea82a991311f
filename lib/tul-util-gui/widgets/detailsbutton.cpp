#include <tul-util-gui/widgets/detailsbutton.h>

#include <tul-util-gui/widgets/detailsaccessible_p.h>
#include <tul-util-gui/widgets/detailsbuttonlook_p.h>

#include <QEvent>
#include <QMap>
#include <QPainter>
#include <QPixmap>
#include <QPropertyAnimation>

#include <algorithm>
#include <tuple>

namespace
{

const int fadeTime = 200; // milliseconds

/// Width, height, arrow, checked, down, hover, enabled.
using RenderingKey = std::tuple<int, int, bool, bool, bool, bool, bool>;

/// What the key says nothing of: both texts, font, palette, colour group, background role, bounds,
/// ratio and highlight.
using CommonLook = std::tuple<QString, QString, QFont, qint64, QPalette::ColorGroup,
                              QPalette::ColorRole, QRect, qreal, int>;

} // namespace

class DetailsButtonPrivate
{
public:
    explicit DetailsButtonPrivate(DetailsButton *button)
        : q(button)
    {
    }

    QString textFor(bool checked) const;
    int highlight() const;
    void fadeTo(float level) const;
    QPixmap rendering();
    CommonLook commonLook(bool hover) const;

    DetailsButton *const q;
    QMap<RenderingKey, QPixmap> cache;
    CommonLook cachedLook; // of all pixmaps in the cache
    float fader = 0; // level of the highlight, 0 to 1
    const bool gradientEnabled = tul::displayHasManyColours();
    const bool animationEnabled = gradientEnabled;
    QString expandedText;
    QString collapsedText;
};

/// By design: only set texts of a checkable button get the dots, and only the default text of one
/// that is not checkable.
QString DetailsButtonPrivate::textFor(bool checked) const
{
    const bool checkable = q->isCheckable();
    if (collapsedText.isEmpty() && expandedText.isEmpty())
        return checkable ? DetailsButton::tr("Details") : DetailsButton::tr("Details...");
    const QString &text = checked ? expandedText : collapsedText;
    return checkable ? text + QLatin1String("...") : text;
}

int DetailsButtonPrivate::highlight() const
{
    return fader > 0 ? static_cast<int>(std::min(fader, 1.0F) * 180) : 0;
}

void DetailsButtonPrivate::fadeTo(float level) const
{
    if (!animationEnabled) {
        q->setFader(level);
        return;
    }
    // It stops one that fades the other way.
    auto *const animation = new QPropertyAnimation(q, "fader", q);
    animation->setDuration(fadeTime);
    animation->setEndValue(level);
    animation->start(QAbstractAnimation::DeleteWhenStopped);
}

CommonLook DetailsButtonPrivate::commonLook(bool hover) const
{
    // The disabled group is in the key.
    const QPalette &palette = q->palette();
    const auto group
        = palette.currentColorGroup() == QPalette::Inactive ? QPalette::Inactive : QPalette::Active;
    return {textFor(false),
            textFor(true),
            q->font(),
            palette.cacheKey(),
            group,
            q->backgroundRole(),
            q->rect(),
            q->devicePixelRatioF(),
            hover ? highlight() : 0};
}

QPixmap DetailsButtonPrivate::rendering()
{
    const bool down = q->isDown() && !animationEnabled;
    const bool hover = !q->isDown() && fader > 0 && !animationEnabled;
    CommonLook common = commonLook(hover);
    if (common != cachedLook) {
        cache.clear();
        cachedLook = std::move(common);
    }
    const QSize size = q->contentsRect().size();
    const RenderingKey key(size.width(), size.height(), false, q->isChecked(), down, hover,
                           q->isEnabled());
    const auto found = cache.constFind(key);
    if (found != cache.constEnd())
        return *found;

    tul::DetailsButtonLook look;
    look.size = size;
    look.bounds = q->rect();
    look.ratio = q->devicePixelRatioF();
    look.checked = q->isChecked();
    look.down = down;
    look.hover = hover;
    look.gradient = gradientEnabled;
    look.translucent = animationEnabled;
    look.highlight = highlight();
    look.text = q->detailButtonText();
    look.font = q->font();
    look.textColour = q->palette().color(QPalette::Text);
    look.background = q->palette().color(q->backgroundRole());
    look.style = q->style();
    return *cache.insert(key, QPixmap::fromImage(tul::renderDetailsButton(look)));
}

DetailsButton::DetailsButton(QWidget *parent)
    : QAbstractButton(parent)
    , d(std::make_unique<DetailsButtonPrivate>(this))
{
    tul::installDetailsAccessibility();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Minimum);
    setText(tr("Details..."));
}

DetailsButton::~DetailsButton() = default;

float DetailsButton::fader() const
{
    return d->fader;
}

void DetailsButton::setFader(float level)
{
    d->fader = level;
    update();
}

void DetailsButton::setDetailButtonText(const QString &collapsedText, const QString &expandedText)
{
    d->collapsedText = collapsedText;
    d->expandedText = expandedText;
    update();
    updateGeometry();
}

QString DetailsButton::detailButtonText() const
{
    return d->textFor(isChecked());
}

QSize DetailsButton::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const bool isDefault = d->collapsedText.isEmpty() && d->expandedText.isEmpty();
    const int width = isDefault ? metrics.horizontalAdvance(detailButtonText())
                                : std::max(metrics.horizontalAdvance(d->collapsedText),
                                           metrics.horizontalAdvance(d->expandedText));
    return {width + 32, 22};
}

bool DetailsButton::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Enter:
        d->fadeTo(1);
        return false;
    case QEvent::Leave:
        d->fadeTo(0);
        return false;
    default:
        return QAbstractButton::event(event);
    }
}

void DetailsButton::paintEvent(QPaintEvent *event)
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the one of QAbstractButton is pure
    QWidget::paintEvent(event);
    QPainter painter(this);
    if (d->animationEnabled && !isDown() && d->fader > 0)
        painter.fillRect(rect().adjusted(1, 1, -2, -2), QColor(255, 255, 255, d->highlight()));

    const QRect contents = contentsRect();
    if (!contents.isEmpty())
        painter.drawPixmap(contents.topLeft(), d->rendering());

    if (isDown() && d->animationEnabled) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 20));
        painter.drawRoundedRect(rect().adjusted(1, 1, -1, -1), 1, 1);
    }
}
