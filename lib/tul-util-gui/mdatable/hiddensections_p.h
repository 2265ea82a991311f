#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

class RunLookup;

/// The hidden sections (rows or columns) of one table axis, kept as maximal runs.
///
/// Every query costs O(log n) for n runs and every change O(log n + runs swallowed), however many
/// sections are concerned. The runs form a red-black tree ordered by start; a node knows how many
/// sections are hidden in its left and in its right subtree, so that one descent turns a section
/// into its index among the visible ones or back.
///
/// *Units*: sections are counted from 0. Any value may be passed: a range is cut to
/// 0..LLONG_MAX - 1, so that each length and each end of a run fits and LLONG_MAX stays visible.
/// The number of sections is unknown here; the caller clamps to it.
///
/// *Memory*: 44 bytes a run, given back when nothing is hidden any more, and 4 bytes a run while
/// many runs are looked up and not changed.
///
/// *Threads*: one; the const lookups keep count of themselves.
class HiddenSections
{
public:
    class RunCursor;
    class VisibleCursor;

    HiddenSections();
    ~HiddenSections();
    HiddenSections(const HiddenSections &) = delete;
    HiddenSections &operator=(const HiddenSections &) = delete;

    bool isEmpty() const { return m_tree.root == None; }
    void clear();

    /// Hides or shows a section or an inclusive range, which is ignored when from > to. Returns
    /// whether any section changed; if so, the cursors become invalid.
    bool hide(long long section) { return hide(section, section); }
    bool hide(long long from, long long to);
    bool show(long long section) { return show(section, section); }
    bool show(long long from, long long to);

    bool contains(long long section) const;

    /// The number of visible sections below the section. For a hidden one this is the index of its
    /// run's start, which the first visible section after the run also has. Negative sections map
    /// to themselves.
    long long visibleIndex(long long section) const { return section - hiddenBefore(section); }

    /// The inverse on visible sections; LLONG_MAX when the section would lie beyond.
    long long sectionOfVisibleIndex(long long index) const;

    /// The number of hidden sections below the section.
    long long hiddenBefore(long long section) const;

    /// The smallest visible section that is neither below the given one nor below 0.
    long long nextVisible(long long section) const;

    /// The largest visible section that is not above the given one, or -1.
    long long previousVisible(long long section) const;

    long long hiddenCount() const { return totalOf(m_tree.root) + m_appended; }
    int runCount() const { return m_runCount; }

private:
    friend struct HiddenSectionsProbe; // checks the invariants in the test

    using NodeId = std::uint32_t;
    static constexpr NodeId None = 0; // a node as well: black, without a run
    enum Side { Left, Right };

    // What a descent reads fills half a cache line; the rest of the node is kept apart.
    struct alignas(32) Node {
        long long start;
        long long length;
        long long leftHidden;
        NodeId child[2];
    };

    // Nodes never move and are addressed by number. Blocks of one size keep the slack small and
    // let the store grow without a copy.
    static constexpr int blockBits = 9;
    static constexpr NodeId blockSize = NodeId(1) << blockBits;
    struct Block {
        Node nodes[blockSize];
        long long rightHidden[blockSize];
        NodeId parentAndColour[blockSize]; // the lowest bit is set in red nodes
    };

    // The root is black and has no parent. The black height counts the black nodes from the root
    // down to any missing child.
    struct Tree {
        NodeId root = None;
        int blackHeight = 0;
    };

    Block &blockOf(NodeId id) const { return *m_blocks[id >> blockBits]; }
    Node &node(NodeId id) const { return blockOf(id).nodes[id % blockSize]; }
    NodeId &parentAndColour(NodeId id) const { return blockOf(id).parentAndColour[id % blockSize]; }
    long long &hiddenOn(NodeId id, int side) const;
    long long totalOf(NodeId id) const;
    long long endOf(NodeId id) const { return node(id).start + node(id).length; }
    NodeId parentOf(NodeId id) const { return parentAndColour(id) >> 1; }
    bool isRed(NodeId id) const { return (parentAndColour(id) & 1) != 0; }
    int sideOf(NodeId id) const { return node(parentOf(id)).child[Right] == id ? Right : Left; }
    NodeId outermost(NodeId id, int side) const;

    NodeId lastRunStartingBy(long long section) const;
    NodeId firstRunEndingAfter(long long section) const;
    NodeId runAfter(NodeId id) const;
    const RunLookup *lookup() const;
    void dropLookup();

    void insertRun(long long start, long long length);
    void appendRun(long long start, long long length);
    void setRun(NodeId id, long long start, long long end);
    void removeRun(NodeId id);
    void removeRuns(long long from, long long to);
    void finishRemoval(bool lastRemoved);
    void settleAppended();

    NodeId allocate(long long start, long long length);
    void release(NodeId id);
    void releaseSubtree(NodeId root);

    void setParent(NodeId id, NodeId parent);
    void setRed(NodeId id, bool red);
    void setChild(NodeId parent, int side, NodeId child, long long hidden);
    void replaceChild(Tree &tree, NodeId child, NodeId replacement);
    void addAbove(NodeId id, long long added, NodeId ancestor = None);
    void rotate(Tree &tree, NodeId top, int side);
    void repairRedPair(Tree &tree, NodeId id);
    void repairMissingBlack(NodeId parent, int side);
    Tree detach(NodeId root, int blackHeight);
    Tree join(Tree left, NodeId middle, Tree right);
    Tree join(Tree left, Tree right);
    std::pair<Tree, Tree> split(Tree tree, long long start);

    std::vector<std::unique_ptr<Block>> m_blocks;
    NodeId m_firstUnused = None;
    NodeId m_freeList = None; // linked by the parents
    Tree m_tree;
    NodeId m_last = None; // the run with the highest start
    int m_runCount = 0;

    // What the right totals on the way from the root to the last run still lack: adding runs in
    // order would else spend most of its time on this longest way of the tree.
    long long m_appended = 0;

    mutable std::unique_ptr<const RunLookup> m_lookup;
    mutable int m_descents = 0; // for lookups since the last change
};

/// Walks over the hidden runs in order, at O(1) a step on average.
class HiddenSections::RunCursor
{
public:
    /// Starts at the first run that ends after the section.
    RunCursor(const HiddenSections &hidden, long long section)
        : m_hidden(&hidden)
        , m_run(hidden.firstRunEndingAfter(section))
    {
    }

    bool isValid() const { return m_run != None; }
    long long start() const { return m_hidden->node(m_run).start; }

    /// The first section after the run; it is visible.
    long long end() const { return m_hidden->endOf(m_run); }
    void next() { m_run = m_hidden->runAfter(m_run); }

private:
    const HiddenSections *m_hidden;
    NodeId m_run;
};

/// Walks over the visible sections in order and jumps over the hidden runs, without a search from
/// the root for each.
class HiddenSections::VisibleCursor
{
public:
    /// Starts at the first visible section that is not below the given one.
    VisibleCursor(const HiddenSections &hidden, long long section)
        : m_nextRun(hidden, section)
        , m_section(section)
    {
        leaveRun();
    }

    long long section() const { return m_section; }

    /// The walk has no end of its own: the caller stops at its number of sections.
    void next()
    {
        ++m_section;
        leaveRun();
    }

private:
    void leaveRun()
    {
        if (m_nextRun.isValid() && m_nextRun.start() <= m_section) {
            m_section = m_nextRun.end();
            m_nextRun.next();
        }
    }

    RunCursor m_nextRun;
    long long m_section;
};
