#include "core/formats/mp4/CMP4File.h"

#include "core/formats/mp4/CAudioPointerData.h"
#include "core/formats/mp4/CFileException.h"
#include "core/formats/mp4/CVideoPointerData.h"

#include <climits>
#include <cstring>

namespace {

const char kErrFtyp[] = "ftyp header Error\n";
const char kErrTag[] = "Seek Do not find Tag\n";
const char kErrEof[] = "MP4 box Seek reached EOF\n";
const char kErrBoxSize[] = "MP4 box Size Error\n";
const char kErrMdhd[] = "Read MDHD Error\n";
const char kErrStsd[] = "Read STSD  Error\n";
const char kErrAudioOver[] = "Audio channel is over (8)\n";
const char kErrStts[] = "Read STTS Error\n";
const char kErrSdtp[] = "Read SDTP Error\n";
const char kErrStsc[] = "Read STSC Error\n";
const char kErrStscSize[] = "STSC Size Error \n";
const char kErrStszHeaderRead[] = "Read STSZ Header Error\n";
const char kErrStszHeader[] = "STSZ Header Error\n";
const char kErrStsz[] = "Read STSZ Error\n";
const char kErrStcoRead[] = "Read stco Error\n";
const char kErrStcoHeader[] = "STCO Header Error\n";
const char kErrStco2[] = "Read stco 2 Error\n";
const char kErrStcoLength[] = "Read stco Length Error\n";
const char kErrMpegRead[] = "MPEG-2 Read err\n";
const char kErrSequenceHeader[] = "MPEG-2 Sequence Header Err\n";
const char kErrSequenceExtension[] = "MPEG-2 Sequence Extension Err\n";

// The boxes the walk knows: containers are entered, leaves skipped.
struct BoxKind
{
    char type[5];
    bool skip;
};
constexpr BoxKind kBoxTable[38] = {
    {"udta", false}, {"hnti", false}, {"moov", false}, {"trak", false}, {"edts", false}, {"mdia", false},
    {"minf", false}, {"dinf", false}, {"stbl", false}, {"meta", false}, {"free", true},  {"mdat", true},
    {"iods", true},  {"nmhd", true},  {"esds", true},  {"uuid", true},  {"hmhd", true},  {"hinf", true},
    {"sdp ", true},  {"mvhd", true},  {"tkhd", true},  {"tref", true},  {"elst", true},  {"mdhd", true},
    {"hdlr", true},  {"vmhd", true},  {"smhd", true},  {"dref", true},  {"stsd", true},  {"stts", true},
    {"ctts", true},  {"stss", true},  {"sdtp", true},  {"stsc", true},  {"stsz", true},  {"stco", true},
    {"co64", true},  {"xml ", true},
};

const BoxKind* findBoxKind(const quint8* type)
{
    for (const BoxKind& kind : kBoxTable) {
        if (std::memcmp(kind.type, type, 4) == 0)
            return &kind;
    }
    return nullptr;
}

quint32 be16(const quint8* p)
{
    return quint32(p[0]) << 8 | p[1];
}
quint32 be32(const quint8* p)
{
    return quint32(p[0]) << 24 | quint32(p[1]) << 16 | quint32(p[2]) << 8 | p[3];
}

// Frame-rate code and NTSC-rate flag of an MPEG-2 frame_rate_code.
void frameRateCodes(int frameRateCode, bool progressive, int& code, int& ntsc)
{
    static const int interlaced[9] = {0, 18, 19, 7, 9, 22, 7, 9, 23};
    static const int progressiveCodes[9] = {0, 2, 15, 6, 8, 16, 12, 14, 17};
    if (frameRateCode < 1 || frameRateCode > 8) {
        code = 0;
        ntsc = 0;
        return;
    }
    code = progressive ? progressiveCodes[frameRateCode] : interlaced[frameRateCode];
    ntsc = (frameRateCode == 1 || frameRateCode == 4 || frameRateCode == 7) ? 1 : 0;
}

} // namespace

int CMP4File::nWidthCode(quint32 pixels)
{
    switch (pixels) {
    case 720:
        return 1;
    case 1280:
        return 3;
    case 1440:
        return 4;
    case 1920:
        return 7;
    default:
        return 0;
    }
}

int CMP4File::nHeightCode(quint32 pixels)
{
    switch (pixels) {
    case 480:
        return 1;
    case 720:
        return 4;
    case 1080:
        return 7;
    default:
        return 0;
    }
}

