#include <tul-util-gui/widgets/fixedheightlistwidget.h>

#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>

#include <algorithm>

namespace
{

// The largest hint of the items, at least 1 each way, also without items, and no larger than a
// widget can be. By design: hidden items count, so that the size stays while items come and go.
QSize largestItemHint(const QListWidget &list)
{
    QSize largest(1, 1);
    const QAbstractItemModel *const model = list.model();
    for (int row = 0; row < list.count(); ++row)
        largest = largest.expandedTo(list.sizeHintForIndex(model->index(row, 0)));
    return largest.boundedTo(QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

// The toolkit's holder of a scroll bar and of the widgets that a host put beside it.
QSize containerHint(const QListWidget &list, const QString &name)
{
    const auto *const container = list.findChild<QWidget *>(name, Qt::FindDirectChildrenOnly);
    return container ? container->sizeHint() : QSize(0, 0);
}

int frameSpacing(const QListWidget &list)
{
    QStyleOption option;
    option.initFrom(&list);
    const QStyle *const style = list.style();
    if (list.frameStyle() == 0
        || !style->styleHint(QStyle::SH_ScrollView_FrameOnlyAroundContents, &option, &list))
        return 0;
    return style->pixelMetric(QStyle::PM_ScrollView_ScrollBarSpacing, &option, &list);
}

} // namespace

FixedHeightListWidget::FixedHeightListWidget(QWidget *parent)
    : QListWidget(parent)
{
}

QSize FixedHeightListWidget::minimumSizeHint() const
{
    QSize hint = QAbstractScrollArea::minimumSizeHint();
    const QSize items = largestItemHint(*this);
    const QSize scrollBar = horizontalScrollBar()->sizeHint();
    const int frame = 2 * frameWidth() + 1 + frameSpacing(*this);
    if (flow() == QListView::TopToBottom) {
        const QSize container = containerHint(*this, QStringLiteral("qt_scrollarea_vcontainer"));
        // By design: the width of the horizontal bar here too; hosts lay their forms out around the
        // room that it leaves.
        hint.setWidth(frame + items.width() + container.width() + scrollBar.width());
    } else {
        const QSize container = containerHint(*this, QStringLiteral("qt_scrollarea_hcontainer"));
        hint.setHeight(frame + items.height() + container.height() + scrollBar.height());
    }
    return hint;
}

QSize FixedHeightListWidget::sizeHint() const
{
    return minimumSizeHint();
}
