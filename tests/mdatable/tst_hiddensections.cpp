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
struct Model {
    std::vector<bool> hidden;
    long long length; // of a block

    bool set(int first, int last, bool hide)
    {
        const auto begin = hidden.begin() + first;
        const auto end = hidden.begin() + last + 1;
        const bool changes = std::find(begin, end, !hide) != end;
        std::fill(begin, end, hide);
        return changes;
    }

    QString difference(const HiddenSections &sections) const
    {
        long long hiddenBefore = 0;
        long long previous = -1; // visible section
        int runs = 0;
        HiddenSections::VisibleCursor walk(sections, 0);
        for (int i = 0; i < static_cast<int>(hidden.size()); ++i) {
            const bool isHidden = hidden[i];
            runs += isHidden && (i == 0 || !hidden[i - 1]);
            const long long next
                = length * (std::find(hidden.begin() + i, hidden.end(), false) - hidden.begin());
            for (const long long offset : {0LL, length / 2, length - 1}) {
                const long long section = i * length + offset;
                const long long before = hiddenBefore + (isHidden ? offset : 0);
                const long long visible = isHidden ? next : section;
                if (sections.contains(section) != isHidden
                    || sections.hiddenBefore(section) != before
                    || sections.previousVisible(section) != (isHidden ? previous : section)
                    || sections.nextVisible(section) != visible
                    || sections.sectionOfVisibleIndex(section - before) != visible
                    || HiddenSections::VisibleCursor(sections, section).section() != visible)
                    return QStringLiteral("section %1").arg(section);
            }
            if (isHidden) {
                hiddenBefore += length;
                continue;
            }
            previous = (i + 1) * length - 1;
            if (length == 1 && walk.section() != i)
                return QStringLiteral("cursor before %1").arg(i);
            walk.next();
        }
        for (HiddenSections::RunCursor run(sections, 0); run.isValid(); run.next(), --runs)
            hiddenBefore -= run.end() - run.start();
        return runs == 0 && hiddenBefore == 0 ? QString() : QStringLiteral("runs");
    }
};

} // namespace

struct HiddenSectionsProbe {
    using NodeId = HiddenSections::NodeId;

    const HiddenSections &sections;
    int runs = 0;
    long long previousEnd = -1;
    NodeId last = 0;

    // The number of black nodes on each way down, or less than 0 where a rule of the tree is
    // broken.
    int blackHeight(NodeId id, NodeId parent, bool isOnRightEdge)
    {
        if (id == 0)
            return 0;
        const HiddenSections::Node &run = sections.node(id);
        const int left = blackHeight(run.child[0], id, false);
        const bool isInOrder = run.start > previousEnd && run.length > 0;
        previousEnd = sections.endOf(id);
        last = id;
        ++runs;
        const int right = blackHeight(run.child[1], id, isOnRightEdge);
        const long long lacks = isOnRightEdge && run.child[1] == 0 ? sections.m_appended : 0;
        const bool isValid = isInOrder && left == right && sections.parentOf(id) == parent
            && !(sections.isRed(id) && sections.isRed(parent))
            && sections.hiddenOn(id, 0) == sections.totalOf(run.child[0])
            && sections.hiddenOn(id, 1) + lacks == sections.totalOf(run.child[1]);
        return isValid ? left + !sections.isRed(id) : std::numeric_limits<int>::min();
    }

    bool isValid()
    {
        const NodeId root = sections.m_tree.root;
        if (root == 0) // and no memory kept
            return sections.m_blocks.empty() && sections.runCount() == 0;
        int nodes = 1; // the empty one
        for (NodeId id = sections.m_freeList; id != 0; id = sections.parentOf(id))
            ++nodes;
        return blackHeight(root, 0, true) == sections.m_tree.blackHeight && !sections.isRed(root)
            && !sections.isRed(0) && sections.totalOf(0) == 0 && runs == sections.runCount()
            && last == sections.m_last && nodes + runs == int(sections.m_firstUnused);
    }

    std::size_t bytes() const
    {
        return sections.m_blocks.size() * sizeof(HiddenSections::Block)
            + (sections.m_lookup ? sections.m_lookup->bytes() : 0);
    }
};

class TestHiddenSections : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void randomChangesMatchANaiveModel_data();
    void randomChangesMatchANaiveModel();
    void rangesAreCutToTheSections();
    void manyLookupsAgreeWithTheTree();
    void manyRunsTakeAtMost50BytesEachAndGiveThemBack();

private:
    void checkLookups(long long longestRun, long long longestGap);
};

