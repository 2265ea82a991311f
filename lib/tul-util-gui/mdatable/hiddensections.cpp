#include <tul-util-gui/mdatable/hiddensections_p.h>
#include <tul-util-gui/mdatable/runlookup_p.h>

#include <algorithm>
#include <limits>

namespace
{

constexpr long long highest = std::numeric_limits<long long>::max();

// Fewer runs are found fast enough in the tree.
constexpr int minRunsForLookup = 4096;

} // namespace

HiddenSections::HiddenSections() = default;
HiddenSections::~HiddenSections() = default;

void HiddenSections::clear()
{
    dropLookup();
    m_blocks.clear();
    m_firstUnused = None;
    m_freeList = None;
    m_tree = {};
    m_last = None;
    m_runCount = 0;
    m_appended = 0;
}

bool HiddenSections::hide(long long from, long long to)
{
    from = std::max(from, 0LL);
    to = std::min(to, highest - 1);
    if (from > to)
        return false;

    // The runs that overlap the range or touch it at either end become one with it.
    const NodeId first = firstRunEndingAfter(from - 1);
    if (first == None || node(first).start > to + 1) {
        insertRun(from, to - from + 1);
        return true;
    }
    const long long firstEnd = endOf(first);
    const NodeId last = firstEnd > to ? first : lastRunStartingBy(to + 1);
    const long long start = std::min(node(first).start, from);
    const long long end = std::max(endOf(last), to + 1);
    if (end - start == node(first).length)
        return false;
    if (last != first)
        removeRuns(firstEnd, node(last).start);
    setRun(first, start, end);
    return true;
}

bool HiddenSections::show(long long from, long long to)
{
    from = std::max(from, 0LL);
    to = std::min(to, highest - 1);
    const NodeId first = from > to ? NodeId(None) : firstRunEndingAfter(from);
    if (first == None || node(first).start > to)
        return false;

    const long long start = node(first).start;
    const long long end = endOf(first);
    if (end <= to) { // more runs may follow
        if (start < from)
            setRun(first, start, from);
        const NodeId last = lastRunStartingBy(to);
        if (endOf(last) > to + 1)
            setRun(last, to + 1, endOf(last));
        removeRuns(from, to);
    } else if (start < from) {
        setRun(first, start, from);
        if (end > to + 1)
            insertRun(to + 1, end - to - 1);
    } else if (end > to + 1) {
        setRun(first, to + 1, end);
    } else {
        removeRun(first);
    }
    return true;
}

bool HiddenSections::contains(long long section) const
{
    const NodeId run = lastRunStartingBy(section);
    return run != None && section < endOf(run);
}

long long HiddenSections::sectionOfVisibleIndex(long long index) const
{
    const RunLookup *const snapshot = lookup();
    long long hidden = snapshot ? snapshot->hiddenBeforeVisible(index) : RunLookup::unknown;
    if (hidden == RunLookup::unknown) {
        hidden = 0;
        for (NodeId id = m_tree.root; id != None;) {
            const Node &run = node(id);
            if (index >= run.start - (hidden + run.leftHidden)) {
                hidden += run.leftHidden + run.length;
                id = run.child[Right];
            } else {
                id = run.child[Left];
            }
        }
    }
    return index > highest - hidden ? highest : index + hidden;
}

long long HiddenSections::hiddenBefore(long long section) const
{
    if (m_last == None || section >= endOf(m_last))
        return hiddenCount();
    const RunLookup *const snapshot = lookup();
    long long hidden = snapshot ? snapshot->hiddenBefore(section) : RunLookup::unknown;
    if (hidden == RunLookup::unknown) {
        hidden = 0;
        for (NodeId id = m_tree.root; id != None;) {
            const Node &run = node(id);
            if (run.start < section) {
                hidden += run.leftHidden + std::min(run.length, section - run.start);
                id = run.child[Right];
            } else {
                id = run.child[Left];
            }
        }
    }
    return hidden;
}

long long HiddenSections::nextVisible(long long section) const
{
    section = std::max(section, 0LL);
    const NodeId run = lastRunStartingBy(section);
    return run == None ? section : std::max(section, endOf(run));
}

long long HiddenSections::previousVisible(long long section) const
{
    section = std::max(section, -1LL);
    const NodeId run = lastRunStartingBy(section);
    return run != None && section < endOf(run) ? node(run).start - 1 : section;
}

