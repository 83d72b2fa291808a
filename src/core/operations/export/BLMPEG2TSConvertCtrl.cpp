#include "core/operations/export/BLMPEG2TSConvertCtrl.h"

#include "core/card/BLDiskCtrl.h"
#include "core/formats/metadata/BLNonMetaAcss.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"

#include <QDate>
#include <QDir>
#include <QFileInfo>

namespace {

constexpr int kProcessId = 640;

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

void showMessage(const QString& key, int style = 0, const QString& detail = QString())
{
    BLCommon::sharedCtrl()->messageBox(key, detail, style, 0);
}

// The folder that holds a path ("" for a name without one).
QString parentOf(const QString& path)
{
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : path.left(slash);
}

int digits(const QString& text, int from, int count)
{
    return text.mid(from, count).toInt();
}

} // namespace

BLMPEG2TSConvertCtrl::BLMPEG2TSConvertCtrl(DOMPEG2TSConvert& mpeg, IMPEG2TSConvertView* view)
    : m_mpeg(mpeg), m_view(view)
{
    m_mpeg.initMPEG2TS(this);
}

BLMPEG2TSConvertCtrl::~BLMPEG2TSConvertCtrl()
{
    if (m_thread.joinable()) {
        m_cancelled = 1;
        m_mpeg.cancelTranscode();
    }
    joinThread();
    m_mpeg.freeMPEG2TS();
}

void BLMPEG2TSConvertCtrl::showModal(const QString& folder, const QList<DOTakeData>& takes)
{
    m_folder = folder;
    m_takes = takes;
    if (m_takes.isEmpty())
        return;
    initializeMessage();
    enableButtons();
    initializeProgress();
    m_view->runModal(this);
    joinThread();
}

void BLMPEG2TSConvertCtrl::initializeMessage()
{
    const QString exportFolder = BLPlistCtrl::sharedCtrl()->getExportFolder();
    if (m_takes.size() == 1) {
        m_view->setDestinationLabel(BLLocalizedString(QStringLiteral("LOCALIZED_MPEG2TSCONVERT_TO_FILE")));
        m_view->setPath(DOMPEG2TSConvert::getMPEG2TSFullFileName(exportFolder, m_takes, 0));
    } else {
        m_view->setDestinationLabel(BLLocalizedString(QStringLiteral("LOCALIZED_MPEG2TSCONVERT_TO_PATH")));
        m_view->setPath(exportFolder);
    }
    m_view->setCounter(QString());
    m_view->setMessage(QString());
}

void BLMPEG2TSConvertCtrl::initializeProgress()
{
    m_view->setProgress(0);
}

void BLMPEG2TSConvertCtrl::enableButtons()
{
    m_view->setButtons(true, false);
}

void BLMPEG2TSConvertCtrl::disableButtons(bool running)
{
    m_view->setButtons(false, running);
}

void BLMPEG2TSConvertCtrl::onOpenDialog()
{
    const QString text = m_view->path();
    QString start = QFileInfo(text).isDir() ? text : parentOf(text);
    if (start.isEmpty())
        start = QStringLiteral("/");
    disableButtons(false);
    const QString chosen = m_view->chooseFolder(start);
    enableButtons();
    if (chosen.isEmpty())
        return;
    m_view->setPath(m_takes.size() == 1 ? DOMPEG2TSConvert::getMPEG2TSFullFileName(chosen, m_takes, 0)
                                        : chosen);
}

void BLMPEG2TSConvertCtrl::onStart()
{
    if (m_thread.joinable())
        return;
    QString text = m_view->path().trimmed();
    if (text.isEmpty()) {
        showMessage(m_takes.size() == 1 ? QStringLiteral("MSG_6510_3226") : QStringLiteral("MSG_6510_3225"));
        return;
    }
    QString folder = QFileInfo(text).isDir() ? QDir::cleanPath(text) : parentOf(text);
    if (folder.isEmpty()) {
        folder = QStringLiteral("/");
        if (!text.startsWith(QLatin1Char('/')))
            text.prepend(QLatin1Char('/'));
        m_view->setPath(text);
    }
    BLPlistCtrl::sharedCtrl()->setExportFolderPath(folder);
    if (!checkExport(folder))
        return;
    m_exportFolder = folder;
    m_singlePath = text;
    disableButtons(true);
    doTranscode();
}

