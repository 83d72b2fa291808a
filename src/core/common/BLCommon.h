#pragma once

#include <QString>
#include <QVariantMap>

class IMessagePresenter;

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

    // ---- messages ----
    // The presenter that shows alerts (not owned); without one, alerts answer
    // the first button.
    static void setMessagePresenter(IMessagePresenter* presenter);
    static IMessagePresenter* messagePresenter();
    // Shows an informational alert. The message and informative texts are keys
    // of the localisation table (a text without an entry shows as given). Button patterns: 0 "OK"; 1 "OK" and "Cancel"; 2 "Yes" and "No".
    // Answers IMessagePresenter::kFirstButton or kSecondButton.
    int messageBox(const QString& message, const QString& infoMesse, int style, int btnPattern);
    // The localised title of button 0 or 1 of a pattern; "" when there is none.
    QString getBtnLabel(int pattern, int no) const;

private:
    BLCommon() = default;
};
