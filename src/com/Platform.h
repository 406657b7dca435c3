#pragma once
// COM as the platform declares it: the system's headers on Windows, the ones in com/ole elsewhere.

#include <windows.h>
// <windows.h> must come first.
#include <ole2.h>

#include <oaidl.h>
#include <ocidl.h>