void TestHiddenSections::randomChangesMatchANaiveModel_data()
{
    QTest::addColumn<int>("blocks");
    QTest::addColumn<long long>("blockLength");
    QTest::addColumn<int>("longestRange");
    QTest::newRow("few sections") << 12 << 1LL << 6;
    QTest::newRow("short ranges") << 300 << 1LL << 5;
    QTest::newRow("ranges that swallow many runs") << 300 << 1LL << 120;
    QTest::newRow("64-bit numbers") << 90 << highest / 90 << 9;
}

void TestHiddenSections::randomChangesMatchANaiveModel()
{
    QFETCH(const int, blocks);
    QFETCH(const long long, blockLength);
    QFETCH(const int, longestRange);
    std::mt19937 random(blocks + longestRange);
    const auto below = [&](int limit) { return static_cast<int>(random() % unsigned(limit)); };
    Model model{std::vector<bool>(std::size_t(blocks)), blockLength};
    HiddenSections sections;
    for (int step = 0; step < 2000; ++step) {
        // Mostly single sections, else the long ranges leave no tree worth the name; now and then
        // a stretch in order, which takes the short way of its own.
        const int place = step % 500;
        const bool inOrder = place < 100 && 2 * place < blocks;
        if (place == 0) {
            sections.clear();
            QVERIFY(HiddenSectionsProbe{sections}.isValid());
            model.set(0, blocks - 1, false);
        }
        const int length = below(4) == 0 ? 1 + below(longestRange) : 1;
        const int first = inOrder ? 2 * place : below(blocks);
        const int last = std::min(first + length, blocks) - 1;
        const bool hide = inOrder || below(2) == 0;
        const long long from = first * blockLength;
        const long long to = (last + 1) * blockLength - 1;
        const bool changes = model.set(first, last, hide);
        QCOMPARE(hide ? sections.hide(from, to) : sections.show(from, to), changes);
        QVERIFY(HiddenSectionsProbe{sections}.isValid());
        if (step % 16 == 0)
            QCOMPARE(model.difference(sections), QString());
    }
}

void TestHiddenSections::rangesAreCutToTheSections()
{
    struct Case {
        long long from, to, count, firstVisible;
    };
    for (const auto &[from, to, count, firstVisible] :
         {Case{-highest - 1, highest, highest, highest}, Case{5, highest - 1, highest - 5, 0},
          Case{highest, highest, 0, 0}, Case{-7, 2, 3, 3}, Case{8, 7, 0, 0}}) {
        HiddenSections sections;
        QCOMPARE(sections.hide(from, to), count > 0);
        QCOMPARE(sections.hiddenCount(), count);
        QCOMPARE(sections.hiddenBefore(highest), count);
        QCOMPARE(sections.nextVisible(-3), firstVisible);
        QCOMPARE(sections.sectionOfVisibleIndex(0), firstVisible);
        QCOMPARE(sections.sectionOfVisibleIndex(highest), highest);
        QCOMPARE(sections.previousVisible(-3), -1LL);
        QVERIFY(!sections.contains(-1) && !sections.contains(highest));
        QCOMPARE(sections.show(from, to), count > 0);
        QVERIFY(sections.isEmpty());
    }
}

void TestHiddenSections::manyLookupsAgreeWithTheTree()
{
    // Short stretches, some too long for the snapshot, and nothing but such.
    for (const long long longestRun : {9LL, 1200LL, 1000000000000LL})
        checkLookups(longestRun, longestRun == 1200 ? 900 : 7);
}

void TestHiddenSections::checkLookups(long long longestRun, long long longestGap)
{
    HiddenSections sections;
    std::mt19937_64 random(5);
    const auto oneTo
        = [&](long long limit) { return 1 + static_cast<long long>(random() % limit); };
    struct Run {
        long long start, end, hiddenBefore;
    };
    std::vector<Run> runs;
    long long hidden = 0;
    for (long long start = 3; runs.size() < 6000; start = runs.back().end + oneTo(longestGap)) {
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

void TestHiddenSections::manyRunsTakeAtMost50BytesEachAndGiveThemBack()
{
    HiddenSections sections;
    for (long long i = 0; i < 100000; ++i)
        sections.hide(2 * i);
    for (int i = 0; i < 100000; ++i)
        sections.visibleIndex(i); // until the snapshot exists
    const std::size_t bytes = HiddenSectionsProbe{sections}.bytes();
    QVERIFY2(bytes < 50 * 100000, qPrintable(QString::number(bytes)));

    // What is shown makes room for what is hidden next.
    QVERIFY(sections.show(1, 199000));
    for (long long i = 0; i < 99000; ++i)
        sections.hide(2 * i + 1);
    QVERIFY(HiddenSectionsProbe{sections}.bytes() <= bytes);
    QVERIFY(sections.show(0, highest));
    QVERIFY(HiddenSectionsProbe{sections}.isValid());
}

QTEST_GUILESS_MAIN(TestHiddenSections)

#include "tst_hiddensections.moc"
