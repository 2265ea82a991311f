#include <tul-util-gui/widgets/detailswidget.h>

#include <tul-util-gui/widgets/detailsaccessible_p.h>
#include <tul-util-gui/widgets/detailsbutton.h>
#include <tul-util-gui/widgets/detailswidgetlabel_p.h>
#include <tul-util-gui/widgets/summarybarlook_p.h>

#include <QCheckBox>
#include <QCoreApplication>
#include <QDockWidget>
#include <QGridLayout>
#include <QIcon>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QSpacerItem>
#include <QVarLengthArray>
#include <QVector>

#include <algorithm>

namespace
{

const int barMargin = 6;
const int columns = 5; // check box margin, check box, summary, tool widget, button
const int toolColumn = 3;

struct CachedBar {
    QPixmap pixmap;
    tul::SummaryBarLook look;
};

QMargins allSides(int width)
{
    return {width, width, width, width};
}

// Unlike QWidget::isAncestorOf() also across windows, and of the widget itself.
bool contains(const QWidget *container, const QWidget *widget)
{
    for (; widget; widget = widget->parentWidget()) {
        if (widget == container)
            return true;
    }
    return false;
}

/// Brings the layouts of `widget` and of all around it up to date.
void updateLayoutsAround(QWidget *widget)
{
    // Taken once: relayouting may run code that deletes or moves any of them.
    QVarLengthArray<QPointer<QWidget>, 32> chain;
    for (; widget; widget = widget->parentWidget())
        chain.append(widget);
    for (const QPointer<QWidget> &each : chain) {
        if (auto *const dock = qobject_cast<QDockWidget *>(each))
            dock->setMinimumHeight(0);
        if (each && each->layout())
            each->layout()->activate();
        if (auto *const area = qobject_cast<QScrollArea *>(each)) {
            QEvent event(QEvent::LayoutRequest);
            QCoreApplication::sendEvent(area, &event);
        }
    }
}

} // namespace

class DetailsWidgetPrivate
{
public:
    explicit DetailsWidgetPrivate(DetailsWidget *panel);
    ~DetailsWidgetPrivate();

    void changeState(DetailsWidget::State newState);
    void updateControls();
    void updateToolWidgets();
    void withdrawToolWidgets();
    void updateTabOrder() const;
    bool isReleased() const { return !useCheckBox || summaryCheckBox->isChecked(); }
    void nameControls() const;
    void detailsWidgetGone();
    tul::SummaryBarLook barLook() const;

    DetailsWidget *const q;
    DetailsButton *const detailsButton;
    QGridLayout *const grid;
    DetailsWidgetLabel *const summaryLabel;
    QCheckBox *const summaryCheckBox;
    QLabel *const additionalSummaryLabel;
    QPointer<QWidget> toolWidget;
    QPointer<QWidget> widget; // the details
    QSpacerItem *const summaryLeftMargin; // the grid's while the check box is used
    CachedBar collapsedBar;
    CachedBar expandedBar;
    DetailsWidget::State state = DetailsWidget::Collapsed;
    bool hovered = false; // with a tool widget only
    bool useCheckBox = false;
    bool detailButtonVisible = true;
    bool detailButtonEnabled = true;
    QVector<QPointer<QWidget>> withdrawn; // tool widgets hidden by NoSummary and not by the host
    const bool useGradient = tul::displayHasManyColours();
    const bool translucent = useGradient;
    bool toggleDetailsOnSummaryBarClicks = true;
};

DetailsWidgetPrivate::DetailsWidgetPrivate(DetailsWidget *panel)
    : q(panel)
    , detailsButton(new DetailsButton(panel))
    , grid(new QGridLayout)
    , summaryLabel(new DetailsWidgetLabel(panel))
    , summaryCheckBox(new QCheckBox(panel))
    , additionalSummaryLabel(new QLabel(panel))
    , summaryLeftMargin(new QSpacerItem(barMargin, barMargin))
{
    summaryLabel->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    summaryLabel->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    summaryLabel->setContentsMargins(allSides(barMargin));

    summaryCheckBox->hide();
    summaryCheckBox->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    summaryCheckBox->setContentsMargins(allSides(barMargin));

    additionalSummaryLabel->hide();
    additionalSummaryLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    additionalSummaryLabel->setContentsMargins(allSides(barMargin));
    additionalSummaryLabel->setWordWrap(true);

    grid->setContentsMargins(QMargins());
    grid->setSpacing(0);
    grid->addWidget(summaryLabel, 0, 2);
    grid->addWidget(detailsButton, 0, 4);
    grid->addWidget(additionalSummaryLabel, 1, 0, 1, columns);
}

