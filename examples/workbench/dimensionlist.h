#pragma once

#include <tul-util-gui/mdatable/mdadimensionlistwidget.h>

#include <QVector>

/// One of several lists between which the dimensions of an array are dragged. The lists that share
/// a parent exchange their entries; nothing comes in from elsewhere, and nothing is ever copied.
class DimensionList : public MdaDimensionListWidget
{
    Q_OBJECT

public:
    explicit DimensionList(QWidget *parent = nullptr);

    /// Adds an entry for a dimension, at the end.
    void addDimension(int dimension, const QString &text, const QString &toolTip);

    /// The dimensions from top to bottom; -1 for an entry that is none.
    QVector<int> dimensions() const;

    /// Whether a drag that began here goes on. Until it ends, a dimension that was dropped is in
    /// two lists.
    bool isDragging() const { return m_dragging; }

Q_SIGNALS:
    /// Emitted when entries came, went or moved, and when a drag ended.
    void edited();

protected:
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    Qt::DropActions supportedDropActions() const override;

private:
    bool m_dragging = false;
};
