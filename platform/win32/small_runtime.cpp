// What the shipped library replaces of the C++ runtime, to stay small and to be unloadable. Linked into that
// library only.
//
// To stay small: the runtime's own versions bring along its older string class, its demangler and its formatter, a
// third of the library's size, for texts that nobody reads: to a host an error is a number, and these all mean the same
// to it. They are found here before the runtime's archive is searched.
//
// To be unloadable: for every thread-local object the runtime takes a reference to the library, which it gives back
// when the thread ends. A host's user-interface thread does not end before the process, so the library would
// never leave it, and freeing the last reference from a thread that is about to end does not return.
#include <cstdlib>
#include <exception>
#include <new>

// NOLINTBEGIN(bugprone-reserved-identifier): the names are the runtime's

/// The start-up code's list of what to destroy when a thread ends or the library goes, without a reference.
extern "C" int __mingw_cxa_thread_atexit(void (*destroy)(void*), void* object, void* library);
/// What the compiler calls for each thread-local object.
extern "C" int __cxa_thread_atexit(void (*destroy)(void*), void* object, void* library);

namespace {

/// In place of std::logic_error and its kind.
class LibraryError final : public std::exception {
public:
    const char* what() const noexcept override { return "an operation of the C++ library was misused"; }
};

}  // namespace

extern "C" int __cxa_thread_atexit(void (*destroy)(void*), void* object, void* library) {
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
