// Media-profile rewrite cost: load a folder's MEDIAPRO.XML holding n clip
// materials and run the whole rebuild (delete the contents, write n materials
// with their component and relevant infos, set the version, save), as a
// folder rewrite after a copy or delete does. Also the full read that
// housekeeping does on every folder load.
#include "core/formats/metadata/BLMediaProfileAcss.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>

namespace {
QString clipFolder(int i)
{
    return QStringLiteral("A%1").arg(i + 1, 4, 10, QLatin1Char('0'));
}

QString umid(int i)
{
    return QStringLiteral("060A2B340101010501010D4313000000%1").arg(i, 32, 16, QLatin1Char('0')).toUpper();
}

// A camera-written profile: foreign namespace, n clips of one MP4 and three
// metadata files each.
QByteArray cameraProfile(int n)
{
    QByteArray xml = R"(<?xml version="1.0" encoding="UTF-8"?>
<MediaProfile xmlns="urn:example:camera:mediaProfile" createdAt="2009-03-05T14:07:59+09:00" version="1.10">
  <Properties>
    <System systemId="0800460200a1" systemKind="Camera ver.1.00"/>
    <Attached mediaId="1234567890ABCDEF0123456789ABCDEF" mediaKind="ProfessionalMemoryCard" mediaName="Card"/>
  </Properties>
  <Contents>
)";
    for (int i = 0; i < n; ++i) {
        const QString c = clipFolder(i);
        xml +=
            QStringLiteral(
                R"(    <Material uri="./CLPR/%1/%1.SMI" type="PD-EDL" fps="59.94i" dur="300" ch="2" aspectRatio="16:9" offset="0" umid="%2" status="0">
      <Component uri="./CLPR/%1/%1.MP4" type="MP4" videoType="MPEG2HD35_1920_1080_MP@HL" audioType="LPCM16" fps="59.94i" dur="300" ch="2" aspectRatio="16:9" offset="0"/>
      <RelevantInfo uri="./CLPR/%1/%1M01.XML" type="XML"/>
      <RelevantInfo uri="./CLPR/%1/%1R01.BIM" type="BiM"/>
      <RelevantInfo uri="./CLPR/%1/%1I01.PPN" type="PPN"/>
    </Material>
)")
                .arg(c, umid(i))
                .toUtf8();
    }
    xml += "  </Contents>\n</MediaProfile>\n";
    return xml;
}

// The materials a rebuild writes, as the folder scanner builds them.
QList<DOMaterial> clipMaterials(int n)
{
    QList<DOMaterial> materials;
    for (int i = 0; i < n; ++i) {
        const QString base = QStringLiteral("./CLPR/%1/%1").arg(clipFolder(i));
        DOMaterial material;
        material.setUri(base + QStringLiteral(".SMI"));
        material.setType(QStringLiteral("PD-EDL"));
        material.setFps(QStringLiteral("59.94i"));
        material.setDur(QStringLiteral("300"));
        material.setCh(QStringLiteral("2"));
        material.setAspectRatio(QStringLiteral("16:9"));
        material.setOffset(QStringLiteral("0"));
        material.setUmid(umid(i));
        material.setMPStatus(QStringLiteral("0"));
        DOComponent essence;
        essence.setUri(base + QStringLiteral(".MP4"));
        essence.setType(QStringLiteral("MP4"));
        essence.setVideoType(QStringLiteral("MPEG2HD35_1920_1080_MP@HL"));
        essence.setAudioType(QStringLiteral("LPCM16"));
        essence.setFps(QStringLiteral("59.94i"));
        essence.setDur(QStringLiteral("300"));
        essence.setCh(QStringLiteral("2"));
        essence.setAspectRatio(QStringLiteral("16:9"));
        essence.setOffset(QStringLiteral("0"));
        material.addComponent(essence);
        const QStringList suffixes = {QStringLiteral("M01.XML"), QStringLiteral("R01.BIM"),
                                      QStringLiteral("I01.PPN")};
        const QStringList types = {QStringLiteral("XML"), QStringLiteral("BiM"), QStringLiteral("PPN")};
        for (int k = 0; k < 3; ++k) {
            DORelevantInfo info;
            info.setUri(base + suffixes.at(k));
            info.setType(types.at(k));
            material.addRelevantInfo(info);
        }
        materials.append(material);
    }
    return materials;
}

bool writeFile(const QString& path, const QByteArray& data)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

// The rewrite of a folder's profile: every material stays, in the same
// order (range 1 = 0) or in reverse order (range 1 = 1, every element moves).
void BM_RebuildMediaProfile(benchmark::State& state)
{
    const int n = int(state.range(0));
    QTemporaryDir dir;
    if (!writeFile(dir.filePath(BLMediaProfileAcss::kFileName), cameraProfile(n))) {
        state.SkipWithError("cannot write the profile");
        return;
    }
    QList<DOMaterial> materials = clipMaterials(n);
    if (state.range(1) == 1)
        std::reverse(materials.begin(), materials.end());
    for (auto _ : state) {
        BLMediaProfileAcss acss;
        const bool ok = acss.loadForFolderPath(dir.path()) && acss.replaceMaterialData(materials) == 0 &&
                        acss.updateVersion(QStringLiteral("1.10")) &&
                        acss.save(QStringLiteral("1234567890ABCDEF0123456789ABCDEF"));
        if (!ok) {
            state.SkipWithError("rebuild failed");
            return;
        }
    }
    state.SetComplexityN(n);
}
BENCHMARK(BM_RebuildMediaProfile)->ArgsProduct({{60, 300, 600}, {0, 1}})->Unit(benchmark::kMillisecond);

void BM_ReadMediaProfile(benchmark::State& state)
{
    const int n = int(state.range(0));
    QTemporaryDir dir;
    if (!writeFile(dir.filePath(BLMediaProfileAcss::kFileName), cameraProfile(n))) {
        state.SkipWithError("cannot write the profile");
        return;
    }
    for (auto _ : state) {
        BLMediaProfileAcss acss;
        DOMediaProfileData data;
        if (!acss.loadForFolderPath(dir.path()) || !acss.getMediaPro(data, QString(), 0) ||
            data.getMaterial().size() != n) {
            state.SkipWithError("read failed");
            return;
        }
    }
    state.SetComplexityN(n);
}
BENCHMARK(BM_ReadMediaProfile)->Arg(60)->Arg(300)->Arg(600)->Unit(benchmark::kMillisecond)->Complexity();
} // namespace

BENCHMARK_MAIN();
