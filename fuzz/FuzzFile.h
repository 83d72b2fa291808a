#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <unistd.h>

// The readers open files by path: each input is written to a file of this
// process (in /dev/shm when there is one).
inline std::string fuzzFilePath(const char* name)
{
    const char* dir = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return std::string(dir) + "/clipwright-fuzz-" + std::to_string(getpid()) + "-" + name;
}

inline void writeFuzzFile(const std::string& path, const uint8_t* data, size_t size)
{
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f)
        std::abort();
    if (size > 0 && std::fwrite(data, 1, size, f) != size)
        std::abort();
    std::fclose(f);
}