bool BLMPEG2TSConvertCtrl::checkExport(const QString& folder)
{
    const QString failed = QStringLiteral("[BLMPEG2TSConvertCtrl checkExport] %1 fail: ") + folder;
    const auto refuse = [&](const char* key, int style, const char* what) {
        showMessage(QLatin1String(key), style);
        log(failed.arg(QLatin1String(what)));
        return false;
    };
    if (!BLCommon::checkHyphenationCharacterForPath(folder))
        return refuse("MSG_648_3160", 1, "checkHyphenationCharacterForPath");
    if (!QFileInfo(folder).isDir())
        return refuse("MSG_6510_3210", 1, "fileExistsAtPath");
    const BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    if (disk->isUsableDrive(folder) == 3)
        return refuse("MSG_651_3232", 0, "isUsableDrive");
    if (!disk->isWritableThisPath(folder))
        return refuse("MSG_6510_3221", 0, "isWritableThisPath");
    if (!disk->isDeletableThisPath(folder))
        return refuse("MSG_6510_3220", 0, "isDeletableThisPath");
    return checkExportDiscSpace(folder);
}

bool BLMPEG2TSConvertCtrl::checkExportDiscSpace(const QString& folder)
{
    const QString bpav = BLCommon::getPathOfBPAV(m_folder);
    QStringList paths;
    for (const DOTakeData& take : std::as_const(m_takes)) {
        QStringList references{take.getXMLUri()};
        for (const DOClipData& clip : take.getClipData())
            references << clip.getXMLUri();
        for (const QString& reference : std::as_const(references))
            if (!reference.isEmpty())
                paths << QFileInfo(BLCommon::makeFilePath(bpav, {reference})).path();
    }
    paths.removeDuplicates();
    return BLDiskCtrl::sharedCtrl()->checkDiskSpace(paths, folder);
}

QStringList BLMPEG2TSConvertCtrl::getInputPath(int index) const
{
    return BLCommon::getMp4FilePaths(m_folder, m_takes.value(index), nullptr);
}

QString BLMPEG2TSConvertCtrl::getOutputPath(int index) const
{
    return m_takes.size() == 1 ? m_singlePath
                               : DOMPEG2TSConvert::getMPEG2TSFullFileName(m_exportFolder, m_takes, index);
}

int BLMPEG2TSConvertCtrl::getCreationWeek(const QString& date)
{
    const QDate day(digits(date, 0, 4), digits(date, 5, 2), digits(date, 8, 2));
    return day.isValid() ? day.dayOfWeek() % 7 : 0;
}

mpeg2ts_convert_params_t BLMPEG2TSConvertCtrl::makeConvertParams(const QString& creationDate,
                                                                 const QString& userBits, int startFrames,
                                                                 int dropFlag)
{
    mpeg2ts_convert_params_t params{};
    if (creationDate.size() > 24) { // yyyy-MM-ddThh:mm:ss+hh:mm
        const int zone = digits(creationDate, 19, 3);
        params.time_zone = uint8_t(zone < 0 ? zone + 24 : zone);
        params.day = uint8_t(digits(creationDate, 8, 2));
        params.week = uint8_t(getCreationWeek(creationDate));
        params.month = uint8_t(digits(creationDate, 5, 2));
        params.year = uint8_t(digits(creationDate, 2, 2));
        params.hour = uint8_t(digits(creationDate, 11, 2));
        params.minute = uint8_t(digits(creationDate, 14, 2));
        params.second = uint8_t(digits(creationDate, 17, 2));
    }
    if (userBits.size() > 8) {
        const QString last = userBits.right(8);
        for (int i = 0; i < 4; ++i)
            params.user_bits[i] = uint8_t(last.mid(2 * i, 2).toUInt(nullptr, 16));
    }
    params.drop_frame = uint8_t(dropFlag);
    params.start_frames = uint32_t(startFrames);
    return params;
}

int BLMPEG2TSConvertCtrl::progressValue(int takeNumber, int takeCount, int percent)
{
    if (takeCount <= 0)
        return 0;
    return ((takeNumber - 1) * 100) / takeCount + ((100 / takeCount) * percent) / 100;
}

void BLMPEG2TSConvertCtrl::setStateCount(int percent)
{
    const int value = progressValue(m_takeCounter, int(m_takes.size()), percent);
    QMetaObject::invokeMethod(
        &m_mainThread, [this, value] { m_view->setProgress(value); }, Qt::QueuedConnection);
}

void BLMPEG2TSConvertCtrl::setDialogMessage(const QString& message)
{
    QMetaObject::invokeMethod(
        &m_mainThread, [this, message] { m_view->setMessage(message); }, Qt::QueuedConnection);
}

void BLMPEG2TSConvertCtrl::setError(const QString& errStr)
{
    showMessage(QStringLiteral("MSG_6510_3223"), 0, errStr);
    enableButtons();
}

