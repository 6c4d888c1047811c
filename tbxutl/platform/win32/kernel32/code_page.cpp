#include "tbxutl/platform/win32/kernel32/code_page.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include "tbxutl/platform/win32/kernel32/char_conversion.h"

namespace tbx::win32 {
namespace {

constexpr WCHAR kReplacement = 0xFFFD;

bool IsHighSurrogate(WCHAR unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(WCHAR unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

const Composition* FindDecomposition(WCHAR composite) {
  const Composition* end = kCompositions + kCompositionCount;
  const Composition* it = std::lower_bound(kCompositions, end, composite,
                                           [](const Composition& c, WCHAR unit) { return c.composite < unit; });
  return it != end && it->composite == composite ? it : nullptr;
}

std::optional<WCHAR> Compose(WCHAR base, WCHAR mark) {
  for (std::size_t i = 0; i < kCompositionCount; ++i) {
    if (kCompositions[i].base == base && kCompositions[i].mark == mark) return kCompositions[i].composite;
  }
  return std::nullopt;
}

// Writes the canonical decomposition of `unit` (the unit itself when it has
// none) to `units`, at most `capacity` units (the deepest here takes three).
std::size_t Decompose(WCHAR unit, WCHAR* units, std::size_t capacity) {
  const Composition* c = FindDecomposition(unit);
  if (c == nullptr || capacity < 2) {
    units[0] = unit;
    return 1;
  }
  std::size_t count = Decompose(c->base, units, capacity - 1);
  units[count++] = c->mark;
  return count;
}

class SingleByteCodePage final : public CodePage {
 public:
  explicit SingleByteCodePage(const SingleByteTable& table) : table_(table) {
    for (int i = 0; i < 128; ++i) reverse_[i] = {table.high[i], static_cast<BYTE>(0x80 + i)};
    std::sort(reverse_.begin(), reverse_.end(), [](const auto& a, const auto& b) { return a.unit < b.unit; });
  }

  UINT Id() const override { return table_.id; }
  bool IsLeadByte(BYTE) const override { return false; }
  bool HasDefaultChar() const override { return true; }

  bool AcceptsToUnicodeFlags(DWORD flags) const override {
    if ((flags & ~(MB_PRECOMPOSED | MB_COMPOSITE | MB_USEGLYPHCHARS | MB_ERR_INVALID_CHARS)) != 0) return false;
    return (flags & (MB_PRECOMPOSED | MB_COMPOSITE)) != (MB_PRECOMPOSED | MB_COMPOSITE);
  }

  bool AcceptsFromUnicodeFlags(DWORD flags) const override {
    constexpr DWORD kCompositeChoices = WC_DISCARDNS | WC_SEPCHARS | WC_DEFAULTCHAR;
    if ((flags & ~(WC_COMPOSITECHECK | kCompositeChoices | WC_NO_BEST_FIT_CHARS)) != 0) return false;
    // The three choices say what WC_COMPOSITECHECK does with a pair it cannot
    // map: one of them at most, and only with WC_COMPOSITECHECK.
    DWORD choices = flags & kCompositeChoices;
    if (choices == 0) return true;
    return (flags & WC_COMPOSITECHECK) != 0 && (choices & (choices - 1)) == 0;
  }

  void ToUnicode(const BYTE* bytes, std::size_t count, DWORD flags, WideSink& out) const override {
    for (std::size_t i = 0; i < count; ++i) {
      WCHAR unit = Decode(bytes[i], flags);
      WCHAR units[3] = {unit};
      std::size_t size = (flags & MB_COMPOSITE) != 0 ? Decompose(unit, units, 3) : 1;
      if (!out.Put(units, size)) return;
    }
  }

  void FromUnicode(const WCHAR* units, std::size_t count, DWORD flags, const char* defaultChar,
                   ByteSink& out) const override {
    const char fallback = defaultChar != nullptr ? defaultChar[0] : static_cast<char>(table_.defaultChar);
    const bool bestFit = (flags & WC_NO_BEST_FIT_CHARS) == 0;
    for (std::size_t i = 0; i < count; ++i) {
      if ((flags & WC_COMPOSITECHECK) != 0 && i + 1 < count) {
        if (std::optional<WCHAR> composite = Compose(units[i], units[i + 1])) {
          if (std::optional<BYTE> byte = Map(*composite, bestFit)) {
            if (!out.Put(static_cast<char>(*byte))) return;
            ++i;
            continue;
          }
          if ((flags & WC_DEFAULTCHAR) != 0) {
            if (!out.Put(fallback)) return;
            out.MarkDefaultUsed();
            ++i;
            continue;
          }
          if ((flags & WC_DISCARDNS) != 0) {
            if (!PutMapped(units[i], bestFit, fallback, out)) return;
            ++i;
            continue;
          }
          // WC_SEPCHARS: base and mark go on separately.
        }
      }
      if (!PutMapped(units[i], bestFit, fallback, out)) return;
    }
  }

 private:
  struct Reverse {
    WCHAR unit;
    BYTE byte;
  };

  WCHAR Decode(BYTE byte, DWORD flags) const {
    if ((flags & MB_USEGLYPHCHARS) != 0 && table_.glyphs != nullptr && (byte < 0x20 || byte == 0x7F)) {
      return table_.glyphs[byte == 0x7F ? 0x20 : byte];
    }
    return byte < 0x80 ? byte : table_.high[byte - 0x80];
  }

  std::optional<BYTE> Map(WCHAR unit, bool bestFit) const {
    if (unit < 0x80) return static_cast<BYTE>(unit);
    auto exact = std::lower_bound(reverse_.begin(), reverse_.end(), unit,
                                  [](const Reverse& r, WCHAR u) { return r.unit < u; });
    if (exact != reverse_.end() && exact->unit == unit) return exact->byte;
    if (!bestFit) return std::nullopt;
    const SingleByteTable::BestFit* end = table_.bestFit + table_.bestFitCount;
    const SingleByteTable::BestFit* near = std::lower_bound(
        table_.bestFit, end, unit, [](const SingleByteTable::BestFit& b, WCHAR u) { return b.unit < u; });
    if (near != end && near->unit == unit) return near->byte;
    return std::nullopt;
  }

  bool PutMapped(WCHAR unit, bool bestFit, char fallback, ByteSink& out) const {
    if (std::optional<BYTE> byte = Map(unit, bestFit)) return out.Put(static_cast<char>(*byte));
    if (!out.Put(fallback)) return false;
    out.MarkDefaultUsed();  // only for what was converted
    return true;
  }

  const SingleByteTable& table_;
  std::array<Reverse, 128> reverse_{};
};

// UTF-8 as Windows reads it: a malformed sequence becomes one U+FFFD for the
// lead byte and the continuation bytes read with it. A continuation byte is
// read while it is one (0x80-0xBF); the second byte of a sequence must also
// keep the value in range (no overlong form, no surrogate, nothing above
// U+10FFFF), else the lead byte and it end as one U+FFFD. A byte that is not
// a continuation ends the sequence and is read again as a character of its
// own. C0, C1, F5-FF and stray continuation bytes are each one U+FFFD.
class Utf8CodePage final : public CodePage {
 public:
  UINT Id() const override { return CP_UTF8; }
  bool IsLeadByte(BYTE) const override { return false; }
  bool HasDefaultChar() const override { return false; }
  bool AcceptsToUnicodeFlags(DWORD flags) const override { return (flags & ~MB_ERR_INVALID_CHARS) == 0; }
  bool AcceptsFromUnicodeFlags(DWORD flags) const override { return (flags & ~WC_ERR_INVALID_CHARS) == 0; }

  void ToUnicode(const BYTE* bytes, std::size_t count, DWORD, WideSink& out) const override {
    std::size_t i = 0;
    while (i < count) {
      std::size_t used = 0;
      char32_t code = Decode(bytes + i, count - i, used);
      i += used;
      bool fits;
      if (code == kInvalid) {
        out.MarkInvalid();
        fits = out.Put(kReplacement);
      } else if (code >= 0x10000) {
        const WCHAR pair[2] = {static_cast<WCHAR>(0xD800 + ((code - 0x10000) >> 10)),
                               static_cast<WCHAR>(0xDC00 + ((code - 0x10000) & 0x3FF))};
        fits = out.Put(pair, 2);
      } else {
        fits = out.Put(static_cast<WCHAR>(code));
      }
      if (!fits) return;
    }
  }

  void FromUnicode(const WCHAR* units, std::size_t count, DWORD, const char*, ByteSink& out) const override {
    for (std::size_t i = 0; i < count; ++i) {
      char32_t code = units[i];
      if (IsHighSurrogate(units[i]) && i + 1 < count && IsLowSurrogate(units[i + 1])) {
        code = 0x10000 + ((code - 0xD800) << 10) + (units[i + 1] - 0xDC00);
        ++i;
      } else if (IsHighSurrogate(units[i]) || IsLowSurrogate(units[i])) {
        out.MarkInvalid();
        code = kReplacement;
      }
      char encoded[4];
      std::size_t size = 0;
      if (code < 0x80) {
        encoded[size++] = static_cast<char>(code);
      } else if (code < 0x800) {
        encoded[size++] = static_cast<char>(0xC0 | (code >> 6));
        encoded[size++] = static_cast<char>(0x80 | (code & 0x3F));
      } else if (code < 0x10000) {
        encoded[size++] = static_cast<char>(0xE0 | (code >> 12));
        encoded[size++] = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        encoded[size++] = static_cast<char>(0x80 | (code & 0x3F));
      } else {
        encoded[size++] = static_cast<char>(0xF0 | (code >> 18));
        encoded[size++] = static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        encoded[size++] = static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        encoded[size++] = static_cast<char>(0x80 | (code & 0x3F));
      }
      if (!out.Put(encoded, size)) return;
    }
  }

 private:
  static constexpr char32_t kInvalid = 0xFFFFFFFF;

  static bool IsContinuation(BYTE byte) { return (byte & 0xC0) == 0x80; }

  // Decodes the character at `bytes`; `used` is the number of bytes it took.
  static char32_t Decode(const BYTE* bytes, std::size_t count, std::size_t& used) {
    const BYTE lead = bytes[0];
    used = 1;
    if (lead < 0x80) return lead;
    std::size_t length;
    char32_t code;
    if (lead >= 0xC2 && lead <= 0xDF) {
      length = 2;
      code = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
      length = 3;
      code = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
      length = 4;
      code = lead & 0x07;
    } else {
      return kInvalid;
    }
    for (std::size_t k = 1; k < length; ++k) {
      if (used == count || !IsContinuation(bytes[used])) return kInvalid;
      code = (code << 6) | (bytes[used++] & 0x3F);
      if (k == 1 && !SecondByteInRange(lead, bytes[1])) return kInvalid;
    }
    return code;
  }

  static bool SecondByteInRange(BYTE lead, BYTE second) {
    switch (lead) {
      case 0xE0: return second >= 0xA0;  // overlong below U+0800
      case 0xED: return second <= 0x9F;  // surrogates
      case 0xF0: return second >= 0x90;  // overlong below U+10000
      case 0xF4: return second <= 0x8F;  // above U+10FFFF
      default: return true;
    }
  }
};

}  // namespace

const CodePage* FindCodePage(UINT id) {
  static const SingleByteCodePage ansi(kWindows1252);
  static const SingleByteCodePage oem(kOem437);
  static const Utf8CodePage utf8;
  switch (id) {
    case CP_ACP:
    case CP_THREAD_ACP:
    case 1252:
      return &ansi;
    case CP_OEMCP:
    case 437:
      return &oem;
    case CP_UTF8:
      return &utf8;
    default:
      return nullptr;
  }
}

}  // namespace tbx::win32