DetailsWidgetPrivate::~DetailsWidgetPrivate()
{
    // The details go after this, with the children.
    if (widget)
        QObject::disconnect(widget, nullptr, q, nullptr);
    if (!useCheckBox)
        delete summaryLeftMargin;
}

void DetailsWidgetPrivate::changeState(DetailsWidget::State newState)
{
    const QPointer<DetailsWidget> self(q);
    const bool changed = newState != state;
    state = newState;
    updateControls();
    if (!self || !changed)
        return;
    tul::announceExpansion(q);
    tul::announceExpansion(detailsButton);
    // As it is by now: what has just been shown or announced may have changed it again.
    Q_EMIT q->expanded(state == DetailsWidget::Expanded);
}

/// May end with the panel deleted, by code that the layouts around it run.
void DetailsWidgetPrivate::updateControls()
{
    const bool released = isReleased();
    if (widget)
        widget->setVisible(state != DetailsWidget::Collapsed && released);
    {
        // The button follows here; told of it, the panel would take NoSummary for Collapsed.
        const QSignalBlocker blocker(detailsButton);
        detailsButton->setChecked(state == DetailsWidget::Expanded && widget);
    }
    detailsButton->setEnabled(detailButtonEnabled && released);
    const bool hasSummary = state != DetailsWidget::NoSummary;
    detailsButton->setVisible(hasSummary && detailButtonVisible);
    summaryLabel->setVisible(hasSummary);
    summaryCheckBox->setVisible(hasSummary && useCheckBox);
    updateToolWidgets();
    updateLayoutsAround(q);
}

void DetailsWidgetPrivate::updateToolWidgets()
{
    if (toolWidget)
        toolWidget->setEnabled(isReleased());
    if (state == DetailsWidget::NoSummary) {
        withdrawToolWidgets();
        return;
    }
    // Showing one may change the state again, and so withdraw it and the next ones. One that the
    // host has taken out meanwhile would come up as a window.
    while (!withdrawn.isEmpty() && state != DetailsWidget::NoSummary) {
        const QPointer<QWidget> tool = withdrawn.takeFirst();
        if (tool && grid->indexOf(tool) != -1)
            tool->show();
    }
}

/// Former ones, which stay in the bar, go with it like the present one.
void DetailsWidgetPrivate::withdrawToolWidgets()
{
    QVector<QPointer<QWidget>> hiding;
    for (int i = 0; i < grid->count(); ++i) {
        int row = 0, column = 0, rows = 0, spanned = 0;
        grid->getItemPosition(i, &row, &column, &rows, &spanned);
        if (row == 0 && column == toolColumn)
            hiding.append(grid->itemAt(i)->widget());
    }
    for (const QPointer<QWidget> &tool : qAsConst(hiding)) {
        if (!tool)
            continue;
        // Until the event loop shows it, a new one is hidden, too, but by nobody.
        const bool hiddenByHost
            = tool->isHidden() && tool->testAttribute(Qt::WA_WState_ExplicitShowHide);
        if (!hiddenByHost && !withdrawn.contains(tool))
            withdrawn.append(tool);
        tool->hide();
    }
}

void DetailsWidgetPrivate::updateTabOrder() const
{
    // A tool widget that takes no focus itself may hold others that do.
    QVarLengthArray<QWidget *, 8> order;
    QWidget *each = toolWidget;
    while (each) {
        if (each->focusPolicy() != Qt::NoFocus && contains(toolWidget, each))
            order.append(each);
        each = each->nextInFocusChain();
        if (each == toolWidget) // once round
            each = nullptr;
    }
    order.append(detailsButton);
    QWidget *before = summaryCheckBox;
    for (QWidget *const next : order) {
        QWidget::setTabOrder(before, next);
        before = next;
    }
}

/// Check box and button say nothing of what they are for.
void DetailsWidgetPrivate::nameControls() const
{
    const QString summary = tul::plainText(summaryLabel->text());
    summaryCheckBox->setAccessibleName(summary);
    detailsButton->setAccessibleDescription(summary);
}

void DetailsWidgetPrivate::detailsWidgetGone()
{
    detailsButton->setCheckable(false);
    updateControls();
}

