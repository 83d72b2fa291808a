#pragma once

#include "core/formats/metadata/DOComponent.h"
#include "core/formats/metadata/DOMediaAttributes.h"
#include "core/formats/metadata/DOProxy.h"
#include "core/formats/metadata/DORelevantInfo.h"

#include <QList>
#include <QString>

// A Material element of the media profile: one clip or multi-clip take with
// the files that make it up. MPStatus is the "status" attribute.
class DOMaterial : public DOMediaAttributes
{
public:
    const QString& getTitle() const { return m_sTitle; }
    void setTitle(const QString& value) { m_sTitle = value; }
    const QString& getMPStatus() const { return m_sMPStatus; }
    void setMPStatus(const QString& value) { m_sMPStatus = value; }

    const QList<DOComponent>& getComponent() const { return m_arrComponent; }
    void setComponent(const QList<DOComponent>& value) { m_arrComponent = value; }
    void addComponent(const DOComponent& value) { m_arrComponent.append(value); }
    const QList<DOProxy>& getProxy() const { return m_arrProxy; }
    void setProxy(const QList<DOProxy>& value) { m_arrProxy = value; }
    const QList<DORelevantInfo>& getRelevantInfo() const { return m_arrRelevantInfo; }
    void setRelevantInfo(const QList<DORelevantInfo>& value) { m_arrRelevantInfo = value; }
    void addRelevantInfo(const DORelevantInfo& value) { m_arrRelevantInfo.append(value); }

private:
    QString m_sTitle;
    QString m_sMPStatus;
    QList<DOComponent> m_arrComponent;
    QList<DOProxy> m_arrProxy;
    QList<DORelevantInfo> m_arrRelevantInfo;
};
