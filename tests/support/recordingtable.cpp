#include <support/recordingtable.h>

#include <support/counteditem.h>

#include <QCoreApplication>
#include <QPaintEvent>
#include <QTest>

bool RecordingTable::showSettled(const QSize &size)
{
    resize(size);
    show();
    const bool shown = QTest::qWaitForWindowExposed(this);
    settle();
    clearRecords();
    return shown;
}

void RecordingTable::settle()
{
    // A layout may move scroll bars, which queue a repaint.
    for (int pass = 0; pass < 3; ++pass)
        QCoreApplication::processEvents();
}

void RecordingTable::clearRecords()
{
    calls.clear();
    paintEvents.clear();
    paintedCells.clear();
    paintedFocus.clear();
    paintedEmptyAreas.clear();
}

void RecordingTable::fill()
{
    for (long long row = 0; row < numRows(); ++row) {
        for (long long col = 0; col < numCols(); ++col)
            setItem(row, col, new CountedItem(QStringLiteral("%1%2").arg(row).arg(col)));
    }
}

QString RecordingTable::contents() const
{
    QStringList rows;
    for (long long row = 0; row < numRows(); ++row) {
        QStringList cells;
        for (long long col = 0; col < numCols(); ++col)
            cells.append(item(row, col) ? text(row, col) : QStringLiteral("-"));
        rows.append(cells.join(QLatin1Char(' ')));
    }
    return rows.join(QLatin1Char('/'));
}

void RecordingTable::rowHeightChanged()
{
    calls.append(QStringLiteral("rowHeightChanged"));
    MDATable::rowHeightChanged();
}

void RecordingTable::columnWidthChanged()
{
    calls.append(QStringLiteral("columnWidthChanged"));
    MDATable::columnWidthChanged();
}

void RecordingTable::updateGeometries()
{
    calls.append(QStringLiteral("updateGeometries"));
    MDATable::updateGeometries();
}

void RecordingTable::paintEvent(QPaintEvent *event)
{
    paintEvents.append(event->rect());
    MDATable::paintEvent(event);
}

void RecordingTable::paintCell(QPainter *painter, long long row, long long col, const QRect &cr,
                               bool selected, QPalette::ColorGroup group)
{
    paintedCells.append({row, col, cr, selected, group});
    MDATable::paintCell(painter, row, col, cr, selected, group);
}

void RecordingTable::paintFocus(QPainter *painter, const QRect &cr)
{
    paintedFocus.append(cr);
    MDATable::paintFocus(painter, cr);
}

void RecordingTable::paintEmptyArea(QPainter *painter, int x, int y, int w, int h)
{
    paintedEmptyAreas.append(QRect(x, y, w, h));
    MDATable::paintEmptyArea(painter, x, y, w, h);
}
