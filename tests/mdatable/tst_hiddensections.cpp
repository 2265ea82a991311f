#include <support/testcase.h>
#include <tul-util-gui/mdatable/hiddensections_p.h>
#include <tul-util-gui/mdatable/runlookup_p.h>

#include <QTest>

#include <algorithm>
#include <limits>
#include <random>

namespace
{

constexpr long long highest = std::numeric_limits<long long>::max();

// Hidden flags of equal blocks of sections, so that a small model reaches 64-bit numbers as well.
class Model
{
public:
    Model(int blocks, long long blockLength)
        : m_hidden(static_cast<std::size_t>(blocks))
        , m_blockLength(blockLength)
    {
    }

    int blocks() const { return static_cast<int>(m_hidden.size()); }
    long long start(int block) const { return block * m_blockLength; }

    bool set(int first, int last, bool hidden)
    {
        const auto begin = m_hidden.begin() + first;
        const auto end = m_hidden.begin() + last + 1;
        const bool changes = std::find(begin, end, !hidden) != end;
        std::fill(begin, end, hidden);
        return changes;
    }

    QString difference(const HiddenSections &sections) const
    {
        long long hiddenBefore = 0;
        int runs = 0;
        QVector<long long> visibleStarts;
        HiddenSections::RunCursor run(sections, 0);
        for (int i = 0; i < blocks(); ++i) {
            const bool startsRun = isHidden(i) && (i == 0 || !isHidden(i - 1));
            runs += startsRun ? 1 : 0;
            if (startsRun && (!run.isValid() || run.start() != start(i)))
                return QStringLiteral("run %1 starts elsewhere").arg(runs);
            if (i > 0 && !isHidden(i) && isHidden(i - 1)) {
                if (run.end() != start(i))
                    return QStringLiteral("run %1 ends elsewhere").arg(runs);
                run.next();
            }
            for (const long long offset : {0LL, m_blockLength / 2, m_blockLength - 1}) {
                const QString difference = differenceAt(sections, i, offset, hiddenBefore);
                if (!difference.isEmpty())
                    return QStringLiteral("%1 in block %2").arg(difference).arg(i);
            }
            if (isHidden(i))
                hiddenBefore += m_blockLength;
            else
                visibleStarts.append(start(i));
        }
        if (sections.hiddenCount() != hiddenBefore || sections.runCount() != runs)
            return QStringLiteral("totals");
        HiddenSections::VisibleCursor cursor(sections, 0);
        for (const long long section : visibleStarts) {
            if (m_blockLength == 1 && cursor.section() != section)
                return QStringLiteral("cursor not at %1").arg(section);
            cursor.next();
        }
        return {};
    }

private:
    bool isHidden(int block) const { return m_hidden[static_cast<std::size_t>(block)]; }

    QString differenceAt(const HiddenSections &sections, int block, long long offset,
                         long long hiddenBefore) const
    {
        const long long section = start(block) + offset;
        const bool hidden = isHidden(block);
        int next = block;
        while (next < blocks() && isHidden(next))
            ++next;
        int previous = block;
        while (previous >= 0 && isHidden(previous))
            --previous;
        const long long nextVisible = hidden ? start(next) : section;
        const long long previousVisible = hidden ? start(previous + 1) - 1 : section;
        const long long before = hiddenBefore + (hidden ? offset : 0);

        if (sections.contains(section) != hidden)
            return QStringLiteral("contains");
        if (sections.hiddenBefore(section) != before)
            return QStringLiteral("hiddenBefore");
        if (sections.nextVisible(section) != nextVisible)
            return QStringLiteral("nextVisible");
        if (HiddenSections::VisibleCursor(sections, section).section() != nextVisible)
            return QStringLiteral("cursor");
        if (sections.previousVisible(section) != previousVisible)
            return QStringLiteral("previousVisible");
        if (sections.sectionOfVisibleIndex(section - before) != nextVisible)
            return QStringLiteral("sectionOfVisibleIndex");
        return {};
    }

    std::vector<bool> m_hidden;
    long long m_blockLength;
};

} // namespace

