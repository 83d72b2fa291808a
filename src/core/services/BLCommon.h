#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <array>
#include <atomic>

class BLHouseKeepingCtrl;
class BLProgressThread;
struct BLVolume;
class DOClipData;
class DOLtcChange;
class DOTakeData;
class IMessagePresenter;

// Shared helpers used by every controller: special folders, notifications
// (and, as they land, time codes, paths, names and file operations).
// A lazily created singleton; it keeps almost no state, so it is safe to call
// from the main thread and from workers.
class BLCommon
{
public:
    static BLCommon* sharedCtrl();
    static void releaseCtrl();

    // ---- time code ----
    // A time code as read from an LTC change value: four packed-decimal bytes
    // in the order of the text, [0] frames (bit 6 = drop-frame flag),
    // [1] seconds, [2] minutes, [3] hours.
    using Timecode = std::array<quint8, 4>;

    // The take's duration in the display form; "--:--:--:--" for 0.
    static QString convertOfDurationByTakeData(const DOTakeData& take);
    // Duration text of a frame count with a take's frame-rate name and LTC
    // changes. Display form "hh:mm:ss:ff", drop frame "hh:mm.ss:ff"; LTC-table
    // form "FFSSMMHH" with frames + 40.
    static QString convertOfDurationByFrameCount(qint64 frameCount, const QString& frameFps,
                                                 const QList<DOLtcChange>& ltcChanges, bool isLtcTable);
    // Whether the time code is drop frame; the duration rate is stored in
    // outFrameRate (when given) in every case.
    static bool isDropFrameByLtcChanges(const QList<DOLtcChange>& ltcChanges, const QString& frameFps,
                                        int* outFrameRate);
    // Time code rate of a frame-rate name (0 for an unknown name).
    static int toHDV_FPS(bool is720, const QString& frameFps);
    // Any take of the list is 720-line progressive.
    static bool Is720SP(const QList<DOTakeData>& takes);
    // Parses an eight-digit LTC change value and subtracts the offset; a
    // malformed value answers false with a zero time code.
    static bool LTCCValueToTimecode(Timecode* timecode, const QString& ltcChange, quint32 offset, int fps);
    // "hh:mm:ss:ff\n" of the first LTC change less the offset; false without changes.
    static bool GetTimecode(QString* out, const DOTakeData& take);
    static bool GetTimecode(QString* out, const QList<DOLtcChange>& ltcChanges, quint32 offset, int fps);
    // Frame count of the start time code (first LTC change less the offset);
    // 0 and flag 0 without changes. dropFlag receives the drop-frame flag.
    static int GetStartFrames(const DOTakeData& take, int* dropFlag);
    static int GetStartFrames(const QList<DOLtcChange>& ltcChanges, quint32 offset, int fps, int* dropFlag);
    // Every clip (or clip-less take) passes checkTimeCode with its duration
    // and the take's rate, LTC changes and size.
    static bool checkTakeDuration(const QList<DOTakeData>& takes);
    // Yes for files of 4 GiB or more; otherwise yes when the display time code
    // of the duration stays below ten hours and its minutes below 30.
    static bool checkTimeCode(qint64 duration, const QString& frameFps, const QList<DOLtcChange>& ltcChanges,
                              qint64 fileSize);
    // Value of one hexadecimal digit; 0 for anything else.
    static int xtoi(QChar c);

    // The most frames a clip on a card can hold: a day at 60 frames a second.
    static constexpr qint64 kMaxFrameCount = qint64(24) * 3600 * 60;
    // A duration or frame number as metadata writes it: 0 for no text, -1
    // for text that is not a whole number from 0 to kMaxFrameCount.
    static qint64 toFrameCount(const QString& text);

    // Subtracts a number of frames at the rate (a time code frame is two of
    // them at 50 and 60), borrowing through seconds, minutes and hours in the
    // time code's own units, drop frame included, and wrapping below
    // 00:00:00:00 to the day before. The flag bits are kept. False for an
    // unknown rate (0), which leaves the time code as it is.
    static bool SubtractOffset(Timecode* timecode, quint32 offset, int fps);

