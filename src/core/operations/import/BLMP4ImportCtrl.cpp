#include "core/operations/import/BLMP4ImportCtrl.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/BLDiskCtrl.h"
#include "core/card/BLHouseKeepingCtrl.h"
#include "core/card/BLMediaProCtrl.h"
#include "core/card/IOperationPane.h"
#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/formats/metadata/BLMediaProfileAcss.h"
#include "core/operations/import/BLCreateNRT.h"
#include "core/operations/import/BLMP4ImportThread.h"
#include "core/services/BLAtomicFile.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/SCNotificationNames.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace {

constexpr int kProcessId = 648;
constexpr int kCheckProcessId = 7001;
constexpr int kFolderCheckType = 8;
constexpr int kMaxNameLength = 256;
constexpr qint64 kMiB = 1048576;
const QString kStop = QStringLiteral("[BLMP4ImportCtrl doImportWithThread]    ");

void log(const QString& message)
{
    BLLogCtrl::debug(kProcessId, message);
}

// Shows the message of a refusal and writes its log line, when it has one.
bool refuse(const char* key, const char* logText = nullptr, int style = 0)
{
    BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(key), QString(), style, 0);
    if (logText)
        BLLogCtrl::debug(kCheckProcessId, QString::fromLatin1(logText));
    return false;
}

QString mp4In(const QString& clipFolder)
{
    return BLCreateNRT::mp4Path(clipFolder);
}

} // namespace

BLMP4ImportCtrl::BLMP4ImportCtrl(IMP4ImportView* view, const DOMP4Import& import, IOperationPane* pane)
    : m_view(view), m_mediaInfo(pane), m_import(import), m_verify(BLPlistCtrl::sharedCtrl()->getVerifyCopy())
{
}

BLMP4ImportCtrl::~BLMP4ImportCtrl() = default;

QString BLMP4ImportCtrl::destination() const
{
    if (!m_import.getToImportFolder().isEmpty())
        return QDir::cleanPath(m_import.getToImportFolder());
    return m_mediaInfo ? QDir::cleanPath(m_mediaInfo->getSelectFolder()) : QString();
}

std::shared_ptr<BLMP4ImportThread> BLMP4ImportCtrl::createImportThread()
{
    return std::make_shared<BLMP4ImportThread>(this);
}

// ---- the dialog ----

bool BLMP4ImportCtrl::showModal(const QList<DOTakeData>& takes, const QStringList& files)
{
    log(QStringLiteral("[BLMP4ImportCtrl showModal] Start"));
    if (!m_view)
        return false;
    modalPreParation(takes, files);
    const bool ok = m_view->runModal(this) == kStopCodeImport;
    log(QStringLiteral("[BLMP4ImportCtrl showModal] End"));
    return ok && execImport();
}

void BLMP4ImportCtrl::modalPreParation(const QList<DOTakeData>& takes, const QStringList& files)
{
    m_import.setToImportFolder(destination());
    m_import.setTakeData(takes);
    const QString bpav = BLCommon::getPathOfBPAV(destination());
    for (const DOTakeData& take : takes)
        if (!take.getMP4Uri().isEmpty())
            m_arrayList << BLCommon::makeFilePath(bpav, {take.getMP4Uri()});
    m_view->setDestination(BLCommon::getDisplayName(destination()));
    m_view->setPathText(QString());
    for (const QString& file : files)
        createObject(file);
    updateView();
}

void BLMP4ImportCtrl::updateView()
{
    if (!m_view)
        return;
    QStringList names;
    for (const QString& path : std::as_const(m_arrayList))
        names << QFileInfo(path).fileName();
    m_view->setFileNames(names);
    m_view->setDeleteEnabled(!m_arrayList.isEmpty());
    m_view->setOKEnabled(!m_arrayList.isEmpty());
    m_view->setAddEnabled(!m_view->pathText().isEmpty());
}

