#pragma once

#include "core/formats/metadata/DOLtcChange.h"

#include <QList>
#include <QString>

// The LTC change table of a clip's non-real-time metadata: the time code
// rate, the half-step setting and the change entries in document order.
class DOLtcChangeTable
{
public:
    const QString& getTcFps() const { return m_sTcFps; }
    void setTcFps(const QString& value) { m_sTcFps = value; }
    const QString& getHalfStep() const { return m_sHalfStep; }
    void setHalfStep(const QString& value) { m_sHalfStep = value; }
    const QList<DOLtcChange>& getLtcChangeArray() const { return m_arrLtcChangeArray; }
    void setLtcChangeArray(const QList<DOLtcChange>& value) { m_arrLtcChangeArray = value; }

private:
    QString m_sTcFps;
    QString m_sHalfStep;
    QList<DOLtcChange> m_arrLtcChangeArray;
};
