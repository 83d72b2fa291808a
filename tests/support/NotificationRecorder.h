#pragma once

#include "core/services/SCNotificationCenter.h"

#include <QList>
#include <QStringList>

namespace cwtest {

// Keeps every notification of the given names posted while it lives, in order.
class NotificationRecorder
{
public:
    explicit NotificationRecorder(const QStringList& names)
    {
        for (const QString& name : names)
            SCNotificationCenter::defaultCenter()->addObserver(
                this, name, [this](const SCNotification& n) { notes << n; });
    }
    ~NotificationRecorder() { SCNotificationCenter::defaultCenter()->removeObserver(this); }
    NotificationRecorder(const NotificationRecorder&) = delete;
    NotificationRecorder& operator=(const NotificationRecorder&) = delete;

    QList<SCNotification> notes;
};

} // namespace cwtest
