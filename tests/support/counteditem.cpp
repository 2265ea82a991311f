#include <support/counteditem.h>

CountedItem::CountedItem(const QString &text, MDATable *table)
    : MDATableItem(table, text)
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
    s_paintings.append(rect);
    MDATableItem::paint(painter, palette, rect, selected);
}
