#include <support/literal.h>
#include <support/recordingstyle.h>
#include <support/recordingtable.h>
#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>

#include <QApplication>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <algorithm>
#include <limits>
#include <tuple>

const long long lowest = std::numeric_limits<long long>::min();
const long long highest = std::numeric_limits<long long>::max();
const int pixelLimit = 2147450879;

using Drawn = QVector<RecordingStyle::Drawn>;
using Bounds = QVector<QPair<long long, long long>>;

// A table with a recorder on one of its headers, whose sections are 20 pixels and whose lines are
// all named "i".
class Fixture
{
public:
    RecordingStyle style;
    RecordingTable table;
    const bool horizontal;
    MDATableHeader *const header;
    int band = 0;

    Fixture(bool isHorizontal, long long count, const Bounds &bounds)
        : table(isHorizontal ? 1 : count, isHorizontal ? count : 1)
        , horizontal(isHorizontal)
        , header(horizontal ? table.topHeader() : table.leftHeader())
    {
        header->setStyle(&style);
        header->setLines(bounds.size());
        for (int i = 0; i < bounds.size(); ++i)
            header->setLineNameAndBounds(i, "i"_s, bounds[i].first, bounds[i].second);
        header->setSectionSize(20);
        band = header->fixedExtent() / bounds.size();
        table.showSettled();
    }

    int nameExtent() const // across the header
    {
        return horizontal ? header->fontMetrics().height() + 4
                          : header->fontMetrics().horizontalAdvance(QLatin1Char('i')) + 6;
    }
    QRect turned(const QRect &rect) const
    {
        return horizontal ? rect : QRect(rect.y(), rect.x(), rect.height(), rect.width());
    }
    QImage image(const QRect &part) const
    {
        QImage image(part.size(), QImage::Format_RGB32);
        image.setDotsPerMeterX(qRound(header->logicalDpiX() / 0.0254));
        image.setDotsPerMeterY(qRound(header->logicalDpiY() / 0.0254));
        image.fill(header->palette().color(QPalette::Button));
        header->render(&image, QPoint(), part);
        return image;
    }

    /// What painting a part of the header makes the style draw: the blocks, or the names.
    Drawn drawn(const QRect &part, bool names = false)
    {
        style.takeControls(QStyle::CE_HeaderSection);
        image(part);
        Drawn result = style.takeControls(QStyle::CE_HeaderSection);
        const auto isOther
            = [&](const auto &each) { return (turned(each.rect).y() % band == 0) != names; };
        result.erase(std::remove_if(result.begin(), result.end(), isOther), result.end());
        return result;
    }
    Drawn drawn() { return drawn(header->rect()); }

    QVector<int> sections(const QRect &part)
    {
        QVector<int> result;
        for (const auto &block : drawn(part))
            result.append(block.section);
        return result;
    }

    /// Whether a block shows a text that begins at `start`, a position along the header.
    bool showsLabel(const RecordingStyle::Drawn &block, const QString &text, int start)
    {
        const QRect visible = block.rect & header->rect();
        style.onlyRecords = true;
        const QImage shown = image(visible);
        style.onlyRecords = false;
        QImage expected = shown;
        expected.fill(header->palette().color(QPalette::Button));
        QPainter painter(&expected);
        painter.setFont(header->font());
        painter.setPen(header->palette().color(QPalette::Text));
        painter.translate(-visible.topLeft());
        QRect room = block.rect;
        horizontal ? room.setLeft(start) : room.setTop(start);
        const int margin = style.pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
        room.setRect(room.x() + margin, room.y() + 2, room.width() - 6, room.height() - 4);
        painter.drawText(room, Qt::AlignLeft | Qt::TextSingleLine, text);
        return shown == expected;
    }
};

struct WheelPlaces : QObject {
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Wheel)
            log += static_cast<QWheelEvent *>(event)->position();
        return false;
    }

    QVector<QPointF> log;
};

