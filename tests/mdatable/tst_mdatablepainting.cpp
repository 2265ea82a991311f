#include <support/counteditem.h>
#include <support/literal.h>
#include <support/recordingstyle.h>
#include <support/recordingtable.h>
#include <support/testcase.h>

#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QTest>

#include <algorithm>

namespace
{

const long long billion = 1000000000LL;
const long long trillion = 1000 * billion;

const QColor base(250, 250, 240);
const QColor highlight(20, 90, 200);
const QColor mid(90, 160, 90);
const QColor disabledBase(200, 200, 180);
const QColor disabledMid(160, 90, 90);
const QColor inactiveHighlight(130, 130, 170);

// Every colour that is looked for is another one.
QPalette testPalette()
{
    QPalette palette;
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::Mid, mid);
    palette.setColor(QPalette::Disabled, QPalette::Base, disabledBase);
    palette.setColor(QPalette::Disabled, QPalette::Mid, disabledMid);
    palette.setColor(QPalette::Inactive, QPalette::Highlight, inactiveHighlight);
    return palette;
}

// A base, because the style must outlive the widgets of the table.
struct StyleHolder {
    RecordingStyle recorder;
};

class PaintingTable : public StyleHolder, public RecordingTable
{
public:
    PaintingTable(long long numRows, long long numCols)
    {
        setSparse(numRows > billion);
        setNumRows(numRows);
        setNumCols(numCols);
        setRowHeight(20);
        setColumnWidth(30);
        setPalette(testPalette());
        setStyle(&recorder);
        clearSelection();
    }

    using RecordingTable::paintCell;
    using RecordingTable::paintEmptyArea;

    bool showFocused()
    {
        const bool shown = showSettled();
        activateWindow();
        setFocus();
        return shown && QTest::qWaitForWindowActive(this);
    }

    QImage picture()
    {
        clearRecords();
        return viewport()->grab().toImage();
    }

    QColor colorAt(long long row, long long col)
    {
        return picture().pixelColor(cellGeometry(row, col).center());
    }

    QString paintedIndices() const
    {
        QStringList indices;
        for (const PaintedCell &cell : paintedCells)
            indices.append("%1,%2"_s.arg(cell.row).arg(cell.col));
        return indices.join(QLatin1Char(' '));
    }

    PaintedCell painted(long long row, long long col) const
    {
        return *std::find_if(paintedCells.begin(), paintedCells.end(),
                             [=](const auto &cell) { return cell.row == row && cell.col == col; });
    }
};

// Draws a column of its own and leaves the painter dirty.
class OwnTable : public PaintingTable
{
public:
    using PaintingTable::paintCell;
    using PaintingTable::PaintingTable;
    void paintCell(QPainter *painter, long long row, long long col, const QRect &cr,
                   bool selected) override
    {
        if (col != 1)
            return PaintingTable::paintCell(painter, row, col, cr, selected);
        painter->fillRect(QRect(QPoint(0, 0), cr.size()), Qt::magenta);
        painter->scale(3, 3);
    }
};

class DirtyItem : public MDATableItem
{
public:
    using MDATableItem::MDATableItem;
    void paint(QPainter *painter, const QPalette &palette, const QRect &rect,
               bool selected) override
    {
        MDATableItem::paint(painter, palette, rect, selected);
        painter->setClipRect(QRect(0, 0, 5, 5));
        painter->setOpacity(0.1);
        painter->scale(4, 4);
    }
};

bool hasPixels(const QImage &image, const QColor &color, const QVector<QPoint> &points)
{
    return std::all_of(points.begin(), points.end(),
                       [&](const QPoint &point) { return image.pixelColor(point) == color; });
}

} // namespace

class TestMDATablePainting : public TestCase
{
    Q_OBJECT