    // ---- dates ----
    // Parses "2009-03-05T14:07:59+09:00" or "2009-03-05T05:07:59Z"; invalid on failure.
    static QDateTime makeCalendarDateFromString(const QString& text);
    // The current local date and time in the XML form "2009-03-05T14:07:59+09:00".
    static QString getGmtTm();
    // A date in the XML form, in the date's own time zone.
    static QString getXmlFormatDateString(const QDateTime& date);
    // The date alone: order 2 day-month-year, 1 month-day-year, else year-month-day.
    static QString makeDateStringFromCalendarData(const QDateTime& date, int order, const QString& pause);
    // The screen form: date by the settings' order and separator, then " hh:mm"; "" for no date.
    static QString makeDateTimeStringFromCalendarData(const QDateTime& date);
    // Language of the system locale ("en" for en_US), used to tag metadata texts.
    static QString getSystemLanguage();

    // ---- sizes ----
    // Byte count as text: mode 0 bytes, 1 KB, 2 MB, 3 GB, 4 TB; pattern "#,##0"
    // or "#,##0.0" (decimals after the "."); rounded down, unit appended.
    static QString convertSizeStr(qint64 size, const QString& format, int mode);
    // A size for people: in MB with one decimal below 1 GB, else in GB.
    static QString sizeText(qint64 size);

    // ---- UMID ----
    // A new 64-digit UMID; advances the serial number 1..63.
    QString createUmid();
    // A 32-digit media id (time stamp and machine node) from counter n.
    static QString createMediaID(int n);
    // The number to make the next media id with: the settings' sequential
    // number plus one, 0 once that reaches 9999.
    static int nextSequentialNo();
    // The 16-character SMPTE 309 time stamp of now (or of a given moment).
    static QString GetSMPTE309(int n);
    static QString GetSMPTE309(int n, const QDateTime& now);
    // Modified Julian Date of a calendar date.
    static int modifiedJulianDate(int year, int month, int day);

    // ---- folders and paths ----
    // The base followed by each component, its one leading "." removed, so a
    // reference "./CLPR/X/Y.XML" joins correctly to a BPAV folder.
    static QString makeFilePath(const QString& base, const QStringList& components);
    // Puts "./" in front of a reference that does not start with ".".
    static QString addDot(const QString& reference);
    // Removes one leading "." character.
    static QString removalDot(const QString& reference);
    // A reference whose first folder (after "./") is CLPR: a clip on this
    // medium. A take folder or a clip ID may contain "CLPR" elsewhere.
    static bool isClipReference(const QString& reference);
    // A leading "~" becomes the home folder; "." and ".." steps and repeated
    // or trailing separators are resolved.
    static QString standardizePath(const QString& path);
    // folder/BPAV, else folder/PRIVATE/ORX/BPAV when that is a folder, else folder/BPAV.
    static QString getPathOfBPAV(const QString& folder);
    // "BPAV" or "PRIVATE": the top folder that holds the material.
    static QString visibleFolderNameOf(const QString& folder);
    static bool isBPAVFolder(const QString& folder);
    // The BPAV folder's CLPR (TAKR) folder exists, or has just been created.
    static bool isCLPRFolder(const QString& folder);
    static bool isTAKRFolder(const QString& folder);
    // Makes the BPAV folder, its CLPR and its TAKR where missing, in that order.
    static bool createFixedFolders(const QString& folder);
    // Absolute paths of the take's essence files in clip order (its own without
    // clips); empty with count 0 when one is missing.
    static QStringList getMp4FilePaths(const QString& folder, const DOTakeData& take, int* fileCount);
    // The folder holding the record's files, relative to the BPAV folder, from
    // its take info, metadata or essence reference; "" when it has none.
    static QString getFolderName(const DOTakeData& take);
    static QString getFolderName(const DOClipData& clip);
    // The mount root of the volume holding the path, with a trailing "/";
    // "/" for the start-up disk.
    static QString getVolumeName(const QString& path);
    static bool compareVolumes(const QString& path, const QString& path2);

