#include <tul-util-gui/widgets/closebutton.h>

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

CloseButton::CloseButton(QWidget *parent)
    : QAbstractButton(parent)
{
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::ArrowCursor);
    setToolTip(tr("Close"));
    setAccessibleName(tr("Close"));
    resize(CloseButton::sizeHint());
}

QSize CloseButton::sizeHint() const
{
    ensurePolished();
    return {style()->pixelMetric(QStyle::PM_TabCloseIndicatorWidth, nullptr, this),
            style()->pixelMetric(QStyle::PM_TabCloseIndicatorHeight, nullptr, this)};
}

void CloseButton::enterEvent(QEvent *event)
{
    if (isEnabled())
        update();
    QAbstractButton::enterEvent(event);
}

void CloseButton::leaveEvent(QEvent *event)
{
    if (isEnabled())
        update();
    QAbstractButton::leaveEvent(event);
}

void CloseButton::paintEvent(QPaintEvent * /*event*/)
{
    QStyleOption option;
    option.initFrom(this);
    option.state |= QStyle::State_AutoRaise;
    if (isEnabled() && underMouse() && !isChecked() && !isDown())
        option.state |= QStyle::State_Raised;
    if (isChecked())
        option.state |= QStyle::State_On;
    if (isDown())
        option.state |= QStyle::State_Sunken;
    // By design: also in a panel, where no tab is selected; the cross is drawn in full.
    option.state |= QStyle::State_Selected;

    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_IndicatorTabClose, &option, &painter, this);
}
