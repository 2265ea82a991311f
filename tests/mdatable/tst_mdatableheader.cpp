#include <support/recordingstyle.h>
#include <support/recordingtable.h>
#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdatableheader_p.h>

#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <limits>

namespace
{

const long long lowest = std::numeric_limits<long long>::min();
const long long highest = std::numeric_limits<long long>::max();
const long long trillion = 1000000000000LL;
const int pixelLimit = 2147450879;

using Drawn = QVector<RecordingStyle::Drawn>;
using Bounds = QVector<QPair<long long, long long>>;

// A table with a recorder on one of its headers, whose sections are 20 pixels.
class Fixture
{
public:
    RecordingStyle style;
    RecordingTable table;
    const bool horizontal;
    MDATableHeader *const header;
    int lines = 0;

    Fixture(bool isHorizontal, long long count)
        : table(isHorizontal ? 1 : count, isHorizontal ? count : 1)
        , horizontal(isHorizontal)
        , header(horizontal ? table.topHeader() : table.leftHeader())
    {
        header->setStyle(&style);
    }

    /// Shows lines that are all named "i".
    bool show(const Bounds &bounds, const QSize &size = QSize(400, 300))
    {
        lines = bounds.size();
        header->setLines(lines);
        for (int i = 0; i < lines; ++i)
            header->setLineNameAndBounds(i, QStringLiteral("i"), bounds[i].first, bounds[i].second);
        header->setSectionSize(20);
        return table.showSettled(size);
    }

    int band() const { return header->fixedExtent() / lines; }
    int nameExtent() const // across the header
    {
        return horizontal ? header->fontMetrics().height() + 4
                          : header->fontMetrics().horizontalAdvance(QLatin1Char('i')) + 6;
    }
    QRect turned(const QRect &rect) const
    {
        return horizontal ? rect : QRect(rect.y(), rect.x(), rect.height(), rect.width());
    }

    QImage image(const QRect &part, bool blank = false) const
    {
        QImage image(part.size(), QImage::Format_RGB32);
        image.setDotsPerMeterX(qRound(header->logicalDpiX() / 0.0254));
        image.setDotsPerMeterY(qRound(header->logicalDpiY() / 0.0254));
        image.fill(header->palette().color(QPalette::Button));
        if (!blank)
            header->render(&image, QPoint(), part);
        return image;
    }

    /// What painting a part of the header makes the style draw: the blocks, or the names.
    Drawn drawn(const QRect &part, bool names = false)
    {
        style.takeControls(QStyle::CE_HeaderSection);
        image(part);
        Drawn result;
        for (const auto &each : style.takeControls(QStyle::CE_HeaderSection)) {
            if ((turned(each.rect).y() % band() == 0) == names)
                result.append(each);
        }
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
        QImage expected = image(visible, true);
        QPainter painter(&expected);
        painter.setFont(header->font());
        painter.setPen(header->palette().color(QPalette::Text));
        painter.translate(-visible.topLeft());
        QRect room = block.rect;
        horizontal ? room.setLeft(start) : room.setTop(start);
        const int margin = style.pixelMetric(QStyle::PM_HeaderMargin, nullptr, header);
        room.setRect(room.x() + margin, room.y() + 2, room.width() - 6, room.height() - 4);
        painter.drawText(room, Qt::AlignLeft | Qt::TextSingleLine, text);
        painter.end();
        return shown == expected;
    }
};

} // namespace