void BLMP4ImportCtrl::onSearch()
{
    const QStringList chosen = m_view->chooseFiles();
    if (chosen.size() == 1) {
        m_import.setSelectFile(chosen.first());
        m_view->setPathText(QFileInfo(chosen.first()).fileName());
        m_search = true;
        m_view->setAddEnabled(true);
        return;
    }
    // Several files join the list at once, each through the checks of Add.
    for (const QString& path : chosen)
        createObject(path);
    updateView();
}

void BLMP4ImportCtrl::onAdd()
{
    const QString text = m_view->pathText();
    const bool searched = m_search && text == QFileInfo(m_import.getSelectFile()).fileName();
    if (createObject(searched ? m_import.getSelectFile() : BLCommon::standardizePath(text)))
        m_view->setPathText(QString());
    m_search = false;
    updateView();
}

bool BLMP4ImportCtrl::createObject(const QString& path)
{
    if (!objectCheck(path))
        return false;
    m_arrayList << path;
    return true;
}

void BLMP4ImportCtrl::onDelete()
{
    const int row = m_view->selectedRow();
    if (row >= 0 && row < m_arrayList.size())
        m_arrayList.removeAt(row);
    updateView();
}

void BLMP4ImportCtrl::onOK()
{
    BLClipCtrl clipCtrl;
    bool exists = false;
    if (m_mediaInfo && m_import.getToImportFolder() == QDir::cleanPath(m_mediaInfo->getSelectFolder())) {
        exists = clipCtrl.checkFolderExist(*m_mediaInfo, kFolderCheckType);
    } else {
        exists = clipCtrl.checkFolderExistOfWorkFolder(destination());
        if (!exists)
            BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_632_3169"), QString(), 0, 0);
    }
    m_view->endModal(exists ? kStopCodeImport : kStopCodeCancel);
}

void BLMP4ImportCtrl::onCancel()
{
    m_view->endModal(kStopCodeCancel);
}

bool BLMP4ImportCtrl::addFiles(const QStringList& files)
{
    m_import.setToImportFolder(destination());
    bool all = true;
    for (const QString& file : files)
        all = createObject(BLCommon::standardizePath(file)) && all;
    return all;
}

// ---- checks ----

bool BLMP4ImportCtrl::objectCheck(const QString& path)
{
    if (!BLCommon::checkNotInput(path))
        return refuse("MSG_648_3161", "checkNotInput >>> NotInput");
    if (!BLCommon::checkHyphenationCharacterForPath(path))
        return refuse("MSG_648_3160", "checkHyphenationCharacterForPath >>> HyphenationCharacter", 1);
    const QFileInfo info(path);
    // The name's length in bytes: an ASCII name counts its characters.
    if (info.fileName().toUtf8().size() > kMaxNameLength)
        return refuse("MSG_648_3159", "checkLength >>>   > 256");
    if (info.suffix() != QLatin1String("MP4") && info.suffix() != QLatin1String("mp4"))
        return refuse("MSG_648_3162", "checkPathExtension >>> NotMP4");
    if (!BLCommon::isFiles(path))
        return refuse("MSG_648_3188", "checkIsFiles >>> NotFound");
    const bool listed = std::any_of(m_arrayList.begin(), m_arrayList.end(), [&path](const QString& p) {
        return QDir::cleanPath(p).compare(QDir::cleanPath(path), Qt::CaseInsensitive) == 0;
    });
    if (listed)
        return refuse("MSG_648_3163", "checkAlready >>> Already");
    return true;
}

bool BLMP4ImportCtrl::systemCheck(const QString& path)
{
    const QString folder = destination();
    BLDiskCtrl* disk = BLDiskCtrl::sharedCtrl();
    if (!BLCommon::isFiles(path))
        return refuse("MSG_648_3188");
    if (!BLCommon::checkSameName(folder, QFileInfo(path).fileName()))
        return refuse("MSG_648_3163");
    switch (disk->isUsableDrive(folder)) {
    case 3:
        return refuse("MSG_648_3126");
    case 1:
        if (disk->getFileSize(path) > BLClipCtrl::kFat32Limit)
            return refuse("MSG_648_3127", "FAT32 & 4GB over");
        break;
    default:
        break;
    }
    disk->baseReadableCheck(folder);
    if (!disk->baseWritableCheck(folder))
        return refuse("MSG_6510_3209");
    if (!disk->isDeletableThisPath(folder))
        return refuse("MSG_6510_3200");
    if (!disk->isReadableThisPath(path))
        return refuse("MSG_6510_3231");
    if (isInDestinationCLPR(path) && (!disk->isDeletablePath(path) || !disk->isWritableThisPath(path)))
        return refuse("MSG_6510_3211");
    return true;
}

