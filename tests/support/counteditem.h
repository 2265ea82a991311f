#pragma once

#include <tul-util-gui/mdatable/mdatableitem.h>

#include <QStringList>

#include <functional>
#include <utility>

/// A table item that leaves traces: how many live, and in which order they were deleted. The
/// records belong to the class and last until they are taken.
class CountedItem : public MDATableItem
{
public:
    explicit CountedItem(const QString &text = QString(), MDATable *table = nullptr);
    ~CountedItem() override;

    int rtti() const override { return 1; }

    static int live() { return s_live; }

    /// The texts of the items deleted since the last call.
    static QStringList takeDeleted() { return std::exchange(s_deleted, {}); }

    std::function<void()> whenDeleted; ///< called by the destructor; empty by default

private:
    Q_DISABLE_COPY(CountedItem)

    inline static int s_live = 0;
    inline static QStringList s_deleted;
};
