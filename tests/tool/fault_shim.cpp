// Loaded ahead of the C library, makes one system call of a program fail:
// MARLO_FAULT=CALL:N:ERRNO is the Nth CALL (from 1) that concerns a file below the
// folder MARLO_FAULT_BELOW. ERRNO 0 makes a write or a read come short instead. The
// file MARLO_FAULT_MARK is made when it has happened.

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <unistd.h>

namespace
{

template <typename Function>
Function* next(char const* name)
{
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

bool isBelow(char const* path)
{
    char const* const folder = std::getenv("MARLO_FAULT_BELOW");
    return folder && path && std::strncmp(path, folder, std::strlen(folder)) == 0;
}

bool isBelow(int descriptor)
{
    char link[64];
    char path[PATH_MAX];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    ssize_t const size = ::readlink(link, path, sizeof path - 1);
    path[size > 0 ? size : 0] = '\0';
    return isBelow(path);
}

/// Whether this is the call that fails; counts it.
bool fails(char const* call, int& error)
{
    static char wanted[16];
    static int left = -1;
    static int code = 0;
    if (left < 0)
    {
        left = 0;
        char const* const fault = std::getenv("MARLO_FAULT");
        if (fault)
        {
            std::sscanf(fault, "%15[^:]:%d:%d", wanted, &left, &code);
        }
    }
    if (std::strcmp(call, wanted) != 0 || left == 0 || --left > 0)
    {
        return false;
    }
    error = code;
    ::syscall(SYS_close, ::syscall(SYS_openat, AT_FDCWD, std::getenv("MARLO_FAULT_MARK"), O_CREAT | O_WRONLY, 0600));
    return true;
}

int openLike(char const* name, char const* path, int flags, mode_t mode)
{
    int error = 0;
    if (isBelow(path) && fails("open", error))
    {
        errno = error;
        return -1;
    }
    return next<int(char const*, int, ...)>(name)(path, flags, mode);
}

}

extern "C"
{

    int open(char const* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        mode_t const mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return openLike("open", path, flags, mode);
    }

    int open64(char const* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        mode_t const mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
        va_end(arguments);
        return openLike("open64", path, flags, mode);
    }

    ssize_t write(int descriptor, void const* bytes, size_t size)
    {
        int error = 0;
        if (isBelow(descriptor) && fails("write", error))
        {
            if (error != 0)
            {
                errno = error;
                return -1;
            }
            size = size / 2;
        }
        return next<ssize_t(int, void const*, size_t)>("write")(descriptor, bytes, size);
    }

    ssize_t read(int descriptor, void* bytes, size_t size)
    {
        int error = 0;
        if (isBelow(descriptor) && fails("read", error))
        {
            if (error != 0)
            {
                errno = error;
                return -1;
            }
            size = 1;
        }
        return next<ssize_t(int, void*, size_t)>("read")(descriptor, bytes, size);
    }

    int rename(char const* from, char const* to)
    {
        int error = 0;
        if (isBelow(to) && fails("rename", error))
        {
            errno = error;
            return -1;
        }
        return next<int(char const*, char const*)>("rename")(from, to);
    }

    int fchmod(int descriptor, mode_t mode)
    {
        int error = 0;
        if (isBelow(descriptor) && fails("fchmod", error))
        {
            errno = error;
            return -1;
        }
        return next<int(int, mode_t)>("fchmod")(descriptor, mode);
    }
}