bool CMP4File::bReadRaw(void* buffer, quint32 count)
{
    try {
        return Read(buffer, count) == count;
    } catch (const CFileException&) {
        return false;
    }
}

bool CMP4File::bReadBody(std::vector<quint8>& body, quint32 boxSize)
{
    const quint64 length = GetLength();
    if (boxSize < 8 || m_ullPosition > length || boxSize - 8 > length - m_ullPosition)
        return false;
    body.resize(boxSize - 8);
    if (!bReadRaw(body.data(), quint32(body.size())))
        return false;
    m_ullPosition += body.size();
    return true;
}

bool CMP4File::bSkip(qint64 count)
{
    const quint64 reported = Seek(count, kSeekCurrent);
    if (reported != m_ullPosition + quint64(count))
        return false;
    m_ullPosition = reported;
    return true;
}

int CMP4File::nReadDirectHeader(const char* type, quint32& size, const char* readError, const char* typeError)
{
    quint8 header[8];
    if (!bReadRaw(header, 8)) {
        m_pLastError = readError;
        return 0;
    }
    m_ullPosition += 8;
    if (std::memcmp(header + 4, type, 4) != 0) {
        m_pLastError = typeError;
        return 0;
    }
    size = be32(header);
    return 1;
}

CPointerData* CMP4File::record(int kind)
{
    if (kind == kKindVideo)
        return m_pVideo;
    if (kind == kKindAudio && m_nAudioCount < kMaxAudioTracks)
        return &m_pAudio[m_nAudioCount];
    return nullptr;
}

int CMP4File::nCheckBox(const char* type, int skip)
{
    quint8 header[8];
    if (!bReadRaw(header, 8))
        return -1;
    const bool match = std::memcmp(header + 4, type, 4) == 0;
    if (skip == 0) {
        m_ullPosition += 8;
        return match ? 1 : 0;
    }
    const quint32 size = be32(header);
    if (size < 8)
        return -1;
    const quint64 reported = Seek(qint64(size) - 8, kSeekCurrent);
    if (reported != m_ullPosition + size)
        return -1;
    m_ullPosition = reported;
    return match ? 1 : 0;
}

quint64 CMP4File::ulCheckHeader()
{
    m_bHeaderChecked = 0;
    m_pLastError = nullptr;
    m_ullPosition = 0;
    Seek(0, kSeekStart);
    if (nCheckBox("ftyp", 1) > 0) {
        m_bHeaderChecked = 1;
        return m_ullPosition;
    }
    m_pLastError = kErrFtyp;
    return 0;
}

quint32 CMP4File::ulSeekBox(const char* type, int stayAtStart)
{
    if (!m_bHeaderChecked)
        return 0;
    m_pLastError = nullptr;
    for (;;) {
        quint8 header[8];
        if (!bReadRaw(header, 8)) {
            // The walk has run to the end of the file.
            m_pLastError = kErrEof;
            return 0;
        }
        quint32 size = be32(header);
        if (size == 1) {
            quint8 large[8];
            if (!bReadRaw(large, 8)) {
                m_pLastError = kErrEof;
                return 0;
            }
            size = be32(large + 4);
            Seek(-8, kSeekCurrent);
        }
        const bool match = std::memcmp(header + 4, type, 4) == 0;
        const BoxKind* kind = match ? nullptr : findBoxKind(header + 4);
        if (!match && !kind) {
            m_pLastError = kErrTag;
            return 0;
        }
        // A box that is found or skipped must at least hold its header.
        if ((match || kind->skip) && size < 8) {
            m_pLastError = kErrBoxSize;
            return 0;
        }
        if (match) {
            if (stayAtStart)
                Seek(-8, kSeekCurrent);
            else
                m_ullPosition += 8;
            return size;
        }
        if (!kind->skip) {
            m_ullPosition += 8;
            continue;
        }
        // The file stands behind the 8-byte header, the position account at the box start.
        const quint64 reported = Seek(qint64(size) - 8, kSeekCurrent);
        if (reported != m_ullPosition + size) {
            m_pLastError = kErrEof;
            return 0;
        }
        m_ullPosition = reported;
    }
}