struct HiddenSectionsProbe {
    using NodeId = HiddenSections::NodeId;

    const HiddenSections &sections;

    // What breaks the rules of the tree; the neighbours of each node imply the rest.
    QString fault() const
    {
        const NodeId root = sections.m_tree.root;
        if (root == 0)
            return sections.m_blocks.empty() ? QString() : QStringLiteral("memory kept");
        if (sections.isRed(root) || sections.parentOf(root) != 0)
            return QStringLiteral("root");
        if (sections.isRed(0) || sections.totalOf(0) != 0)
            return QStringLiteral("the empty node is in use");

        int runs = 0;
        long long previousEnd = -1;
        NodeId last = 0;
        for (NodeId id = sections.outermost(root, 0); id != 0; id = sections.runAfter(id)) {
            const HiddenSections::Node &run = sections.node(id);
            if (run.length < 1 || run.start <= previousEnd)
                return QStringLiteral("order or maximality");
            previousEnd = sections.endOf(id);
            last = id;
            ++runs;
            for (const int side : {0, 1}) {
                QString fault = faultBelow(id, side);
                if (!fault.isEmpty())
                    return fault;
            }
        }
        if (runs != sections.m_runCount || last != sections.m_last)
            return QStringLiteral("count or last run");
        int unused = 0;
        for (NodeId id = sections.m_freeList; id != 0; id = sections.parentOf(id))
            ++unused;
        return runs + unused + 1 == static_cast<int>(sections.m_firstUnused)
            ? QString()
            : QStringLiteral("lost nodes");
    }

    QString faultBelow(NodeId id, int side) const
    {
        const NodeId child = sections.node(id).child[side];
        const bool lacksAppended = side == 1 && isOnRightEdge(id);
        const long long childLacks = lacksAppended && child != 0 ? sections.m_appended : 0;
        const long long lacks = lacksAppended ? sections.m_appended : 0;
        if (sections.hiddenOn(id, side) + lacks != sections.totalOf(child) + childLacks)
            return QStringLiteral("totals");
        if (child == 0) {
            int blackHeight = 0;
            for (NodeId above = id; above != 0; above = sections.parentOf(above))
                blackHeight += sections.isRed(above) ? 0 : 1;
            return blackHeight == sections.m_tree.blackHeight ? QString()
                                                              : QStringLiteral("black height");
        }
        if (sections.parentOf(child) != id)
            return QStringLiteral("parent");
        return sections.isRed(id) && sections.isRed(child) ? QStringLiteral("red pair") : QString();
    }

    bool isOnRightEdge(NodeId id) const
    {
        while (sections.parentOf(id) != 0 && sections.sideOf(id) == 1)
            id = sections.parentOf(id);
        return sections.parentOf(id) == 0;
    }

    std::size_t bytes() const
    {
        const std::size_t snapshot = sections.m_lookup ? sections.m_lookup->bytes() : 0;
        return sections.m_blocks.size() * sizeof(HiddenSections::Block) + snapshot;
    }
};

class TestHiddenSections : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void randomChangesMatchANaiveModel_data();
    void randomChangesMatchANaiveModel();
    void touchingRunsMergeAndInnerSectionsSplitThem();
    void rangesAreCutToTheSections_data();
    void rangesAreCutToTheSections();
    void manyLookupsAgreeWithTheTree_data();
    void manyLookupsAgreeWithTheTree();
    void halfAMillionRunsStayBelow24MiBAndGiveTheirMemoryBack();
};

void TestHiddenSections::randomChangesMatchANaiveModel_data()
{
    QTest::addColumn<int>("blocks");
    QTest::addColumn<long long>("blockLength");
    QTest::addColumn<int>("longestRange");
    QTest::addColumn<int>("hidePercent");

    QTest::newRow("few sections") << 12 << 1LL << 6 << 50;
    QTest::newRow("single sections") << 600 << 1LL << 1 << 55;
    QTest::newRow("short ranges") << 600 << 1LL << 5 << 45;
    QTest::newRow("ranges that swallow many runs") << 600 << 1LL << 250 << 50;
    QTest::newRow("64-bit numbers") << 90 << highest / 90 << 9 << 50;
}

