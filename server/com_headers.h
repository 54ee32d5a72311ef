// The system's COM headers, in the one order in which they can be included.
#pragma once

#include <objbase.h>
#include <ocidl.h>
#include <oleauto.h>
#include <olectl.h>
#include <unknwn.h>
#include <windows.h>
