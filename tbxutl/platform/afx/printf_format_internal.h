#pragma once
// Formatting with the printf rules of the Windows C run-time library, on
// both platforms: "l" is 32 bits (as LONG and DWORD are), "I64"/"I32"/"I"
// name explicit sizes, "%hs"/"%hc" are the narrow string and character,
// "%ls", "%ws", "%S" the wide (16-bit) ones. "%n" writes nothing.

#include <cstdarg>
#include <string>

namespace tbx::detail {

std::string FormatPrintf(const char* format, va_list args);

}  // namespace tbx::detail
