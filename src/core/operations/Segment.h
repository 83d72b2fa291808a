#pragma once

#include <QByteArray>

#include <vector>

// The packing of takes onto disks of one capacity, for folder division:
// every clip gets a disk number; a take stays whole on one disk where it can,
// and when it must be split it is split between clips, each disk receiving a
// run of the take's clips in order. Plain functions over value records; sizes
// are bytes held as doubles.

// One clip of a take.
struct TAKECLIP
{
    QByteArray umid; // UTF-8
    double size = 0;
    int disk = -1; // -1 until placed
};

// One take: an ordered run of clips (a single clip is a take of one clip
// carrying the take's own UMID and size).
struct TAKE
{
    QByteArray umid;
    double totalSize = 0;
    double remainSize = 0; // the clips not placed yet
    std::vector<TAKECLIP> clips;
    int begin = 0;   // first clip not placed yet
    int mark = 0;    // boundary of the best trial placement
    int end = 0;     // boundary of the trial under way (begin when not in it)
    int pending = 0; // cleared once placed completely (read nowhere)

    int clipCount() const { return int(clips.size()); }
};

// The takes planned for one disk in one trial.
struct takeTodisk
{
    std::vector<int> takes; // indices into the TAKE array, in the order added
    int disk = 0;
    double size = 0;

    int count() const { return int(takes.size()); }
};

// Results of Segment.
constexpr int kSegmentDone = 0;
constexpr int kSegmentTooLarge = -1;
constexpr int kSegmentRepeatedUmid = -5;

// Places every clip: 0 with the number of disks used in *diskCount (disk
// numbers 0 .. count - 1), -5 when two clips share a UMID (nothing placed),
// -1 when a clip is larger than a disk.
int Segment(TAKE* takes, int takeCount, double capacity, int* diskCount);
// 1 when all clip UMIDs are distinct, -5 when one repeats.
int CheckTakeID(const TAKE* takes, int takeCount);
// The largest (smallest) clip of the takes named by the first count entries
// of the take order, placed or not; 0 (2^33) when there is none.
double MaxClipSize(const TAKE* takes, int count, const int* order);
double MinClipSize(const TAKE* takes, int count, const int* order);
// Drops finished takes from the take order, which is sorted again by size.
void TailorTake(const TAKE* takes, double* sizes, int* order, int* count, double* sum);
// Sorts the open disks by free space and drops those that can no longer hold
// the smallest clip.
void TailorDisk(double minClipSize, double* freeSpaces, int* count, int* diskNumbers, double* sum);
// Extends a plan with whole takes that fit, largest first, then with the
// leading clips of the one take that fills the rest best.
void GreedyPack(takeTodisk* plan, int count, TAKE* takes, const int* order, double capacity);

// Sorts values largest first, moving the parallel indices with them, and
// gives their sum.
template <typename T> void Quick_Real(T* values, int* indices, int low, int high);
template <typename T> void QuickSort(T* values, int count, int* indices, T* sum);
