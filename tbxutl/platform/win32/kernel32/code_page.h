#pragma once
// The code pages behind MultiByteToWideChar and WideCharToMultiByte (internal
// to the library). A code page owns everything that depends on its encoding:
// which bytes lead a double-byte character, how one character decodes, how
// UTF-16 encodes back, and which flags it accepts. Callers go through the
// Win32 functions (IsDBCSLeadByte, MultiByteToWideChar, ...), so a double-byte
// code page is one more CodePage here and nothing changes above.

#include <cstddef>

#include "tbxutl/platform/win32/win32_types.h"

namespace tbx::win32 {

// Collects a conversion's output: writes into the caller's buffer while whole
// characters fit, or only counts when the buffer size is 0 (a size query).
template <typename Unit>
class ConversionSink {
 public:
  ConversionSink(Unit* buffer, std::size_t capacity) : buffer_(buffer), capacity_(capacity) {}

  // Appends one character's units; false (and nothing written) once they no
  // longer fit, after which the conversion stops.
  bool Put(const Unit* units, std::size_t count) {
    if (capacity_ != 0 && count > capacity_ - size_) {
      overflow_ = true;
      return false;
    }
    for (std::size_t i = 0; capacity_ != 0 && i < count; ++i) buffer_[size_ + i] = units[i];
    size_ += count;
    return true;
  }
  bool Put(Unit unit) { return Put(&unit, 1); }

  void MarkInvalid() { invalid_ = true; }
  void MarkDefaultUsed() { defaultUsed_ = true; }

  std::size_t size() const { return size_; }
  bool overflow() const { return overflow_; }
  bool invalid() const { return invalid_; }
  bool defaultUsed() const { return defaultUsed_; }

 private:
  Unit* buffer_;
  std::size_t capacity_;
  std::size_t size_ = 0;
  bool overflow_ = false;
  bool invalid_ = false;
  bool defaultUsed_ = false;
};

using WideSink = ConversionSink<WCHAR>;
using ByteSink = ConversionSink<char>;

class CodePage {
 public:
  virtual ~CodePage() = default;

  virtual UINT Id() const = 0;
  // True for the first byte of a double-byte character.
  virtual bool IsLeadByte(BYTE byte) const = 0;
  // Whether the code page takes these MB_* / WC_* flags.
  virtual bool AcceptsToUnicodeFlags(DWORD flags) const = 0;
  virtual bool AcceptsFromUnicodeFlags(DWORD flags) const = 0;
  // False when WideCharToMultiByte must get neither a default character nor
  // a used-default flag (the UTF encodings).
  virtual bool HasDefaultChar() const = 0;

  // Decodes `count` bytes (count > 0) into `out`; stops at the first
  // character that does not fit.
  virtual void ToUnicode(const BYTE* bytes, std::size_t count, DWORD flags, WideSink& out) const = 0;
  // Encodes `count` UTF-16 units (count > 0) into `out`. `defaultChar` is the
  // caller's default character or null for the code page's own.
  virtual void FromUnicode(const WCHAR* units, std::size_t count, DWORD flags, const char* defaultChar,
                           ByteSink& out) const = 0;
};

// A code page by number: CP_ACP, CP_OEMCP, CP_THREAD_ACP, 1252, 437 or
// CP_UTF8. Null for any other number.
const CodePage* FindCodePage(UINT id);

// The table of a single-byte code page.
struct SingleByteTable {
  struct BestFit {
    WCHAR unit;
    BYTE byte;
  };
  UINT id;
  const WCHAR* high;           // UTF-16 of bytes 0x80-0xFF (bytes below are ASCII)
  const WCHAR* glyphs;         // MB_USEGLYPHCHARS: bytes 0x00-0x1F and 0x7F, or null
  const BestFit* bestFit;      // sorted by unit: characters the page shows by a look-alike
  std::size_t bestFitCount;
  BYTE defaultChar;
};

extern const SingleByteTable kWindows1252;
extern const SingleByteTable kOem437;

// Canonical compositions of a base character and one combining mark whose
// result is a Latin letter of U+00C0-U+024F: every composite that the
// single-byte pages show, directly or by best fit. (WC_COMPOSITECHECK takes a
// pair that composes to anything else as not composing; that matters only to
// WC_DISCARDNS and WC_DEFAULTCHAR, which then leave the pair alone.)
struct Composition {
  WCHAR composite;
  WCHAR base;
  WCHAR mark;
};
extern const Composition kCompositions[];
extern const std::size_t kCompositionCount;

}  // namespace tbx::win32
