#include "core/operations/BLDeleteFolderThread.h"

#include "core/app/BLLogCtrl.h"
#include "core/common/BLCommon.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <chrono>
#include <thread>

namespace {
constexpr int kProcessId = 9001;     // start, end and outcome of the run
constexpr int kPathProcessId = 9002; // each removal
} // namespace

BLDeleteFolderThread::BLDeleteFolderThread(const QString& folderPath, const QStringList& contents)
    : m_folderPath(QDir::cleanPath(folderPath)), m_contents(contents)
{
}

QString BLDeleteFolderThread::getInitMessage()
{
    return QStringLiteral("MSG_655_3200");
}

void BLDeleteFolderThread::getInitProgress(double* value, double* min, double* max)
{
    *value = 0;
    *min = 0;
    *max = m_contents.size();
}

void BLDeleteFolderThread::waitThread()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

QList<BLDeleteFolderThread::Step> BLDeleteFolderThread::removalSteps() const
{
    const QString bpav = BLCommon::getPathOfBPAV(m_folderPath);
    const QString takr = bpav + QStringLiteral("/TAKR/");
    const QString clpr = bpav + QStringLiteral("/CLPR/");

    // Each entry of TAKR and of CLPR, in the order met, with the number of
    // contents it holds (itself included).
    QList<Step> takes;
    QList<Step> clips;
    QHash<QString, qsizetype> index; // entry -> its place in takes or clips
    int rest = 0;
    for (const QString& path : m_contents) {
        const QString clean = QDir::cleanPath(path);
        const bool inTakr = clean.startsWith(takr);
        if (!inTakr && !clean.startsWith(clpr)) {
            ++rest;
            continue;
        }
        const QString& base = inTakr ? takr : clpr;
        const QString entry = base + clean.mid(base.size()).section(QLatin1Char('/'), 0, 0);
        QList<Step>& steps = inTakr ? takes : clips;
        const auto found = index.constFind(entry);
        if (found == index.cend()) {
            index.insert(entry, steps.size());
            steps.append({entry, 1});
        } else {
            ++steps[*found].count;
        }
    }
    return takes + clips + QList<Step>{{m_folderPath, rest}};
}

void BLDeleteFolderThread::loopProcess()
{
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLDeleteFolderThread loopProcess] Start"));
    const int max = m_contents.size();
    const QList<Step> steps = removalSteps();
    for (const Step& step : steps) {
        if (isCancel()) {
            BLLogCtrl::debug(kProcessId, QStringLiteral("[BLDeleteFolderThread loopProcess]    Cancel"));
            break;
        }
        if (!BLCommon::removeFile(step.path)) {
            BLLogCtrl::debug(kPathProcessId,
                             QStringLiteral("[BLDeleteFolderThread loopProcess]    fail : ") + step.path);
            // A folder removal may have taken part of its contents before it failed.
            m_removedCount += step.count;
            break;
        }
        BLLogCtrl::debug(kPathProcessId,
                         QStringLiteral("[BLDeleteFolderThread loopProcess]    path : ") + step.path);
        m_removedCount += step.count;
        setProgress(m_removedCount, 0, max);
        waitThread();
    }
    m_succeeded = !QFileInfo(m_folderPath).exists();
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLDeleteFolderThread loopProcess] End"));
}