bool BLMP4ImportCtrl::checkMP4(const QString& path)
{
    return BLBIMCtrl::sharedCtrl()->preImportMP4(path);
}

bool BLMP4ImportCtrl::isInDestinationCLPR(const QString& path) const
{
    const QFileInfo parent(QFileInfo(path).absolutePath());
    const QFileInfo clpr(BLCommon::getPathOfBPAV(destination()) + QStringLiteral("/CLPR"));
    if (parent.exists() && clpr.exists())
        return parent.canonicalFilePath() == clpr.canonicalFilePath();
    return QDir::cleanPath(parent.filePath()) == QDir::cleanPath(clpr.filePath());
}

// ---- the import ----

bool BLMP4ImportCtrl::execImport()
{
    log(QStringLiteral("[BLMP4ImportCtrl execImport] Start"));
    m_cancelled = false;
    const QString folder = destination();
    m_import.setToImportFolder(folder);
    m_import.setArray(m_arrayList);
    m_import.setDate(m_clock ? m_clock() : QDateTime::currentDateTimeUtc());
    if (m_arrayList.isEmpty())
        return false;

    QStringList toCopy;
    for (const QString& path : std::as_const(m_arrayList))
        if (!isInDestinationCLPR(path))
            toCopy << path;
    const bool moves = toCopy.size() != m_arrayList.size();
    if (!toCopy.isEmpty() && !BLDiskCtrl::sharedCtrl()->checkDiskSpace(toCopy, folder))
        return false;
    for (const QString& path : std::as_const(m_arrayList))
        if (!systemCheck(path))
            return false;
    for (const QString& path : std::as_const(m_arrayList))
        if (!checkMP4(path))
            return refuse("MSG_648_3124");
    if (BLCommon::isExceedFolderLimitByImport(folder, int(m_arrayList.size())))
        return refuse("MSG_632_3236");

    // The worker does not reach into the pane.
    m_paneTakes = m_mediaInfo ? m_mediaInfo->getTakeData() : QList<DOTakeData>();
    const std::shared_ptr<BLMP4ImportThread> worker = createImportThread();
    const bool cancelled = BLProgressCtrl::sharedCtrl()->showProgress(worker, true);
    // A cancel that came once the files were in place did not stop the import.
    const bool imported = worker->isSucceeded();
    m_cancelled = cancelled && !imported;
    if (!imported) {
        log(QStringLiteral("[BLMP4ImportCtrl execImport] End"));
        return false;
    }
    for (const DOClipCtrl& clipCtrl : m_import.getArrayClipCtrl())
        for (const QString& umid : clipCtrl.getDelUmid())
            BLLogCtrl::debug(0, QStringLiteral("delUmid:") + umid);
    BLCommon* common = BLCommon::sharedCtrl();
    if (moves)
        common->sendNotificationNotCoalesce(this, SC::SCSelectFolderDataDidUpdateNotification,
                                            {{SC::SCDUpdateSelectFolderKey, folder}});
    else
        common->sendDidAddNotification(this, folder, m_import.getAddTake());
    log(QStringLiteral("[BLMP4ImportCtrl execImport] End"));
    return true;
}