quint64 CMP4File::ulSeekToMoov()
{
    if (!m_bHeaderChecked)
        return 0;
    const quint32 size = ulSeekBox("moov", 1);
    if (size == 0)
        return 0;
    // A file cut inside moov could otherwise pass with its last tracks missing.
    const quint64 length = GetLength();
    if (m_ullPosition > length || size > length - m_ullPosition) {
        m_pLastError = kErrEof;
        return 0;
    }
    m_ulMoovSize = size;
    return m_ullPosition;
}

quint64 CMP4File::ulReadMoov(CVideoPointerData* video, CAudioPointerData* audio)
{
    const quint64 start = m_ullPosition;
    m_pVideo = video;
    m_pAudio = audio;
    *m_pVideo = CVideoPointerData();
    for (int i = 0; i < kMaxAudioTracks; ++i)
        m_pAudio[i] = CAudioPointerData();
    m_nAudioCount = 0;
    m_nAudioChannel = 0;
    m_pLastError = nullptr;
    const quint64 length = GetLength();
    for (;;) {
        const quint64 p = m_ullPosition;
        const quint32 size = ulSeekBox("trak", 0);
        if (m_ullPosition >= length || (size == 0 && m_ullPosition - start >= m_ulMoovSize)) {
            Seek(qint64(p), kSeekStart);
            m_ullPosition = p;
            return p;
        }
        if (size == 0 || ulSetAVInfo() == 0)
            return 0;
    }
}

quint64 CMP4File::ulSetAVInfo()
{
    if (!SetMdhd())
        return 0;
    const quint32 stsdSize = ulSeekBox("stsd", 0);
    if (stsdSize == 0)
        return 0;
    std::vector<quint8> stsd;
    if (!bReadBody(stsd, stsdSize) || stsd.size() < 16) {
        m_pLastError = kErrStsd;
        return 0;
    }
    const quint8* format = stsd.data() + 12;
    int kind = kKindOther;
    if (std::memcmp(format, "mp4v", 4) == 0) {
        if (stsd.size() < 122) {
            m_pLastError = kErrStsd;
            return 0;
        }
        m_pVideo->m_ulWidth = be16(stsd.data() + 40);
        m_pVideo->m_ulHeight = be16(stsd.data() + 42);
        m_pVideo->m_ulFormat = stsd[113];
        m_pVideo->m_ulMaxBitrate = be32(stsd.data() + 118);
        if (!SetStts() || !SetSdtp())
            return 0;
        m_pVideo->m_ulTimeScale = m_pVideo->m_ulMediaTimeScale;
        m_pVideo->m_bPresent = 1;
        kind = kKindVideo;
    } else if (const quint32 audioFormat = ChkAudioTrack(format)) {
        if (m_nAudioCount >= kMaxAudioTracks) {
            m_pLastError = kErrAudioOver;
            return 0;
        }
        if (stsd.size() < 34) {
            m_pLastError = kErrStsd;
            return 0;
        }
        CAudioPointerData& audio = m_pAudio[m_nAudioCount];
        audio.m_ulFormat = audioFormat;
        audio.m_bStereo = stsd[33] == 2 ? 1 : 0;
        m_nAudioChannel += audio.m_bStereo ? 2 : 1;
        audio.m_bPresent = 1;
        kind = kKindAudio;
    }
    if (!SetStsc(kind) || !SetStsz(kind) || !SetStco(kind))
        return 0;
    if (kind == kKindAudio)
        ++m_nAudioCount;
    return m_ullPosition;
}

int CMP4File::SetMdhd()
{
    const quint32 size = ulSeekBox("mdhd", 0);
    if (size == 0)
        return 0;
    std::vector<quint8> body;
    if (!bReadBody(body, size) || body.size() < 16) {
        m_pLastError = kErrMdhd;
        return 0;
    }
    m_pVideo->m_ulMediaTimeScale = be32(body.data() + 12);
    return 1;
}

int CMP4File::SetStts()
{
    const quint32 size = ulSeekBox("stts", 0);
    if (size == 0)
        return 0;
    std::vector<quint8> body;
    if (!bReadBody(body, size) || body.size() < 8) {
        m_pLastError = kErrStts;
        return 0;
    }
    // Without an entry the mean sample duration is undefined: refused.
    const quint32 count = be32(body.data() + 4);
    if (count == 0 || count > (body.size() - 8) / 8) {
        m_pLastError = kErrStts;
        return 0;
    }
    quint64 sum = 0;
    for (quint32 i = 0; i < count; ++i)
        sum += be32(body.data() + 8 + 8 * i + 4);
    m_pVideo->m_ulSampleDuration = quint32(sum / count);
    return 1;
}