void BLMPEG2TSConvertCtrl::outputMessage(int error)
{
    switch (error) {
    case MPEG2TS_ERR_NONE:
        return;
    case MPEG2TS_ERR_READ:
        showMessage(QStringLiteral("MSG_6510_3227"));
        break;
    case MPEG2TS_ERR_CREATE:
        showMessage(QStringLiteral("MSG_6510_3220"));
        break;
    case MPEG2TS_ERR_WRITE:
        showMessage(QStringLiteral("MSG_6510_3219"));
        break;
    case MPEG2TS_ERR_VIDEO:
    case MPEG2TS_ERR_AUDIO:
        showMessage(QStringLiteral("MSG_6510_3228"));
        break;
    default:
        showMessage(QStringLiteral("MSG_6510_3223"));
        break;
    }
}

void BLMPEG2TSConvertCtrl::doTranscode()
{
    m_cancelled = 0;
    m_takeCounter = 0;
    m_progressStart = m_takeCounter * 100;
    log(QStringLiteral("[BLMPEG2TSConvertCtrl doTranscode] Start: ") + QString::number(m_takes.size()) +
        QStringLiteral(" takes to ") + m_exportFolder);
    m_view->setMessage(BLLocalizedString(QStringLiteral("LOCALIZED_MPEG2TSCONVERT_EXPORT")));
    m_thread = std::thread([this] { doThread(); });
}

void BLMPEG2TSConvertCtrl::doThread()
{
    const int count = int(m_takes.size());
    const QString bpav = BLCommon::getPathOfBPAV(m_folder);
    bool done = true;
    for (int index = 0; index < count && done; ++index) {
        if (m_cancelled) {
            done = false;
            break;
        }
        const DOTakeData& take = m_takes.at(index);
        const int number = ++m_takeCounter;
        QMetaObject::invokeMethod(
            &m_mainThread,
            [this, number, count] { m_view->setCounter(QString::asprintf("%d/%d", number, count)); },
            Qt::QueuedConnection);
        setStateCount(0);
        int fileCount = 0;
        const QStringList inputs = BLCommon::getMp4FilePaths(m_folder, take, &fileCount);
        const QString output = getOutputPath(index);
        setDialogMessage(BLLocalizedString(QStringLiteral("LOCALIZED_MPEG2TSCONVERT_EXPORT")) +
                         QLatin1Char('\r') + output);

        DONonRealTimeMeta meta;
        BLNonMetaAcss nrt;
        if (nrt.loadForFilePath(BLCommon::makeFilePath(bpav, {take.getXMLUri()})))
            nrt.getNonMetaData(meta, BLCommon::getSystemLanguage());
        int dropFlag = 0;
        const int startFrames = BLCommon::GetStartFrames(take, &dropFlag);
        const mpeg2ts_convert_params_t params =
            makeConvertParams(meta.getCreationDate(), meta.getTypicalUbit(), startFrames, dropFlag);
        log(QStringLiteral("[BLMPEG2TSConvertCtrl doThread] %1 -> %2").arg(take.getShownTakeID(), output));
        done = fileCount > 0 && m_mpeg.doTranscodeTake(params, inputs, fileCount, output);
    }
    QMetaObject::invokeMethod(
        &m_mainThread, [this, done] { threadDidEnd(done); }, Qt::QueuedConnection);
}

void BLMPEG2TSConvertCtrl::threadDidEnd(bool done)
{
    joinThread();
    const bool cancelled = m_cancelled;
    if (!done && !cancelled) {
        const int error = m_mpeg.getLastError();
        log(QStringLiteral("[BLMPEG2TSConvertCtrl doThread] failed, error %1").arg(error));
        outputMessage(error == MPEG2TS_ERR_NONE ? MPEG2TS_ERR_READ : error); // no file to convert: unreadable
    }
    log(QStringLiteral("[BLMPEG2TSConvertCtrl doThread] End") + (done        ? QString()
                                                                 : cancelled ? QStringLiteral(" (cancelled)")
                                                                             : QStringLiteral(" (failed)")));
    initializeProgress();
    enableButtons();
    m_view->setMessage(QString());
    m_view->setCounter(QString());
    m_finished = done ? 1 : 0;
    m_view->exportDidEnd(done);
    if (done)
        m_view->endModal();
}

void BLMPEG2TSConvertCtrl::onCancel()
{
    if (!m_thread.joinable())
        return;
    m_cancelled = 1;
    m_mpeg.cancelTranscode();
}

void BLMPEG2TSConvertCtrl::onClose()
{
    if (m_thread.joinable())
        return; // Close is disabled while converting
    m_finished = 1;
    m_view->endModal();
}

void BLMPEG2TSConvertCtrl::joinThread()
{
    if (m_thread.joinable())
        m_thread.join();
}
