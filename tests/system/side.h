// The side under test: its files, programs and code page, and a folder to try them in.
#pragma once

#include <memory>
#include <string>

namespace vex::test {

class SystemSide {
public:
    virtual ~SystemSide() = default;

    /// Whether the code page is Windows-1252, as the cases with its characters need.
    virtual bool is_windows_1252() const = 0;

    /// An empty folder of this side's own, as a drive-letter path without a backslash at its end.
    virtual std::u16string folder() const = 0;
    virtual void make_file(const std::u16string& path) = 0;
    virtual void make_folder(const std::u16string& path) = 0;
    virtual void hide(const std::u16string& path) = 0;
    /// A program that can be started, in a folder that exists.
    virtual void make_program(const std::u16string& path) = 0;
    /// Whether that program has run, once and without arguments. Waits for it a little.
    virtual bool has_run(const std::u16string& path) = 0;
};

/// One at a time. Implemented once for each side; the build picks.
std::unique_ptr<SystemSide> make_system_side();

}  // namespace vex::test
