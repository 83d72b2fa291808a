#pragma once

#include <QByteArray>

#include <cstdint>
#include <vector>

namespace cardgen {

// Appends big-endian numbers and nested MP4 boxes (32-bit sizes) to a buffer.
class BoxBuilder
{
public:
    void u8(uint32_t v) { m_data.append(char(v & 0xFF)); }
    void u16(uint32_t v)
    {
        u8(v >> 8);
        u8(v);
    }
    void u24(uint32_t v)
    {
        u8(v >> 16);
        u16(v);
    }
    void u32(uint32_t v)
    {
        u16(v >> 16);
        u16(v);
    }
    void u64(uint64_t v)
    {
        u32(uint32_t(v >> 32));
        u32(uint32_t(v));
    }
    void zeros(int count) { m_data.append(count, '\0'); }
    void bytes(const QByteArray& b) { m_data.append(b); }
    void fourcc(const char* type) { m_data.append(type, 4); }

    void begin(const char* type)
    {
        m_open.push_back(m_data.size());
        u32(0);
        fourcc(type);
    }
    // A box with version and flags.
    void beginFull(const char* type, uint32_t version, uint32_t flags)
    {
        begin(type);
        u8(version);
        u24(flags);
    }
    void end()
    {
        const qsizetype at = m_open.back();
        m_open.pop_back();
        const auto size = uint32_t(m_data.size() - at);
        for (int i = 0; i < 4; ++i)
            m_data[at + i] = char(size >> (24 - 8 * i));
    }

    const QByteArray& data() const { return m_data; }
    qsizetype size() const { return m_data.size(); }

private:
    QByteArray m_data;
    std::vector<qsizetype> m_open;
};

} // namespace cardgen