int CMP4File::SetSdtp()
{
    const quint32 size = ulSeekBox("sdtp", 0);
    if (size == 0)
        return 0;
    std::vector<quint8> body;
    if (!bReadBody(body, size) || body.size() < 4) {
        m_pLastError = kErrSdtp;
        return 0;
    }
    m_pVideo->m_arrSdtp.assign(body.begin() + 4, body.end());
    return 1;
}

int CMP4File::SetStsc(int kind)
{
    const quint32 size = ulSeekBox("stsc", 0);
    if (size == 0)
        return 0;
    std::vector<quint8> body;
    if (!bReadBody(body, size) || body.size() < 8) {
        m_pLastError = kErrStsc;
        return 0;
    }
    const quint32 count = be32(body.data() + 4);
    if (count != (size - 16) / 12) {
        m_pLastError = kErrStscSize;
        return 0;
    }
    CPointerData* rec = record(kind);
    if (!rec)
        return 1;
    std::vector<ChunkRun> runs(count);
    for (quint32 i = 0; i < count; ++i) {
        const quint8* e = body.data() + 8 + 12 * i;
        runs[i] = ChunkRun{be32(e), be32(e + 4), be32(e + 8)};
    }
    rec->vSetRuns(size, std::move(runs));
    return 1;
}

int CMP4File::SetStsz(int kind)
{
    quint32 size = 0;
    if (!nReadDirectHeader("stsz", size, kErrStszHeaderRead, kErrStszHeader))
        return 0;
    std::vector<quint8> body;
    if (!bReadBody(body, size) || body.size() < 12) {
        m_pLastError = kErrStsz;
        return 0;
    }
    const quint32 constant = be32(body.data() + 4);
    const quint32 count = be32(body.data() + 8);
    if (constant == 0 && count != (size - 20) / 4)
        return 0;
    CPointerData* rec = record(kind);
    if (!rec)
        return 1;
    rec->m_ulStszSize = size;
    rec->m_ulStszConstant = constant;
    rec->m_ulStszCount = count;
    rec->m_arrStsz.clear();
    if (constant == 0) {
        rec->m_arrStsz.resize(count);
        for (quint32 i = 0; i < count; ++i)
            rec->m_arrStsz[i] = be32(body.data() + 12 + 4 * i);
    }
    ulCulcNumOfFrame(kind);
    return 1;
}

int CMP4File::SetStco(int kind)
{
    quint32 size = 0;
    if (!nReadDirectHeader("stco", size, kErrStcoRead, kErrStcoHeader))
        return 0;
    std::vector<quint8> body;
    if (!bReadBody(body, size) || body.size() < 8) {
        m_pLastError = kErrStco2;
        return 0;
    }
    const quint32 count = be32(body.data() + 4);
    if (count != (size - 16) / 4) {
        m_pLastError = kErrStcoLength;
        return 0;
    }
    CPointerData* rec = record(kind);
    if (!rec)
        return 1;
    rec->m_ulStcoSize = size;
    rec->m_arrStco.resize(count);
    for (quint32 i = 0; i < count; ++i)
        rec->m_arrStco[i] = be32(body.data() + 8 + 4 * i);
    rec->m_ulChunkCount = count;
    return 1;
}

quint32 CMP4File::ChkAudioTrack(const quint8* format)
{
    if (std::memcmp(format, "twos", 4) == 0)
        return kFormatTwos;
    if (std::memcmp(format, "in24", 4) == 0)
        return kFormatIn24;
    if (std::memcmp(format, "in32", 4) == 0)
        return kFormatIn32;
    return 0;
}

