// The side that the contract tests run on: its registry, and where its behaviour may differ.
#pragma once

#include "platform/registry.h"

namespace vex::test {

platform::Registry& side_registry();
/// Sets a variable of the process's environment.
void set_environment(const char* name, const char* value);

/// Whether Windows is Wine's. Where Wine is known to differ from what Windows documents, the cases say how, so
/// that a change there is noticed.
bool runs_on_wine();

}  // namespace vex::test
