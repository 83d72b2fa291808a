#pragma once

#include "core/metadata/DOComponent.h"
#include "core/metadata/DOProxy.h"
#include "core/metadata/DORelevantInfo.h"

#include <QList>
#include <QString>

// A Material element of the media profile: one clip or multi-clip take with
// the files that make it up. MPStatus is the "status" attribute.
class DOMaterial
{
public:
    const QString& getUri() const { return m_sUri; }
    void setUri(const QString& value) { m_sUri = value; }
    const QString& getTitle() const { return m_sTitle; }
    void setTitle(const QString& value) { m_sTitle = value; }
    const QString& getType() const { return m_sType; }
    void setType(const QString& value) { m_sType = value; }
    const QString& getVideoType() const { return m_sVideoType; }
    void setVideoType(const QString& value) { m_sVideoType = value; }
    const QString& getAudioType() const { return m_sAudioType; }
    void setAudioType(const QString& value) { m_sAudioType = value; }
    const QString& getFps() const { return m_sFps; }
    void setFps(const QString& value) { m_sFps = value; }
    const QString& getDur() const { return m_sDur; }
    void setDur(const QString& value) { m_sDur = value; }
    const QString& getCh() const { return m_sCh; }
    void setCh(const QString& value) { m_sCh = value; }
    const QString& getAspectRatio() const { return m_sAspectRatio; }
    void setAspectRatio(const QString& value) { m_sAspectRatio = value; }
    const QString& getOffset() const { return m_sOffset; }
    void setOffset(const QString& value) { m_sOffset = value; }
    const QString& getUmid() const { return m_sUmid; }
    void setUmid(const QString& value) { m_sUmid = value; }
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
    QString m_sUri;
    QString m_sTitle;
    QString m_sType;
    QString m_sVideoType;
    QString m_sAudioType;
    QString m_sFps;
    QString m_sDur;
    QString m_sCh;
    QString m_sAspectRatio;
    QString m_sOffset;
    QString m_sUmid;
    QString m_sMPStatus;
    QList<DOComponent> m_arrComponent;
    QList<DOProxy> m_arrProxy;
    QList<DORelevantInfo> m_arrRelevantInfo;
};
