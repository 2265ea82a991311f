#include <support/testcase.h>
#include <tul-util-gui/mdatable/hiddensections_p.h>
#include <tul-util-gui/mdatable/runlookup_p.h>

#include <QTest>

#include <algorithm>
#include <array>
#include <cmath>
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
    const HiddenSections &sections;

    int depth() const { return depth(sections.m_tree.root); }
    int depth(HiddenSections::NodeId id) const
    {
        const auto *child = sections.node(id).child;
        return id == 0 ? 0 : 1 + std::max(depth(child[0]), depth(child[1]));
    }
    bool hasLookup() const { return sections.m_lookup != nullptr; }
    std::size_t bytes() const { return sections.m_blocks.size() * sizeof(HiddenSections::Block); }
};

class TestHiddenSections : public TestCase
{
    Q_OBJECT

    static void checkChanges(int blocks, long long blockLength, int longestRange)
    {
        std::mt19937 random(blocks + longestRange);
        const auto below = [&](int limit) { return static_cast<int>(random() % unsigned(limit)); };
        Model model{std::vector<bool>(std::size_t(blocks)), blockLength};
        HiddenSections sections;
        for (int step = 0; step < 2000; ++step) {
            // Mostly single sections, else the long ranges leave no tree worth the name; now and
            // then a stretch in order, which takes the short way of its own.
            const int place = step % 500;
            const bool inOrder = place < 100 && 2 * place < blocks;
            if (place == 0) {
                sections.clear();
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
            if (step % 16 == 0) {
                QVERIFY(HiddenSectionsProbe{sections}.depth() <= 2 * std::log2(blocks));
                QCOMPARE(model.difference(sections), QString());
            }
        }
    }

private Q_SLOTS:
    void randomChangesMatchANaiveModel()
    {
        checkChanges(12, 1, 6); // few sections
        checkChanges(300, 1, 5); // short ranges
        checkChanges(300, 1, 120); // ranges that swallow many runs
        checkChanges(90, highest / 90, 9); // 64-bit numbers
    }

    void rangesAreCutToTheSections()
    {
        using Case = std::array<long long, 4>; // from, to, number of sections, first visible one
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

    void manyLookupsAgreeWithTheTree()
    {
        // Short stretches, some too long for the snapshot, and nothing but such.
        for (const long long blockLength : {1LL, 256LL, 1000000000000LL}) {
            Model model{std::vector<bool>(18000), blockLength};
            HiddenSections sections;
            std::mt19937 random(5);
            for (unsigned i = 3, length = 0; i < 17990; i += length + 1 + random() % 3) {
                length = 1 + random() % 3;
                model.set(int(i), int(i + length) - 1, true);
                sections.hide(i * blockLength, (i + length) * blockLength - 1);
            }
            // Starts with descents and ends with the snapshot, which a change must not leave
            // behind.
            QCOMPARE(model.difference(sections), QString());
            QVERIFY(HiddenSectionsProbe{sections}.hasLookup());
            sections.hide(0, blockLength - 1);
            model.set(0, 0, true);
            QCOMPARE(model.difference(sections), QString());
        }
    }

    void whatIsShownMakesRoomForWhatIsHiddenNext()
    {
        HiddenSections sections;
        for (long long i = 0; i < 100000; ++i)
            sections.hide(2 * i);
        const std::size_t bytes = HiddenSectionsProbe{sections}.bytes();
        QVERIFY2(bytes < 50 * 100000, qPrintable(QString::number(bytes)));
        QVERIFY(sections.show(1, 199000));
        for (long long i = 0; i < 99000; ++i)
            sections.hide(2 * i + 1);
        QVERIFY(HiddenSectionsProbe{sections}.bytes() <= bytes && sections.show(0, highest));
        QCOMPARE(HiddenSectionsProbe{sections}.bytes(), std::size_t(0));
    }
};

QTEST_GUILESS_MAIN(TestHiddenSections)
#include "tst_hiddensections.moc"
