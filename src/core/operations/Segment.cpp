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

// What the trials of one pass share: the largest clip of the remaining takes
// and their positions in the take order by the size of their next clip,
// smallest first (ties by position), so that the search for the take to split
// looks only at takes whose next clip still fits.
struct PassIndex
{
    double maxClip = 0;
    std::vector<int> byLeadClip; // positions in the take order
};

PassIndex makePassIndex(const TAKE* takes, int count, const int* order)
{
    PassIndex index;
    index.maxClip = MaxClipSize(takes, count, order);
    index.byLeadClip.resize(count);
    for (int i = 0; i < count; ++i)
        index.byLeadClip[i] = i;
    const auto lead = [&](int position) {
        const TAKE& take = takes[order[position]];
        return take.clips[take.begin].size;
    };
    std::sort(index.byLeadClip.begin(), index.byLeadClip.end(), [&](int a, int b) {
        const double la = lead(a);
        const double lb = lead(b);
        return la < lb || (la == lb && a < b);
    });
    return index;
}

void greedyPack(takeTodisk* plan, int count, TAKE* takes, const int* order, double capacity,
                const PassIndex& index)
{
    // Whole takes, largest first. The take order is sorted by remaining size,
    // so each next take that fits is found by bisection; a take that did not
    // fit never fits later, as the plan only grows.
    bool left = false;
    int position = 0;
    while (position < count) {
        const int first =
            int(std::partition_point(order + position, order + count,
                                     [&](int t) { return !(plan->size + takes[t].remainSize <= capacity); }) -
                order);
        if (first > position)
            left = std::any_of(order + position, order + first,
                               [&](int t) { return takes[t].end != takes[t].clipCount(); }) ||
                   left;
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
    // One take split: the one whose leading clips fill the rest best, the
    // earliest in the take order on a tie.
    if (!left || !(plan->size + index.maxClip <= capacity))
        return;
    int best = -1;
    int bestPosition = count;
    double bestRun = 0;
    for (const int candidate : index.byLeadClip) {
        TAKE& take = takes[order[candidate]];
        if (!(plan->size + take.clips[take.begin].size <= capacity))
            break;
        if (take.end == take.clipCount())
            continue;
        double run = 0;
        int next = take.begin;
        while (next < take.clipCount() && run + take.clips[next].size + plan->size <= capacity)
            run += take.clips[next++].size;
        if (run > bestRun || (run == bestRun && run > 0 && candidate < bestPosition)) {
            if (best >= 0)
                takes[best].end = takes[best].begin;
            best = order[candidate];
            bestPosition = candidate;
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
    if (count > 1)
        Quick_Real(values, indices, 0, count - 1);
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
    greedyPack(plan, count, takes, order, capacity, makePassIndex(takes, count, order));
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

    const auto tidyDisks = [&] {
        TailorDisk(MinClipSize(takes, count, order.data()), disks.freeSpaces.data(), &disks.count,
                   disks.numbers.data(), &disks.freeTotal);
        if (MaxClipSize(takes, count, order.data()) > disks.firstFree())
            disks.open(capacity, true);
        if (takeTotal > disks.freeTotal) {
            const int more = int(std::ceil((takeTotal - disks.freeTotal) / capacity));
            for (int d = 0; d < more; ++d)
                disks.open(capacity, false);
        }
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

        const PassIndex index = makePassIndex(takes, count, order.data());
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
            greedyPack(&plan, count, takes, order.data(), room, index);
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
        tidyDisks();
    }
    *diskCount = disks.created;
    return kSegmentDone;
}
