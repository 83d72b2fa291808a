#pragma once

#include <sys/fsuid.h>
#include <unistd.h>

namespace cwtest {

// Makes permission bits count while the tests run as root: file-system checks
// of the calling thread are made as the user "nobody" for the object's
// lifetime. Without root it changes nothing. Items the checks should reach
// must be open to others (e.g. mode 0777 folders).
class AsOrdinaryUser
{
public:
    AsOrdinaryUser() : m_root(geteuid() == 0)
    {
        if (m_root)
            setfsuid(65534);
    }
    ~AsOrdinaryUser()
    {
        if (m_root)
            setfsuid(0);
    }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

private:
    bool m_root;
};

} // namespace cwtest
