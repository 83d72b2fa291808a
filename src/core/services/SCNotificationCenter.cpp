#include "core/services/SCNotificationCenter.h"

#include <QCoreApplication>
#include <QThread>
#include <QTimer>

#include <algorithm>

namespace {
std::mutex g_centerMutex;
SCNotificationCenter* g_center = nullptr;

bool onMainThread()
{
    const QCoreApplication* app = QCoreApplication::instance();
    return !app || QThread::currentThread() == app->thread();
}
} // namespace

SCNotificationCenter::SCNotificationCenter()
{
    m_idleTimer = new QTimer(this);
    m_idleTimer->setSingleShot(true);
    m_idleTimer->setInterval(0);
    connect(m_idleTimer, &QTimer::timeout, this, &SCNotificationCenter::flush);
}

SCNotificationCenter* SCNotificationCenter::defaultCenter()
{
    std::lock_guard lock(g_centerMutex);
    if (!g_center) {
        g_center = new SCNotificationCenter();
        if (const QCoreApplication* app = QCoreApplication::instance())
            if (g_center->thread() != app->thread())
                g_center->moveToThread(app->thread());
    }
    return g_center;
}

void SCNotificationCenter::releaseCenter()
{
    std::lock_guard lock(g_centerMutex);
    delete g_center;
    g_center = nullptr;
}

int SCNotificationCenter::addObserver(const void* observer, const QString& name, Handler handler,
                                      const void* sender)
{
    std::lock_guard lock(m_mutex);
    const int token = m_nextToken++;
    m_registrations.push_back(
        Registration{token, observer, name, sender, std::make_shared<Handler>(std::move(handler))});
    return token;
}

void SCNotificationCenter::removeObserver(const void* observer, const QString& name)
{
    std::lock_guard lock(m_mutex);
    std::erase_if(m_registrations, [&](const Registration& r) {
        return r.observer == observer && (name.isEmpty() || r.name == name);
    });
}

void SCNotificationCenter::removeObserver(int token)
{
    std::lock_guard lock(m_mutex);
    std::erase_if(m_registrations, [&](const Registration& r) { return r.token == token; });
}

void SCNotificationCenter::deliver(const SCNotification& notification)
{
    std::vector<std::pair<int, std::shared_ptr<Handler>>> targets;
    {
        std::lock_guard lock(m_mutex);
        for (const Registration& r : m_registrations)
            if (r.name == notification.name && (!r.sender || r.sender == notification.sender))
                targets.emplace_back(r.token, r.handler);
    }
    for (const auto& [token, handler] : targets) {
        // A handler may remove a later observer; skip registrations gone since.
        bool stillRegistered;
        {
            std::lock_guard lock(m_mutex);
            stillRegistered =
                std::any_of(m_registrations.begin(), m_registrations.end(),
                            [token = token](const Registration& r) { return r.token == token; });
        }
        if (stillRegistered)
            (*handler)(notification);
    }
}

void SCNotificationCenter::postNow(const SCNotification& notification)
{
    if (onMainThread()) {
        deliver(notification);
        return;
    }
    QMetaObject::invokeMethod(
        this, [this, notification] { deliver(notification); }, Qt::BlockingQueuedConnection);
}

void SCNotificationCenter::enqueue(const SCNotification& notification, bool coalesceOnName)
{
    {
        std::lock_guard lock(m_mutex);
        if (coalesceOnName)
            std::erase_if(m_pending, [&](const SCNotification& n) { return n.name == notification.name; });
        m_pending.push_back(notification);
    }
    scheduleFlush();
}

void SCNotificationCenter::scheduleFlush()
{
    {
        std::lock_guard lock(m_mutex);
        if (m_flushScheduled)
            return;
        m_flushScheduled = true;
    }
    // The zero-time timer fires once the event loop has nothing else to do.
    QMetaObject::invokeMethod(m_idleTimer, qOverload<>(&QTimer::start), Qt::QueuedConnection);
}

void SCNotificationCenter::flush()
{
    std::vector<SCNotification> batch;
    {
        std::lock_guard lock(m_mutex);
        batch.swap(m_pending);
        m_flushScheduled = false;
    }
    for (const SCNotification& n : batch)
        deliver(n);
}

int SCNotificationCenter::pendingCount() const
{
    std::lock_guard lock(m_mutex);
    return int(m_pending.size());
}
