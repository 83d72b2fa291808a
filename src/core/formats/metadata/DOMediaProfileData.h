#pragma once

#include "core/formats/metadata/DOAttached.h"
#include "core/formats/metadata/DOMaterial.h"
#include "core/formats/metadata/DOMetadata.h"
#include "core/formats/metadata/DOSystem.h"

#include <QList>

// The whole content of a media profile as read by BLMediaProfileAcss.
class DOMediaProfileData
{
public:
    const DOSystem& getSystem() const { return m_System; }
    void setSystem(const DOSystem& value) { m_System = value; }
    const DOAttached& getAttached() const { return m_Attached; }
    void setAttached(const DOAttached& value) { m_Attached = value; }
    const DOMetadata& getMetadata() const { return m_Metadata; }
    void setMetadata(const DOMetadata& value) { m_Metadata = value; }
    const QList<DOMaterial>& getMaterial() const { return m_arrMaterial; }
    void setMaterial(const QList<DOMaterial>& value) { m_arrMaterial = value; }

private:
    DOSystem m_System;
    DOAttached m_Attached;
    DOMetadata m_Metadata;
    QList<DOMaterial> m_arrMaterial;
};