bool BLMP4ImportCtrl::doImportWithThread(BLMP4ImportThread* thread)
{
    log(QStringLiteral("[BLMP4ImportCtrl doImportWithThread] Start"));
    const QString folder = destination();
    const QStringList files = m_import.getArray();
    m_beforeTakes = BLCommon::isFolder(BLCommon::getPathOfBPAV(folder))
                        ? BLHouseKeepingCtrl().doHouseKeeping(folder)
                        : QList<DOTakeData>();
    keepIndexes();

    // One record per file; the files copied make the progress total.
    QList<DOClipCtrl> clipCtrls;
    qint64 total = 0;
    for (const QString& file : files) {
        DOClipCtrl clipCtrl;
        clipCtrl.setDestinationWorkFolder(folder);
        clipCtrl.setSourceWorkFolder(isInDestinationCLPR(file) ? folder : QFileInfo(file).absolutePath());
        clipCtrl.setToTakes(m_beforeTakes);
        clipCtrl.setBeforeTakes(m_beforeTakes);
        if (!isInDestinationCLPR(file))
            total += BLDiskCtrl::sharedCtrl()->getFileSize(file);
        clipCtrls << clipCtrl;
    }
    m_import.setImportFileSizeMax(total);
    m_import.setNowFileSize(0);
    m_doneMiB = 0;

    int made = 0; // files whose clip folder exists
    QList<DOTakeData> added;
    const auto stop = [&](const QString& reason, const char* message) {
        if (message)
            BLCommon::sharedCtrl()->messageBox(QString::fromLatin1(message), QString(), 0, 0,
                                               {QFileInfo(files.value(made - 1)).fileName()});
        log(kStop + reason);
        processCancel(clipCtrls, made, files);
        log(QStringLiteral("[BLMP4ImportCtrl doImportWithThread] End"));
        return false;
    };
    for (int i = 0; i < files.size(); ++i) {
        const QString& file = files.at(i);
        DOClipCtrl& clipCtrl = clipCtrls[i];
        if (!checkMP4(file))
            return stop(QStringLiteral("MP4 check fail"), "MSG_648_3124");
        if (!createClipFolder(i + 1))
            return stop(QStringLiteral("Create ClipFolder fail"),
                        BLDiskCtrl::sharedCtrl()->isUsableDrive(folder) == 0 ? "MSG_6510_3209"
                                                                             : "MSG_631_3166");
        made = i + 1;

        const bool move = isInDestinationCLPR(file);
        DOTakeData take = move ? takeForMovedFile(file) : DOTakeData();
        m_import.createTakeData(take, file);
        clipCtrl.setFromTakes({take});
        clipCtrl.setTargetTake(take);
        const int result =
            move ? moveImportFile(thread, file, clipCtrl) : copyImportFile(thread, file, total / kMiB);
        if (result == 3)
            return stop(QStringLiteral("File Copy cancel (RET_COPY_CANCEL)"), nullptr);
        if (result == BLCommon::kCopyNotVerified)
            return stop(QStringLiteral("File Copy fail (RET_COPY_NOT_VERIFIED)"), "MSG_642_3300");
        if (result != 0)
            return stop(move ? QStringLiteral("File Move fail (RET_MOVE_FAIL)")
                             : QStringLiteral("File Copy fail (RET_COPY_FAIL)"),
                        "MSG_631_3166");
        const QString clipFolder = m_import.getToImportClipFolder();
        if (!createNonMetaForImportFile(clipFolder, take))
            return stop(QStringLiteral("Create NonMeta fail"), "MSG_631_3166");
        take.setSize(BLDiskCtrl::sharedCtrl()->getClipSize(clipFolder));
        clipCtrl.setFromTakes({take});
        added << take;
        thread->waitThread();
        if (thread->isCancel())
            return stop(QStringLiteral("Cancel"), nullptr);
    }

    // The files are in place: the index files follow, which cannot be cancelled.
    thread->setCancelEnable(false);
    if (thread->isCancel())
        return stop(QStringLiteral("Cancel"), nullptr);
    thread->setMessage(QStringLiteral("MSG_732_3230"));
    thread->setProgress(0, 0, 0);
    for (int round = 0; round < 20; ++round)
        thread->waitThread();
    m_import.setAddTake(added);
    m_import.setArrayClipCtrl(clipCtrls);
    if (!createMediaProfile(clipCtrls.first()))
        return stop(QStringLiteral("Create MediaPro fail"), "MSG_631_3166");
    if (!createCueup())
        return stop(QStringLiteral("Create Cueup fail"), "MSG_631_3166");
    log(QStringLiteral("[BLMP4ImportCtrl doImportWithThread] End"));
    return true;
}

