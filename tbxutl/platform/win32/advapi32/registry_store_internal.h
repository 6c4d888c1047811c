#pragma once
// The registry's store on Linux: two SQLite databases in one folder,
// "user.db" for HKEY_CURRENT_USER and "machine.db" for every other root.
// The folder is TBXUTL_REGISTRY_DIR, or ${XDG_CONFIG_HOME:-$HOME/.config}/tbxutl,
// read at every call that starts from a root key, and created (mode 0700)
// on first use.
//
// Schema (application_id 0x54425852 "TBXR", user_version 1):
//
//   keys(id INTEGER PRIMARY KEY AUTOINCREMENT,
//        parent INTEGER NOT NULL,     -- id of the parent key, 0 for a root
//        name BLOB NOT NULL,          -- the name as created (ANSI bytes)
//        folded BLOB NOT NULL,        -- case-folded name, see FoldName
//        class BLOB,                  -- class string given at creation
//        volatile INTEGER NOT NULL,   -- 1: removed at the next boot
//        written INTEGER NOT NULL,    -- last write time, FILETIME ticks
//        UNIQUE(parent, folded))
//   vals(key INTEGER NOT NULL,        -- id of the owning key
//        folded BLOB NOT NULL,        -- case-folded name ("" = default value)
//        name BLOB NOT NULL,          -- the name as first set
//        seq INTEGER NOT NULL,        -- creation order within the key
//        type INTEGER NOT NULL,       -- REG_* type, any 32-bit number
//        data BLOB NOT NULL,          -- the bytes given, as given
//        PRIMARY KEY(key, folded), UNIQUE(key, seq)) WITHOUT ROWID
//   meta(name TEXT PRIMARY KEY, value) -- "boot": the boot id that last
//                                         cleared the volatile keys
//
// Root keys are rows with fixed ids (the predefined handle's low byte + 1:
// HKEY_CLASSES_ROOT 1, HKEY_CURRENT_USER 2 ... HKEY_CURRENT_CONFIG 6), each
// in its own database. Key ids are never reused (AUTOINCREMENT), so a handle
// whose key was deleted never reaches a key created later under the same
// name: it answers ERROR_KEY_DELETED, also when another process deleted it.
// Subkeys enumerate in folded-name order, values in creation order (an
// overwritten value keeps its place).
//
// Concurrency: WAL journal, a busy timeout, every change in one IMMEDIATE
// transaction and every read in one read transaction, so several processes
// read and write at once. Within the process one connection per database
// file serves all threads in turn; its prepared statements are kept.
//
// A file that is not a database, fails SQLite's quick check, or is a
// database of another layout makes every call answer
// ERROR_REGISTRY_CORRUPT; it is never written, repaired or replaced.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tbxutl/platform/windows.h"

namespace tbx::detail::registry {

using KeyId = std::int64_t;

// Longest key name component and value name, in characters.
constexpr std::size_t kMaxKeyNameLength = 255;
constexpr std::size_t kMaxValueNameLength = 16383;

// The root number (0 for HKEY_CLASSES_ROOT ... 5 for HKEY_CURRENT_CONFIG)
// of a predefined key, or -1 for any other handle.
int RootNumber(HKEY key);

// The name in the form that lookups compare and subkeys sort by: each
// character of the ANSI code page upper-cased as Windows does it (so "e"
// with an acute accent matches its capital), in UTF-8, which keeps the
// order of the UTF-16 code units that Windows sorts by.
std::string FoldName(std::string_view name);

struct ValueRecord {
  std::string name;
  DWORD type = REG_NONE;
  std::string data;
};

struct SubkeyRecord {
  std::string name;
  std::string className;
  FILETIME written{};
};

struct KeyStats {
  DWORD subkeys = 0;
  DWORD maxSubkeyName = 0;
  DWORD maxClass = 0;
  DWORD values = 0;
  DWORD maxValueName = 0;
  DWORD maxValueData = 0;
  std::string className;
  FILETIME written{};
};

// One database file. Every operation runs in its own transaction and
// answers a Win32 status: ERROR_KEY_DELETED when the key it starts from is
// gone, ERROR_REGISTRY_CORRUPT, ERROR_REGISTRY_IO_FAILED, ERROR_BUSY (the
// busy timeout ran out) ... for faults of the store.
class Store {
 public:
  // The store holding root `root`, opened (and created) when first asked for.
  static LONG ForRoot(int root, std::shared_ptr<Store>* out);
  static KeyId RootKeyId(int root) { return root + 1; }

  ~Store();
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  // The key at `path` (components, none empty) below `from`.
  LONG OpenKey(KeyId from, const std::vector<std::string_view>& path, KeyId* out);
  // Opens or creates every component of `path` (each key made gets the
  // class and volatility given); `created` tells whether the last one was
  // new. A non-volatile key cannot be created below a volatile one
  // (ERROR_CHILD_MUST_BE_VOLATILE); a component longer than
  // kMaxKeyNameLength cannot be created (ERROR_INVALID_PARAMETER).
  LONG CreateKey(KeyId from, const std::vector<std::string_view>& path, const char* className, bool isVolatile,
                 KeyId* out, bool* created);
  // Deletes the key at `path` below `from` (`from` itself for an empty path)
  // with its values; refused with ERROR_ACCESS_DENIED for a key that has
  // subkeys and for a root.
  LONG DeleteKey(KeyId from, const std::vector<std::string_view>& path);
  // ERROR_SUCCESS while the key exists.
  LONG CheckKey(KeyId key);

  // ERROR_FILE_NOT_FOUND for a missing value. The data is filled in only
  // when `data` is not null; `size` gets its length.
  LONG GetValue(KeyId key, std::string_view name, DWORD* type, std::string* data, DWORD* size);
  LONG SetValue(KeyId key, std::string_view name, DWORD type, const BYTE* data, DWORD size);
  LONG DeleteValue(KeyId key, std::string_view name);

  // ERROR_NO_MORE_ITEMS past the last.
  LONG SubkeyAt(KeyId key, DWORD index, SubkeyRecord* out);
  LONG ValueAt(KeyId key, DWORD index, ValueRecord* out);
  LONG Stats(KeyId key, KeyStats* out);

  // Writes everything committed into the database file and syncs it.
  LONG Flush(KeyId key);

  struct Connection;  // the SQLite connection, in the source file

 private:
  explicit Store(std::unique_ptr<Connection> connection);
  static LONG Open(const std::string& path, bool userFile, std::shared_ptr<Store>* out);

  std::unique_ptr<Connection> m_connection;
};

}  // namespace tbx::detail::registry
