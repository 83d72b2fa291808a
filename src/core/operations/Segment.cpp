#include "core/operations/Segment.h"

#include <QSet>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

namespace {

// The trials of a pass choose their one or two whole takes among this many of
// the largest remaining takes: with up to this many takes left every choice
// is tried, and a folder of thousands of takes still packs in well under a
// second.
constexpr int kTrialWindow = 40;
// At most this many places out of order: QuickSort inserts instead of partitioning.
constexpr int kFewOutOfOrder = 32;

// The remaining takes by the size of their next clip, smallest first, so
// that the search for the take to split looks only at takes whose next clip
// still fits; with each take's position in the take order, which decides
// between runs of equal size. Segment keeps it up to date across passes.
struct LeadIndex
{
    std::vector<std::pair<double, int>> leads; // (next clip's size, take), ascending
    std::vector<int> positions;                // by take

    static double leadOf(const TAKE& take) { return take.clips[std::size_t(take.begin)].size; }
    void build(const TAKE* takes, int count, const int* order, int takeCount)
    {
        leads.clear();
        for (int i = 0; i < count; ++i)
            leads.emplace_back(leadOf(takes[order[i]]), order[i]);
        std::sort(leads.begin(), leads.end());
        positions.assign(std::size_t(takeCount), -1);
        setPositions(count, order);
    }
    void setPositions(int count, const int* order)
    {
        for (int i = 0; i < count; ++i)
            positions[std::size_t(order[i])] = i;
    }
    // The take's next clip changed from the one of that size (it is finished
    // when none is left).
    void update(const TAKE* takes, int t, double oldLead)
    {
        const auto old = std::lower_bound(leads.begin(), leads.end(), std::make_pair(oldLead, t));
        if (old != leads.end() && old->second == t)
            leads.erase(old);
        const TAKE& take = takes[t];
        if (take.begin < take.clipCount()) {
            const std::pair<double, int> entry(leadOf(take), t);
            leads.insert(std::lower_bound(leads.begin(), leads.end(), entry), entry);
        }
    }
};

void greedyPack(takeTodisk* plan, int count, TAKE* takes, const int* order, double capacity, double maxClip,
                const LeadIndex& index)
{
    // Whole takes, largest first. The take order is sorted by remaining size,
    // so each next take that fits is found by bisection; a take that did not
    // fit never fits later, as the plan only grows.
    int position = 0;
    while (position < count) {
        const int first =
            int(std::partition_point(order + position, order + count,
                                     [&](int t) { return !(plan->size + takes[t].remainSize <= capacity); }) -
                order);
        if (first >= count)
            break;
        TAKE& take = takes[order[first]];
        if (take.end != take.clipCount()) {
            plan->size += take.remainSize;
            plan->takes.push_back(order[first]);
            take.end = take.clipCount();
        }
        position = first + 1;
    }
    // One take split, when a take is left out: the one whose leading clips
    // fill the rest best, the earliest in the take order on a tie.
    if (plan->count() >= count || !(plan->size + maxClip <= capacity))
        return;
    int best = -1;
    int bestPosition = count;
    double bestRun = 0;
    for (const auto& [lead, t] : index.leads) {
        if (!(plan->size + lead <= capacity))
            break;
        TAKE& take = takes[t];
        if (take.end == take.clipCount())
            continue;
        double run = 0;
        int next = take.begin;
        while (next < take.clipCount() && run + take.clips[std::size_t(next)].size + plan->size <= capacity)
            run += take.clips[std::size_t(next++)].size;
        const int at = index.positions[std::size_t(t)];
        if (run > bestRun || (run == bestRun && run > 0 && at < bestPosition)) {
            if (best >= 0)
                takes[best].end = takes[best].begin;
            best = t;
            bestPosition = at;
            bestRun = run;
            take.end = next;
        }
    }
    if (best >= 0) {
        plan->size += bestRun;
        plan->takes.push_back(best);
    }
}

// The open disks: numbers and free space in parallel, the first count open.
struct DiskList
{
    std::vector<double> freeSpaces;
    std::vector<int> numbers;
    int count = 0;
    double freeTotal = 0;
    int created = 0;