HiddenSections::NodeId HiddenSections::outermost(NodeId id, int side) const
{
    while (node(id).child[side] != None)
        id = node(id).child[side];
    return id;
}

HiddenSections::NodeId HiddenSections::lastRunStartingBy(long long section) const
{
    if (m_last == None || node(m_last).start <= section)
        return m_last;
    NodeId found = None;
    for (NodeId id = m_tree.root; id != None;) {
        const Node &run = node(id);
        const int side = run.start <= section ? Right : Left;
        found = side == Right ? id : found;
        id = run.child[side];
    }
    return found;
}

HiddenSections::NodeId HiddenSections::firstRunEndingAfter(long long section) const
{
    if (m_last == None || endOf(m_last) <= section)
        return None;
    NodeId found = None;
    for (NodeId id = m_tree.root; id != None;) {
        const Node &run = node(id);
        const int side = run.start + run.length > section ? Left : Right;
        found = side == Left ? id : found;
        id = run.child[side];
    }
    return found;
}

HiddenSections::NodeId HiddenSections::runAfter(NodeId id) const
{
    if (node(id).child[Right] != None)
        return outermost(node(id).child[Right], Left);
    while (parentOf(id) != None && sideOf(id) == Right)
        id = parentOf(id);
    return parentOf(id);
}

// Null while a descent is the better way.
const RunLookup *HiddenSections::lookup() const
{
    // Taking the snapshot lasts about as long as this number of descents.
    if (!m_lookup && m_runCount >= minRunsForLookup && ++m_descents > m_runCount / 16)
        m_lookup = std::make_unique<RunLookup>(RunCursor(*this, 0), m_runCount);
    return m_lookup.get();
}

void HiddenSections::dropLookup()
{
    m_lookup.reset();
    m_descents = 0;
}

void HiddenSections::insertRun(long long start, long long length)
{
    if (m_last == None || node(m_last).start < start) {
        appendRun(start, length);
        return;
    }
    settleAppended();
    const NodeId fresh = allocate(start, length);
    NodeId parent = None;
    int side = Left;
    for (NodeId id = m_tree.root; id != None; id = node(id).child[side]) {
        parent = id;
        side = node(id).start < start ? Right : Left;
        hiddenOn(id, side) += length;
    }
    setChild(parent, side, fresh, length);
    repairRedPair(m_tree, fresh);
}

void HiddenSections::appendRun(long long start, long long length)
{
    dropLookup();
    const NodeId fresh = allocate(start, length);
    if (m_last == None) {
        m_tree.root = fresh;
    } else {
        node(m_last).child[Right] = fresh;
        setParent(fresh, m_last);
        m_appended += length;
        hiddenOn(fresh, Right) = -m_appended; // the others on the way lack it, this one does not
    }
    m_last = fresh;
    repairRedPair(m_tree, fresh);
}

// The run keeps its place among the others.
void HiddenSections::setRun(NodeId id, long long start, long long end)
{
    settleAppended();
    Node &run = node(id);
    addAbove(id, end - start - run.length);
    run.start = start;
    run.length = end - start;
}

void HiddenSections::removeRun(NodeId id)
{
    settleAppended();
    const bool lastRemoved = id == m_last;
    addAbove(id, -node(id).length);
    if (node(id).child[Left] != None && node(id).child[Right] != None) {
        // The next run, which has no left child, moves here, and its node goes instead.
        const NodeId next = runAfter(id);
        addAbove(next, -node(next).length, id);
        node(id).start = node(next).start;
        node(id).length = node(next).length;
        m_last = m_last == next ? id : m_last;
        id = next;
    }

    const NodeId parent = parentOf(id);
    const int side = sideOf(id);
    const NodeId child = node(id).child[node(id).child[Left] == None ? Right : Left];
    replaceChild(m_tree, id, child);
    if (child != None) {
        setRed(child, false); // an only child is red, and its parent black
    } else if (!isRed(id)) {
        repairMissingBlack(parent, side);
    }
    release(id);
    finishRemoval(lastRemoved);
}

// Removes the runs that start in the range, into which none reaches from before.
void HiddenSections::removeRuns(long long from, long long to)
{
    const NodeId first = firstRunEndingAfter(from);
    if (first == None || node(first).start > to)
        return;
    if (first == lastRunStartingBy(to)) {
        removeRun(first);
        return;
    }
    settleAppended();
    const auto [before, rest] = split(m_tree, from);
    const auto [removed, after] = split(rest, to + 1);
    m_tree = join(before, after);
    releaseSubtree(removed.root);
    finishRemoval(after.root == None);
}

