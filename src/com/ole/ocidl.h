#pragma once
// The generated interface header asks for this header by name; what it uses is declared in oaidl.h.

#include <oaidl.h>