void TestHiddenSections::randomChangesMatchANaiveModel()
{
    QFETCH(const int, blocks);
    QFETCH(const long long, blockLength);
    QFETCH(const int, longestRange);
    QFETCH(const int, hidePercent);

    std::mt19937 random(blocks + longestRange);
    const auto below = [&](int limit) { return static_cast<int>(random() % unsigned(limit)); };
    Model model(blocks, blockLength);
    HiddenSections sections;
    int appendAt = 0;
    for (int step = 0; step < 3000; ++step) {
        // Mostly single sections, else the long ranges leave no tree worth the name; now and then
        // a stretch in order, which takes the short way of its own.
        const int length = below(4) == 0 ? 1 + below(longestRange) : 1;
        const bool inOrder = step % 1000 < 100;
        appendAt = inOrder && step % 1000 != 0 && appendAt + 2 < blocks ? appendAt + 2 : 0;
        const int first = inOrder ? appendAt : below(blocks);
        const int last = std::min(first + length, blocks) - 1;
        const bool hide = inOrder || below(100) < hidePercent;
        if (inOrder && appendAt == 0) {
            sections.show(0, highest);
            model.set(0, blocks - 1, false);
        }

        const long long from = model.start(first);
        const long long to = model.start(last + 1) - 1;
        const bool changes = model.set(first, last, hide);
        QCOMPARE(hide ? sections.hide(from, to) : sections.show(from, to), changes);
        QCOMPARE(HiddenSectionsProbe{sections}.fault(), QString());
        if (step % 16 == 0)
            QCOMPARE(model.difference(sections), QString());
    }
}

void TestHiddenSections::touchingRunsMergeAndInnerSectionsSplitThem()
{
    HiddenSections sections;
    QVERIFY(sections.hide(10, 19));
    QCOMPARE(sections.visibleIndex(15), 10LL);
    QCOMPARE(sections.sectionOfVisibleIndex(10), 20LL);
    QVERIFY(sections.hide(20));
    QVERIFY(sections.hide(9));
    QVERIFY(!sections.hide(9, 20));
    QCOMPARE(sections.runCount(), 1);
    QVERIFY(sections.hide(22));
    QCOMPARE(sections.runCount(), 2);
    QVERIFY(sections.hide(21));
    QCOMPARE(sections.runCount(), 1);
    QVERIFY(sections.show(15));
    QVERIFY(!sections.show(15));
    QCOMPARE(sections.runCount(), 2);
    QCOMPARE(sections.hiddenCount(), 13LL);
    sections.clear();
    QVERIFY(sections.isEmpty());
    QCOMPARE(sections.sectionOfVisibleIndex(10), 10LL);
    QCOMPARE(HiddenSectionsProbe{sections}.fault(), QString());
}

void TestHiddenSections::rangesAreCutToTheSections_data()
{
    QTest::addColumn<long long>("from");
    QTest::addColumn<long long>("to");
    QTest::addColumn<long long>("count");
    QTest::addColumn<long long>("firstVisible");

    QTest::newRow("a million millions")
        << 0LL << 999999999999LL << 1000000000000LL << 1000000000000LL;
    QTest::newRow("every number") << -highest - 1 << highest << highest << highest;
    QTest::newRow("up to the last") << 5LL << highest - 1 << highest - 5 << 0LL;
    QTest::newRow("only the last") << highest << highest << 0LL << 0LL;
    QTest::newRow("before the first") << -7LL << -1LL << 0LL << 0LL;
    QTest::newRow("across the first") << -7LL << 2LL << 3LL << 3LL;
    QTest::newRow("inverted") << 8LL << 7LL << 0LL << 0LL;
}

