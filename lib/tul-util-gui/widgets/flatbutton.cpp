#include <tul-util-gui/widgets/flatbutton.h>
#include <tul-util-gui/widgets/flatcolours_p.h>
#include <tul-util-gui/widgets/painterguard_p.h>

#include <QLine>
#include <QStyleOptionFocusRect>
#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace
{

constexpr int focusInset = 3;

} // namespace

FlatButton::FlatButton(QWidget *parent)
    : QToolButton(parent)
    , m_colours(std::make_unique<tul::FlatColours>())
{
    // Not every style asks for the repaints that the hover colour needs.
    setAttribute(Qt::WA_Hover);
}

FlatButton::~FlatButton() = default;

QColor FlatButton::sunkenColour() const
{
    return m_colours->sunken;
}

void FlatButton::setSunkenColour(const QColor &colour)
{
    m_colours->sunken = colour;
}

QColor FlatButton::raisedColour() const
{
    return m_colours->raised;
}

void FlatButton::setRaisedColour(const QColor &colour)
{
    m_colours->raised = colour;
}

QColor FlatButton::hoverColour() const
{
    return m_colours->hover;
}

void FlatButton::setHoverColour(const QColor &colour)
{
    m_colours->hover = colour;
}

QColor FlatButton::pressedColour() const
{
    return m_colours->pressed;
}

void FlatButton::setPressedColour(const QColor &colour)
{
    m_colours->pressed = colour;
}

QColor FlatButton::disabledColour() const
{
    return m_colours->disabled;
}

void FlatButton::setDisabledColour(const QColor &colour)
{
    m_colours->disabled = colour;
}

QColor FlatButton::lineColour() const
{
    return m_colours->line;
}

void FlatButton::setLineColour(const QColor &colour)
{
    m_colours->line = colour;
}

void FlatButton::paintEvent(QPaintEvent *event)
{
    // NOLINTNEXTLINE(bugprone-parent-virtual-call): the tool button's own painting is left out
    QWidget::paintEvent(event);
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    const tul::PainterGuard guard(painter);

    const tul::FlatFace face = tul::flatFace(*m_colours, option.state);
    const QRect area
        = style()->subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButton, this);
    if (face.fill.isValid())
        painter.fillRect(area, face.fill);
    // By design: the end is the width, which differs from the right edge.
    if (face.hasRule)
        tul::drawRule(painter, m_colours->line,
                      QLine(area.left(), area.bottom(), area.width(), area.bottom()));

    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.rect.adjust(focusInset, focusInset, -focusInset, -focusInset);
        painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
    }

    const int frame = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, this);
    option.rect = area.adjusted(frame, frame, -frame, -frame);
    const QStyle::State pressed = QStyle::State_Sunken | QStyle::State_MouseOver;
    if ((option.state & (pressed | QStyle::State_On)) == pressed)
        option.rect.translate(tul::pressShift(*style()));
    painter.drawControl(QStyle::CE_ToolButtonLabel, option);
}

// By design: a click never toggles; the owner decides what is checked.
void FlatButton::nextCheckState() { }
