// The MP4 checker and the picture pointer table writer on arbitrary files.
#include "FuzzFile.h"

#include "core/formats/mp4/CCreatePPT.h"

#include <QString>

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::string mp4 = fuzzFilePath("in.MP4");
    static const std::string ppn = fuzzFilePath("out.PPN");
    writeFuzzFile(mp4, data, size);
    {
        CCreatePPT ppt;
        const char* xml = nullptr;
        int length = 0;
        if (ppt.blCheckMP4(mp4.c_str(), xml, length)) {
            QString text;
            ppt.getVideoFormatXMLParam(text);
            ppt.getVideoFormatStr(text);
            ppt.getVideoSizeStr(text);
            ppt.getVideoFPSStr(text);
            ppt.getAudioChannelStr(text);
            ppt.getWidth(text);
            ppt.getHeight(text);
            for (int i = 0; i < ppt.getNumAudioStream(); ++i)
                ppt.getAudioFormatStr(i, text);
            // The document and its terminating zero lie inside the buffer.
            if (xml && (length < 0 || xml[length + 1] != '\0'))
                std::abort();
        } else if (!ppt.getErrorText()) {
            std::abort();
        }
        ppt.CloseCheckMP4();
    }
    writeFuzzFile(ppn, nullptr, 0);
    CCreatePPT writer;
    if (!writer.StartConvert(mp4.c_str(), ppn.c_str()) && !writer.getErrorText())
        std::abort();
    return 0;
}
