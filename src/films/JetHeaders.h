#pragma once

// The engine's headers for files that windows include too: Qt's keyword of the same name would break them.
#pragma push_macro("slots")
#undef slots
#include "jet/Database.h"
#pragma pop_macro("slots")
