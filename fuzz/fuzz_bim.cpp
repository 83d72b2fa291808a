// The real-time metadata reader on arbitrary files.
#include "FuzzFile.h"

#include "core/formats/metadata/CReadRtMeta.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::string bim = fuzzFilePath("in.BIM");
    writeFuzzFile(bim, data, size);
    CReadRtMeta reader;
    if (!reader.blReadBIM(bim.c_str(), 0) && !reader.getLastError())
        std::abort();
    FTCSTRUCT tc;
    const quint64 units = reader.getUnitCount() > 0 ? reader.getUnitCount() - 1 : 0;
    if (reader.isOpen()) {
        // Every frame unit is answered, the one after them is not.
        if (units > 0 && !reader.GetTimeCode(units - 1, &tc))
            std::abort();
        if (reader.GetTimeCode(units, &tc))
            std::abort();
    } else if (reader.GetTimeCode(0, &tc)) {
        std::abort();
    }
    reader.CloseFTC();
    return 0;
}
