#include <workbench/dimensionlist.h>

#include <QDragEnterEvent>
#include <QPointer>

DimensionList::DimensionList(QWidget *parent)
    : MdaDimensionListWidget(parent)
{
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setContextMenuPolicy(Qt::ActionsContextMenu);

    // The list shows no highlight, so the text keeps the colour that it has without one; the
    // selected entry is the one with the focus frame.
    QPalette plain = palette();
    plain.setBrush(QPalette::HighlightedText, plain.brush(QPalette::Text));
    setPalette(plain);

    connect(model(), &QAbstractItemModel::rowsInserted, this, &DimensionList::edited);
    connect(model(), &QAbstractItemModel::rowsMoved, this, &DimensionList::edited);
    connect(model(), &QAbstractItemModel::rowsRemoved, this, &DimensionList::edited);
}

void DimensionList::addDimension(int dimension, const QString &text, const QString &toolTip)
{
    auto *const entry = new QListWidgetItem(text);
    entry->setData(Qt::UserRole, dimension);
    entry->setToolTip(toolTip);
    addItem(entry);
}

QVector<int> DimensionList::dimensions() const
{
    QVector<int> result;
    for (int row = 0; row < count(); ++row) {
        const QVariant dimension = item(row)->data(Qt::UserRole);
        result.append(dimension.isValid() ? dimension.toInt() : -1);
    }
    return result;
}

void DimensionList::startDrag(Qt::DropActions supportedActions)
{
    const QPointer<DimensionList> self(this);
    m_dragging = true;
    MdaDimensionListWidget::startDrag(supportedActions);
    if (!self)
        return;
    m_dragging = false;
    Q_EMIT edited();
}

void DimensionList::dragEnterEvent(QDragEnterEvent *event)
{
    const auto *const source = qobject_cast<DimensionList *>(event->source());
    if (source && source->parent() == parent())
        MdaDimensionListWidget::dragEnterEvent(event);
    else
        event->ignore();
}

Qt::DropActions DimensionList::supportedDropActions() const
{
    return Qt::MoveAction;
}
