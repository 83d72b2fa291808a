#pragma once

#include "core/formats/metadata/DOTAudio.h"
#include "core/formats/metadata/DOTMetastream.h"
#include "core/formats/metadata/DOTRef.h"
#include "core/formats/metadata/DOTVideo.h"

#include <QList>
#include <QString>

// One group ("par") of a take-info body with its clip elements in document order.
class DOTPar
{
public:
    const QString& getSystemComponent() const { return m_sSystemComponent; }
    void setSystemComponent(const QString& value) { m_sSystemComponent = value; }
    const QList<DOTRef>& getRef() const { return m_arrRef; }
    void setRef(const QList<DOTRef>& value) { m_arrRef = value; }
    const QList<DOTVideo>& getVideo() const { return m_arrVideo; }
    void setVideo(const QList<DOTVideo>& value) { m_arrVideo = value; }
    const QList<DOTAudio>& getAudio() const { return m_arrAudio; }
    void setAudio(const QList<DOTAudio>& value) { m_arrAudio = value; }
    const QList<DOTMetastream>& getMetastream() const { return m_arrMetastream; }
    void setMetastream(const QList<DOTMetastream>& value) { m_arrMetastream = value; }

private:
    QString m_sSystemComponent;
    QList<DOTRef> m_arrRef;
    QList<DOTVideo> m_arrVideo;
    QList<DOTAudio> m_arrAudio;
    QList<DOTMetastream> m_arrMetastream;
};
