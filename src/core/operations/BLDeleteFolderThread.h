#pragma once

#include "core/services/BLProgressThread.h"

#include <QStringList>

// Removes a work folder with everything it held when it was checked, under
// the progress dialog; what appeared in it since stays, and keeps the folder.
// The folder's takes go first, one take folder after another, then its clips,
// one clip folder after another, then whatever is left (index files, the empty
// BPAV structure) with the folder itself. Cancel is honoured between those
// steps only, so a cancelled run leaves the folder in place with its index
// files and with every remaining clip and take folder whole: the folder still
// loads (housekeeping drops the entries of removed clips) and can be deleted
// again.
class BLDeleteFolderThread : public BLProgressThread
{
public:
    // The contents are the folder followed by every path under it, absolute.
    BLDeleteFolderThread(const QString& folderPath, const QStringList& contents);

    QString getInitMessage() override;
    void getInitProgress(double* value, double* min, double* max) override;
    void loopProcess() override;
    // 10 ms between steps.
    void waitThread() override;

    // The whole folder is gone.
    bool isSucceeded() const { return m_succeeded; }
    // Something was removed (a cancelled or failed run changed the folder).
    bool hasRemoved() const { return m_removedCount > 0; }

private:
    // One removal step: a clip or take folder (or the work folder for the
    // rest), and the paths of the contents it holds.
    struct Step
    {
        QString path;
        QStringList paths;
    };
    QList<Step> removalSteps() const;
    // Removes the step's paths, each on its own; false at the first that
    // cannot be removed (a folder that now holds something new among them).
    bool removeStep(const Step& step);

    QString m_folderPath;
    QStringList m_contents;
    int m_removedCount = 0;
    bool m_succeeded = false;
};