QString BLMP4ImportCtrl::createClipFolderPath(const QString& folder, int number) const
{
    return BLCommon::getPathOfBPAV(folder) + QStringLiteral("/CLPR/") + m_import.clipName(number);
}

bool BLMP4ImportCtrl::createClipFolder(int number)
{
    const QString folder = destination();
    const QString clipFolder = createClipFolderPath(folder, number);
    if (!BLCommon::createFixedFolders(folder) || !BLCommon::createNewFolder(clipFolder))
        return false;
    m_import.setToImportClipFolder(clipFolder);
    return true;
}

DOTakeData BLMP4ImportCtrl::takeForMovedFile(const QString& path) const
{
    const QString name = QFileInfo(path).fileName();
    const auto named = [&name](const QList<DOTakeData>& takes, Qt::CaseSensitivity cs) {
        return std::find_if(takes.begin(), takes.end(), [&](const DOTakeData& take) {
            return QFileInfo(take.getMP4Uri()).fileName().compare(name, cs) == 0;
        });
    };
    DOTakeData take;
    const QList<DOTakeData>& selected = m_import.getTakeData();
    const QList<DOTakeData>& shown = m_mediaInfo ? m_paneTakes : m_beforeTakes;
    if (const auto it = named(selected, Qt::CaseInsensitive); it != selected.end()) {
        take = it->copyTake();
    } else if (const auto it2 = named(shown, Qt::CaseSensitive); it2 != shown.end()) {
        take = it2->copyTake();
        take.setMateUpFlg(true);
    }
    // The clip is its one MP4 file now: what the loose file's record listed goes.
    take.setArrClipData({});
    take.setArrTakeInfo({});
    return take;
}

int BLMP4ImportCtrl::copyImportFile(BLMP4ImportThread* thread, const QString& from, qint64 max)
{
    setProcessFlag(1);
    const QString to = mp4In(m_import.getToImportClipFolder());
    log(QStringLiteral("[BLMP4ImportCtrl copyImportFile] %1 -> %2").arg(from, to));
    const int result = BLCommon::copyFileWithProgress(from, to, thread, &m_doneMiB, max, m_verify);
    if (result == 0)
        m_import.setNowFileSize(m_import.getNowFileSize() + BLDiskCtrl::sharedCtrl()->getFileSize(to));
    return result;
}

int BLMP4ImportCtrl::moveImportFile(BLMP4ImportThread* thread, const QString& from, DOClipCtrl& clipCtrl)
{
    setProcessFlag(0);
    const QString to = mp4In(m_import.getToImportClipFolder());
    log(QStringLiteral("[BLMP4ImportCtrl moveImportFile] %1 -> %2").arg(from, to));
    if (BLCommon::moveFileWithProgress(from, to, thread, nullptr, 0) != 0)
        return 2;
    // The loose file's take lives on in the new clip: its entry is replaced.
    const QString umid = clipCtrl.getTargetTake().getUmid();
    const bool listed = std::any_of(m_beforeTakes.begin(), m_beforeTakes.end(), [&umid](const DOTakeData& t) {
        return t.getUmid().compare(umid, Qt::CaseInsensitive) == 0;
    });
    if (listed)
        clipCtrl.addDelUmid(umid);
    return 0;
}

bool BLMP4ImportCtrl::createNonMetaForImportFile(const QString& nowFile, DOTakeData& take)
{
    BLLogCtrl::debug(kCheckProcessId, QStringLiteral("[BLMP4ImportCtrl createNonMetaForImportFile] Start"));
    const bool made = BLCreateNRT::createNonMetaFile(nowFile, take);
    if (made) {
        BLClipCtrl().getNonRealData(take, destination());
        take.setMPStatus(QStringLiteral("none"));
    }
    BLLogCtrl::debug(kCheckProcessId, QStringLiteral("[BLMP4ImportCtrl createNonMetaForImportFile] End"));
    if (made)
        m_import.setUmid(take.getUmid());
    return made;
}

