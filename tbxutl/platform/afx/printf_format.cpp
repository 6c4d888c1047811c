#include "tbxutl/platform/afx/printf_format_internal.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "tbxutl/platform/windows.h"

namespace tbx::detail {
namespace {

enum class Size { Default, Char, Short, Long32, LongLong, IntPtr, SizeT, PtrDiff, IntMax, LongDouble, Wide };

struct Spec {
  std::string flags;
  int width = -1;
  int precision = -1;
  Size size = Size::Default;
  char conversion = 0;
};

// Appends one conversion formatted by the C library with a standard spec.
template <typename T>
void AppendFormatted(std::string& out, const Spec& spec, const char* lengthModifier, T value) {
  std::string format(1, '%');
  format += spec.flags;
  if (spec.width >= 0) format += std::to_string(spec.width);
  if (spec.precision >= 0) {
    format += '.';
    format += std::to_string(spec.precision);
  }
  format += lengthModifier;
  format += spec.conversion;
  int n = std::snprintf(nullptr, 0, format.c_str(), value);
  if (n <= 0) return;
  std::size_t start = out.size();
  out.resize(start + static_cast<std::size_t>(n) + 1);
  std::snprintf(out.data() + start, static_cast<std::size_t>(n) + 1, format.c_str(), value);
  out.resize(start + static_cast<std::size_t>(n));
}

void AppendPadded(std::string& out, const Spec& spec, std::string_view text) {
  if (spec.precision >= 0 && text.size() > static_cast<std::size_t>(spec.precision)) {
    text = text.substr(0, static_cast<std::size_t>(spec.precision));
  }
  std::size_t pad = spec.width > static_cast<int>(text.size()) ? spec.width - text.size() : 0;
  bool left = spec.flags.find('-') != std::string::npos;
  if (!left) out.append(pad, ' ');
  out.append(text);
  if (left) out.append(pad, ' ');
}

std::string WideToAnsi(const WCHAR* text, int units) {
  if (units == 0) return {};
  int n = WideCharToMultiByte(CP_ACP, 0, text, units, nullptr, 0, nullptr, nullptr);
  if (n <= 0) return {};
  std::string out(static_cast<std::size_t>(n), '\0');
  WideCharToMultiByte(CP_ACP, 0, text, units, out.data(), n, nullptr, nullptr);
  return out;
}

void AppendSigned(std::string& out, const Spec& spec, va_list& args) {
  switch (spec.size) {
    case Size::Char: AppendFormatted(out, spec, "hh", static_cast<signed char>(va_arg(args, int))); break;
    case Size::Short: AppendFormatted(out, spec, "h", static_cast<short>(va_arg(args, int))); break;
    case Size::LongLong: AppendFormatted(out, spec, "ll", va_arg(args, long long)); break;
    case Size::IntPtr: AppendFormatted(out, spec, "j", static_cast<std::intmax_t>(va_arg(args, std::intptr_t))); break;
    case Size::SizeT: AppendFormatted(out, spec, "j", static_cast<std::intmax_t>(va_arg(args, std::ptrdiff_t))); break;
    case Size::PtrDiff: AppendFormatted(out, spec, "j", static_cast<std::intmax_t>(va_arg(args, std::ptrdiff_t))); break;
    case Size::IntMax: AppendFormatted(out, spec, "j", va_arg(args, std::intmax_t)); break;
    default: AppendFormatted(out, spec, "", va_arg(args, int)); break;
  }
}

void AppendUnsigned(std::string& out, const Spec& spec, va_list& args) {
  switch (spec.size) {
    case Size::Char: AppendFormatted(out, spec, "hh", static_cast<unsigned char>(va_arg(args, unsigned))); break;
    case Size::Short: AppendFormatted(out, spec, "h", static_cast<unsigned short>(va_arg(args, unsigned))); break;
    case Size::LongLong: AppendFormatted(out, spec, "ll", va_arg(args, unsigned long long)); break;
    case Size::IntPtr: AppendFormatted(out, spec, "j", static_cast<std::uintmax_t>(va_arg(args, std::uintptr_t))); break;
    case Size::SizeT: AppendFormatted(out, spec, "j", static_cast<std::uintmax_t>(va_arg(args, std::size_t))); break;
    case Size::PtrDiff: AppendFormatted(out, spec, "j", static_cast<std::uintmax_t>(va_arg(args, std::size_t))); break;
    case Size::IntMax: AppendFormatted(out, spec, "j", va_arg(args, std::uintmax_t)); break;
    default: AppendFormatted(out, spec, "", va_arg(args, unsigned)); break;
  }
}

// Reads flags, width, precision and size of the spec that starts at p
// (after the "%"); returns where the conversion character stands.
const char* ParseSpec(const char* p, Spec& spec, va_list& args) {
  while (*p != '\0' && std::strchr("-+ 0#", *p) != nullptr) spec.flags += *p++;
  if (*p == '*') {
    spec.width = va_arg(args, int);
    if (spec.width < 0) {
      spec.flags += '-';
      spec.width = spec.width == INT32_MIN ? 0 : -spec.width;
    }
    ++p;
  } else {
    for (spec.width = -1; *p >= '0' && *p <= '9'; ++p) {
      spec.width = (spec.width < 0 ? 0 : spec.width) * 10 + (*p - '0');
      if (spec.width > 1 << 20) spec.width = 1 << 20;
    }
  }
  if (*p == '.') {
    ++p;
    spec.precision = 0;
    if (*p == '*') {
      spec.precision = va_arg(args, int);  // negative: as if omitted
      ++p;
    } else {
      for (; *p >= '0' && *p <= '9'; ++p) {
        spec.precision = spec.precision * 10 + (*p - '0');
        if (spec.precision > 1 << 20) spec.precision = 1 << 20;
      }
    }
  }
  if (std::strncmp(p, "I64", 3) == 0) { spec.size = Size::LongLong; return p + 3; }
  if (std::strncmp(p, "I32", 3) == 0) { spec.size = Size::Default; return p + 3; }
  if (std::strncmp(p, "hh", 2) == 0) { spec.size = Size::Char; return p + 2; }
  if (std::strncmp(p, "ll", 2) == 0) { spec.size = Size::LongLong; return p + 2; }
  switch (*p) {
    case 'I': spec.size = Size::IntPtr; return p + 1;
    case 'h': spec.size = Size::Short; return p + 1;
    case 'l': spec.size = Size::Long32; return p + 1;
    case 'w': spec.size = Size::Wide; return p + 1;
    case 'L': spec.size = Size::LongDouble; return p + 1;
    case 'z': spec.size = Size::SizeT; return p + 1;
    case 't': spec.size = Size::PtrDiff; return p + 1;
    case 'j': spec.size = Size::IntMax; return p + 1;
    default: return p;
  }
}

}  // namespace

std::string FormatPrintf(const char* format, va_list argsIn) {
  va_list args;
  va_copy(args, argsIn);
  std::string out;
  for (const char* p = format; *p != '\0';) {
    if (*p != '%') {
      const char* next = std::strchr(p, '%');
      std::size_t n = next ? static_cast<std::size_t>(next - p) : std::strlen(p);
      out.append(p, n);
      p += n;
      continue;
    }
    Spec spec;
    p = ParseSpec(p + 1, spec, args);
    spec.conversion = *p;
    if (*p == '\0') break;  // a lone "%" at the end prints nothing
    ++p;
    bool wide = spec.size == Size::Long32 || spec.size == Size::Wide;
    switch (spec.conversion) {
      case '%': out += '%'; break;
      case 'd': case 'i': AppendSigned(out, spec, args); break;
      case 'o': case 'u': case 'x': case 'X': AppendUnsigned(out, spec, args); break;
      case 'e': case 'E': case 'f': case 'F': case 'g': case 'G': case 'a': case 'A':
        if (spec.size == Size::LongDouble) {
          AppendFormatted(out, spec, "L", va_arg(args, long double));
        } else {
          AppendFormatted(out, spec, "", va_arg(args, double));
        }
        break;
      case 'p': AppendFormatted(out, spec, "", va_arg(args, void*)); break;
      case 'c': case 'C': {
        int value = va_arg(args, int);
        bool wideChar = spec.conversion == 'C' ? spec.size != Size::Short : wide;
        if (wideChar) {
          WCHAR unit = static_cast<WCHAR>(value);
          AppendPadded(out, spec, WideToAnsi(&unit, 1));
        } else {
          char ch = static_cast<char>(value);
          spec.precision = -1;
          AppendPadded(out, spec, std::string_view(&ch, 1));
        }
        break;
      }
      case 's': case 'S': {
        bool wideString = spec.conversion == 'S' ? spec.size != Size::Short : wide;
        if (wideString) {
          const WCHAR* text = va_arg(args, const WCHAR*);
          if (text == nullptr) {
            AppendPadded(out, spec, "(null)");
          } else {
            int units = 0;
            while (text[units] != 0 && (spec.precision < 0 || units < spec.precision)) ++units;
            AppendPadded(out, spec, WideToAnsi(text, units));
          }
        } else {
          const char* text = va_arg(args, const char*);
          if (text == nullptr) text = "(null)";
          std::size_t n = spec.precision >= 0 ? strnlen(text, static_cast<std::size_t>(spec.precision))
                                              : std::strlen(text);
          AppendPadded(out, spec, std::string_view(text, n));
        }
        break;
      }
      case 'n': (void)va_arg(args, void*); break;  // never written
      default: out += spec.conversion; break;
    }
  }
  va_end(args);
  return out;
}

}  // namespace tbx::detail