    // ---- file and folder tests ----
    // An existing, visible folder that is not a package; at "/" not "automount" or "Network".
    static bool isFolder(const QString& path);
    // The item itself (a link, not its target) is visible: its name does not start with ".".
    static bool checkVisibleDirectory(const QString& path);
    // Exists, is not a folder and is not a package.
    static bool isFiles(const QString& path);
    // Equals the path of a mounted volume, with or without a trailing "/".
    static bool isVolume(const QString& path);
    // Names in the folder, unsorted; for an empty path the paths of all mounted volumes.
    static QStringList getFileList(const QString& path);
    // Names of the entries that are folders (for an empty path, volume paths).
    static QStringList getFolders(const QString& path);
    // The name as shown to the user: a volume's own name for a volume root,
    // else the name on disk.
    static QString getDisplayName(const QString& path);
    // The same against a list of mounted volumes read once (for many paths).
    static QString getDisplayName(const QString& path, const QList<BLVolume>& volumes);
    static QString getDisplayName(const QString& parent, const QString& name);
    static bool isSameDisplayName(const QString& path);
    // Display names from the volume down, each followed by ":" ("CARD:DCIM:").
    static QString getDisplayPath(const QString& path);
    // The BPAV folder holds an ".SLV" or ".STS" file: an unfinished recording.
    static bool doSalvage(const QString& folder);

    // ---- file operations (never replace an existing destination) ----
    static bool createNewFolder(const QString& path);
    static bool createNewFolderWithParent(const QString& path);
    // A new empty file; no when the path exists.
    static bool createNewFile(const QString& path);
    // Removes a file, a link or a whole folder.
    static bool removeFile(const QString& path);
    // Copies a file or a whole folder (hidden entries and links included); a
    // failed folder copy leaves nothing behind.
    static bool copyFile(const QString& source, const QString& toFile);
    // Moves (renames) a file or folder; across volumes by copy and removal.
    // A change of case only is done through a temporary name.
    static bool moveFolder(const QString& source, const QString& toFolder);
    // One rename that never replaces an existing destination: 0, or the error
    // number (EXDEV across file systems, EEXIST when the destination exists).
    static int renameNoReplace(const QString& source, const QString& destination);
    // Moves one item; with a worker and a maximum the count grows by one and is
    // shown. 0 done, 2 failed, 3 cancelled (after the move).
    static int moveFileWithProgress(const QString& source, const QString& toPath, BLProgressThread* thread,
                                    int* fromCount, int maxCount);
    // Removes the paths from the last to the first, counting and showing each;
    // no on a failed removal or on cancel.
    static bool removeFileWithProgress(const QStringList& paths, BLProgressThread* thread, int* from,
                                       int max);
    // Copies a file in 10 MiB chunks, each flushed to disk, adding each chunk's
    // whole MiB to fromSize and showing it against maxSize. 0 done, 2 a read or
    // write error (or an existing destination), 3 cancelled between chunks, 4
    // the copy did not read back as the source; a partial or unverified
    // destination stays for the caller. Verifies when the setting VERIFY_COPY
    // says so.
    static int copyFileWithProgress(const QString& source, const QString& toFile, BLProgressThread* thread,
                                    qint64* fromSize, qint64 maxSize);
    // Result of copyFileWithProgress: the copy did not read back as the bytes read.
    static constexpr int kCopyNotVerified = 4;
    // verify: hash the bytes read with XXH64 while copying; after the last chunk
    // and its flush, drop the destination's pages from the cache and read it
    // back, hashing; a mismatch or a read error answers kCopyNotVerified. hash
    // (may be null) receives the source's XXH64 once the copy is complete
    // (with verify off too, the bytes then pass through a buffer). Cancel is
    // tested between the chunks of the read-back too (3).
    static int copyFileWithProgress(const QString& source, const QString& toFile, BLProgressThread* thread,
                                    qint64* fromSize, qint64 maxSize, bool verify, quint64* hash = nullptr);
    // The read-back step on its own: whether the file's XXH64 is expected (false
    // when it cannot be read or the thread was cancelled between chunks;
    // cancelled, when given, tells which). The file's pages are dropped from
    // the cache first, so the disk's copy is what is read.
    static bool verifyCopiedFile(const QString& path, quint64 expected, BLProgressThread* thread,
                                 bool* cancelled);
    // The XXH64 of a file read from the disk (its cached pages dropped first);
    // false when it cannot be read or the thread was cancelled between chunks.
    static bool hashFile(const QString& path, quint64* hash, BLProgressThread* thread, bool* cancelled);
    static constexpr qint64 kCopyChunkSize = 10485760;

