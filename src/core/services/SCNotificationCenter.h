#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <mutex>
#include <vector>

class QTimer;

struct SCNotification
{
    QString name;
    const void* sender = nullptr;
    QVariantMap userInfo;
};

// The program's notification centre and queue. Observers are always called on
// the main thread (the thread of the QCoreApplication). Posts may come from any
// thread:
// - postNow delivers synchronously (from a worker it waits for the main thread);
// - enqueue adds to a pending list flushed when the event loop is next idle;
//   with coalescing, a pending notification of the same name is replaced.
class SCNotificationCenter : public QObject
{
    Q_OBJECT
public:
    using Handler = std::function<void(const SCNotification&)>;

    static SCNotificationCenter* defaultCenter();
    static void releaseCenter();

    // Registers a handler for a name; a null sender means from any sender.
    // Returns a token for removeObserver(int).
    int addObserver(const void* observer, const QString& name, Handler handler, const void* sender = nullptr);
    // Removes every registration of an observer (for one name when given).
    void removeObserver(const void* observer, const QString& name = QString());
    void removeObserver(int token);

    void postNow(const SCNotification& notification);
    void enqueue(const SCNotification& notification, bool coalesceOnName);

    // Number of queued notifications not yet delivered.
    int pendingCount() const;

private:
    SCNotificationCenter();
    void deliver(const SCNotification& notification);
    void scheduleFlush();
    void flush();

    struct Registration
    {
        int token;
        const void* observer;
        QString name;
        const void* sender;
        std::shared_ptr<Handler> handler;
    };

    mutable std::mutex m_mutex;
    std::vector<Registration> m_registrations;
    std::vector<SCNotification> m_pending;
    bool m_flushScheduled = false;
    int m_nextToken = 1;
    QTimer* m_idleTimer = nullptr;
};