    // `asked`: whether the cell is asked for as selected.
    static void checkSpreadSheet(const QVector<QRect> &blocks, bool asked)
    {
        PaintingTable table(5, 5);
        table.setShowGrid(false);
        table.setFocusStyle(MDATable::SpreadSheet);
        table.setCurrentCell(2, 2);
        table.clearSelection();
        for (const QRect &block : blocks)
            table.selectCells(block.top(), block.left(), block.bottom(), block.right());
        QVERIFY(table.showFocused());
        const QImage picture = table.picture();
        QCOMPARE(table.painted(2, 2).selected, asked);
        // By design: with the focus it is drawn unselected in any case.
        QVERIFY(hasPixels(picture, base, {{75, 50}, {61, 41}, {88, 58}}));
        QVERIFY(hasPixels(picture, Qt::black, {{59, 39}, {60, 40}, {90, 60}, {89, 59}, {59, 60}}));
        QVERIFY(hasPixels(picture, Qt::black, {{90, 39}, {60, 59}, {89, 40}}));
        QVERIFY(picture.pixelColor(58, 38) != Qt::black && picture.pixelColor(91, 61) != Qt::black);
        QVERIFY(table.recorder.takePrimitives(QStyle::PE_FrameFocusRect).isEmpty());
        table.clearFocus();
        const QColor unmarked = asked ? inactiveHighlight : base;
        QVERIFY(hasPixels(table.picture(), unmarked, {{75, 50}, {60, 40}}));
    }

private Q_SLOTS:
    void onlyCellsThatAreSeenArePainted()
    {
        PaintingTable table(trillion, 1000);
        QVERIFY(table.showSettled());
        table.hideRows(2, 1 + billion);
        table.hideColumns(1, 900);
        table.hideRows(trillion - 5 * billion, trillion);
        table.verticalScrollBar()->setValue(10);
        RecordingTable::settle();
        table.clearRecords();
        QImage image(1, 1, QImage::Format_RGB32);
        QPainter painter(&image);
        table.drawContents(&painter, QRect(0, 0, 61, 31));
        QCOMPARE(table.paintedIndices(),
                 "0,0 0,901 0,902 1,0 1,901 1,902 1000000002,0 1000000002,901 1000000002,902"_s);
        const auto painted = table.paintedCells;
        for (const auto &cell : painted)
            QCOMPARE(cell.rect, table.cellGeometry(cell.row, cell.col));
        table.setCurrentCell(trillion, 999);
        table.verticalScrollBar()->setValue(0);
        table.picture(); // a current cell far outside
        QCOMPARE(table.paintedFocus, QVector<QRect>{table.cellGeometry(trillion - 1, 999)});
        table.setRowHeight(0);
        table.picture();
        QVERIFY(table.paintedCells.isEmpty());
    }

    void clipsSelectTheCells()
    {
        PaintingTable table(5, 5);
        QVERIFY(table.showFocused());
        table.clearRecords();
        table.viewport()->repaint(QRegion(65, 5, 4, 4) + QRect(95, 65, 4, 4));
        QCOMPARE(table.paintedIndices(), "0,2 3,3"_s);
        QImage image(600, 400, QImage::Format_RGB32);
        image.fill(Qt::cyan);
        QPainter painter(&image);
        painter.translate(60, 30);
        for (const QPoint &corner :
             {QPoint(-3, 5), QPoint(5, -3), QPoint(5, 100), QPoint(150, 5)}) {
            table.clearRecords();
            table.drawContents(&painter, QRect(corner, QSize(90, 90)));
            QVERIFY(table.paintedCells.isEmpty() && table.paintedFocus.isEmpty());
            // By design: all of it is painted, not only what is in the clip.
            QCOMPARE(table.paintedEmptyAreas, QVector<QRect>{table.viewport()->rect()});
        }
        QVERIFY(hasPixels(image, Qt::cyan, {{209, 129}}) && hasPixels(image, base, {{210, 129}}));
        table.drawContents(&painter, QRect(119, 79, 500, 500)); // ends outside
        QCOMPARE(table.paintedIndices(), "3,3 3,4 4,3 4,4"_s);
        QVERIFY(hasPixels(image, base, {{152, 92}}) && hasPixels(image, Qt::cyan, {{149, 89}}));
        QCOMPARE(painter.worldTransform(), QTransform::fromTranslate(60, 30));
        table.setNumRows(0);
        QVERIFY(hasPixels(table.picture(), base, {{3, 3}, {300, 200}}));
        QVERIFY(table.paintedCells.isEmpty() && table.paintedFocus.isEmpty());
    }

