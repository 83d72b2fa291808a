#pragma once

#include "core/formats/metadata/DOTInitialBuffer.h"
#include "core/formats/metadata/DOTMeta.h"
#include "core/formats/metadata/DOTMetadata.h"
#include "core/formats/metadata/DOTTrackBuffer.h"

// The head of a take-info document.
class DOTHead
{
public:
    const DOTTrackBuffer& getTrackBuffer() const { return m_TrackBuffer; }
    void setTrackBuffer(const DOTTrackBuffer& value) { m_TrackBuffer = value; }
    const DOTInitialBuffer& getInitialBuffer() const { return m_InitialBuffer; }
    void setInitialBuffer(const DOTInitialBuffer& value) { m_InitialBuffer = value; }
    const DOTMeta& getMeta() const { return m_Meta; }
    void setMeta(const DOTMeta& value) { m_Meta = value; }
    const DOTMetadata& getMetadata() const { return m_Metadata; }
    void setMetadata(const DOTMetadata& value) { m_Metadata = value; }

private:
    DOTTrackBuffer m_TrackBuffer;
    DOTInitialBuffer m_InitialBuffer;
    DOTMeta m_Meta;
    DOTMetadata m_Metadata;
};