void CMP4File::ulCulcNumOfFrame(int kind)
{
    CPointerData* rec = record(kind);
    if (!rec)
        return;
    const quint64 target = rec->m_ulStszCount;
    if (rec->hasSizeTable()) {
        rec->m_ulFrameCount = quint32(target);
        return;
    }
    // Without a size table: samples per chunk times the chunks of each run,
    // the last run repeated until the sample count is reached.
    const std::vector<ChunkRun>& runs = rec->m_arrStsc;
    quint64 total = 0;
    for (size_t r = 0; r < runs.size() && total < target; ++r) {
        const quint64 perChunk = runs[r].ulSamplesPerChunk;
        if (r + 1 < runs.size()) {
            const quint32 first = runs[r].ulFirstChunk;
            const quint32 next = runs[r + 1].ulFirstChunk;
            // Saturated: anything beyond 2^32 ends the sum at the 32-bit limit.
            if (next > first)
                total += qMin<quint64>(perChunk * (next - first), quint64(UINT_MAX) + 1);
        } else if (perChunk > 0) {
            total += (target - total + perChunk - 1) / perChunk * perChunk;
        }
    }
    rec->m_ulFrameCount = quint32(qMin<quint64>(total, UINT_MAX));
}

int CMP4File::blCheckVideo()
{
    const quint64 saved = m_ullPosition;
    auto fail = [&](const char* text) {
        m_pLastError = text;
        Seek(qint64(saved), kSeekStart);
        m_ullPosition = saved;
        return 0;
    };
    if (!m_pVideo || m_pVideo->m_arrStco.empty())
        return fail(kErrMpegRead);
    const quint32 offset = m_pVideo->m_arrStco[0];
    if (Seek(qint64(offset), kSeekStart) != offset)
        return fail(kErrMpegRead);
    constexpr int kSize = 2048;
    quint8 buf[kSize];
    if (!bReadRaw(buf, kSize))
        return fail(kErrMpegRead);

    int header = -1;
    for (int i = 0; i + 8 <= kSize; ++i) {
        if (buf[i] == 0 && buf[i + 1] == 0 && buf[i + 2] == 1 && buf[i + 3] == 0xB3) {
            header = i;
            break;
        }
    }
    if (header < 0)
        return fail(kErrSequenceHeader);
    const quint8* h = buf + header;
    const quint32 width = quint32(h[4]) * 16 + (h[5] >> 4);
    const quint32 height = quint32(h[5] & 0x0F) * 256 + h[6];
    const int aspectInfo = h[7] >> 4;
    const int frameRateCode = h[7] & 0x0F;

    int extension = -1;
    for (int i = header; i + 6 <= kSize; ++i) {
        if (buf[i] == 0 && buf[i + 1] == 0 && buf[i + 2] == 1 && buf[i + 3] == 0xB5) {
            extension = i;
            break;
        }
    }
    if (extension < 0)
        return fail(kErrSequenceExtension);
    const bool progressive = (buf[extension + 5] >> 3) & 1;

    frameRateCodes(frameRateCode, progressive, m_nFrameRate, m_nNtscRate);
    m_nWidth = nWidthCode(width);
    m_nHeight = nHeightCode(height);
    m_nAspect = aspectInfo == 2 ? 2 : (aspectInfo == 3 || aspectInfo == 1) ? 4 : 0;
    Seek(qint64(saved), kSeekStart);
    m_ullPosition = saved;
    return 1;
}

int CMP4File::nGetXMLDataSize()
{
    if (ulSeekBox("meta", 0) == 0)
        return 0;
    const quint32 hdlrSize = ulSeekBox("hdlr", 1);
    if (hdlrSize == 0 || !bSkip(hdlrSize))
        return 0;
    const quint32 size = ulSeekBox("xml ", 0);
    if (size == 0)
        return 0;
    const quint64 length = GetLength();
    const quint64 body = size - 8;
    if (m_ullPosition > length || body > length - m_ullPosition || body >= quint64(INT_MAX))
        return 0;
    return int(body);
}

int CMP4File::nReadXML(char* buffer, int size)
{
    if (!buffer || size < 4)
        return 0;
    char prefix[4];
    if (!bReadRaw(prefix, 4))
        return 0;
    m_ullPosition += 4;
    const bool whole = std::memcmp(prefix, "<?xm", 4) == 0;
    if (whole)
        std::memcpy(buffer, prefix, 4);
    if (!bReadRaw(whole ? buffer + 4 : buffer, quint32(size - 4)))
        return 0;
    m_ullPosition += quint32(size - 4);
    return whole ? size : size - 4;
}

void CMP4File::vFreeMem()
{
    if (m_pVideo)
        *m_pVideo = CVideoPointerData();
    if (m_pAudio) {
        for (int i = 0; i < kMaxAudioTracks; ++i)
            m_pAudio[i] = CAudioPointerData();
    }
    m_pVideo = nullptr;
    m_pAudio = nullptr;
    m_nAudioCount = 0;
}
