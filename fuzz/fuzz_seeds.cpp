// Writes seed files for the fuzzers: small camera-style MP4 files into the
// first folder, real-time metadata files into the second.
#include "core/metadata/CReadRtMetaFile.h"
#include "support/Mp4Builder.h"

#include <QDir>
#include <QFile>

#include <cstdio>

using cwtest::Mp4Builder;

namespace {
bool save(const QString& path, const QByteArray& data)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(data) == data.size();
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: fuzz_seeds MP4-CORPUS-DIR BIM-CORPUS-DIR\n");
        return 2;
    }
    const QString mp4Dir = QString::fromLocal8Bit(argv[1]);
    const QString bimDir = QString::fromLocal8Bit(argv[2]);
    if (!QDir().mkpath(mp4Dir) || !QDir().mkpath(bimDir))
        return 1;

    bool ok = true;
    Mp4Builder b;
    b.tracks << Mp4Builder::videoTrack({"IBBPBB", "IBB"}, 400);
    b.tracks << Mp4Builder::audioTrack("twos", 2, {100, 101});
    ok &= save(mp4Dir + "/camera.MP4", b.bytes());
    b.xmlBody = QByteArray(4, '\0') + "<?xml version=\"1.0\"?><NonRealTimeMeta/>" + '\0';
    b.tracks << Mp4Builder::audioTrack("in24", 1, {100, 101});
    ok &= save(mp4Dir + "/camera-xml.MP4", b.bytes());
    Mp4Builder p;
    p.tracks << Mp4Builder::videoTrack({"IBBPBB"}, 400, cwtest::mpeg2SequenceStart(1440, 1080, 3, 3, true));
    p.tracks[0].sampleSizes.clear();
    p.tracks[0].constantSampleSize = 400;
    p.tracks[0].bytesPerSample = 400;
    p.mdatLargeSize = true;
    p.xmlBody = "<?xml version=\"1.0\"?><a/>";
    ok &= save(mp4Dir + "/progressive.MP4", p.bytes());

    cwtest::BimFile bim;
    bim.timeCodes = {0x00000010, 0x01000010};
    ok &= save(bimDir + "/two.BIM", bim.bytes());
    bim.timeCodes.clear();
    bim.unitCount = 1;
    ok &= save(bimDir + "/none.BIM", bim.bytes());
    return ok ? 0 : 1;
}
