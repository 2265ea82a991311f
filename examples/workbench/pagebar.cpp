#include <workbench/pagebar.h>

#include <tul-util-gui/widgets/flatbutton.h>

#include <QEvent>
#include <QVBoxLayout>

namespace
{

constexpr int buttonHeight = 36;
constexpr int textMargin = 28; // pixels beside the text, both sides together

/// Between two colours, a part of the way to the second one.
QColor between(const QColor &first, const QColor &second, qreal part)
{
    const auto mix = [part](qreal a, qreal b) { return a + (b - a) * part; };
    return QColor::fromRgbF(mix(first.redF(), second.redF()), mix(first.greenF(), second.greenF()),
                            mix(first.blueF(), second.blueF()));
}

} // namespace

PageBar::PageBar(QWidget *parent)
    : SideBarWidget(parent)
    , m_layout(new QVBoxLayout(this))
{
    m_layout->setSpacing(0);
    m_layout->addStretch();
    setAccessibleName(tr("Pages"));
    applyPalette();
    applyDirection();
}

void PageBar::addPage(const QString &title)
{
    const int index = m_buttons.size();
    auto *const button = new FlatButton(this);
    button->setText(title);
    button->setCheckable(true);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    button->setMinimumSize(button->fontMetrics().horizontalAdvance(title) + textMargin,
                           buttonHeight);
    connect(button, &FlatButton::clicked, this, [this, index] { Q_EMIT pageChosen(index); });
    m_layout->insertWidget(index, button);
    m_buttons.append(button);
    applyPalette();
}

void PageBar::setCurrentPage(int index)
{
    for (int i = 0; i < m_buttons.size(); ++i)
        m_buttons.at(i)->setChecked(i == index);
}

void PageBar::changeEvent(QEvent *event)
{
    SideBarWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyPalette();
    else if (event->type() == QEvent::LayoutDirectionChange)
        applyDirection();
}

/// The line stands towards the pages, and the buttons leave it free.
void PageBar::applyDirection()
{
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    setLinePosition(isMirrored ? West : East);
    m_layout->setContentsMargins(isMirrored ? 1 : 0, 0, isMirrored ? 0 : 1, 0);
    update(); // the setter only stores
}

void PageBar::applyPalette()
{
    const QColor window = palette().color(QPalette::Window);
    const QColor text = palette().color(QPalette::WindowText);
    const QColor highlight = palette().color(QPalette::Highlight);
    setBackgroundColour(between(window, text, 0.08));
    setLineColour(between(window, text, 0.3));
    for (FlatButton *const button : qAsConst(m_buttons)) {
        button->setHoverColour(between(window, text, 0.16));
        button->setPressedColour(between(window, highlight, 0.5));
        button->setSunkenColour(between(window, highlight, 0.3));
        button->setLineColour(highlight);
    }
    update(); // the setters only store
}
