#pragma once

#include <tul-util-gui/mdatable/mdatableitem.h>

#include <QPalette>
#include <QRect>
#include <QStringList>
#include <QVector>

#include <functional>

/// A table item that leaves traces: how many live, in which order they were deleted and how they
/// were asked to paint. The records belong to the class and last until they are taken.
class CountedItem : public MDATableItem
{
public:
    struct Painting {
        QString text;
        QRect rect;
        QPalette::ColorGroup group;
        bool selected;
    };

    explicit CountedItem(const QString &text = QString(), MDATable *table = nullptr);
    CountedItem(const CountedItem &other);
    ~CountedItem() override;

    /// Records the call and paints as the base class does.
    void paint(QPainter *painter, const QPalette &palette, const QRect &rect,
               bool selected) override;

    int rtti() const override { return 1; }

    static int live() { return s_live; }

    /// The texts of the items deleted and the paintings done since the last call.
    static QStringList takeDeleted();
    static QVector<Painting> takePaintings();

    std::function<void()> whenDeleted; ///< called by the destructor; empty by default

private:
    inline static int s_live = 0;
    inline static QStringList s_deleted;
    inline static QVector<Painting> s_paintings;
};