    void open(double capacity, bool countFree)
    {
        if (count < int(numbers.size())) {
            numbers[count] = created;
            freeSpaces[count] = capacity;
        } else {
            numbers.push_back(created);
            freeSpaces.push_back(capacity);
        }
        ++count;
        ++created;
        if (countFree)
            freeTotal += capacity;
    }
    double firstFree() const { return count > 0 ? freeSpaces[0] : 0; }
    void sort() { QuickSort(freeSpaces.data(), count, numbers.data(), &freeTotal); }
};

} // namespace

template <typename T> void Quick_Real(T* values, int* indices, int low, int high)
{
    for (;;) {
        const T pivot = (values[low] + values[high]) * 0.5;
        if (low >= high)
            return;
        int i = low;
        int j = high;
        do {
            while (values[i] >= pivot && i < high)
                ++i;
            while (values[j] <= pivot && j > low)
                --j;
            if (i < j) {
                std::swap(values[i], values[j]);
                std::swap(indices[i], indices[j]);
                --j;
                ++i;
            } else if (i == j) {
                // Nothing left between them: the one value stays on its side.
                if (values[i] >= pivot)
                    ++i;
                else
                    --j;
            }
        } while (i <= j);
        if (low < j)
            Quick_Real(values, indices, low, j);
        if (i >= high)
            return;
        low = i;
    }
}

template <typename T> void QuickSort(T* values, int count, int* indices, T* sum)
{
    // The lists sorted again after each pass are out of order in a few
    // places only; insertion puts those right in about linear time, where
    // the partitioning slows down to many times that.
    int descents = 0;
    for (int i = 1; i < count && descents <= kFewOutOfOrder; ++i)
        descents += values[i - 1] < values[i] ? 1 : 0;
    if (descents <= kFewOutOfOrder) {
        for (int i = 1; i < count; ++i) {
            const T value = values[i];
            const int index = indices[i];
            int j = i;
            for (; j > 0 && values[j - 1] < value; --j) {
                values[j] = values[j - 1];
                indices[j] = indices[j - 1];
            }
            values[j] = value;
            indices[j] = index;
        }
    } else {
        Quick_Real(values, indices, 0, count - 1);
    }
    T total = 0;
    for (int i = 0; i < count; ++i)
        total += values[i];
    *sum = total;
}

template void Quick_Real<double>(double*, int*, int, int);
template void QuickSort<double>(double*, int, int*, double*);

int CheckTakeID(const TAKE* takes, int takeCount)
{
    // Every clip UMID once; a hash keeps it linear for thousands of takes.
    QSet<QByteArray> seen;
    for (int t = 0; t < takeCount; ++t)
        for (const TAKECLIP& clip : takes[t].clips) {
            if (seen.contains(clip.umid))
                return kSegmentRepeatedUmid;
            seen.insert(clip.umid);
        }
    return 1;
}

double MaxClipSize(const TAKE* takes, int count, const int* order)
{
    double largest = 0;
    for (int i = 0; i < count; ++i)
        for (const TAKECLIP& clip : takes[order[i]].clips)
            largest = std::max(largest, clip.size);
    return largest;
}

double MinClipSize(const TAKE* takes, int count, const int* order)
{
    double smallest = 8589934592.0;
    for (int i = 0; i < count; ++i)
        for (const TAKECLIP& clip : takes[order[i]].clips)
            smallest = std::min(smallest, clip.size);
    return smallest;
}

void TailorTake(const TAKE* takes, double* sizes, int* order, int* count, double* sum)
{
    for (int i = 0; i < *count; ++i)
        if (takes[order[i]].remainSize == 0)
            sizes[i] = 0;
    QuickSort(sizes, *count, order, sum);
    while (*count > 0 && sizes[*count - 1] == 0)
        --*count;
}

void TailorDisk(double minClipSize, double* freeSpaces, int* count, int* diskNumbers, double* sum)
{
    QuickSort(freeSpaces, *count, diskNumbers, sum);
    while (*count > 0 && minClipSize > freeSpaces[*count - 1]) {
        *sum -= freeSpaces[*count - 1];
        --*count;
    }
}

