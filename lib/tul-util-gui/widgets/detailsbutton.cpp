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

struct Rendering {
    QPixmap pixmap;
    tul::DetailsButtonLook look; // what the key says nothing of may have changed since
};

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
    tul::DetailsButtonLook look() const;
    QPixmap rendering();

    DetailsButton *const q;
    QMap<RenderingKey, Rendering> cache;
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

tul::DetailsButtonLook DetailsButtonPrivate::look() const
{
    tul::DetailsButtonLook look;
    look.size = q->contentsRect().size();
    look.bounds = q->rect();
    look.ratio = q->devicePixelRatioF();
    look.checked = q->isChecked();
    look.down = q->isDown() && !animationEnabled;
    look.hover = !q->isDown() && fader > 0 && !animationEnabled;
    look.gradient = gradientEnabled;
    look.translucent = animationEnabled;
    look.highlight = look.hover ? highlight() : 0;
    look.text = textFor(q->isChecked());
    look.font = q->font();
    look.textColour = q->palette().color(QPalette::Text);
    look.background = q->palette().color(q->backgroundRole());
    look.style = q->style();
    return look;
}

QPixmap DetailsButtonPrivate::rendering()
{
    const tul::DetailsButtonLook now = look();
    const RenderingKey key(now.size.width(), now.size.height(), now.arrow, now.checked, now.down,
                           now.hover, q->isEnabled());
    const auto found = cache.constFind(key);
    if (found != cache.constEnd() && found->look == now)
        return found->pixmap;
    const QPixmap pixmap = QPixmap::fromImage(tul::renderDetailsButton(now));
    cache.insert(key, {pixmap, now});
    return pixmap;
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
