#pragma once

// The back end of the system that the programs are built for, by the names of platform::native.
#ifdef _WIN32
#include "platform/win32/native.h"
#else
#include "platform/posix/native.h"
#endif
