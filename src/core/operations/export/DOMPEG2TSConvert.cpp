#include "core/operations/export/DOMPEG2TSConvert.h"

#include "core/operations/export/BLMPEG2TSConvertCallback.h"
#include "core/services/BLPlistCtrl.h"

#include <algorithm>
#include <clocale>
#include <cwchar>
#include <vector>

DOMPEG2TSConvert::DOMPEG2TSConvert() = default;

DOMPEG2TSConvert::~DOMPEG2TSConvert()
{
    freeMPEG2TS();
}

int DOMPEG2TSConvert::initMPEG2TS(BLMPEG2TSConvertCtrl* ctrl)
{
    freeMPEG2TS();
    m_callback = std::make_unique<BLMPEG2TSConvertCallback>(ctrl);
    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    mpeg2ts_init_param_t param{};
    param.log_level = plist->getMpeg2tsLogLevel().toInt();
    param.log_file_size = plist->getMpeg2tsLogFileSize().toInt();
    const QByteArray path = plist->getMpeg2tsLogFilePath().toUtf8();
    qstrncpy(param.log_file_path, path.constData(), sizeof param.log_file_path);
    param.callback = m_callback.get();
    return MPEG2TSInit(&param);
}

void DOMPEG2TSConvert::freeMPEG2TS()
{
    if (!m_callback)
        return;
    // The library forgets the callback before it goes.
    mpeg2ts_init_param_t param{};
    const QByteArray path = BLPlistCtrl::sharedCtrl()->getMpeg2tsLogFilePath().toUtf8();
    qstrncpy(param.log_file_path, path.constData(), sizeof param.log_file_path);
    MPEG2TSInit(&param);
    m_callback.reset();
}

bool DOMPEG2TSConvert::doTranscodeTake(const mpeg2ts_convert_params_t& params, const QStringList& inputs,
                                       int count, const QString& output)
{
    std::vector<std::vector<wchar_t>> wide(size_t(std::max(count, 0)),
                                           std::vector<wchar_t>(size_t(kPathCapacity)));
    std::vector<const wchar_t*> pointers;
    for (int i = 0; i < count; ++i) {
        toWChar(inputs.value(i).toUtf8(), wide[size_t(i)].data(), kPathCapacity);
        pointers.push_back(wide[size_t(i)].data());
    }
    std::vector<wchar_t> out(size_t(kPathCapacity), 0);
    toWChar(output.toUtf8(), out.data(), kPathCapacity);
    const unsigned int result = ConvertMPEG2TS(pointers.data(), count, out.data(), &params);
    return result != MPEG2TS_RESULT_FAILED && result != MPEG2TS_RESULT_CANCELLED;
}

void DOMPEG2TSConvert::cancelTranscode()
{
    MPEG2TSCancel();
}

int DOMPEG2TSConvert::getLastError() const
{
    return MPEG2TSGetLastError() & 0xFFFF;
}

QString DOMPEG2TSConvert::getMPEG2TSFileName(const QList<DOTakeData>& takes, int index)
{
    return takes.value(index).getShownTakeID() + QStringLiteral(".M2T");
}

QString DOMPEG2TSConvert::getMPEG2TSFullFileName(const QString& folder, const QList<DOTakeData>& takes,
                                                 int index)
{
    QString path = folder;
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    return path + getMPEG2TSFileName(takes, index);
}

int DOMPEG2TSConvert::toWChar(const QByteArray& text, wchar_t* buffer, int capacity)
{
    if (capacity <= 0)
        return 0;
    static const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t(nullptr));
    const locale_t previous = utf8 ? uselocale(utf8) : locale_t(nullptr);
    std::mbstate_t state{};
    int written = 0;
    for (qsizetype i = 0; i < text.size() && written < capacity - 1; ++i) {
        wchar_t c = 0;
        const size_t n = std::mbrtowc(&c, text.constData() + i, 1, &state);
        if (n == size_t(-2))
            continue; // more bytes of this character to come
        if (n == size_t(-1) || c == 0)
            break;
        buffer[written++] = c;
    }
    buffer[written] = 0;
    if (previous)
        uselocale(previous);
    return written;
}
