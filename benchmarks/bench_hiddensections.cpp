// The store of hidden sections beside the two obvious ones: a sorted array of runs with the sums of
// their lengths, which is slow to change, and a map of runs, which is slow to count in.

#include <tul-util-gui/mdatable/hiddensections_p.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <random>
#include <vector>

namespace
{

class SortedRuns
{
public:
    void hide(long long section)
    {
        if (!m_runs.empty() && m_runs.back().end >= section) {
            if (m_runs.back().end == section) {
                ++m_runs.back().end;
                ++m_runs.back().hiddenThrough;
            }
            return; // adding in order is all that is measured
        }
        const long long before = m_runs.empty() ? 0 : m_runs.back().hiddenThrough;
        m_runs.push_back({section, section + 1, before + 1});
    }

    long long visibleIndex(long long section) const
    {
        const auto after = std::partition_point(
            m_runs.begin(), m_runs.end(), [&](const Run &run) { return run.start < section; });
        if (after == m_runs.begin())
            return section;
        const Run &run = *std::prev(after);
        return section - run.hiddenThrough + std::max(run.end - section, 0LL);
    }

    long long sectionOfVisibleIndex(long long index) const
    {
        const auto after = std::partition_point(m_runs.begin(), m_runs.end(), [&](const Run &run) {
            return run.end - run.hiddenThrough <= index;
        });
        return after == m_runs.begin() ? index : index + std::prev(after)->hiddenThrough;
    }

private:
    struct Run {
        long long start, end, hiddenThrough;
    };
    std::vector<Run> m_runs;
};

class MappedRuns
{
public:
    void hide(long long section)
    {
        const auto after = m_ends.upper_bound(section);
        const auto before = after == m_ends.begin() ? m_ends.end() : std::prev(after);
        if (before != m_ends.end() && before->second > section)
            return;
        long long end = section + 1;
        if (after != m_ends.end() && after->first == end) {
            end = after->second;
            m_ends.erase(after);
        }
        if (before != m_ends.end() && before->second == section)
            before->second = end;
        else
            m_ends.emplace(section, end);
    }

    long long visibleIndex(long long section) const
    {
        long long hidden = 0;
        for (auto run = m_ends.begin(); run != m_ends.end() && run->first < section; ++run)
            hidden += std::min(run->second, section) - run->first;
        return section - hidden;
    }