bool BLMP4ImportCtrl::createMediaProfile(const DOClipCtrl& clipCtrl)
{
    const QString folder = destination();
    QList<DOTakeData> takes;
    QStringList replaced = clipCtrl.getDelUmid();
    for (const DOClipCtrl& record : m_import.getArrayClipCtrl())
        replaced << record.getDelUmid();
    for (const DOTakeData& take : clipCtrl.getToTakes())
        if (!replaced.contains(take.getUmid(), Qt::CaseInsensitive))
            takes << take;
    takes << m_import.getAddTake();
    BLMediaProCtrl mediaProCtrl;
    BLMediaProfileAcss mediaPro;
    if (mediaProCtrl.isMediaPro(mediaPro, folder) == 2)
        return false;
    return mediaProCtrl.createMediaPro(takes, folder);
}

bool BLMP4ImportCtrl::createCueup()
{
    return BLMediaProCtrl().isCueUp(destination());
}

// ---- roll-back ----

void BLMP4ImportCtrl::keepIndexes()
{
    const QString bpav = BLCommon::getPathOfBPAV(destination());
    m_keptIndexes.clear();
    for (const QString& name : {QStringLiteral("MEDIAPRO.XML"), QStringLiteral("CUEUP.XML")}) {
        QFile file(bpav + QLatin1Char('/') + name);
        m_keptIndexes.insert(file.fileName(), file.open(QIODevice::ReadOnly)
                                                  ? std::optional<QByteArray>(file.readAll())
                                                  : std::nullopt);
    }
    m_missingFolders.clear();
    for (const QString& path : {bpav, bpav + QStringLiteral("/CLPR"), bpav + QStringLiteral("/TAKR")})
        if (!QFileInfo(path).isDir())
            m_missingFolders << path;
}

void BLMP4ImportCtrl::restoreIndexes()
{
    for (auto it = m_keptIndexes.cbegin(); it != m_keptIndexes.cend(); ++it) {
        QFile file(it.key());
        if (!it.value()) {
            file.remove();
            continue;
        }
        const bool same = file.open(QIODevice::ReadOnly) && file.readAll() == *it.value();
        file.close();
        if (!same && !BLAtomicFile::writeFile(it.key(), *it.value()))
            log(QStringLiteral("[BLMP4ImportCtrl processCancel]    restore fail:") + it.key());
    }
    // The fixed folders the import made, when nothing else came into them.
    for (auto it = m_missingFolders.crbegin(); it != m_missingFolders.crend(); ++it)
        QDir().rmdir(*it);
}

void BLMP4ImportCtrl::processCancel(const QList<DOClipCtrl>& clipCtrls, int count,
                                    const QStringList& mp4Files)
{
    log(QStringLiteral("[BLMP4ImportCtrl processCancel] Start"));
    const QString folder = destination();
    for (int i = std::min<int>(count, int(mp4Files.size())) - 1; i >= 0; --i) {
        const QString clipFolder = createClipFolderPath(folder, i + 1);
        const bool moved = QDir::cleanPath(clipCtrls.value(i).sourceWorkFolder()) == folder;
        const QString mp4 = mp4In(clipFolder);
        if (moved && QFileInfo::exists(mp4) && !QFileInfo::exists(mp4Files.at(i)) &&
            !BLCommon::moveFolder(mp4, mp4Files.at(i))) {
            // The file stays in its clip folder rather than being lost.
            log(QStringLiteral("[BLMP4ImportCtrl processCancel]    move back fail:") + mp4);
            continue;
        }
        BLCommon::removeFile(clipFolder);
        log(QStringLiteral("[BLMP4ImportCtrl processCancel]    del:") + clipFolder);
    }
    restoreIndexes();
    log(QStringLiteral("[BLMP4ImportCtrl processCancel] End"));
}
