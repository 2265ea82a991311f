#include <support/counteditem.h>

#include <utility>

CountedItem::CountedItem(const QString &text, MDATable *table)
    : MDATableItem(table, text)
{
    ++s_live;
}

CountedItem::CountedItem(const CountedItem &other)
    : MDATableItem(other)
{
    ++s_live;
}

CountedItem::~CountedItem()
{
    --s_live;
    s_deleted.append(MDATableItem::text());
    if (whenDeleted)
        whenDeleted();
}

void CountedItem::paint(QPainter *painter, const QPalette &palette, const QRect &rect,
                        bool selected)
{
    s_paintings.append({text(), rect, palette.currentColorGroup(), selected});
    MDATableItem::paint(painter, palette, rect, selected);
}

QStringList CountedItem::takeDeleted()
{
    return std::exchange(s_deleted, {});
}

QVector<CountedItem::Painting> CountedItem::takePaintings()
{
    return std::exchange(s_paintings, {});
}
