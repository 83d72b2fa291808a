// Importing MP4 files as the import dialog runs it after OK (checks, worker,
// metadata, index files), without verification:
//   BM_ImportLargeFile  one large file into an empty folder, against
//   BM_CpSync           "cp" and "sync" of the same file to the same disk;
//   BM_ImportSmallFiles ten small files into a folder of n clips: the work
//                       beyond the copy (checks, housekeeping, M01.XML,
//                       MEDIAPRO.XML, CUEUP.XML), per file.
// IMPORT_BENCH_DIR names the data folder (default: bench-data/import in the
// current folder), which should lie on the disk to be measured;
// IMPORT_BENCH_MIB the large file's size (default 1024).
#include "BenchSupport.h"
#include "core/operations/import/BLMP4ImportCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLHeadlessProgressView.h"
#include "core/services/BLProgressCtrl.h"
#include "support/Mp4Builder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>

#include <cstdlib>

namespace {

constexpr qint64 kMiB = 1048576;

QString dataFolder()
{
    const char* value = std::getenv("IMPORT_BENCH_DIR");
    const QString folder =
        value ? QString::fromLocal8Bit(value) : QDir::current().filePath("bench-data/import");
    QDir().mkpath(folder);
    return QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
}

// A camera-kind MP4 file of about IMPORT_BENCH_MIB MiB: pictures of 1 MiB,
// random bytes after each picture's header (no holes for cp to skip).
QString largeFile()
{
    static QString path;
    if (!path.isEmpty())
        return path;
    const char* value = std::getenv("IMPORT_BENCH_MIB");
    const int pictures = value ? std::atoi(value) : 1024;
    path = dataFolder() + "/large.MP4";
    if (QFileInfo(path).size() > qint64(pictures / 6 * 6) * kMiB)
        return path;
    cwtest::Mp4Builder builder;
    builder.tracks << cwtest::Mp4Builder::videoTrack(QList<QByteArray>(pictures / 6, "IBBPBB"), int(kMiB));
    if (!builder.write(path))
        qFatal("cannot write %s", qPrintable(path));
    const QList<quint64> sizes = builder.tracks.first().chunkSizes();
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        qFatal("cannot open %s", qPrintable(path));
    QByteArray noise(int(kMiB) - 4096, Qt::Uninitialized);
    for (int c = 0; c < sizes.size(); ++c)
        for (quint64 at = 4096; at < sizes[c]; at += kMiB) {
            QRandomGenerator::global()->fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
            file.seek(qint64(builder.chunkOffset(0, c) + at));
            file.write(noise);
        }
    file.close();
    return path;
}

bool importFiles(const QString& folder, const QStringList& files)
{
    BLMP4ImportCtrl ctrl(nullptr, DOMP4Import(folder), nullptr);
    ctrl.setVerify(false);
    return ctrl.addFiles(files) && ctrl.execImport();
}

void BM_ImportLargeFile(benchmark::State& state)
{
    const QString source = largeFile();
    const QString folder = dataFolder() + "/Imported";
    BLHeadlessProgressView progress;
    BLProgressCtrl::sharedCtrl()->setView(&progress);
    for (auto _ : state) {
        state.PauseTiming();
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        QProcess::execute("sync", {});
        state.ResumeTiming();
        if (!importFiles(folder, {source}))
            state.SkipWithError("the import failed");
    }
    BLProgressCtrl::sharedCtrl()->setView(nullptr);
    state.SetBytesProcessed(state.iterations() * QFileInfo(source).size());
}

void BM_CpSync(benchmark::State& state)
{
    const QString source = largeFile();
    const QString copy = dataFolder() + "/cp.MP4";
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(copy);
        QProcess::execute("sync", {});
        state.ResumeTiming();
        if (QProcess::execute("sh", {"-c", "cp \"$0\" \"$1\" && sync \"$1\"", source, copy}) != 0)
            state.SkipWithError("cp failed");
    }
    QFile::remove(copy);
    state.SetBytesProcessed(state.iterations() * QFileInfo(source).size());
}

// Ten small MP4 files imported at once into a folder of n single clips (a
// fast card): the time a file takes beyond its copy, the housekeeping of the
// folder before the first file shared by the ten.
void BM_ImportSmallFiles(benchmark::State& state)
{
    constexpr int kFiles = 10;
    const int clips = int(state.range(0));
    const QString card = bench::cardOf(std::max(clips, 1));
    QStringList files;
    for (int i = 1; i <= kFiles; ++i) {
        files << dataFolder() + QString("/small%1.MP4").arg(i, 2, 10, QChar('0'));
        QFile::remove(files.last());
        QFile::copy(card + "/BPAV/CLPR/ABC0001/ABC0001.MP4", files.last());
    }
    const QString folder = dataFolder() + "/Folder";
    BLHeadlessProgressView progress;
    BLProgressCtrl::sharedCtrl()->setView(&progress);
    for (auto _ : state) {
        state.PauseTiming();
        QDir(folder).removeRecursively();
        if (clips > 0)
            QProcess::execute("cp", {"-a", card, folder});
        else
            QDir().mkpath(folder);
        QProcess::execute("sync", {});
        state.ResumeTiming();
        if (!importFiles(folder, files))
            state.SkipWithError("the import failed");
    }
    BLProgressCtrl::sharedCtrl()->setView(nullptr);
    if (BLHouseKeepingCtrl().doHouseKeeping(folder).size() != clips + kFiles)
        state.SkipWithError("wrong number of takes after the import");
    state.SetItemsProcessed(state.iterations() * kFiles);
}

} // namespace

BENCHMARK(BM_CpSync)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(BM_ImportLargeFile)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);
BENCHMARK(BM_ImportSmallFiles)->Arg(0)->Arg(60)->Arg(300)->Unit(benchmark::kMillisecond)->UseRealTime();

CLIPWRIGHT_BENCHMARK_MAIN()
