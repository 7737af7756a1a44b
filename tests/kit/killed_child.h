#pragma once

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <functional>

/// Strikes a child process right before its n-th change of a file, so that a test can try every
/// moment at which a program may die or the disk may be full. The functions below stand in front of
/// the C library's; to be included in one source of a test whose target has ENABLE_EXPORTS.
namespace killed_child {

enum class blow_t { kill, full_disk };
enum class ending_t { killed, short_of_space, finished, failed };

inline blow_t blow = blow_t::kill;
inline int calls_left = 0;  ///< until the blow; 0: none comes
inline bool disk_full = false;
inline pid_t only = 0;  ///< 0: calls count in every process, as in a child's child

/// The function behind ours; counts the call.
template <class function_t>
function_t* counted(const char* _name) {
    if (calls_left > 0 && (only == 0 || only == ::getpid()) && --calls_left == 0) {
        if (blow == blow_t::kill) {
            ::kill(::getpid(), SIGKILL);
        }
        disk_full = true;
    }
    return reinterpret_cast<function_t*>(::dlsym(RTLD_NEXT, _name));
}

inline ending_t ending_of(int _status) {
    if (WIFSIGNALED(_status) && WTERMSIG(_status) == SIGKILL) {
        return ending_t::killed;
    }
    const int code = WIFEXITED(_status) ? WEXITSTATUS(_status) : 1;
    return code == 0 ? ending_t::finished
                     : (code == 2 ? ending_t::short_of_space : ending_t::failed);
}

/// Runs @p _work in a child that is struck at its @p _call-th change, from 1 on.
/// @param _work tells whether all is as it should be, after a full disk too
inline ending_t run(int _call, const std::function<bool()>& _work, blow_t _blow = blow_t::kill) {
    const pid_t child = ::fork();
    if (child == 0) {
        blow = _blow;
        calls_left = _call;
        const bool good = _work();
        ::_exit(good ? (disk_full ? 2 : 0) : 1);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child ? ending_of(status) : ending_t::failed;
}

inline int no_space() {
    errno = ENOSPC;
    return -1;
}

}  // namespace killed_child

extern "C" {

ssize_t write(int _file, const void* _bytes, size_t _size) {
    const auto real = killed_child::counted<decltype(write)>("write");
    return killed_child::disk_full ? killed_child::no_space() : real(_file, _bytes, _size);
}

ssize_t pwrite64(int _file, const void* _bytes, size_t _size, off64_t _offset) {
    const auto real = killed_child::counted<decltype(pwrite64)>("pwrite64");
    return killed_child::disk_full ? killed_child::no_space() : real(_file, _bytes, _size, _offset);
}

int ftruncate64(int _file, off64_t _size) noexcept {
    return killed_child::counted<int(int, off64_t)>("ftruncate64")(_file, _size);
}

int fdatasync(int _file) {
    return killed_child::counted<decltype(fdatasync)>("fdatasync")(_file);
}

int fsync(int _file) {
    return killed_child::counted<decltype(fsync)>("fsync")(_file);
}

int unlink(const char* _path) noexcept {
    return killed_child::counted<int(const char*)>("unlink")(_path);
}

int rename(const char* _from, const char* _to) noexcept {
    return killed_child::counted<int(const char*, const char*)>("rename")(_from, _to);
}

}  // extern "C"