void HiddenSections::finishRemoval(bool lastRemoved)
{
    if (isEmpty())
        clear();
    else if (lastRemoved)
        m_last = outermost(m_tree.root, Right);
}

// Precedes every change but the appending of a run.
void HiddenSections::settleAppended()
{
    dropLookup();
    for (NodeId id = m_tree.root; id != None && m_appended != 0; id = node(id).child[Right])
        hiddenOn(id, Right) += m_appended;
    m_appended = 0;
}

long long &HiddenSections::hiddenOn(NodeId id, int side) const
{
    return side == Left ? node(id).leftHidden : blockOf(id).rightHidden[id % blockSize];
}

long long HiddenSections::totalOf(NodeId id) const
{
    return id == None ? 0 : hiddenOn(id, Left) + node(id).length + hiddenOn(id, Right);
}

// A red node without relatives.
HiddenSections::NodeId HiddenSections::allocate(long long start, long long length)
{
    NodeId id = m_freeList;
    if (id != None) {
        m_freeList = parentOf(id);
    } else {
        if (m_firstUnused == m_blocks.size() * blockSize) {
            // NOLINTNEXTLINE(modernize-make-unique): it would clear the block first
            m_blocks.push_back(std::unique_ptr<Block>(new Block));
        }
        if (m_firstUnused == None) {
            node(None) = {};
            parentAndColour(None) = 0;
            ++m_firstUnused;
        }
        id = m_firstUnused++;
    }
    node(id) = {start, length, 0, {None, None}};
    hiddenOn(id, Right) = 0;
    parentAndColour(id) = 1;
    ++m_runCount;
    return id;
}

void HiddenSections::release(NodeId id)
{
    setParent(id, m_freeList);
    m_freeList = id;
    --m_runCount;
}

void HiddenSections::releaseSubtree(NodeId root)
{
    // The subtrees to come are linked by their parents, so that no stack is needed.
    NodeId waiting = root;
    while (waiting != None) {
        const NodeId id = waiting;
        waiting = parentOf(id);
        for (const NodeId child : node(id).child) {
            if (child != None) {
                setParent(child, waiting);
                waiting = child;
            }
        }
        release(id);
    }
}

void HiddenSections::setParent(NodeId id, NodeId parent)
{
    parentAndColour(id) = parent << 1 | NodeId(isRed(id));
}

void HiddenSections::setRed(NodeId id, bool red)
{
    parentAndColour(id) = parentOf(id) << 1 | NodeId(red);
}

void HiddenSections::setChild(NodeId parent, int side, NodeId child, long long hidden)
{
    node(parent).child[side] = child;
    hiddenOn(parent, side) = hidden;
    if (child != None)
        setParent(child, parent);
}

void HiddenSections::replaceChild(Tree &tree, NodeId child, NodeId replacement)
{
    const NodeId parent = parentOf(child);
    if (parent == None)
        tree.root = replacement;
    else
        node(parent).child[sideOf(child)] = replacement;
    if (replacement != None)
        setParent(replacement, parent);
}

// Adds to the totals on the way from the node up to the ancestor.
void HiddenSections::addAbove(NodeId id, long long added, NodeId ancestor)
{
    while (id != ancestor && parentOf(id) != None) {
        hiddenOn(parentOf(id), sideOf(id)) += added;
        id = parentOf(id);
    }
}

// Lets the node sink to that side; its child on the other side takes its place.
void HiddenSections::rotate(Tree &tree, NodeId top, int side)
{
    const NodeId rising = node(top).child[!side];
    replaceChild(tree, top, rising);
    setChild(top, !side, node(rising).child[side], hiddenOn(rising, side));
    setChild(rising, side, top, totalOf(top));
}

// Restores the colours from a red node upwards, whose parent may be red as well.
void HiddenSections::repairRedPair(Tree &tree, NodeId id)
{
    while (isRed(parentOf(id))) {
        NodeId parent = parentOf(id);
        const NodeId grandparent = parentOf(parent);
        const int side = sideOf(parent);
        const NodeId uncle = node(grandparent).child[!side];
        if (isRed(uncle)) {
            setRed(parent, false);
            setRed(uncle, false);
            setRed(grandparent, true);
            id = grandparent;
            continue;
        }
        if (sideOf(id) != side) {
            rotate(tree, parent, side);
            std::swap(id, parent);
        }
        setRed(parent, false);
        setRed(grandparent, true);
        rotate(tree, grandparent, !side);
    }
    if (isRed(tree.root)) {
        setRed(tree.root, false);
        ++tree.blackHeight;
    }
}

