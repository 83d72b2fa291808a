#pragma once

// Raised by CFileM::Read when the file service fails or the file ends before
// the requested count; the errno value is kept (0 for a premature end).
class CFileException
{
public:
    explicit CFileException(int error) : m_nError(error) {}
    int error() const { return m_nError; }

private:
    int m_nError;
};
