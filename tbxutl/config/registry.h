#pragma once
// WUTLRegistry: the library's way into the registry. A key is named by one
// textual path whose first component is a root-key name ("HKEY_CURRENT_USER",
// "HKEY_LOCAL_MACHINE", ... written exactly so), followed by a backslash and
// the sub-keys below it; the root name alone means the root key itself.
// An object keeps one open key. Results are registry status codes (0 for
// success) unless a member says otherwise; nothing throws.
//
// The static RegRead*/RegWrite* functions do a whole open-read-close or
// open-write-close round. Their key path is `base` followed directly by `sub`
// (the caller supplies the backslash between them; a null `base` is empty).
// RegReadInt and RegReadString write the caller's default back when the
// value is missing, so every setting that was ever read shows in the registry.
//
// Callers rely on some behaviour that looks odd and is kept on purpose:
//  - copies share the handle; the first one to close it invalidates the other;
//  - SetValue(name, string) stores the string's character count as the data
//    size, without the terminating zero;
//  - DeleteRegistryValue closes the object's key afterwards, DeleteValue not;
//  - opening with creation reopens a key it had to create with read and write
//    access whatever was asked (the asked access is still what m_access keeps);
//  - RegReadString writes the terminator of a value that fills `size` at
//    out[size]: callers pass one less than their buffer.

#include "tbxutl/export.h"
#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/windows.h"

class TBXUTL_API WUTLRegistry {
 public:
  // Opens `keyPath` (nothing when null) with OpenKey.
  WUTLRegistry(const char* keyPath = nullptr, REGSAM access = KEY_READ | KEY_WRITE, int create = 0);
  WUTLRegistry(const WUTLRegistry& other);
  WUTLRegistry& operator=(const WUTLRegistry& other);
  virtual ~WUTLRegistry();

  // Opens `keyPath` and makes it the object's key; the key open before is
  // closed only when the new one opened. A null path changes nothing. Either
  // way the result is the status of the last open attempt.
  LONG OpenKey(const char* keyPath, int create, REGSAM access);

  // Reopens the current location with the current access; 110 when it no
  // longer opens for reading (or nothing is open).
  LONG IsValid();
  // 0 when `keyPath` opens for reading.
  static LONG IsValid(const char* keyPath);
  // Creates the key (and the keys above it); -1 for a null path or an
  // unknown root.
  static LONG CreateKey(const char* keyPath, REGSAM access, DWORD options);
  // Deletes the key with all its subkeys, deepest first.
  static LONG DeleteRegistryKey(const char* keyPath);

  // Deletes a value of the open key and then closes the key, whatever the
  // result; -1 when no key is open.
  LONG DeleteRegistryValue(const char* name);
  // Deletes a value; the key stays open.
  LONG DeleteValue(const char* name);

  // The full path of the open key (root name included), empty when closed.
  // Always 1.
  int GetCurrentKeyLocation(CString& location);

  // Enumeration by index; 259 after the last. Names (and string data) of up
  // to 259 bytes fit; on any failure the strings come back empty.
  LONG GetNextSubkey(CString& name, DWORD index);
  // Data of any type lands in `data` as raw bytes, up to its first zero.
  LONG GetNextValue(CString& name, CString& data, DWORD index);
  LONG GetNextValue(CString& name, DWORD& number, DWORD index);
  LONG GetNextValue(CString& name, DWORD index);

  // Fills `buffer` with the subkey (value) names, each ending in a zero, the
  // list ending in an empty name. A name that does not fit is cut and the
  // last two bytes of the buffer become the closing zeros. A value whose data
  // exceeds 259 bytes ends the value-name list.
  void GetSubkeyList(char* buffer, int size);
  void GetValueNameList(char* buffer, int size);

  // Reads 4 bytes whatever the stored type.
  LONG GetValue(const char* name, DWORD& number);
  // Reads up to 260 bytes whatever the stored type (234 for longer data),
  // up to the first zero; empty on failure.
  LONG GetValue(const char* name, CString& value);
  // A string value (REG_SZ), sized by its character count (see above).
  LONG SetValue(const char* name, const char* value);
  // A REG_DWORD value.
  LONG SetValue(const char* name, DWORD number);
  // Moves a string or number value to a new name; 259 for any other type.
  LONG RenameValue(const char* oldName, const char* newName);

  // The string value `name` as a decimal number (its leading number, 0 when
  // none). When it cannot be read, `defaultValue` is stored as decimal text
  // (creating the key) and returned.
  static int RegReadInt(const char* sub, const char* name, int defaultValue, const char* base = nullptr);
  // The string value `name` into `out`. With a null `sub` the subkey list,
  // with a null `name` the value-name list (see GetSubkeyList). A missing
  // value (when `sub` and `name` are given) gets `defaultValue` stored and
  // copied to `out` (without a terminator when it has `size` characters or
  // more). The result is the character count of `out`.
  static int RegReadString(const char* sub, const char* name, const char* defaultValue, char* out, int size,
                           const char* base = nullptr);
  // The bytes of value `name` into `out`; their count, or -1 on any failure.
  static int RegReadBinary(const char* sub, const char* name, BYTE* out, int size, const char* base = nullptr);
  // Stores `text` as a string value, creating the key when needed. A null
  // `text` deletes the value, a null `name` the whole key. 1 or 0.
  static int RegWriteString(const char* sub, const char* name, const char* text, const char* base = nullptr);
  // As RegWriteString, for `count` bytes of binary data.
  static int RegWriteBinary(const char* sub, const char* name, const BYTE* bytes, int count,
                            const char* base = nullptr);

 private:
  LONG HelperOpenKey(HKEY& key, const char* keyPath, REGSAM access, int create);
  LONG HelperCloseKey();
  static int HelperParseRootFromSubKey(char* keyPath, HKEY& root);
  static int HelperGetHKeyConstant(const char* rootName, HKEY& root);
  static const char* HelperGetString(HKEY root);
  LONG HelperGetValue(const char* name, BYTE* buffer, DWORD& size);
  LONG HelperSetValue(const char* name, const BYTE* data, DWORD& size, DWORD type);
  LONG HelperGetNextValue(char* name, BYTE* data, DWORD& nameSize, DWORD& dataSize, DWORD* type, DWORD index);
  HKEY HelperGetCurrentHandle() const;

  HKEY m_hKey;
  LONG m_status;
  CString m_location;
  DWORD m_access;
};