    void emptyAreaCountsFromTheViewportsCornerAlsoWhenScrolled()
    {
        PaintingTable table(50, 3); // 90 x 1000 pixels
        QVERIFY(table.showSettled());
        table.verticalScrollBar()->setValue(600);
        QImage image(200, 1200, QImage::Format_RGB32);
        image.fill(Qt::cyan);
        QPainter painter(&image);
        table.paintEmptyArea(&painter, 10, 700, 150, 400);
        QVERIFY(hasPixels(image, base, {{50, 1000}, {90, 750}, {159, 1099}}));
        QVERIFY(hasPixels(image, Qt::cyan, {{50, 999}, {89, 750}, {160, 1099}, {9, 1050}}));
    }

    void hostsMayDrawCellsAndLeaveThePainterDirty()
    {
        OwnTable own(5, 5);
        PaintingTable plain(5, 5);
        QVector<QImage> pictures;
        for (PaintingTable *table : {static_cast<PaintingTable *>(&own), &plain}) {
            table->fill();
            table->setItem(2, 0,
                           pictures.isEmpty() ? new DirtyItem(table) : new MDATableItem(table));
            QVERIFY(table->showFocused());
            pictures.append(table->picture());
            QCOMPARE(pictures.last().pixelColor(58, 3), table == &own ? QColor(Qt::magenta) : base);
            QPainter(&pictures.last()).fillRect(29, 0, 32, 100, Qt::black); // the host's column
        }
        QCOMPARE(pictures[0], pictures[1]);
    }

    void colorGroupTellsWhatIsDisabled()
    {
        const long long wrapped = 1LL << 32;
        PaintingTable table(trillion, 5);
        table.addValidRegion(QRegion(1, 2, 2, 1)); // columns 1 and 2 of row 2
        table.setText(2, 2, QString()); // an enabled item there
        table.setText(3, 0, QString());
        table.item(3, 0)->setEnabled(false);
        table.addValidRegion(QRegion(4, 3, 1, 1)); // adds
        table.hideRows(4, wrapped);
        QVERIFY(table.showSettled());
        const QImage picture = table.picture();
        QVERIFY(hasPixels(picture, disabledBase, {{45, 50}, {15, 70}, {135, 70}}));
        QVERIFY(hasPixels(picture, base, {{75, 50}, {75, 30}}));
        QCOMPARE(table.painted(2, 1).group, QPalette::Disabled);
        QCOMPARE(table.painted(2, 2).group, QPalette::Active);
        QCOMPARE(table.painted(wrapped + 2, 1).group, QPalette::Disabled); // by design
        QCOMPARE(table.painted(wrapped + 2, 3).group, QPalette::Active);
    }

