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
