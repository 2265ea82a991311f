#include <support/counteditem.h>
#include <support/recordingstyle.h>
#include <support/recordingtable.h>
#include <support/testcase.h>

#include <QApplication>
#include <QLineEdit>
#include <QPainter>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTest>

#include <functional>

using Change = std::function<void(MDATable *)>;
Q_DECLARE_METATYPE(Change)

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
    PaintingTable(long long numRows, long long numCols, bool sparse = false)
    {
        if (sparse)
            setSparse(true);
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
        if (!showSettled())
            return false;
        activateWindow();
        setFocus();
        const bool active = QTest::qWaitForWindowActive(this);
        settle();
        clearRecords();
        return active && hasFocus();
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

    QVector<QPoint> paintedIndices() const
    {
        QVector<QPoint> indices;
        for (const PaintedCell &cell : paintedCells)
            indices.append(QPoint(int(cell.col), int(cell.row)));
        return indices;
    }

    PaintedCell painted(long long row, long long col) const
    {
        for (const PaintedCell &cell : paintedCells) {
            if (cell.row == row && cell.col == col)
                return cell;
        }
        return {-1, -1, {}, false, QPalette::NColorGroups};
    }
};

// A host's cells, drawn without the items or the painting of the table.
class OwnTable : public PaintingTable
{
public:
    using PaintingTable::PaintingTable;

protected:
    using PaintingTable::paintCell;
    void paintCell(QPainter *painter, long long row, long long col, const QRect &cr,
                   bool selected) override
    {
        if (col != 1)
            return PaintingTable::paintCell(painter, row, col, cr, selected);
        painter->fillRect(QRect(QPoint(0, 0), cr.size()), Qt::magenta);
        painter->translate(11, 7); // is not put back
        painter->scale(3, 3);
    }

    void paintFocus(QPainter *painter, const QRect &cr) override
    {
        PaintingTable::paintFocus(painter, cr);
        painter->rotate(45);
    }
};

// Draws its text the plain way.
class PlainItem : public MDATableItem
{
public:
    using MDATableItem::MDATableItem;