tul::SummaryBarLook DetailsWidgetPrivate::barLook() const
{
    tul::SummaryBarLook look;
    look.size = q->contentsRect().size();
    look.ratio = q->devicePixelRatioF();
    look.topHeight = std::max(summaryLabel->height(), detailsButton->height());
    if (useCheckBox)
        look.topHeight = std::max(look.topHeight, summaryCheckBox->height());
    look.gradient = useGradient;
    look.translucent = translucent;
    look.background = q->palette().color(q->backgroundRole());
    return look;
}

DetailsWidget::DetailsWidget(QWidget *parent)
    : QWidget(parent)
    , d(std::make_unique<DetailsWidgetPrivate>(this))
{
    tul::installDetailsAccessibility();
    setLayout(d->grid);
    connect(d->detailsButton, &DetailsButton::toggled, this, &DetailsWidget::setExpanded);
    connect(d->detailsButton, &DetailsButton::clicked, this, &DetailsWidget::detailsClicked);
    connect(d->summaryCheckBox, &QCheckBox::toggled, this, &DetailsWidget::checked);
    connect(d->summaryCheckBox, &QCheckBox::toggled, this, &DetailsWidget::summaryCheckBoxToggled);
    connect(d->summaryLabel, &QLabel::linkActivated, this, &DetailsWidget::linkActivated);
    connect(d->summaryLabel, &DetailsWidgetLabel::labelBackgroundClicked, this,
            &DetailsWidget::on_labelBackgroundClicked);
    d->summaryLabel->installEventFilter(this);
    d->updateTabOrder();
    d->updateControls();
}

DetailsWidget::~DetailsWidget() = default;

QString DetailsWidget::summaryText() const
{
    return d->summaryLabel->text();
}

void DetailsWidget::setSummaryText(const QString &text)
{
    d->summaryLabel->setText(text);
    d->nameControls();
    d->updateControls();
}

QString DetailsWidget::additionalSummaryText() const
{
    return d->additionalSummaryLabel->text();
}

void DetailsWidget::setAdditionalSummaryText(const QString &text)
{
    d->additionalSummaryLabel->setText(text);
    d->additionalSummaryLabel->setVisible(!text.isEmpty());
}

void DetailsWidget::setSummaryToolTip(const QString &text)
{
    d->summaryLabel->setToolTip(text);
    d->additionalSummaryLabel->setToolTip(text);
    if (d->toolWidget)
        d->toolWidget->setToolTip(text);
}

void DetailsWidget::setSummaryFontBold(bool bold)
{
    QFont font;
    font.setWeight(bold ? QFont::Bold : QFont::Normal);
    d->summaryCheckBox->setFont(font);
    d->summaryLabel->setFont(font);
}

bool DetailsWidget::useCheckBox() const
{
    return d->useCheckBox;
}

void DetailsWidget::setUseCheckBox(bool use)
{
    if (d->useCheckBox == use)
        return;
    d->useCheckBox = use;
    if (use) {
        d->grid->addItem(d->summaryLeftMargin, 0, 0);
        d->grid->addWidget(d->summaryCheckBox, 0, 1);
    } else {
        d->grid->removeItem(d->summaryLeftMargin);
        d->grid->removeWidget(d->summaryCheckBox);
    }
    d->updateControls();
}

bool DetailsWidget::isChecked() const
{
    return d->summaryCheckBox->isChecked();
}

void DetailsWidget::setChecked(bool checked)
{
    d->summaryCheckBox->setChecked(checked);
}

bool DetailsWidget::checkBoxEnabled() const
{
    return d->summaryCheckBox->isEnabled();
}

void DetailsWidget::setCheckBoxEnabled(bool enabled)
{
    d->summaryCheckBox->setEnabled(enabled);
}

void DetailsWidget::setIcon(const QIcon &icon)
{
    d->summaryCheckBox->setIcon(icon);
}

DetailsWidget::State DetailsWidget::state() const
{
    return d->state;
}

void DetailsWidget::setState(State state)
{
    if (state != d->state)
        d->changeState(state);
}

bool DetailsWidget::detailButtonEnabled() const
{
    return d->detailsButton->isEnabled();
}

void DetailsWidget::setDetailButtonEnabled(bool enabled)
{
    d->detailButtonEnabled = enabled;
    d->changeState(!enabled && d->state == Expanded ? Collapsed : d->state);
}

