#include "core/operations/Segment.h"

#include <gtest/gtest.h>

#include <QMap>
#include <QRandomGenerator>

#include <numeric>

namespace {

// A take of clips of the given sizes; clip UMIDs "<name>-<index>".
TAKE makeTake(const QByteArray& name, const std::vector<double>& sizes)
{
    TAKE take;
    take.umid = name;
    for (std::size_t i = 0; i < sizes.size(); ++i)
        take.clips.push_back({name + '-' + QByteArray::number(qsizetype(i)), sizes[i], -1});
    take.totalSize = take.remainSize = std::accumulate(sizes.begin(), sizes.end(), 0.0);
    return take;
}

std::vector<int> disksOf(const TAKE& take)
{
    std::vector<int> disks;
    for (const TAKECLIP& clip : take.clips)
        disks.push_back(clip.disk);
    return disks;
}

} // namespace

TEST(SegmentTest, EdgeCases)
{
    int disks = -1;
    // Everything fits: one disk.
    std::vector<TAKE> small{makeTake("a", {10, 20}), makeTake("b", {30}), makeTake("c", {5, 5, 5})};
    ASSERT_EQ(Segment(small.data(), 3, 100, &disks), kSegmentDone);
    EXPECT_EQ(disks, 1);
    // A take larger than the capacity is split between clips, in clip order.
    std::vector<TAKE> large{makeTake("big", {30, 30, 30, 30, 30})};
    ASSERT_EQ(Segment(large.data(), 1, 70, &disks), kSegmentDone);
    EXPECT_EQ(disks, 3);
    EXPECT_EQ(disksOf(large[0]), (std::vector<int>{0, 0, 1, 1, 2}));
    // A repeated clip UMID, in one take or across two: nothing placed.
    std::vector<TAKE> repeatedInOne{makeTake("a", {1, 2}), makeTake("b", {1})};
    repeatedInOne[0].clips[1].umid = "a-0";
    std::vector<TAKE> repeatedInTwo{makeTake("a", {1, 2}), makeTake("b", {1})};
    repeatedInTwo[1].clips[0].umid = "a-1";
    for (std::vector<TAKE>* takes : {&repeatedInOne, &repeatedInTwo}) {
        EXPECT_EQ(Segment(takes->data(), 2, 100, &disks), kSegmentRepeatedUmid);
        for (const TAKE& take : *takes)
            EXPECT_EQ(disksOf(take), std::vector<int>(take.clips.size(), -1));
    }
    // A capacity below the largest clip.
    std::vector<TAKE> tooLarge{makeTake("a", {10, 80}), makeTake("b", {5})};
    EXPECT_EQ(Segment(tooLarge.data(), 2, 79, &disks), kSegmentTooLarge);
}

// Seeded random folders: every clip on exactly one disk, each disk a run of
// each take's clips in order, no disk over the capacity, and no more disks
// than twice the lower bound.
TEST(SegmentTest, RandomFoldersPackWithinTheCapacity)
{
    QRandomGenerator random(2026);
    for (int round = 0; round < 300; ++round) {
        const int takeCount = random.bounded(1, 60);
        std::vector<TAKE> takes;
        double largest = 0;
        double total = 0;
        for (int t = 0; t < takeCount; ++t) {
            std::vector<double> sizes(random.bounded(1, 9));
            for (double& size : sizes) {
                size = random.bounded(1, 1000);
                largest = std::max(largest, size);
                total += size;
            }
            takes.push_back(makeTake("t" + QByteArray::number(t), sizes));
        }
        const double capacity = largest + random.bounded(3000);
        int disks = -1;
        ASSERT_EQ(Segment(takes.data(), takeCount, capacity, &disks), kSegmentDone) << "round " << round;
        const int lowerBound = int(std::ceil(total / capacity));
        EXPECT_GE(disks, lowerBound);
        EXPECT_LE(disks, 2 * lowerBound + 1) << "round " << round;
        QMap<int, double> used;
        for (const TAKE& take : takes) {
            QList<int> runs; // the disks of the take in clip order, one entry per run
            for (const TAKECLIP& clip : take.clips) {
                ASSERT_GE(clip.disk, 0);
                ASSERT_LT(clip.disk, disks);
                used[clip.disk] += clip.size;
                if (runs.isEmpty() || runs.back() != clip.disk) {
                    EXPECT_FALSE(runs.contains(clip.disk))
                        << "round " << round << " take " << take.umid.constData();
                    runs.append(clip.disk);
                }
            }
        }
        for (auto it = used.begin(); it != used.end(); ++it)
            EXPECT_LE(it.value(), capacity) << "round " << round << " disk " << it.key();
    }
}
