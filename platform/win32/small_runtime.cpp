// What the shipped library replaces of the C++ runtime, to stay small. Linked into that library only.
//
// The runtime's own versions bring along its older string class, its demangler and its formatter, a third of
// the library's size, for texts that nobody reads: to a host an error is a number, and these all mean the same
// to it. They are found here before the runtime's archive is searched.
#include <cstdlib>
#include <exception>
#include <new>

namespace {

/// In place of std::logic_error and its kind.
class LibraryError final : public std::exception {
public:
    const char* what() const noexcept override { return "an operation of the C++ library was misused"; }
};

}  // namespace

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