bool DetailsWidget::detailButtonVisible() const
{
    return d->detailButtonVisible;
}

void DetailsWidget::setDetailButtonVisible(bool visible)
{
    // By design: the next update of the controls makes it visible; hosts set it among other things.
    d->detailButtonVisible = visible;
}

void DetailsWidget::setDetailButtonText(const QString &text)
{
    setDetailButtonText(text, text);
}

void DetailsWidget::setDetailButtonText(const QString &collapsedText, const QString &expandedText)
{
    d->detailsButton->setDetailButtonText(collapsedText, expandedText);
}

bool DetailsWidget::toggleDetailsOnSummaryBarClicks() const
{
    return d->toggleDetailsOnSummaryBarClicks;
}

void DetailsWidget::setToggleDetailsOnSummaryBarClicks(bool toggle)
{
    d->toggleDetailsOnSummaryBarClicks = toggle;
}

QWidget *DetailsWidget::toolWidget() const
{
    return d->toolWidget;
}

void DetailsWidget::setToolWidget(QWidget *widget)
{
    if (widget == d->toolWidget)
        return;
    if (widget && contains(widget, this)) {
        qWarning("DetailsWidget::setToolWidget: the widget contains the panel");
        return;
    }
    // By design: a former one stays in its cell, for hosts that keep it.
    d->toolWidget = widget;
    if (!widget)
        return;
    widget->adjustSize();
    d->grid->addWidget(widget, 0, toolColumn, Qt::AlignRight);
    d->updateTabOrder();
    d->updateToolWidgets();
}

QWidget *DetailsWidget::widget() const
{
    return d->widget;
}

void DetailsWidget::setWidget(QWidget *widget, int padding)
{
    if (widget && contains(widget, this)) {
        qWarning("DetailsWidget::setWidget: the widget contains the panel");
        return;
    }
    if (widget != d->widget) {
        const QPointer<DetailsWidget> self(this);
        const QPointer<QWidget> former = d->widget.data();
        if (former) {
            disconnect(former, &QObject::destroyed, this, nullptr);
            d->grid->removeWidget(former);
        }
        d->widget = widget;
        if (widget) {
            widget->setContentsMargins(allSides(padding < 0 ? barMargin : padding));
            d->grid->addWidget(widget, 2, 0, 1, columns);
            connect(widget, &QObject::destroyed, this, [this] { d->detailsWidgetGone(); });
        }
        // Last, in case that it held the new one, and on its own, in case that the panel goes now.
        if (former)
            former->setParent(nullptr);
        delete former;
        if (!self)
            return;
    }
    d->detailsButton->setCheckable(d->widget);
    d->updateControls();
}

bool DetailsWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != d->summaryLabel || event->type() != QEvent::MouseButtonRelease)
        return QWidget::eventFilter(watched, event);
    const auto *const mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton || mouse->modifiers() != Qt::NoModifier
        || !d->summaryCheckBox->isVisible() || !d->summaryCheckBox->isEnabled())
        return false;
    d->summaryCheckBox->toggle();
    return true;
}

void DetailsWidget::enterEvent(QEvent *event)
{
    QWidget::enterEvent(event);
    d->hovered = d->hovered || d->toolWidget;
}

void DetailsWidget::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    d->hovered = d->hovered && !d->toolWidget;
}

void DetailsWidget::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    CachedBar &bar = d->state == Expanded ? d->expandedBar : d->collapsedBar;
    const tul::SummaryBarLook look = d->barLook();
    if (bar.pixmap.isNull() || !(bar.look == look))
        bar = {QPixmap::fromImage(tul::renderSummaryBar(look)), look};
    QPainter painter(this);
    painter.drawPixmap(contentsRect(), bar.pixmap);
}

void DetailsWidget::setExpanded(bool expand)
{
    setState(expand ? Expanded : Collapsed);
}

void DetailsWidget::summaryCheckBoxToggled(bool on)
{
    if (d->detailButtonEnabled && d->detailsButton->isCheckable())
        d->changeState(on ? Expanded : Collapsed);
    else
        d->updateControls();
}

void DetailsWidget::on_labelBackgroundClicked()
{
    if (!d->detailsButton->isEnabled() || !d->toggleDetailsOnSummaryBarClicks)
        return;
    if (d->detailsButton->isCheckable())
        setExpanded(d->state == Collapsed);
    else
        Q_EMIT detailsClicked();
}
