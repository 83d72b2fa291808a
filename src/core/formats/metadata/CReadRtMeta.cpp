#include "core/formats/metadata/CReadRtMeta.h"

#include "core/formats/mp4/CFileException.h"
#include "core/formats/mp4/CFileM.h"

#include <cstring>

namespace {

const char kSchemaUri[] = "urn:schemas-professionalDisc:realTimeMeta:cameraMeta";
const char kLocationHint[] = "./RealTimeMetaCameraMeta.xsd";

const char kErrOpenReader[] = "call CloseFTC() before use\n";
const char kErrFileOpen[] = "BIM File Open Error\n";
const char kErrInit1[] = "BIM DecoderInt1 Read Error\n";
const char kErrUriLength[] = "BIM DecoderInt1 SchemaURI_Length0 Error\n";
const char kErrUriRead[] = "BIM SchemaURI Read Error\n";
const char kErrUriData[] = "BIM m_SchemaURI Data Error\n";
const char kErrInit2[] = "BIM DecoderInt2 Read Error\n";
const char kErrHintLength[] = "BIM DecoderInt2 LocationHint_Length0 Error\n";
const char kErrHintRead[] = "BIM LocationHint Read Error\n";
const char kErrHintData[] = "BIM LocationHint Data Error\n";
const char kErrInit3[] = "BIM DecoderInt3 Read Error\n";
const char kErrHeader[] = "BIM HeaderFFU Read Error\n";
const char kErrLength[] = "InitialDescription_Length Error\n";
const char kErrUnit[] = "BIM FRAMEFUU Read Error\n";

constexpr quint32 kHeaderSize = 44;
constexpr quint32 kUnitsPerRead = 256;

bool readExactly(CFileM& file, void* buffer, quint32 count)
{
    try {
        return file.Read(buffer, count) == count;
    } catch (const CFileException&) {
        return false;
    }
}

// A vluimsbf8 number: 7 value bits per byte, most significant group first,
// the top bit set while another byte follows; at most four bytes. 0 when the
// file ends.
quint64 readVluimsbf8(CFileM& file)
{
    quint64 value = 0;
    for (int i = 0; i < 4; ++i) {
        quint8 b;
        if (!readExactly(file, &b, 1))
            return 0;
        if (!(b & 0x80))
            return value + b;
        value = (value + (b & 0x7F)) << 7;
    }
    return value;
}

// Bytes taken by the vluimsbf8 encoding of the initial description length.
quint64 encodedSize(quint64 x)
{
    if (x <= 128)
        return 1;
    if (x <= 16385)
        return 2;
    if (x <= 2097154)
        return 3;
    if (x <= 268435459)
        return 4;
    return 5;
}

} // namespace

bool CReadRtMeta::blReadBIM(const char* path, unsigned long start)
{
    if (m_bOpen) {
        m_pLastError = kErrOpenReader;
        return false;
    }
    m_pLastError = nullptr;
    m_ullUnitCount = 0;
    CFileM file;
    if (!file.Open(path, CFileM::kModeRead)) {
        m_pLastError = kErrFileOpen;
        return false;
    }
    m_ulStartPosition = start;
    auto fail = [&](const char* text) {
        m_pLastError = text;
        FreeMem();
        file.Close();
        return false;
    };

    quint8 init1[4];
    if (!readExactly(file, init1, 4))
        return fail(kErrInit1);
    const quint32 uriLength = init1[3] & 0x7F;
    if (uriLength == 0)
        return fail(kErrUriLength);
    m_arrSchemaUri.resize(uriLength);
    if (!readExactly(file, m_arrSchemaUri.data(), uriLength))
        return fail(kErrUriRead);
    if (std::strncmp(m_arrSchemaUri.data(), kSchemaUri, uriLength) != 0)
        return fail(kErrUriData);

    quint8 init2;
    if (!readExactly(file, &init2, 1))
        return fail(kErrInit2);
    const quint32 hintLength = init2 & 0x7F;
    if (hintLength == 0)
        return fail(kErrHintLength);
    m_arrLocationHint.resize(hintLength);
    if (!readExactly(file, m_arrLocationHint.data(), hintLength))
        return fail(kErrHintRead);
    if (std::strncmp(m_arrLocationHint.data(), kLocationHint, hintLength) != 0)
        return fail(kErrHintData);

    quint8 init3;
    if (!readExactly(file, &init3, 1))
        return fail(kErrInit3);
    const quint64 descriptionLength = readVluimsbf8(file);
    const quint64 unitCount = readVluimsbf8(file);
    m_arrHeader.resize(kHeaderSize);
    if (!readExactly(file, m_arrHeader.data(), kHeaderSize))
        return fail(kErrHeader);
    m_ullUnitCount = unitCount;

    // A unit count of 0 is read as a file without frames.
    const quint64 units = unitCount > 0 ? unitCount - 1 : 0;
    const quint64 x = 65478 - hintLength + units * kUnitSize;
    if (descriptionLength != x - encodedSize(x))
        m_pLastError = kErrLength;

    const quint32 skipBits =
        quint32(m_arrHeader[41] & 0x0F) << 16 | quint32(m_arrHeader[42]) << 8 | m_arrHeader[43];
    FreeMem();

    // The frame units follow the skipped part; a file too short for all of
    // them leaves the reader closed.
    const quint64 unitsStart = file.Seek(0, CFileM::kSeekCurrent) + skipBits / 8;
    const quint64 length = file.GetLength();
    if (unitsStart > length || units > (length - unitsStart) / kUnitSize ||
        file.Seek(qint64(unitsStart), CFileM::kSeekStart) != unitsStart) {
        m_pLastError = kErrUnit;
        file.Close();
        return true;
    }
    std::vector<FTCSTRUCT> timeCodes(units);
    std::vector<quint8> block(size_t(qMin<quint64>(units, kUnitsPerRead)) * kUnitSize);
    for (quint64 done = 0; done < units;) {
        const quint32 count = quint32(qMin<quint64>(units - done, kUnitsPerRead));
        if (!readExactly(file, block.data(), count * kUnitSize)) {
            m_pLastError = kErrUnit;
            file.Close();
            return true;
        }
        for (quint32 i = 0; i < count; ++i, ++done) {
            const quint8* tc = block.data() + size_t(i) * kUnitSize + 12;
            timeCodes[done] = FTCSTRUCT{tc[0], tc[1], tc[2], tc[3]};
        }
    }
    file.Close();
    m_arrTimeCode = std::move(timeCodes);
    m_bOpen = true;
    return true;
}

bool CReadRtMeta::GetTimeCode(unsigned long i, FTCSTRUCT* timeCode) const
{
    if (!m_bOpen || !timeCode || i >= m_arrTimeCode.size())
        return false;
    *timeCode = m_arrTimeCode[i];
    return true;
}

void CReadRtMeta::CloseFTC()
{
    m_arrTimeCode.clear();
    m_arrTimeCode.shrink_to_fit();
    m_ullUnitCount = 0;
    m_bOpen = false;
}

void CReadRtMeta::FreeMem()
{
    m_arrSchemaUri.clear();
    m_arrLocationHint.clear();
    m_arrHeader.clear();
}
