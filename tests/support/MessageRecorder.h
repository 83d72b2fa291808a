#pragma once

#include "core/services/BLCommon.h"
#include "core/services/IMessagePresenter.h"

#include <QList>

#include <mutex>

namespace cwtest {

// Stands in for the alert window: keeps every alert shown and answers with a
// chosen button. Installed for its lifetime.
class MessageRecorder : public IMessagePresenter
{
public:
    explicit MessageRecorder(int answer = kFirstButton) : m_answer(answer)
    {
        BLCommon::setMessagePresenter(this);
    }
    ~MessageRecorder() override { BLCommon::setMessagePresenter(nullptr); }

    int showAlert(const SCAlert& alert) override
    {
        std::lock_guard lock(m_mutex);
        m_alerts.append(alert);
        return m_answer;
    }

    void setAnswer(int answer) { m_answer = answer; }
    QList<SCAlert> alerts() const
    {
        std::lock_guard lock(m_mutex);
        return m_alerts;
    }
    QStringList keys() const
    {
        std::lock_guard lock(m_mutex);
        QStringList k;
        for (const SCAlert& a : m_alerts)
            k << a.messageKey;
        return k;
    }
    void clear()
    {
        std::lock_guard lock(m_mutex);
        m_alerts.clear();
    }

private:
    mutable std::mutex m_mutex;
    QList<SCAlert> m_alerts;
    int m_answer;
};

} // namespace cwtest
