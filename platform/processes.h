// The process seam: starting an outside program.
#pragma once

#include <string>

namespace vex::platform {

class Processes {
public:
    virtual ~Processes() = default;
    /// Starts the program at `path`, a full path taken whole as one program without arguments, in a normal
    /// window that receives the focus, and does not wait for it. False when it could not be started; a path
    /// that is not full is no program, wherever the process happens to be.
    virtual bool start(const std::u16string& path) = 0;
};

}  // namespace vex::platform