class TestMDATableHeader : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void headersAreAsThickAsTheirLinesNeed()
    {
        const RecordingTable table(10, 10);
        MDATableHeader *rows = table.leftHeader();
        const auto width = [rows](const QString &text) {
            return rows->fontMetrics().horizontalAdvance(text) + 6;
        };
        rows->setLines(3);
        QCOMPARE(rows->fixedExtent(), 3 * 40);
        rows->setLineNameAndBounds(2, "a rather long name"_s, 0, 12);
        rows->setLineNameAndBounds(1, "j"_s, -1234567890, 1234567); // the last index counts
        rows->setLineNameAndBounds(2, QString(), 0, 12); // makes it thinner again
        for (const int none : {3, -1})
            rows->setLineNameAndBounds(none, "no such line"_s, 0, 1);
        QCOMPARE(rows->fixedExtent(), 3 * (width("j"_s) + width("1234567W"_s)));
        MDATableHeader *columns = table.topHeader();
        columns->setLines(2);
        columns->setLineNameAndBounds(0, QString(), 0, 1000000);
        columns->setLineNameAndBounds(1, QString(), 0, highest); // has wider blocks
        QCOMPARE(columns->sectionSize(), width("1000000W"_s));
    }

    void eachLineLabelsBlocksOfItsDimensionBesideItsName()
    {
        for (const bool horizontal : {false, true}) {
            Fixture fixture(horizontal, 12, {{5, 7}, {-1, 2}});
            const Drawn blocks = fixture.drawn();
            QCOMPARE(blocks.size(), 12 + 4);
            const int before = fixture.nameExtent();
            for (int i = 0; i < blocks.size(); ++i) {
                const bool inner = i < 12;
                const int stride = inner ? 1 : 3;
                const int first = inner ? i : 3 * (i - 12);
                const QRect rect(20 * first, before + (inner ? fixture.band : 0), 20 * stride,
                                 fixture.band - before);
                QCOMPARE(blocks[i].rect, fixture.turned(rect));
                QCOMPARE(blocks[i].section, first);
                QCOMPARE(blocks[i].position == QStyleOptionHeader::Beginning, first == 0);
                QCOMPARE(blocks[i].position == QStyleOptionHeader::End, first + stride == 12);
                const int label = inner ? 5 + i % 3 : i - 13;
                QVERIFY(fixture.showsLabel(blocks[i], QString::number(label), rect.x()));
                QVERIFY(!fixture.showsLabel(blocks[i], QString::number(label + 1), rect.x()));
            }
            fixture.header->setCount(1000);
            fixture.header->setOffset(1005); // the names stand still
            const int length = horizontal ? fixture.header->width() : fixture.header->height();
            const Drawn names = fixture.drawn(fixture.header->rect(), true);
            QCOMPARE(names.size(), 2);
            for (int i = 0; i < 2; ++i) {
                const QRect rect(0, (1 - i) * fixture.band, length + 4, before);
                QCOMPARE(names[i].rect, fixture.turned(rect));
                QVERIFY(fixture.showsLabel(names[i], "i"_s, 0));
            }
        }
    }

    void onlyVisibleBlocksThatMeetTheEventAreDrawn()
    {
        Fixture fixture(false, 10000000000LL, {{0, 9}, {0, 999999999}});
        QCOMPARE(fixture.sections(QRect(0, 100, 99, 40)), (QVector<int>{5, 6, 0}));
        QCOMPARE(fixture.sections(QRect(0, 100, 99, 41)), (QVector<int>{5, 6, 7, 0}));
        fixture.header->setOffset(190);
        QCOMPARE(fixture.sections(QRect(0, 0, 99, 20)), (QVector<int>{9, 10, 0, 10}));
        fixture.header->setOffset(0);
        fixture.header->hideSections(3, 9000000002LL);
        const int clamped = std::numeric_limits<int>::max();
        QCOMPARE(fixture.sections(QRect(0, 0, 99, 80)),
                 (QVector<int>{0, 1, 2, clamped, 0, clamped}));
    }

    void labelOfABlockThatIsScrolledOutPartlyStaysInView()
    {
        for (const bool horizontal : {false, true}) {
            Fixture fixture(horizontal, 1000, {{0, 9}, {700, 799}});
            const auto showsOuterLabelAt = [&fixture](int start) {
                for (const auto &block : fixture.drawn()) {
                    if (block.section == 20)
                        return fixture.showsLabel(block, "702"_s, start);
                }
                return false;
            };
            fixture.header->setOffset(25 * 20 + 7);
            QVERIFY(showsOuterLabelAt(0));
            fixture.header->setOffset(29 * 20 + 7); // it does not leave the block's last section
            QVERIFY(showsOuterLabelAt(-7));
        }
    }

    // A style may draw a section through a pixmap of its size.
    void styleNeverSeesARectangleFarLargerThanTheHeader()
    {
        for (const auto &bounds : Bounds{{0, 99999999},
                                         {0, -1},
                                         {highest, lowest},
                                         {lowest, highest},
                                         {highest, highest}}) {
            for (const int offset : {0, 1000007, pixelLimit - 400, pixelLimit}) {
                Fixture fixture(offset % 2 == 0, highest, {bounds, {0, 3}, bounds, bounds});
                fixture.header->setOffset(offset);
                const Drawn blocks = fixture.drawn();
                QVERIFY(blocks.isEmpty() == (bounds.first > bounds.second) && blocks.size() < 100);
                const QRect about = fixture.header->rect().adjusted(-20, -20, 20, 20);
                for (const auto &block : blocks)
                    QVERIFY(about.contains(block.rect));
            }
        }
        Fixture none(false, highest, {{0, 9}});
        none.header->setSectionSize(-3);
        QVERIFY(none.header->contentLength() == 0 && none.header->sectionAt(1) == -1);
        QVERIFY(none.drawn().isEmpty());
    }

    // What scrolling moves and paints anew together is what painting all of it gives.
    void scrollingLeavesTheSamePicture()
    {
        for (const auto &[horizontal, lines, size] :
             {std::tuple{false, 1, 20}, {true, 1, 20}, {false, 3, 100}, {true, 3, 100}}) {
            Fixture fixture(horizontal, 1000, Bounds(lines, {0, 9}));
            fixture.header->setSectionSize(size); // style gradients follow the section
            fixture.table.fill();
            fixture.table.selectCells(0, 0, 20, 20);
            RecordingTable::settle();
            QScrollBar *bar = horizontal ? fixture.table.horizontalScrollBar()
                                         : fixture.table.verticalScrollBar();
            for (const int value : {7, 33, 20, 500, 0}) {
                fixture.table.clearRecords();
                const int changed = value / size + 1; // and is queued for painting
                fixture.table.setText(horizontal ? 0 : changed, horizontal ? changed : 0, "new"_s);
                bar->setValue(value);
                QCOMPARE(fixture.header->offset(), value);
                RecordingTable::settle();
                QVERIFY(!fixture.table.paintEvents.contains(fixture.table.viewport()->rect())
                        || value % 500 == 0);
                const QPixmap screen = fixture.table.screen()->grabWindow(fixture.table.winId());
                QCOMPARE(screen.toImage().convertToFormat(QImage::Format_RGB32),
                         fixture.table.grab().toImage().convertToFormat(QImage::Format_RGB32));
            }
        }
    }

    void wheelScrollsTheTable()
    {
        const Fixture fixture(false, 1000, {{0, 9}});
        const QPoint pos(5, 50);
        QWheelEvent wheel(pos, fixture.header->mapToGlobal(pos), QPoint(), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        WheelPlaces places;
        fixture.table.viewport()->installEventFilter(&places);
        QApplication::sendEvent(fixture.header, &wheel);
        QVERIFY(fixture.header->offset() > 0 && wheel.isAccepted());
        // To the left of the cells.
        QCOMPARE(places.log, (QVector<QPointF>{{5.0 - fixture.header->width(), 50}}));
    }

    void leftButtonPressesAndClicksSections()
    {
        for (const bool horizontal : {false, true}) {
            const Fixture fixture(horizontal, 1000, {{0, 9}});
            fixture.header->setOffset(50); // section 3 begins at 10
            QStringList log;
            const auto note = [&](auto signal, const QString &name) {
                connect(fixture.header, signal, &fixture.table,
                        [=, &log](long long section) { log += name.arg(section); });
            };
            note(&MDATableHeader::pressed, "pressed %1"_s);
            note(&MDATableHeader::released, "released %1"_s);
            note(&MDATableHeader::clicked, "clicked %1"_s);
            const QPoint third = horizontal ? QPoint(15, 2) : QPoint(2, 15);
            const QPoint fourth = horizontal ? QPoint(35, 2) : QPoint(2, 35);
            QTest::mouseClick(fixture.header, Qt::RightButton, {}, third);
            QTest::mouseClick(fixture.header, Qt::LeftButton, {}, third);
            QTest::mousePress(fixture.header, Qt::LeftButton, {}, third);
            QTest::mouseRelease(fixture.header, Qt::LeftButton, {}, fourth);
            QTest::mousePress(fixture.header, Qt::LeftButton, {}, third);
            QTest::mouseRelease(fixture.header, Qt::LeftButton, {}, QPoint(-5, -5));
            QCOMPARE(log.join(QLatin1Char('|')),
                     "pressed 3|released 3|clicked 3|pressed 3|released 4|pressed 3"_s);
        }
    }
};

QTEST_MAIN(TestMDATableHeader)
#include "tst_mdatableheader.moc"
