// What the shipped library replaces of the C++ runtime, to stay small, to be unloadable and to survive the end of
// memory. Linked into that library only.
//
// To stay small: the runtime's own versions bring along its older string class, its demangler and its formatter, a
// third of the library's size, for texts that nobody reads: to a host an error is a number, and these all mean the same
// to it. They are found here before the runtime's archive is searched.
//
// To be unloadable: for every thread-local object the runtime takes a reference to the library, which it gives back
// when the thread ends. A host's user-interface thread does not end before the process, so the library would
// never leave it, and freeing the last reference from a thread that is about to end does not return.
//
// To survive the end of memory: the runtime keeps memory for exceptions, behind a lock that takes memory itself when it
// is first used, and each thread's first exception takes some, too. Without that, raising an exception ends the
// process. So both are used once, the lock as the library is loaded and the thread's part with its first thread-local
// object.
#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <new>
#include <utility>

#include "platform/win32/windows_api.h"

// NOLINTBEGIN(bugprone-reserved-identifier): the names are the runtime's

/// The start-up code's list of what to destroy when a thread ends or the library goes, without a reference.
extern "C" int __mingw_cxa_thread_atexit(void (*destroy)(void*), void* object, void* library);

namespace {

/// In place of std::logic_error and its kind.
class LibraryError final : public std::exception {
public:
    const char* what() const noexcept override { return "an operation of the C++ library was misused"; }
};

/// Only while the library is loaded, which no other thread uses yet.
bool refuse_next_allocation = false;

}  // namespace

extern "C" void* __real_malloc(std::size_t size);
/// In the place of every malloc of the library, the runtime's included.
extern "C" void* __wrap_malloc(std::size_t size) {
    return std::exchange(refuse_next_allocation, false) ? nullptr : __real_malloc(size);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, void* /*reserved*/) {
    if (reason != DLL_PROCESS_ATTACH) return TRUE;
    try {
        refuse_next_allocation = true;
        throw reason;
    } catch (DWORD) {
    }
    return TRUE;
}

/// What the compiler calls for each thread-local object.
extern "C" int __cxa_thread_atexit(void (*destroy)(void*), void* object, void* library) noexcept {
    // Not to be left out as a call without effect.
    [[maybe_unused]] const void* volatile exceptions = __cxxabiv1::__cxa_get_globals();
    return __mingw_cxa_thread_atexit(destroy, object, library);
}

namespace __gnu_cxx {

void __verbose_terminate_handler() { std::abort(); }

}  // namespace __gnu_cxx

namespace std {

void __throw_bad_alloc() { throw bad_alloc(); }
void __throw_bad_array_new_length() { throw bad_array_new_length(); }
void __throw_length_error(const char* /*text*/) { throw LibraryError(); }
void __throw_logic_error(const char* /*text*/) { throw LibraryError(); }
void __throw_out_of_range_fmt(const char* /*format*/, ...) { throw LibraryError(); }

}  // namespace std

// NOLINTEND(bugprone-reserved-identifier)
