#pragma once

#include <QString>
#include <QVariantMap>

// Shared helpers used by every controller: special folders, notifications
// (and, as they land, time codes, paths, names and file operations).
// A lazily created singleton; it keeps almost no state, so it is safe to call
// from the main thread and from workers.
class BLCommon
{
public:
    static BLCommon* sharedCtrl();
    static void releaseCtrl();

    // ---- special folders ----
    // The current user's special folder of a four-character type, created if
    // missing: "pref" (preferences), "logs" (logs), "mdoc" (movies).
    // Empty on failure.
    QString createSpFolderPath(const QString& folderType) const;
    // 0 logs, 1 preferences, 2 movies, 3 the first caches folder; empty otherwise.
    QString searchFolderPath(int kind) const;

    // ---- notifications (delivered on the main thread) ----
    // Queued, posted when idle, coalesced on the name.
    void sendNotification(const void* sender, const QString& name, const QVariantMap& userInfo = {});
    // Queued, posted when idle, not coalesced.
    void sendNotificationNotCoalesce(const void* sender, const QString& name, const QVariantMap& userInfo = {});
    // Posted at once; from a worker this waits until the main thread has delivered it.
    void sendNotificationNow(const void* sender, const QString& name, const QVariantMap& userInfo = {});

private:
    BLCommon() = default;
};