    long long sectionOfVisibleIndex(long long index) const
    {
        for (auto run = m_ends.begin(); run != m_ends.end() && run->first <= index; ++run)
            index += run->second - run->first;
        return index;
    }

private:
    std::map<long long, long long> m_ends; // by start
};

template<typename Store> void hideEveryOther(Store &store, long long runs)
{
    for (long long i = 0; i < runs; ++i)
        store.hide(2 * i);
}

std::vector<long long> randomSections(long long runs)
{
    std::mt19937_64 random(1);
    std::vector<long long> sections(1 << 18);
    for (long long &section : sections)
        section = static_cast<long long>(random() % static_cast<unsigned long long>(2 * runs));
    return sections;
}

std::size_t allocatedBytes()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

template<typename Store> void HideInOrder(benchmark::State &state)
{
    for (auto _ : state) {
        const std::size_t before = allocatedBytes();
        Store store;
        hideEveryOther(store, state.range(0));
        benchmark::DoNotOptimize(store);
        state.counters["MiB"] = double(allocatedBytes() - before) / (1 << 20);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template<typename Store> void HideInRandomOrder(benchmark::State &state)
{
    std::vector<long long> sections(static_cast<std::size_t>(state.range(0)));
    for (std::size_t i = 0; i < sections.size(); ++i)
        sections[i] = 2 * static_cast<long long>(i);
    std::shuffle(sections.begin(), sections.end(), std::mt19937(1));
    for (auto _ : state) {
        Store store;
        for (const long long section : sections)
            store.hide(section);
        benchmark::DoNotOptimize(store);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template<typename Store> void VisibleIndex(benchmark::State &state)
{
    Store store;
    hideEveryOther(store, state.range(0));
    const std::vector<long long> sections = randomSections(state.range(0));
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(store.visibleIndex(sections[i++ % sections.size()]));
}

template<typename Store> void SectionOfVisibleIndex(benchmark::State &state)
{
    Store store;
    hideEveryOther(store, state.range(0));
    const std::vector<long long> sections = randomSections(state.range(0));
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(store.sectionOfVisibleIndex(sections[i++ % sections.size()] / 2));
}

// The same lookups where each follows a change and so descends in the tree.
void ShowHideAndVisibleIndex(benchmark::State &state)
{
    HiddenSections store;
    hideEveryOther(store, state.range(0));
    const std::vector<long long> sections = randomSections(state.range(0));
    std::size_t i = 0;
    for (auto _ : state) {
        const long long changed = sections[i % sections.size()] & ~1LL;
        store.show(changed);
        store.hide(changed);
        benchmark::DoNotOptimize(store.visibleIndex(sections[(i + 1) % sections.size()]));
        ++i;
    }
}

void HideAndShowRange(benchmark::State &state)
{
    HiddenSections store;
    hideEveryOther(store, 1000);
    for (auto _ : state) {
        store.hide(5000, 5000 + state.range(0));
        store.show(5000, 5000 + state.range(0));
    }
}

void HideRangeOverAllRuns(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        HiddenSections store;
        hideEveryOther(store, state.range(0));
        state.ResumeTiming();
        store.hide(1, 2 * state.range(0));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template<bool withCursor> void WalkVisibleSections(benchmark::State &state)
{
    HiddenSections store;
    hideEveryOther(store, state.range(0));
    const std::vector<long long> sections = randomSections(state.range(0));
    constexpr int viewport = 40;
    std::size_t i = 0;
    for (auto _ : state) {
        long long section = sections[i++ % sections.size()];
        HiddenSections::VisibleCursor cursor(store, section);
        for (int step = 0; step < viewport; ++step) {
            if (withCursor) {
                benchmark::DoNotOptimize(cursor.section());
                cursor.next();
            } else {
                section = store.nextVisible(section) + 1;
                benchmark::DoNotOptimize(section);
            }
        }
    }
    state.SetItemsProcessed(state.iterations() * viewport);
}

BENCHMARK_TEMPLATE(HideInOrder, HiddenSections)->Arg(1000)->Arg(500000);
BENCHMARK_TEMPLATE(HideInOrder, SortedRuns)->Arg(1000)->Arg(500000);
BENCHMARK_TEMPLATE(HideInOrder, MappedRuns)->Arg(1000)->Arg(500000);
BENCHMARK_TEMPLATE(HideInRandomOrder, HiddenSections)->Arg(1000)->Arg(500000);
BENCHMARK_TEMPLATE(HideInRandomOrder, MappedRuns)->Arg(1000)->Arg(500000);
BENCHMARK_TEMPLATE(VisibleIndex, HiddenSections)->Arg(100)->Arg(10000)->Arg(500000);
BENCHMARK_TEMPLATE(VisibleIndex, SortedRuns)->Arg(100)->Arg(10000)->Arg(500000);
BENCHMARK_TEMPLATE(VisibleIndex, MappedRuns)->Arg(100)->Arg(10000);
BENCHMARK_TEMPLATE(SectionOfVisibleIndex, HiddenSections)->Arg(100)->Arg(10000)->Arg(500000);
BENCHMARK_TEMPLATE(SectionOfVisibleIndex, SortedRuns)->Arg(100)->Arg(10000)->Arg(500000);
BENCHMARK_TEMPLATE(SectionOfVisibleIndex, MappedRuns)->Arg(100)->Arg(10000);
BENCHMARK(ShowHideAndVisibleIndex)->Arg(100)->Arg(10000)->Arg(500000);
BENCHMARK(HideAndShowRange)->Arg(100000000)->Arg(1000000000000);
BENCHMARK(HideRangeOverAllRuns)->Arg(1000)->Arg(500000);
BENCHMARK_TEMPLATE(WalkVisibleSections, true)->Arg(1000)->Arg(500000);
BENCHMARK_TEMPLATE(WalkVisibleSections, false)->Arg(1000)->Arg(500000);

} // namespace

BENCHMARK_MAIN();