    // ---- names ----
    // Acceptable as a file or folder name: no leading ".", none of : / \ > < ? * " |,
    // no line breaks and no yen sign.
    static bool checkHyphenationCharacter(const QString& name);
    // No carriage return, line feed or yen sign.
    static bool checkReturnCode(const QString& name);
    // Every folder name of the path (extension removed) is acceptable.
    static bool checkHyphenationCharacterForPath(const QString& path);
    static bool checkNotInput(const QString& text);
    // No when the folder holds an entry of that name ignoring case.
    static bool checkSameName(const QString& folder, const QString& name);
    // ./CLPR/ABC0001/ABC0001M01.XML with 1 -> ./TAKR/ABC0001U01/ABC0001U01M01.XML
    static QString updateTakeUri(const QString& reference, int number);
    // .../T0001.SMI with 2 -> .../T0001U02.SMI
    static QString updateSMIUri(const QString& reference, int number);

    // ---- folder-count limits (600 clip folders, 600 take folders) ----
    static constexpr int kFolderLimit = 600;
    static int getFolderCountInCLPR(const QString& folder);
    static int getFolderCountInTAKR(const QString& folder);
    static bool isExceedFolderLimit(const QString& folder);
    static bool isExceedFolderLimitByImport(const QString& folder, int importMP4Files);
    // Folders the takes would need (takes of status 4 and above need none).
    static void getFolderCountFromTakeDatas(const QList<DOTakeData>& takes, int* outClip, int* outTake);
    static bool isExceedFolderLimitByCopy(const QString& folder, const QList<DOTakeData>& takes);
    // The media profile housekeeping read listed more clip or take materials than allowed.
    static bool isExceedFolderLimitByMaterial(const BLHouseKeepingCtrl& houseKeeping);

    // ---- special folders ----
    // The current user's special folder of a four-character type, created if
    // missing: "pref" (preferences), "logs" (logs), "mdoc" (movies).
    // Empty on failure.
    QString createSpFolderPath(const QString& folderType) const;
    // 0 logs, 1 preferences, 2 movies, 3 the first caches folder; empty otherwise.
    QString searchFolderPath(int kind) const;

    // ---- notifications (delivered on the main thread) ----
    // Queued, posted when idle, coalesced on the name.
    void sendNotification(const void* sender, const QString& name, const QVariantMap& userInfo = {});
    // Queued, posted when idle, not coalesced.
    void sendNotificationNotCoalesce(const void* sender, const QString& name,
                                     const QVariantMap& userInfo = {});
    // Posted at once; from a worker this waits until the main thread has delivered it.
    void sendNotificationNow(const void* sender, const QString& name, const QVariantMap& userInfo = {});
    // SCTakeDidDeleteNotification with the deleted takes' UMIDs and their folder.
    void sendDidDeleteNotification(const void* sender, const QStringList& delUmid,
                                   const QString& selectFolder);
    void sendDidDelNotificationNotCoalesce(const void* sender, const QStringList& delUmid,
                                           const QString& selectFolder);
    // SCTakeDidAddNotification with the folder and the added takes (a QList<DOTakeData>).
    void sendDidAddNotification(const void* sender, const QString& path, const QList<DOTakeData>& takeDatas);

    // ---- messages ----
    // The presenter that shows alerts (not owned); without one, alerts answer
    // the first button.
    static void setMessagePresenter(IMessagePresenter* presenter);
    static IMessagePresenter* messagePresenter();
    // Shows an informational alert. The message and informative texts are keys
    // of the localisation table (a text without an entry shows as given). Button patterns: 0 "OK"; 1 "OK" and
    // "Cancel"; 2 "Yes" and "No". messageArgs fill the placeholders %1, %2, ... of the localised message.
    // Answers IMessagePresenter::kFirstButton or kSecondButton. Called on a
    // worker, the alert is shown by the main thread and the worker waits.
    int messageBox(const QString& message, const QString& infoMesse, int style, int btnPattern,
                   const QStringList& messageArgs = {});
    // The localised title of button 0 or 1 of a pattern; "" when there is none.
    QString getBtnLabel(int pattern, int no) const;

private:
    BLCommon() = default;

    std::atomic<int> m_umidSerialNumber{1};
};
