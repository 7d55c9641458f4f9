// The side under test: its Toolkit, and the screen that its forms appear on.
#pragma once

#include <memory>

#include "forms/toolkit.h"
#include "simulator/screen.h"

namespace vex::test {

class Side {
public:
    virtual ~Side() = default;
    virtual forms::Toolkit& toolkit() = 0;
    virtual sim::Screen& screen() = 0;
    /// How far from the place aimed at a press may land, in twips.
    virtual float coarseness() const { return 0; }
};

/// One at a time. Implemented once for each side; the build picks.
std::unique_ptr<Side> make_side();

}  // namespace vex::test
