#include "core/operations/BLDeleteFolderThread.h"

#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"

#include <QDir>
#include <QFile>
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

    // Each entry of TAKR and of CLPR, in the order met, with the contents it
    // holds (itself included); the rest goes last with the folder itself.
    QList<Step> takes;
    QList<Step> clips;
    QHash<QString, qsizetype> index; // entry -> its place in takes or clips
    Step rest{m_folderPath, {}};
    for (const QString& path : m_contents) {
        const QString clean = QDir::cleanPath(path);
        const bool inTakr = clean.startsWith(takr);
        if (!inTakr && !clean.startsWith(clpr)) {
            rest.paths << clean;
            continue;
        }
        const QString& base = inTakr ? takr : clpr;
        const QString entry = base + clean.mid(base.size()).section(QLatin1Char('/'), 0, 0);
        QList<Step>& steps = inTakr ? takes : clips;
        const auto found = index.constFind(entry);
        if (found == index.cend()) {
            index.insert(entry, steps.size());
            steps.append({entry, {clean}});
        } else {
            steps[*found].paths << clean;
        }
    }
    return takes + clips + QList<Step>{rest};
}

bool BLDeleteFolderThread::removeStep(const Step& step)
{
    // Deepest first: in sorted order a path's contents follow it. A folder is
    // removed only once empty, so nothing that came after the check goes.
    QStringList paths = step.paths;
    paths.sort();
    for (auto it = paths.crbegin(); it != paths.crend(); ++it) {
        const QFileInfo info(*it);
        bool removed = true; // already gone
        if (info.isSymLink() || (info.exists() && !info.isDir()))
            removed = QFile::remove(*it);
        else if (info.exists())
            removed = QDir().rmdir(*it);
        if (!removed) {
            BLLogCtrl::debug(kPathProcessId,
                             QStringLiteral("[BLDeleteFolderThread loopProcess]    fail : ") + *it);
            return false;
        }
        ++m_removedCount;
    }
    return true;
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
        if (!removeStep(step))
            break;
        BLLogCtrl::debug(kPathProcessId,
                         QStringLiteral("[BLDeleteFolderThread loopProcess]    path : ") + step.path);
        setProgress(m_removedCount, 0, max);
        waitThread();
    }
    m_succeeded = !QFileInfo(m_folderPath).exists();
    BLLogCtrl::debug(kProcessId, QStringLiteral("[BLDeleteFolderThread loopProcess] End"));
}