// Restores the black heights after the subtree on that side has lost one.
void HiddenSections::repairMissingBlack(NodeId parent, int side)
{
    while (parent != None) {
        NodeId sibling = node(parent).child[!side];
        if (isRed(sibling)) {
            setRed(sibling, false);
            setRed(parent, true);
            rotate(m_tree, parent, side);
            sibling = node(parent).child[!side];
        }
        const NodeId inner = node(sibling).child[side];
        NodeId outer = node(sibling).child[!side];
        if (isRed(inner) || isRed(outer)) {
            if (!isRed(outer)) {
                rotate(m_tree, sibling, !side);
                outer = sibling;
                sibling = inner;
            }
            setRed(sibling, isRed(parent));
            setRed(parent, false);
            setRed(outer, false);
            rotate(m_tree, parent, side);
            return;
        }
        setRed(sibling, true);
        if (isRed(parent)) {
            setRed(parent, false);
            return;
        }
        side = sideOf(parent);
        parent = parentOf(parent);
    }
    --m_tree.blackHeight;
}

HiddenSections::Tree HiddenSections::detach(NodeId root, int blackHeight)
{
    if (root == None)
        return {};
    const bool red = isRed(root);
    parentAndColour(root) = 0;
    return {root, blackHeight + (red ? 1 : 0)};
}

// Joins two trees with a node that belongs between them, in time proportional to the difference of
// their black heights.
HiddenSections::Tree HiddenSections::join(Tree left, NodeId middle, Tree right)
{
    if (left.blackHeight == right.blackHeight) {
        setChild(middle, Left, left.root, totalOf(left.root));
        setChild(middle, Right, right.root, totalOf(right.root));
        parentAndColour(middle) = 0;
        return {middle, left.blackHeight + 1};
    }

    // The middle node goes to the edge of the higher tree where a subtree is as high as the lower
    // tree, and takes both as children.
    const int side = left.blackHeight > right.blackHeight ? Right : Left;
    Tree higher = side == Right ? left : right;
    const Tree lower = side == Right ? right : left;
    const long long lowerHidden = totalOf(lower.root);
    const long long added = node(middle).length + lowerHidden;
    NodeId above = None;
    NodeId below = higher.root;
    int blackHeight = higher.blackHeight;
    long long belowHidden = 0;
    while (isRed(below) || blackHeight > lower.blackHeight) {
        blackHeight -= isRed(below) ? 0 : 1;
        belowHidden = hiddenOn(below, side);
        hiddenOn(below, side) += added;
        above = below;
        below = node(below).child[side];
    }
    setChild(middle, !side, below, belowHidden);
    setChild(middle, side, lower.root, lowerHidden);
    setChild(above, side, middle, belowHidden + added);
    setRed(middle, true);
    repairRedPair(higher, middle);
    return higher;
}

HiddenSections::Tree HiddenSections::join(Tree left, Tree right)
{
    if (left.root == None || right.root == None)
        return left.root == None ? right : left;
    const NodeId first = outermost(right.root, Left);
    return join(left, first, split(right, node(first).start + 1).second);
}

// The runs that start before the section and the others. The trees on the way up that are joined
// are ever higher, so that all joins together take no longer than the descent.
std::pair<HiddenSections::Tree, HiddenSections::Tree> HiddenSections::split(Tree tree,
                                                                            long long start)
{
    NodeId id = None;
    for (NodeId below = tree.root; below != None;) {
        id = below;
        below = node(id).child[node(id).start < start ? Right : Left];
    }
    Tree left;
    Tree right;
    int blackHeight = 0;
    while (id != None) {
        const NodeId above = parentOf(id);
        const int ownHeight = isRed(id) ? 0 : 1;
        if (node(id).start < start) {
            left = join(detach(node(id).child[Left], blackHeight), id, left);
        } else {
            right = join(right, id, detach(node(id).child[Right], blackHeight));
        }
        blackHeight += ownHeight;
        id = above;
    }
    return {left, right};
}
