// Loaded ahead of the C library, makes one system call of a program fail:
// MARLO_FAULT=CALL:N:ERRNO is the Nth `read` or `rename` (from 1) that concerns a file in the
// folder MARLO_FAULT_IN. The file MARLO_FAULT_MARK is made when it has happened.

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{

template <typename Function>
Function* next(char const* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

/// Whether this is the call that fails; counts it and sets errno.
bool fails(char const* call, char const* path)
{
    static char wanted[16];
    static int left = -1;
    static int error = 0;
    char const* const folder = std::getenv("MARLO_FAULT_IN");
    char const* const fault = std::getenv("MARLO_FAULT");
    if (left < 0)
    {
        left = 0;
        if (folder && fault)
        {
            std::sscanf(fault, "%15[^:]:%d:%d", wanted, &left, &error);
        }
    }
    if (left == 0 || std::strcmp(call, wanted) != 0 || !std::strstr(path, folder) || --left > 0)
    {
        return false;
    }
    ::close(::creat(std::getenv("MARLO_FAULT_MARK"), 0600));
    errno = error;
    return true;
}

}

extern "C"
{

    ssize_t read(int descriptor, void* bytes, size_t size)
    {
        char link[64];
        char path[PATH_MAX] = "";
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
        ssize_t const length = ::readlink(link, path, sizeof path - 1);
        path[length > 0 ? length : 0] = '\0';
        return fails("read", path) ? -1 : next<ssize_t(int, void*, size_t)>("read")(descriptor, bytes, size);
    }

    int rename(char const* from, char const* to)
    {
        return fails("rename", to) ? -1 : next<int(char const*, char const*)>("rename")(from, to);
    }
}
