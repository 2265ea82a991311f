#pragma once

#include <tul-util-gui/mdatable/mdatableitem.h>

#include <QRect>
#include <QStringList>
#include <QVector>

#include <functional>
#include <utility>

/// A table item that leaves traces: how many live, in which order they were deleted and where they
/// were asked to paint. The records belong to the class and last until they are taken.
class CountedItem : public MDATableItem
{
public:
    explicit CountedItem(const QString &text = QString(), MDATable *table = nullptr);
    ~CountedItem() override;

    /// Records the call and paints as the base class does.
    void paint(QPainter *painter, const QPalette &palette, const QRect &rect,
               bool selected) override;

    int rtti() const override { return 1; }

    static int live() { return s_live; }

    /// The texts of the items deleted and the cells painted since the last call.
    static QStringList takeDeleted() { return std::exchange(s_deleted, {}); }
    static QVector<QRect> takePaintings() { return std::exchange(s_paintings, {}); }

    std::function<void()> whenDeleted; ///< called by the destructor; empty by default

private:
    Q_DISABLE_COPY(CountedItem)

    inline static int s_live = 0;
    inline static QStringList s_deleted;
    inline static QVector<QRect> s_paintings;
};