    void paint(QPainter *painter, const QPalette &palette, const QRect &rect,
               bool selected) override
    {
        painter->fillRect(0, 0, rect.width(), rect.height(),
                          palette.brush(selected ? QPalette::Highlight : QPalette::Base));
        painter->setPen(palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
        painter->drawText(QRect(2, 0, rect.width() - 4, rect.height()), alignment(), text());
    }
};

QString randomText(QRandomGenerator *random)
{
    const double value = (random->generateDouble() - 0.5) * 2e6;
    switch (random->bounded(5)) {
    case 0:
        return QString::number(random->bounded(-100000, 100000));
    case 1:
        return QString::number(value, 'e', 3);
    case 2:
        return QStringLiteral("wide text %1").arg(value);
    case 3:
        return QStringLiteral("nan");
    default:
        return QString::number(value, 'f', 2);
    }
}

template<typename Item> QImage pictureOf(const Change &change, qreal ratio)
{
    QRandomGenerator random(5);
    MDATable table(12, 7);
    table.setColumnWidth(61);
    table.setRowHeight(19);
    for (long long row = 0; row < 12; ++row) {
        for (long long col = 0; col < 7; ++col)
            table.setItem(row, col, new Item(nullptr, randomText(&random)));
    }
    table.item(3, 2)->setEnabled(false);
    table.selectCells(2, 1, 6, 3);
    table.resize(350, 200);
    change(&table);
    table.show();
    RecordingTable::settle();
    table.verticalScrollBar()->setValue(7);
    table.horizontalScrollBar()->setValue(25);
    QImage image(table.viewport()->size() * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    table.viewport()->render(&image);
    return image;
}

} // namespace

class TestMDATablePainting : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        CountedItem::takeDeleted();
        CountedItem::takePaintings();
        TestCase::cleanup();
    }

    void onlyCellsThatAreSeenArePainted()
    {
        PaintingTable table(trillion, 1000, true);
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
        const QVector<RecordingTable::PaintedCell> painted = table.paintedCells;
        QStringList cells;
        for (const auto &cell : painted) {
            cells.append(QStringLiteral("%1,%2").arg(cell.row).arg(cell.col));
            QCOMPARE(cell.rect, table.cellGeometry(cell.row, cell.col));
        }
        QCOMPARE(cells.join(QLatin1Char(' ')),
                 QStringLiteral(
                     "0,0 0,901 0,902 1,0 1,901 1,902 1000000002,0 1000000002,901 1000000002,902"));
        table.setCurrentCell(trillion, 999);
        table.verticalScrollBar()->setValue(0);
        table.picture(); // a current cell far outside
        QCOMPARE(table.paintedFocus, QVector<QRect>{table.cellGeometry(trillion - 1, 999)});
        table.setRowHeight(0);
        table.picture();
        QVERIFY(table.paintedCells.isEmpty());
    }

    void scatteredRepaintsSkipTheCellsBetween()
    {
        PaintingTable table(5, 5);
        table.fill();
        QVERIFY(table.showSettled());
        table.viewport()->repaint(QRegion(65, 5, 4, 4) + QRect(95, 65, 4, 4));
        QCOMPARE(table.paintedIndices(), (QVector<QPoint>{{2, 0}, {3, 3}}));
        QImage image(200, 200, QImage::Format_RGB32);
        QPainter painter(&image);
        table.clearRecords();
        table.drawContents(&painter, image.rect()); // elsewhere than in the viewport
        QCOMPARE(table.paintedCells.size(), 25);
    }

    void tableWithoutCellsPaintsOnlyTheEmptyArea_data()
    {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("columns");
        QTest::newRow("no columns") << 5 << 0;
        QTest::newRow("no rows") << 0 << 5;
        QTest::newRow("neither") << 0 << 0;
    }

    void tableWithoutCellsPaintsOnlyTheEmptyArea()
    {
        QFETCH(int, rows);
        QFETCH(int, columns);
        PaintingTable table(rows, columns);
        QVERIFY(table.showFocused());
        const QImage picture = table.picture();
        QVERIFY(table.paintedCells.isEmpty() && table.paintedFocus.isEmpty());
        QCOMPARE(table.paintedEmptyAreas, QVector<QRect>{table.viewport()->rect()});
        QVERIFY(picture.pixelColor(3, 3) == base && picture.pixelColor(300, 200) == base);
    }

    void clipWhoseCornerIsOutsideGetsNoCells()
    {
        PaintingTable table(5, 5);
        QVERIFY(table.showFocused());
        QImage image(table.viewport()->size(), QImage::Format_RGB32);
        image.fill(Qt::cyan);
        QPainter painter(&image);
        for (const QPoint &corner :
             {QPoint(-3, 5), QPoint(5, -3), QPoint(5, 100), QPoint(150, 5)}) {
            table.clearRecords();
            table.drawContents(&painter, QRect(corner, QSize(90, 90)));
            QVERIFY(table.paintedCells.isEmpty() && table.paintedFocus.isEmpty());
            // By design: all of it is painted, not only what is in the clip.
            QCOMPARE(table.paintedEmptyAreas, QVector<QRect>{table.viewport()->rect()});
        }
        QVERIFY(image.pixelColor(149, 99) == Qt::cyan && image.pixelColor(150, 99) == base);
        table.clearRecords();
        table.drawContents(&painter, QRect(119, 79, 500, 500)); // ends outside
        QCOMPARE(table.paintedIndices(), (QVector<QPoint>{{3, 3}, {4, 3}, {3, 4}, {4, 4}}));
    }

    void emptyAreaCountsFromTheViewportsCornerAlsoWhenScrolled()
    {
        PaintingTable table(50, 3);
        QVERIFY(table.showSettled());
        table.verticalScrollBar()->setValue(600);
        QImage image(200, 1200, QImage::Format_RGB32);
        image.fill(Qt::cyan);
        QPainter painter(&image);
        table.paintEmptyArea(&painter, 10, 700, 150, 400);
        QVERIFY(image.pixelColor(50, 999) == Qt::cyan && image.pixelColor(50, 1000) == base);
        QVERIFY(image.pixelColor(89, 750) == Qt::cyan && image.pixelColor(90, 750) == base);
        QVERIFY(image.pixelColor(159, 1099) == base && image.pixelColor(160, 1099) == Qt::cyan);
        QVERIFY(image.pixelColor(9, 1050) == Qt::cyan && image.pixelColor(50, 1100) == Qt::cyan);
    }

    void hostsMayDrawCellsAndLeaveThePainterDirty()
    {
        OwnTable own(5, 5);
        PaintingTable plain(5, 5);
        for (PaintingTable *table : {static_cast<PaintingTable *>(&own), &plain}) {
            table->fill();
            table->setCurrentCell(2, 1);
            QVERIFY(table->showFocused());
        }
        plain.setFocusStyle(MDATable::SpreadSheet);
        own.setFocusStyle(MDATable::SpreadSheet);
        CountedItem::takePaintings();
        QImage expected = plain.picture();
        QCOMPARE(CountedItem::takePaintings().size(), 25);
        const QImage picture = own.picture();
        QCOMPARE(CountedItem::takePaintings().size(), 20);
        QCOMPARE(picture.pixelColor(45, 10), QColor(Qt::magenta));
        const QRect column(30, 0, 30, 100);
        QImage got = picture;
        for (QImage *image : {&expected, &got}) {
            QPainter painter(image);
            painter.fillRect(column.adjusted(-1, 0, 1, 0), Qt::black);
        }
        own.clearFocus();
        QCOMPARE(got, expected);
    }

    void contentsFollowThePaintersOrigin()
    {
        PaintingTable table(5, 5);
        table.fill();
        table.selectCells(1, 1, 2, 2);
        QVERIFY(table.showFocused());
        const QRect area(QPoint(0, 0), table.viewport()->size());
        QImage images[2]
            = {QImage(600, 400, QImage::Format_RGB32), QImage(600, 400, QImage::Format_RGB32)};
        for (const int shift : {0, 1}) {
            images[shift].fill(Qt::white);
            QPainter painter(&images[shift]);
            painter.translate(shift * 60, shift * 30);
            table.drawContents(&painter, area);
            QCOMPARE(painter.worldTransform(), QTransform::fromTranslate(shift * 60, shift * 30));
        }
        QCOMPARE(images[1].copy(area.translated(60, 30)), images[0].copy(area));
    }

    void colorGroupTellsWhatIsDisabled()
    {
        PaintingTable table(5, 5);
        table.addValidRegion(QRegion(1, 2, 2, 1)); // columns 1 and 2 of row 2
        table.setText(2, 2, QString());
        table.setText(4, 0, QString());
        table.item(4, 0)->setEnabled(false);
        QVERIFY(table.showSettled());
        QCOMPARE(table.colorAt(2, 1), disabledBase);
        QCOMPARE(table.colorAt(2, 2), base);
        QCOMPARE(table.colorAt(1, 2), base);
        QCOMPARE(table.colorAt(4, 0), disabledBase);
        QCOMPARE(table.painted(2, 1).group, QPalette::Disabled);
        QCOMPARE(table.painted(2, 2).group, QPalette::Active);
        table.addValidRegion(QRegion(4, 4, 1, 1)); // adds
        QVERIFY(table.colorAt(4, 4) == disabledBase && table.colorAt(2, 1) == disabledBase);
        table.selectCells(0, 0, 4, 4);
        QCOMPARE(table.colorAt(2, 1),
                 table.palette().color(QPalette::Disabled, QPalette::Highlight));
    }

    void validRegionWrapsRoundWith32Bits()
    {
        const long long wrapped = 1LL << 32;
        PaintingTable table(trillion, 5, true);
        table.addValidRegion(QRegion(1, 2, 1, 1));
        table.hideRows(4, wrapped);
        QVERIFY(table.showSettled());
        table.picture();
        QCOMPARE(table.painted(2, 1).group, QPalette::Disabled);
        QCOMPARE(table.painted(wrapped + 2, 1).group, QPalette::Disabled); // by design
        QCOMPARE(table.painted(wrapped + 2, 2).group, QPalette::Active);
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
        // Outside of a painting of the contents cells look active.
        QImage image(30, 20, QImage::Format_RGB32);
        QPainter painter(&image);
        table.clearRecords();
        table.paintCell(&painter, 0, 0, QRect(0, 0, 30, 20), true);
        QCOMPARE(table.painted(0, 0).group, QPalette::Active);
        table.paintCell(&painter, 1, 1, QRect(0, 0, 0, 20), true);
        QVERIFY(table.painted(1, 1).row == -1); // nothing to draw
        auto *editor = new QLineEdit(table.viewport());
        editor->show();
        editor->setFocus();
        QCOMPARE(table.colorAt(2, 2), highlight); // an editor on the cells counts
        QVERIFY(editor->hasFocus());
    }

    void emptyCellsAreFilledAndLined()
    {
        PaintingTable table(5, 5);
        table.recorder.hints[QStyle::SH_Table_GridLineColor] = int(0x80c01020);
        const QColor hinted(0xc0, 0x10, 0x20);
        table.addValidRegion(QRegion(1, 1, 1, 1));
        QVERIFY(table.showSettled());
        const QRect cell = table.cellGeometry(1, 1);
        const auto pixel = [&cell](const QImage &picture, int x, int y) {
            return picture.pixelColor(cell.topLeft() + QPoint(x, y));
        };
        const QImage lined = table.picture();
        QVERIFY(pixel(lined, 29, 0) == hinted && pixel(lined, 29, 19) == hinted);
        QVERIFY(pixel(lined, 0, 19) == hinted && pixel(lined, 28, 18) == disabledBase);
        QVERIFY(pixel(lined, 0, 0) == disabledBase);
        table.recorder.hints[QStyle::SH_Table_GridLineColor] = -1;
        const QImage plain = table.picture();
        QCOMPARE(pixel(plain, 10, 19), disabledMid);
        QCOMPARE(pixel(plain, 40, 19), mid);
        table.recorder.hints[QStyle::SH_Table_GridLineColor] = 0;
        QCOMPARE(pixel(table.picture(), 10, 19), QColor(Qt::black));
        table.setShowGrid(false);
        const QImage unlined = table.picture();
        QVERIFY(pixel(unlined, 29, 5) == disabledBase && pixel(unlined, 5, 19) == disabledBase);
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
        const auto inactive = drawn(); // the block of a new current cell
        QCOMPARE(inactive.size(), 1);
        QCOMPARE(inactive.first().rect, QRect(0, 0, 30, 20));
        QCOMPARE(inactive.first().widget, &table);
        QCOMPARE(inactive.first().focusBackground, base);
        QVERIFY(inactive.first().state & QStyle::State_KeyboardFocusChange);
        QVERIFY(!(inactive.first().state & QStyle::State_FocusAtBorder));
        QCOMPARE(table.paintedFocus, QVector<QRect>{table.cellGeometry(2, 1)});
        // The current cell looks selected as long as there are blocks.
        QCOMPARE(table.colorAt(2, 1), highlight);
        QVERIFY(table.painted(2, 1).selected);

        table.selectCells(2, 1, 2, 1);
        const auto active = drawn();
        QCOMPARE(active.first().focusBackground, highlight);
        QVERIFY(active.first().state & QStyle::State_FocusAtBorder);
        QVERIFY(!(active.first().state & QStyle::State_Selected)); // by design
        table.hideRows(0, 4);
        QVERIFY(drawn().isEmpty()); // a hidden cell has no frame
        table.showRows(0, 4);
        table.hideColumns(0, 4);
        QVERIFY(drawn().isEmpty());
        table.showColumns(0, 4);
        QCOMPARE(drawn().size(), 1);
        table.clearFocus();
        QVERIFY(drawn().isEmpty());
    }

    void spreadSheetMarksTheCurrentCellInBlack_data()
    {
        using Blocks = QVector<QVector<int>>;
        QTest::addColumn<Blocks>("blocks");
        QTest::addColumn<bool>("asked"); // whether the cell is asked for as selected
        QTest::newRow("no block") << Blocks{} << false;
        QTest::newRow("alone") << Blocks{{2, 2, 2, 2}} << false;
        QTest::newRow("among others") << Blocks{{1, 1, 3, 3}} << true;
        QTest::newRow("elsewhere") << Blocks{{0, 0, 1, 1}} << false;
        // The first block that holds it counts.
        QTest::newRow("alone, then among others")
            << Blocks{{0, 0, 1, 1}, {2, 2, 2, 2}, {1, 1, 3, 3}} << false;
        QTest::newRow("among others, then alone") << Blocks{{1, 1, 3, 3}, {2, 2, 2, 2}} << true;
    }

    void spreadSheetMarksTheCurrentCellInBlack()
    {
        QFETCH(QVector<QVector<int>>, blocks);
        QFETCH(bool, asked);
        PaintingTable table(5, 5);
        table.setShowGrid(false);
        table.setFocusStyle(MDATable::SpreadSheet);
        table.setCurrentCell(2, 2);
        table.clearSelection();
        for (const QVector<int> &block : blocks)
            table.selectCells(block[0], block[1], block[2], block[3]);
        QVERIFY(table.showFocused());
        const QImage picture = table.picture();
        const QRect cell = table.cellGeometry(2, 2);
        QCOMPARE(table.painted(2, 2).selected, asked);
        // By design: with the focus it is drawn unselected in any case.
        QCOMPARE(picture.pixelColor(cell.center()), base);
        const QColor black(Qt::black);
        for (const QRect &frame : {cell, cell.adjusted(-1, -1, 1, 1)}) {
            for (const QPoint &corner :
                 {frame.topLeft(), frame.topRight(), frame.bottomLeft(), frame.bottomRight()})
                QCOMPARE(picture.pixelColor(corner), black);
        }
        QVERIFY(picture.pixelColor(cell.topLeft() + QPoint(1, 1)) == base);
        QVERIFY(picture.pixelColor(cell.topLeft() - QPoint(2, 2)) != black);
        QVERIFY(table.recorder.takePrimitives(QStyle::PE_FrameFocusRect).isEmpty());
        table.clearFocus();
        const QImage unfocused = table.picture();
        QCOMPARE(unfocused.pixelColor(cell.center()), asked ? inactiveHighlight : base);
        QVERIFY(unfocused.pixelColor(cell.topLeft()) != black);
    }

    void itemsMayLeaveThePainterDirty()
    {
        class DirtyItem : public MDATableItem
        {
        public:
            using MDATableItem::MDATableItem;
            void paint(QPainter *painter, const QPalette &, const QRect &, bool) override
            {
                painter->setClipRect(QRect(0, 0, 5, 5));
                painter->setOpacity(0.1);
                painter->scale(4, 4);
            }
        };
        PaintingTable table(5, 5);
        QVERIFY(table.showSettled());
        table.recorder.hints[QStyle::SH_Table_GridLineColor] = int(0x102030);
        const QImage expected = table.picture();
        table.setItem(1, 1, new DirtyItem(nullptr));
        const QImage picture = table.picture();
        QCOMPARE(picture.pixelColor(59, 30), QColor(0x10, 0x20, 0x30)); // its own line
        QCOMPARE(picture.copy(60, 0, 300, 200), expected.copy(60, 0, 300, 200));
    }

    void numbersLookAsIfDrawnByTheToolkit_data()
    {
        QTest::addColumn<Change>("change");
        QTest::newRow("default") << Change([](MDATable *) {});
        QTest::newRow("dark") << Change([](MDATable *table) {
            QPalette dark(QColor(50, 50, 54));
            dark.setColor(QPalette::Base, QColor(30, 30, 33));
            dark.setColor(QPalette::Text, QColor(230, 230, 220));
            table->setPalette(dark);
        });
        QTest::newRow("textured") << Change([](MDATable *table) {
            QPalette palette = table->palette();
            palette.setBrush(QPalette::Base, QBrush(Qt::lightGray, Qt::DiagCrossPattern));
            palette.setColor(QPalette::Highlight, QColor(0, 0, 200, 90));
            table->setPalette(palette);
        });
        QTest::newRow("right to left")
            << Change([](MDATable *table) { table->setLayoutDirection(Qt::RightToLeft); });
        QTest::newRow("bold") << Change([](MDATable *table) {
            QFont font(QStringLiteral("DejaVu Serif"), 11);
            font.setBold(true);
            table->setFont(font);
        });
        QTest::newRow("low") << Change([](MDATable *table) { table->setRowHeight(10); });
        QTest::newRow("italics larger than the margin") << Change([](MDATable *table) {
            table->setFont(QFont(QStringLiteral("DejaVu Serif"), 48, QFont::Normal, true));
            table->setRowHeight(90);
            table->setColumnWidth(320);
        });
    }

    void numbersLookAsIfDrawnByTheToolkit()
    {
        QFETCH(Change, change);
        for (const qreal ratio : {1.0, 1.25, 1.5, 2.0})
            QCOMPARE(pictureOf<MDATableItem>(change, ratio), pictureOf<PlainItem>(change, ratio));
    }
};

QTEST_MAIN(TestMDATablePainting)
#include "tst_mdatablepainting.moc"