class TestMDATableHeader : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void signalsAndPropertiesCarry64BitSections()
    {
        for (const char *signal :
             {"sectionSizeChanged()", "clicked(qlonglong)", "pressed(qlonglong)",
              "released(qlonglong)", "fixedExtentChanged(int)"})
            QVERIFY2(MDATableHeader::staticMetaObject.indexOfSignal(signal) != -1, signal);
        const Fixture fixture(true, 5);
        QVERIFY(fixture.header->setProperty("count", trillion));
        QCOMPARE(fixture.table.numCols(), trillion);
        QCOMPARE(fixture.header->property("orientation"), QVariant(Qt::Horizontal));
        QCOMPARE(fixture.header->property("offset"), QVariant(0));
    }

    void hiddenSectionsTakeNoSpace()
    {
        const Fixture fixture(true, 100);
        MDATableHeader *header = fixture.header;
        header->hideSections(10, 19);
        QVERIFY(header->sectionAt(10 * 20) == 20 && header->sectionAt(10 * 20 - 1) == 9);
        QVERIFY(header->sectionPos(15) == 200 && header->sectionPos(20) == 200);
        QVERIFY(header->contentLength() == 1800 && header->sectionAt(1799) == 99);
        QVERIFY(header->sectionAt(1800) == -1 && header->sectionAt(-1) == -1);
        header->showSection(15);
        QVERIFY(header->sectionPos(15) == 200 && header->sectionPos(16) == 220);
        header->setCount(12);
        QCOMPARE(header->contentLength(), 10 * header->sectionSize());
        header->setCount(100); // what was hidden beyond the end still is
        QVERIFY(header->isSectionHidden(19));
        header->reset();
        QVERIFY(!header->isSectionHidden(19) && header->count() == 0 && header->sectionAt(0) == -1);
    }

    void positionsEndAtThePixelLimit()
    {
        struct Row {
            long long count;
            int size;
            int length;
        };
        for (const Row &row :
             {Row{107372543, 20, 2147450860}, Row{107372544, 20, pixelLimit},
              Row{highest, std::numeric_limits<int>::max(), pixelLimit}, Row{highest, -3, 0}}) {
            Fixture fixture(false, row.count);
            QVERIFY(fixture.show({{0, 9}}));
            fixture.header->setSectionSize(row.size);
            QCOMPARE(fixture.header->contentLength(), row.length);
            QCOMPARE(fixture.header->sectionPos(row.count), row.length);
            QCOMPARE(fixture.header->sectionAt(1), row.size > 0 ? 0LL : -1LL);
            QCOMPARE(fixture.drawn().isEmpty(), row.size < 0);
            fixture.header->hideSections(0, highest);
            QVERIFY(fixture.header->contentLength() == 0 && fixture.header->sectionAt(0) == -1);
        }
    }

    void metricsFollowTheLines()
    {
        const Fixture columns(true, 10);
        const Fixture rows(false, 10);
        const QFontMetrics metrics = rows.header->fontMetrics();
        const auto width = [&metrics](const char *text) {
            return metrics.horizontalAdvance(QLatin1String(text)) + 6;
        };
        const QSignalSpy spy(columns.header, &MDATableHeader::fixedExtentChanged);
        columns.header->setLines(2);
        QCOMPARE(columns.header->fixedExtent(), 2 * (2 * metrics.height() + 8));
        QCOMPARE(columns.header->sectionSize(), std::max(30, width("0W")));
        columns.header->setLineNameAndBounds(0, QString(), -1234567890, 1000000); // max counts
        columns.header->setLineNameAndBounds(1, QString(), 0, highest); // of line 0
        QCOMPARE(columns.header->sectionSize(), width("1000000W"));
        columns.header->setSectionSize(200);
        columns.header->setCount(10); // resets it
        QCOMPARE(columns.header->sectionSize(), width("1000000W"));
        QCOMPARE(spy.count(), 1);
        columns.header->reset();
        QCOMPARE(spy.value(1).value(0), QVariant(0));

        rows.header->setSectionSize(99);
        rows.header->setLines(3);
        QCOMPARE(rows.header->sectionSize(), std::max(20, metrics.height() + 6));
        QCOMPARE(rows.header->fixedExtent(), 3 * 40);
        rows.header->setLineNameAndBounds(2, QStringLiteral("a rather long name"), 0, 12);
        rows.header->setLineNameAndBounds(1, QStringLiteral("j"), 0, 1234567);
        const int label = width("1234567W");
        QCOMPARE(rows.header->fixedExtent(), 3 * (width("a rather long name") + label));
        rows.header->setLineNameAndBounds(2, QString(), 0, 12); // makes it thinner again
        rows.header->setLines(-1);
        rows.header->setLineNameAndBounds(3, QStringLiteral("no such line"), 0, 1);
        rows.header->setLineNameAndBounds(-1, QStringLiteral("no such line"), 0, 1);
        QCOMPARE(rows.header->fixedExtent(), 3 * (width("j") + label));
    }

    void eachLineLabelsBlocksOfItsDimension()
    {
        for (const bool horizontal : {false, true}) {
            Fixture fixture(horizontal, 12);
            QVERIFY(fixture.show({{5, 7}, {-1, 2}}));
            const Drawn blocks = fixture.drawn();
            QCOMPARE(blocks.size(), 12 + 4);
            const int before = fixture.nameExtent();
            for (int i = 0; i < blocks.size(); ++i) {
                const bool inner = i < 12;
                const int first = inner ? i : 3 * (i - 12);
                const int stride = inner ? 1 : 3;
                const QRect rect(20 * first, before + (inner ? fixture.band() : 0), 20 * stride,
                                 fixture.band() - before);
                QCOMPARE(blocks[i].rect, fixture.turned(rect));
                QCOMPARE(blocks[i].section, first);
                QCOMPARE(blocks[i].position,
                         first == 0                 ? QStyleOptionHeader::Beginning
                             : first + stride == 12 ? QStyleOptionHeader::End
                                                    : QStyleOptionHeader::Middle);
                QCOMPARE(blocks[i].selectedPosition, QStyleOptionHeader::NotAdjacent);
                QCOMPARE(blocks[i].state,
                         QStyle::State_Off | QStyle::State_Enabled | QStyle::State_Raised
                             | (horizontal ? QStyle::State_Horizontal : QStyle::State_None));
                const int label = inner ? 5 + i % 3 : i - 13;
                QVERIFY(fixture.showsLabel(blocks[i], QString::number(label), rect.x()));
                QVERIFY(!fixture.showsLabel(blocks[i], QString::number(label + 1), rect.x()));
            }
            fixture.header->setEnabled(false);
            QVERIFY(!(fixture.drawn().first().state & QStyle::State_Enabled));
        }
    }

    void namesStandBesideTheirLines()
    {
        for (const bool horizontal : {false, true}) {
            Fixture fixture(horizontal, 1000);
            QVERIFY(fixture.show({{0, 9}, {0, 99}}));
            fixture.header->setOffset(1005); // does not move them
            const int length = horizontal ? fixture.header->width() : fixture.header->height();
            const Drawn names = fixture.drawn(fixture.header->rect(), true);
            QCOMPARE(names.size(), 2);
            for (int i = 0; i < 2; ++i) {
                const QRect rect(0, (1 - i) * fixture.band(), length + 4, fixture.nameExtent());
                QCOMPARE(names[i].rect, fixture.turned(rect));
                QCOMPARE(names[i].position, QStyleOptionHeader::OnlyOneSection);
                QVERIFY(fixture.showsLabel(names[i], QStringLiteral("i"), 0));
            }
            fixture.header->hideSections(2, 999); // no longer than the contents
            const Drawn shorter = fixture.drawn(fixture.header->rect(), true);
            QCOMPARE(fixture.turned(shorter.first().rect).width(), 40);
            fixture.header->setLines(0);
            fixture.header->resize(100, 100);
            fixture.style.takeControls(QStyle::CE_HeaderSection);
            fixture.image(fixture.header->rect());
            QVERIFY(fixture.style.takeControls(QStyle::CE_HeaderSection).isEmpty());
        }
    }

    void onlyVisibleBlocksThatMeetTheEventAreDrawn()
    {
        Fixture fixture(false, 1000);
        QVERIFY(fixture.show({{0, 9}, {0, 99}}));
        QCOMPARE(fixture.sections(QRect(0, 100, 99, 40)), (QVector<int>{5, 6, 0}));
        QCOMPARE(fixture.sections(QRect(0, 100, 99, 41)), (QVector<int>{5, 6, 7, 0}));
        fixture.header->setOffset(190);
        QCOMPARE(fixture.sections(QRect(0, 0, 99, 20)), (QVector<int>{9, 10, 0, 10}));
        fixture.header->hideSections(2, 998);
        fixture.header->setOffset(0);
        QCOMPARE(fixture.sections(fixture.header->rect()), (QVector<int>{0, 1, 999, 0, 990}));
        QCOMPARE(fixture.drawn().at(3).rect.height(), 40); // what is left of ten
        QCOMPARE(fixture.sections(QRect(0, 61, 99, 40)), QVector<int>());
        fixture.header->showSections(0, 999);
        fixture.header->setCount(14); // does not cut the last block
        fixture.header->setSectionSize(10);
        QCOMPARE(fixture.drawn().last().rect.height(), 100);
        QCOMPARE(fixture.drawn().last().position, QStyleOptionHeader::Middle);
        fixture.header->setCount(1);
        QCOMPARE(fixture.drawn().last().position, QStyleOptionHeader::OnlyOneSection);
    }

    void labelOfABlockThatIsScrolledOutPartlyStaysInView()
    {
        for (const bool horizontal : {false, true}) {
            Fixture fixture(horizontal, 1000);
            QVERIFY(fixture.show({{0, 9}, {700, 799}}));
            const auto showsOuterLabelAt = [&fixture](int start) {
                const Drawn blocks = fixture.drawn();
                const auto outer
                    = std::find_if(blocks.begin(), blocks.end(), [&](const auto &block) {
                          return fixture.turned(block.rect).y() < fixture.band();
                      });
                return fixture.showsLabel(*outer, QStringLiteral("702"), start);
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
        for (const bool horizontal : {false, true}) {
            Fixture fixture(horizontal, trillion);
            QVERIFY(fixture.show({{0, 99}, {0, 99999999}, {0, 99}}));
            for (const int offset : {0, 1000007, pixelLimit - 400, pixelLimit}) {
                fixture.header->setOffset(offset);
                const Drawn blocks = fixture.drawn();
                QVERIFY(blocks.size() < 100);
                for (const auto &block : blocks)
                    QVERIFY(fixture.header->rect().adjusted(-20, -20, 20, 20).contains(block.rect));
            }
        }
    }

    void hiddenSectionsAreJumpedWhenPainting()
    {
        Fixture fixture(false, 10000000000LL);
        QVERIFY(fixture.show({{0, 9}, {0, 999999999}}));
        fixture.header->hideSections(3, 9000000002LL);
        const int clamped = std::numeric_limits<int>::max();
        QCOMPARE(fixture.sections(QRect(0, 0, 99, 80)),
                 (QVector<int>{0, 1, 2, clamped, 0, clamped}));
    }

    void anyBoundsCanBePainted()
    {
        for (const auto &bounds :
             Bounds{{0, -1}, {highest, lowest}, {lowest, highest}, {highest, highest}}) {
            for (const bool horizontal : {false, true}) {
                Fixture fixture(horizontal, highest);
                QVERIFY(fixture.show({bounds, {0, 3}, bounds, bounds}));
                for (const int offset : {0, 500, pixelLimit}) {
                    fixture.header->setOffset(offset);
                    QCOMPARE(fixture.drawn().isEmpty(), bounds.first > bounds.second);
                }
            }
        }
    }

    void offsetMayBeAnything()
    {
        for (const bool horizontal : {false, true}) {
            for (const long long count : {3LL, trillion}) {
                Fixture fixture(horizontal, count);
                QVERIFY(fixture.show({{0, 9}, {0, 9}}));
                for (const int offset : {std::numeric_limits<int>::min(), 77, -10,
                                         std::numeric_limits<int>::max(), 0}) {
                    fixture.header->setOffset(offset);
                    QCOMPARE(fixture.header->offset(), count == 3 ? 0 : offset);
                    RecordingTable::settle();
                }
            }
        }
    }

    // What scrolling moves and paints anew together is what painting all of it gives.
    void scrollingLeavesTheSamePicture()
    {
        for (const bool horizontal : {false, true}) {
            for (const int lines : {1, 3}) {
                Fixture fixture(horizontal, 1000);
                QVERIFY(fixture.show(Bounds(lines, {0, 9})));
                MDATableHeader *header = fixture.header;
                QScrollBar *bar = horizontal ? fixture.table.horizontalScrollBar()
                                             : fixture.table.verticalScrollBar();
                fixture.style.takeControls(QStyle::CE_HeaderSection);
                bar->setValue(7); // paints the outer lines at once, whose labels stay in view
                QCOMPARE(fixture.style.takeControls(QStyle::CE_HeaderSection).isEmpty(),
                         lines == 1);
                for (const int value : {33, 20, 500, 0}) {
                    bar->setValue(value);
                    QCOMPARE(header->offset(), value);
                    RecordingTable::settle();
                    const QImage screen
                        = header->screen()->grabWindow(fixture.table.winId()).toImage();
                    const QRect place(header->mapTo(&fixture.table, QPoint()), header->size());
                    QCOMPARE(screen.copy(place).convertToFormat(QImage::Format_RGB32),
                             fixture.image(header->rect()));
                }
            }
        }
    }

    void offsetIsDroppedWhenTheContentsAreShorterThanTheWidth()
    {
        Fixture fixture(false, 100);
        QVERIFY(fixture.show({{0, 99}}));
        fixture.header->setOffset(500);
        fixture.header->resize(100, 2100); // the height does not count, even for rows
        QCOMPARE(fixture.header->offset(), 500);
        fixture.header->resize(2001, 300);
        QCOMPARE(fixture.header->offset(), 0);
    }

    void leftButtonPressesReleasesAndClicksSections()
    {
        for (const bool horizontal : {false, true}) {
            Fixture fixture(horizontal, 10);
            QVERIFY(fixture.show({{0, 4}, {0, 1}}));
            QStringList log;
            connect(fixture.header, &MDATableHeader::pressed, this,
                    [&](long long section) { log += QStringLiteral("p%1").arg(section); });
            connect(fixture.header, &MDATableHeader::released, this,
                    [&](long long section) { log += QStringLiteral("r%1").arg(section); });
            connect(fixture.header, &MDATableHeader::clicked, this,
                    [&](long long section) { log += QStringLiteral("c%1").arg(section); });
            const auto drag = [&](Qt::MouseButton button, int from, int to, int across) {
                log.clear();
                const QRect start(from * 20 + 1, 1, 0, 0);
                const QRect end(to * 20 + 1, across, 0, 0);
                QTest::mousePress(fixture.header, button, {}, fixture.turned(start).topLeft());
                QTest::mouseRelease(fixture.header, button, {}, fixture.turned(end).topLeft());
                return log.join(QLatin1Char(' '));
            };
            QCOMPARE(drag(Qt::LeftButton, 2, 2, 30), QStringLiteral("p2 r2 c2"));
            QCOMPARE(drag(Qt::LeftButton, 2, 3, 1), QStringLiteral("p2 r3"));
            QCOMPARE(drag(Qt::LeftButton, 2, 2, -5), QStringLiteral("p2"));
            QCOMPARE(drag(Qt::RightButton, 2, 2, 1), QString());
            QCOMPARE(drag(Qt::LeftButton, 12, 2, 1), QStringLiteral("r2"));
        }
    }
};

QTEST_MAIN(TestMDATableHeader)
#include "tst_mdatableheader.moc"
