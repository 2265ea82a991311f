#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A snapshot of the runs of HiddenSections for many lookups between two changes.
///
/// The nodes of many runs do not fit into a processor's caches, so that a descent waits for memory
/// at each of the lower levels. Groups of runs with 16-bit offsets take little more than 4 bytes a
/// run. A group too wide for such offsets is unknown here, as are the last runs, which fill none.
class RunLookup
{
public:
    static constexpr long long unknown = -1;

    /// The cursor stands on the first run.
    template<typename RunCursor> RunLookup(RunCursor run, int runCount);

    /// The number of hidden sections below the section, or unknown.
    long long hiddenBefore(long long section) const;

    /// The number of hidden sections below the visible one with that index, or unknown.
    long long hiddenBeforeVisible(long long index) const;

    std::size_t bytes() const { return m_groups.size() * (sizeof(Group) + 2 * sizeof(long long)); }

private:
    static constexpr int groupSize = 64;

    struct Group {
        std::uint16_t start[groupSize]; // of each run, from that of the group
        std::uint16_t hidden[groupSize]; // in the group up to the end of each run; 0: too wide
    };

    template<typename Condition>
    static std::size_t leadingCount(std::size_t places, Condition holds);
    const Group *groupOf(const std::vector<long long> &groupKeys, long long key) const;
    std::size_t indexOf(const Group *group) const { return group - m_groups.data(); }

    std::vector<long long> m_starts;
    std::vector<long long> m_visibleStarts; // the visible indices of the starts
    std::vector<Group> m_groups;
};

template<typename RunCursor>
RunLookup::RunLookup(RunCursor run, int runCount)
    : m_starts(static_cast<std::size_t>(runCount / groupSize))
    , m_visibleStarts(m_starts.size())
    , m_groups(m_starts.size())
{
    long long hiddenBeforeGroup = 0;
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        m_starts[i] = run.start();
        m_visibleStarts[i] = run.start() - hiddenBeforeGroup;
        long long hiddenInGroup = 0;
        bool fits = true;
        for (int j = 0; j < groupSize; ++j, run.next()) {
            const long long start = run.start() - m_starts[i];
            hiddenInGroup += run.end() - run.start();
            fits = fits && std::max(start, hiddenInGroup) <= UINT16_MAX;
            m_groups[i].start[j] = static_cast<std::uint16_t>(start);
            m_groups[i].hidden[j] = static_cast<std::uint16_t>(hiddenInGroup);
        }
        if (!fits)
            m_groups[i] = {};
        hiddenBeforeGroup += hiddenInGroup;
    }
}

inline long long RunLookup::hiddenBefore(long long section) const
{
    const Group *const group = groupOf(m_starts, section);
    if (!group)
        return unknown;
    const long long start = m_starts[indexOf(group)];
    const long long offset = section - start;
    const std::size_t run
        = leadingCount(groupSize - 1, [&](std::size_t i) { return group->start[i + 1] <= offset; });
    const long long hiddenBeforeRun = run == 0 ? 0 : group->hidden[run - 1];
    return start - m_visibleStarts[indexOf(group)]
        + std::min<long long>(hiddenBeforeRun + offset - group->start[run], group->hidden[run]);
}

inline long long RunLookup::hiddenBeforeVisible(long long index) const
{
    const Group *const group = groupOf(m_visibleStarts, index);
    if (!group)
        return unknown;
    const long long visibleStart = m_visibleStarts[indexOf(group)];
    const long long offset = index - visibleStart;
    const std::size_t run = leadingCount(groupSize - 1, [&](std::size_t i) {
        return group->start[i + 1] - group->hidden[i] <= offset;
    });
    return m_starts[indexOf(group)] - visibleStart + group->hidden[run];
}

// How many of the first places meet a condition that none after them meets. The loop does not
// branch on the condition, because a processor would mispredict it half of the time.
template<typename Condition>
std::size_t RunLookup::leadingCount(std::size_t places, Condition holds)
{
    std::size_t first = 0;
    while (places > 0) {
        const std::size_t half = (places + 1) / 2;
        first += half & (0 - static_cast<std::size_t>(holds(first + half - 1)));
        places -= half;
    }
    return first;
}

// Null when the key lies in no group or in one that is unknown.
inline const RunLookup::Group *RunLookup::groupOf(const std::vector<long long> &groupKeys,
                                                  long long key) const
{
    const std::size_t count
        = leadingCount(groupKeys.size(), [&](std::size_t i) { return groupKeys[i] <= key; });
    if (count == 0 || count == groupKeys.size())
        return nullptr; // the last group has no known end
    const Group &group = m_groups[count - 1];
    return group.hidden[0] == 0 ? nullptr : &group;
}