    void looksInactiveWithoutFocusWhereTheStyleWantsIt()
    {
        PaintingTable table(5, 5);
        table.selectCells(1, 1, 3, 3);
        QVERIFY(table.showFocused());
        for (const int wanted : {0, 1}) {
            table.recorder.hints[QStyle::SH_ItemView_ChangeHighlightOnFocus] = wanted;
            table.setFocus();
            QCOMPARE(table.colorAt(2, 2), highlight);
            table.clearFocus();
            QCOMPARE(table.colorAt(2, 2), wanted ? inactiveHighlight : highlight);
        }
        QImage image(30, 20, QImage::Format_RGB32);
        QPainter painter(&image);
        table.clearRecords();
        table.paintCell(&painter, 0, 0, QRect(0, 0, 30, 20), true); // outside of a painting
        QCOMPARE(table.painted(0, 0).group, QPalette::Active);
        // An editor on the cells counts, and what it changes is painted when it comes and goes.
        auto *editor = new QLineEdit(table.viewport());
        editor->setGeometry(200, 200, 50, 20);
        editor->show();
        for (const bool edits : {true, false}) {
            RecordingTable::settle();
            table.clearRecords();
            edits ? editor->setFocus() : editor->clearFocus();
            RecordingTable::settle();
            const auto &cells = table.paintedCells;
            QVERIFY(std::any_of(cells.begin(), cells.end(), [edits](const auto &cell) {
                return cell.selected && cell.row == 2 && cell.col == 2
                    && (cell.group == QPalette::Active) == edits;
            }));
        }
    }

    void emptyCellsAreFilledAndLined()
    {
        PaintingTable table(5, 5);
        table.addValidRegion(QRegion(1, 1, 1, 1));
        QVERIFY(table.showSettled());
        const QVector<QPoint> line{{59, 20}, {59, 39}, {30, 39}};
        const QVector<QPoint> inside{{30, 20}, {58, 38}};
        int &hint = table.recorder.hints[QStyle::SH_Table_GridLineColor];
        for (const int hinted : {int(0x80c01020), 0, -1}) {
            hint = hinted;
            const QImage picture = table.picture();
            const QColor color = hinted == -1 ? disabledMid : QColor(QRgb(hinted));
            QVERIFY(hasPixels(picture, color, line) && hasPixels(picture, disabledBase, inside));
        }
        QCOMPARE(table.picture().pixelColor(70, 39), mid);
        table.setShowGrid(false);
        QVERIFY(hasPixels(table.picture(), disabledBase, line));
    }

    void styleDrawsTheFocusFrame()
    {
        PaintingTable table(5, 5);
        table.recorder.onlyRecords = true;
        table.setCurrentCell(2, 1);
        QVERIFY(table.showFocused());
        const auto drawn = [&table] {
            table.recorder.takePrimitives(QStyle::PE_FrameFocusRect);
            table.picture();
            return table.recorder.takePrimitives(QStyle::PE_FrameFocusRect);
        };
        const RecordingStyle::Drawn frame = drawn().value(0); // of a new current cell's block
        QCOMPARE(frame.rect, QRect(0, 0, 30, 20));
        QVERIFY(frame.widget == &table && frame.focusBackground == base);
        QVERIFY(frame.state & QStyle::State_KeyboardFocusChange);
        QVERIFY(!(frame.state & QStyle::State_FocusAtBorder));
        QCOMPARE(table.paintedFocus, QVector<QRect>{table.cellGeometry(2, 1)});
        // The current cell looks selected as long as there are blocks.
        QCOMPARE(table.colorAt(2, 1), highlight);
        table.selectCells(2, 1, 2, 1);
        const auto active = drawn().value(0);
        QVERIFY(active.focusBackground == highlight && active.state & QStyle::State_FocusAtBorder);
        QVERIFY(!(active.state & QStyle::State_Selected)); // by design
        table.hideRows(0, 4);
        QVERIFY(drawn().isEmpty()); // a hidden cell has no frame
        table.showRows(0, 4);
        table.clearFocus();
        QVERIFY(drawn().isEmpty());
    }

    void spreadSheetMarksTheCurrentCellInBlack()
    {
        const QRect alone(2, 2, 1, 1);
        const QRect others(1, 1, 3, 3);
        checkSpreadSheet({}, false);
        // The first block that holds it counts.
        checkSpreadSheet({{0, 0, 2, 2}, alone, others}, false);
        checkSpreadSheet({others, alone}, true);
    }
};

QTEST_MAIN(TestMDATablePainting)
#include "tst_mdatablepainting.moc"
