#pragma once

#include "core/formats/metadata/DOElement.h"

#include <QList>
#include <QString>

// The recording device with its elements in document order.
class DODevice
{
public:
    const QString& getManufacturer() const { return m_sManufacturer; }
    void setManufacturer(const QString& value) { m_sManufacturer = value; }
    const QString& getModelName() const { return m_sModelName; }
    void setModelName(const QString& value) { m_sModelName = value; }
    const QString& getSerialNo() const { return m_sSerialNo; }
    void setSerialNo(const QString& value) { m_sSerialNo = value; }
    const QList<DOElement>& getElementArray() const { return m_arrElementArray; }
    void setElementArray(const QList<DOElement>& value) { m_arrElementArray = value; }

private:
    QString m_sManufacturer;
    QString m_sModelName;
    QString m_sSerialNo;
    QList<DOElement> m_arrElementArray;
};