void TestHiddenSections::rangesAreCutToTheSections()
{
    QFETCH(const long long, from);
    QFETCH(const long long, to);
    QFETCH(const long long, count);

    HiddenSections sections;
    QCOMPARE(sections.hide(from, to), count > 0);
    QCOMPARE(sections.hiddenCount(), count);
    QCOMPARE(sections.hiddenBefore(highest), count);
    QTEST(sections.nextVisible(-3), "firstVisible");
    QTEST(sections.sectionOfVisibleIndex(0), "firstVisible");
    QCOMPARE(sections.sectionOfVisibleIndex(highest), highest);
    QCOMPARE(sections.previousVisible(-3), -1LL);
    QCOMPARE(sections.visibleIndex(-3), -3LL);
    QVERIFY(!sections.contains(-1) && !sections.contains(highest));
    QCOMPARE(sections.show(from, to), count > 0);
    QVERIFY(sections.isEmpty());
}

void TestHiddenSections::manyLookupsAgreeWithTheTree_data()
{
    QTest::addColumn<long long>("longestRun");
    QTest::addColumn<long long>("longestGap");

    QTest::newRow("every other section") << 1LL << 1LL;
    QTest::newRow("uneven runs") << 9LL << 5LL;
    QTest::newRow("some stretches too long for the snapshot") << 1200LL << 900LL;
    QTest::newRow("every stretch too long for the snapshot") << 1000000000000LL << 7LL;
}

void TestHiddenSections::manyLookupsAgreeWithTheTree()
{
    QFETCH(const long long, longestRun);
    QFETCH(const long long, longestGap);

    HiddenSections sections;
    std::mt19937_64 random(5);
    const auto oneTo
        = [&](long long limit) { return 1 + static_cast<long long>(random() % limit); };
    struct Run {
        long long start, end, hiddenBefore;
    };
    std::vector<Run> runs;
    long long hidden = 0;
    for (long long start = 3; runs.size() < 20000; start = runs.back().end + oneTo(longestGap)) {
        runs.push_back({start, start + oneTo(longestRun), hidden});
        sections.hide(start, runs.back().end - 1);
        hidden += runs.back().end - start;
    }

    // The first pass starts with descents and ends with the snapshot.
    for (int pass = 0; pass < 2; ++pass) {
        for (const Run &run : runs) {
            const long long through = run.hiddenBefore + run.end - run.start;
            QCOMPARE(sections.hiddenBefore(run.start), run.hiddenBefore);
            QCOMPARE(sections.hiddenBefore(run.end - 1), through - 1);
            QCOMPARE(sections.hiddenBefore(run.end), through);
            QCOMPARE(sections.sectionOfVisibleIndex(run.end - through), run.end);
            QCOMPARE(sections.sectionOfVisibleIndex(run.end - through - 1), run.start - 1);
        }
    }
    QCOMPARE(sections.hiddenBefore(2), 0LL);

    // A change must not leave the snapshot behind.
    sections.hide(0);
    QCOMPARE(sections.hiddenBefore(runs.front().end), runs[1].hiddenBefore + 1);
}

void TestHiddenSections::halfAMillionRunsStayBelow24MiBAndGiveTheirMemoryBack()
{
    HiddenSections sections;
    for (long long i = 0; i < 500000; ++i)
        sections.hide(2 * i);
    QCOMPARE(sections.runCount(), 500000);
    for (int i = 0; i < 500000; ++i)
        sections.visibleIndex(i); // until the snapshot exists
    const std::size_t bytes = HiddenSectionsProbe{sections}.bytes();
    QVERIFY2(bytes < 24 << 20, qPrintable(QString::number(bytes)));

    // What is shown makes room for what is hidden next.
    QVERIFY(sections.show(1, 999000));
    for (long long i = 0; i < 499000; ++i)
        sections.hide(2 * i + 1);
    QVERIFY(HiddenSectionsProbe{sections}.bytes() <= bytes);
    QCOMPARE(HiddenSectionsProbe{sections}.fault(), QString());

    QVERIFY(sections.show(0, highest));
    QCOMPARE(HiddenSectionsProbe{sections}.fault(), QString());
}

QTEST_GUILESS_MAIN(TestHiddenSections)

#include "tst_hiddensections.moc"
