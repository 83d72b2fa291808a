#pragma once

#include "core/formats/metadata/DOAudioRecPort.h"

#include <QList>
#include <QString>

// The audio format of a clip: channel count and recording ports in document order.
class DOAudioFormat
{
public:
    const QString& getNumOfChannel() const { return m_sNumOfChannel; }
    void setNumOfChannel(const QString& value) { m_sNumOfChannel = value; }
    const QList<DOAudioRecPort>& getRecPortArray() const { return m_arrRecPortArray; }
    void setRecPortArray(const QList<DOAudioRecPort>& value) { m_arrRecPortArray = value; }

private:
    QString m_sNumOfChannel;
    QList<DOAudioRecPort> m_arrRecPortArray;
};
