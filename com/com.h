// The COM vocabulary of the whole project. On Windows it is the system's; elsewhere it is a substitute
// that offers only what is used here. The build puts the right folder's com_system.h on the include path.
#pragma once

#include "com_system.h"