void GreedyPack(takeTodisk* plan, int count, TAKE* takes, const int* order, double capacity)
{
    int takeCount = 0;
    for (int i = 0; i < count; ++i)
        takeCount = std::max(takeCount, order[i] + 1);
    LeadIndex index;
    index.build(takes, count, order, takeCount);
    greedyPack(plan, count, takes, order, capacity, MaxClipSize(takes, count, order), index);
}

int Segment(TAKE* takes, int takeCount, double capacity, int* diskCount)
{
    if (CheckTakeID(takes, takeCount) == kSegmentRepeatedUmid)
        return kSegmentRepeatedUmid;

    std::vector<int> order(takeCount);
    std::vector<double> sizes(takeCount);
    int estimate = 0;
    double running = 0;
    for (int t = 0; t < takeCount; ++t) {
        order[t] = t;
        sizes[t] = takes[t].totalSize;
        running += takes[t].totalSize;
        const double whole = std::trunc(running / capacity);
        estimate += int(whole);
        running -= whole * capacity;
    }
    if (running != 0)
        ++estimate;
    *diskCount = estimate;

    if (MaxClipSize(takes, takeCount, order.data()) > capacity) {
        std::fputs("It's impossible to store the biggest clip with these disks!\n", stderr);
        return kSegmentTooLarge;
    }

    DiskList disks;
    disks.freeSpaces.reserve(2 * std::size_t(estimate));
    disks.numbers.reserve(2 * std::size_t(estimate));
    for (int d = 0; d < estimate; ++d)
        disks.open(capacity, false);
    int count = takeCount;
    double takeTotal = 0;
    QuickSort(sizes.data(), count, order.data(), &takeTotal);

    // MinClipSize and MaxClipSize of the remaining takes, from each take's
    // smallest and largest clip (all its clips, placed or not).
    std::vector<double> takeMin(std::size_t(takeCount), 0);
    std::vector<double> takeMax(std::size_t(takeCount), 0);
    for (int t = 0; t < takeCount; ++t) {
        takeMin[std::size_t(t)] = MinClipSize(takes, 1, &t);
        takeMax[std::size_t(t)] = MaxClipSize(takes, 1, &t);
    }
    const auto smallestClip = [&] {
        double smallest = 8589934592.0;
        for (int i = 0; i < count; ++i)
            smallest = std::min(smallest, takeMin[std::size_t(order[i])]);
        return smallest;
    };
    const auto largestClip = [&] {
        double largest = 0;
        for (int i = 0; i < count; ++i)
            largest = std::max(largest, takeMax[std::size_t(order[i])]);
        return largest;
    };
    const auto tidyDisks = [&] {
        TailorDisk(smallestClip(), disks.freeSpaces.data(), &disks.count, disks.numbers.data(),
                   &disks.freeTotal);
        const int open = disks.count;
        if (largestClip() > disks.firstFree())
            disks.open(capacity, true);
        if (takeTotal > disks.freeTotal) {
            const int more = int(std::ceil((takeTotal - disks.freeTotal) / capacity));
            for (int d = 0; d < more; ++d)
                disks.open(capacity, false);
        }
        // TailorDisk left the list sorted and its total right unless disks were opened.
        if (disks.count != open)
            disks.sort();
    };

    // Phase 1: takes too large for any open disk fill disks with their
    // leading clips, largest free space first.
    disks.sort();
    while (count > 0 && sizes[0] >= disks.firstFree() && disks.firstFree() != 0) {
        for (;;) {
            TAKE& take = takes[order[0]];
            if (take.clips[take.begin].size > disks.firstFree()) {
                std::fputs("The disk capacity is too small\n", stderr);
                return kSegmentTooLarge;
            }
            while (take.begin < take.clipCount() && take.clips[take.begin].size <= disks.freeSpaces[0]) {
                TAKECLIP& clip = take.clips[take.begin];
                clip.disk = disks.numbers[0];
                disks.freeSpaces[0] -= clip.size;
                take.remainSize -= clip.size;
                sizes[0] -= clip.size;
                takeTotal -= clip.size;
                take.begin = take.mark = take.end = take.begin + 1;
            }
            const bool finished = take.remainSize == 0;
            if (finished) {
                take.pending = 0;
                QuickSort(sizes.data(), count, order.data(), &takeTotal);
                if (count > 0 && sizes[count - 1] == 0)
                    --count;
            }
            tidyDisks();
            if (finished || count == 0 || sizes[0] < disks.firstFree())
                break;
        }
        QuickSort(sizes.data(), count, order.data(), &takeTotal);
    }

    // Phase 2: each pass fills the disk of most free space with the best of
    // the trials (none, one or two takes chosen whole, then a greedy fill).
    takeTodisk plan;
    takeTodisk best;
    plan.takes.reserve(takeCount);
    best.takes.reserve(takeCount);
    LeadIndex index;
    index.build(takes, count, order.data(), takeCount);
    std::vector<double> leadsBefore;
    while (count > 0) {
        const double room = disks.freeSpaces[0];
        int kmax = count == 1 ? 1 : 2;
        while (kmax > 0) {
            double smallest = 0;
            for (int i = count - kmax; i < count; ++i)
                smallest += sizes[i];
            if (smallest <= room)
                break;
            --kmax;
        }
        plan.takes.clear();
        plan.size = 0;
        plan.disk = disks.numbers[0];
        best = plan;

        if (disks.count == 1 && room >= takeTotal) {
            for (int i = 0; i < count; ++i) {
                TAKE& take = takes[order[i]];
                for (int c = take.begin; c < take.clipCount(); ++c)
                    take.clips[c].disk = disks.numbers[0];
                take.begin = take.mark = take.end = take.clipCount();
                take.remainSize = 0;
                take.pending = 0;
            }
            disks.freeSpaces[0] = disks.freeTotal - takeTotal;
            count = 0;
            break;
        }

        const double maxClip = largestClip();
        const int window = std::min(count, kTrialWindow);
        const auto trial = [&](int first, int second) {
            plan.takes.clear();
            plan.size = 0;
            double chosen = 0;
            for (const int position : {first, second})
                if (position >= 0) {
                    chosen += takes[order[position]].remainSize;
                    plan.takes.push_back(order[position]);
                }
            if (!(room >= chosen))
                return;
            for (const int t : plan.takes)
                takes[t].end = takes[t].clipCount();
            plan.size = chosen;
            greedyPack(&plan, count, takes, order.data(), room, maxClip, index);
            if (plan.size > best.size) {
                for (const int t : best.takes)
                    takes[t].mark = takes[t].begin;
                for (const int t : plan.takes) {
                    takes[t].mark = takes[t].end;
                    takes[t].end = takes[t].begin;
                }
                best.takes.assign(plan.takes.begin(), plan.takes.end());
                best.size = plan.size;
            } else {
                for (const int t : plan.takes)
                    takes[t].end = takes[t].begin;
            }
        };
        // A plan that fills the disk exactly cannot be bettered.
        trial(-1, -1);
        for (int a = 0; kmax >= 1 && a < window && best.size < room; ++a)
            trial(a, -1);
        for (int a = 0; kmax >= 2 && a < window && best.size < room; ++a)
            for (int b = a + 1; b < window && best.size < room; ++b)
                trial(a, b);

        if (best.takes.empty()) // cannot happen: the first disk always holds the largest clip
            return kSegmentTooLarge;
        leadsBefore.clear();
        for (const int t : best.takes)
            leadsBefore.push_back(LeadIndex::leadOf(takes[t]));
        for (const int t : best.takes) {
            TAKE& take = takes[t];
            for (int c = take.begin; c < take.mark; ++c) {
                take.clips[c].disk = best.disk;
                take.remainSize -= take.clips[c].size;
            }
            take.begin = take.end = take.mark;
            if (take.mark == take.clipCount())
                take.pending = 0;
        }
        for (int i = 0; i < count; ++i)
            sizes[i] = takes[order[i]].remainSize;
        disks.freeSpaces[0] -= best.size;
        TailorTake(takes, sizes.data(), order.data(), &count, &takeTotal);
        for (std::size_t i = 0; i < best.takes.size(); ++i)
            index.update(takes, best.takes[i], leadsBefore[i]);
        index.setPositions(count, order.data());
        tidyDisks();
    }
    *diskCount = disks.created;
    return kSegmentDone;
}
