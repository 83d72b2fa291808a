#include "core/formats/mp4/CFileM.h"

#include "core/formats/mp4/CFileException.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

CFileM::~CFileM()
{
    // Not virtual: the derived classes add no resources that need their own closing.
    CFileM::Close();
}

int CFileM::Open(const char* path, int mode)
{
    Close();
    if (!path)
        return 0;
    // O_NONBLOCK keeps a FIFO from blocking the open; it is refused below anyway.
    const int flags = ((mode & 2) ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK;
    int fd;
    do {
        fd = ::open(path, flags);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return 0;
    struct stat st;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return 0;
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    m_nFileRef = fd;
    return 1;
}

int CFileM::Close()
{
    if (m_nFileRef < 0)
        return 1;
    const int result = ::close(m_nFileRef);
    m_nFileRef = -1;
    return result == 0 ? 1 : 0;
}

quint32 CFileM::Read(void* buffer, quint32 count)
{
    if (m_nFileRef < 0)
        return 0;
    auto* out = static_cast<char*>(buffer);
    quint32 done = 0;
    while (done < count) {
        const ssize_t n = ::read(m_nFileRef, out + done, count - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw CFileException(errno);
        if (n == 0)
            throw CFileException(0);
        done += quint32(n);
    }
    return done;
}

quint32 CFileM::Write(const void* buffer, quint32 count)
{
    if (m_nFileRef < 0)
        return 0;
    const auto* in = static_cast<const char*>(buffer);
    quint32 done = 0;
    while (done < count) {
        const ssize_t n = ::write(m_nFileRef, in + done, count - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        done += quint32(n);
    }
    return done;
}

quint64 CFileM::Seek(qint64 offset, int mode)
{
    if (m_nFileRef < 0)
        return 0;
    qint64 base = 0;
    if (mode == kSeekEnd) {
        base = qint64(GetLength());
    } else if (mode != kSeekStart) {
        base = ::lseek(m_nFileRef, 0, SEEK_CUR);
        if (base < 0)
            return 0;
    }
    // Overflow-free form of: target = base + offset, 0 <= target <= length.
    const qint64 length = qint64(GetLength());
    if (offset < -base || offset > length - base)
        return 0;
    const off_t result = ::lseek(m_nFileRef, base + offset, SEEK_SET);
    return result < 0 ? 0 : quint64(result);
}

quint64 CFileM::GetLength()
{
    if (m_nFileRef < 0)
        return 0;
    struct stat st;
    if (::fstat(m_nFileRef, &st) != 0 || st.st_size < 0)
        return 0;
    return quint64(st.st_size);
}
