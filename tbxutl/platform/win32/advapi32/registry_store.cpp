#include "tbxutl/platform/win32/advapi32/registry_store_internal.h"

#include <pwd.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <thread>

namespace tbx::detail::registry {
namespace {

constexpr int kApplicationId = 0x54425852;  // "TBXR"
constexpr int kSchemaVersion = 1;
constexpr int kBusyTimeoutMs = 10000;
constexpr int kCurrentUser = 1;

constexpr const char* kSchema = R"sql(
CREATE TABLE keys(
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  parent INTEGER NOT NULL,
  name BLOB NOT NULL,
  folded BLOB NOT NULL,
  class BLOB,
  volatile INTEGER NOT NULL,
  written INTEGER NOT NULL,
  UNIQUE(parent, folded));
CREATE TABLE vals(
  key INTEGER NOT NULL,
  folded BLOB NOT NULL,
  name BLOB NOT NULL,
  seq INTEGER NOT NULL,
  type INTEGER NOT NULL,
  data BLOB NOT NULL,
  PRIMARY KEY(key, folded),
  UNIQUE(key, seq)) WITHOUT ROWID;
CREATE TABLE meta(name TEXT PRIMARY KEY, value);
)sql";

constexpr const char* kRootNames[] = {"HKEY_CLASSES_ROOT", "HKEY_CURRENT_USER",     "HKEY_LOCAL_MACHINE",
                                      "HKEY_USERS",        "HKEY_PERFORMANCE_DATA", "HKEY_CURRENT_CONFIG"};
constexpr int kRootCount = 6;

enum Statement {
  kKey,
  kFindChild,
  kInsertKey,
  kTouchKey,
  kHasChildren,
  kDeleteKeyValues,
  kDeleteKeyRow,
  kGetValue,
  kSetValue,
  kDeleteValue,
  kSubkeyAt,
  kValueAt,
  kSubkeyStats,
  kValueStats,
  kBeginRead,
  kBeginWrite,
  kCommit,
  kRollback,
  kStatementCount
};

constexpr const char* kStatementText[kStatementCount] = {
    "SELECT parent, volatile, class, written FROM keys WHERE id = ?1",
    "SELECT id, volatile FROM keys WHERE parent = ?1 AND folded = ?2",
    "INSERT INTO keys(parent, name, folded, class, volatile, written) VALUES(?1, ?2, ?3, ?4, ?5, ?6)",
    "UPDATE keys SET written = ?2 WHERE id = ?1",
    "SELECT 1 FROM keys WHERE parent = ?1 LIMIT 1",
    "DELETE FROM vals WHERE key = ?1",
    "DELETE FROM keys WHERE id = ?1",
    "SELECT type, data FROM vals WHERE key = ?1 AND folded = ?2",
    "INSERT INTO vals(key, folded, name, seq, type, data) "
    "VALUES(?1, ?2, ?3, (SELECT coalesce(max(seq), 0) + 1 FROM vals WHERE key = ?1), ?4, ?5) "
    "ON CONFLICT(key, folded) DO UPDATE SET type = excluded.type, data = excluded.data",
    "DELETE FROM vals WHERE key = ?1 AND folded = ?2",
    "SELECT name, class, written FROM keys WHERE parent = ?1 ORDER BY folded LIMIT 1 OFFSET ?2",
    "SELECT name, type, data FROM vals WHERE key = ?1 ORDER BY seq LIMIT 1 OFFSET ?2",
    "SELECT count(*), coalesce(max(length(name)), 0), coalesce(max(length(class)), 0) FROM keys "
    "WHERE parent = ?1",
    "SELECT count(*), coalesce(max(length(name)), 0), coalesce(max(length(data)), 0) FROM vals WHERE key = ?1",
    "BEGIN",
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
};

LONG StatusFromSqlite(int code) {
  switch (code & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
      return ERROR_SUCCESS;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
      return ERROR_REGISTRY_CORRUPT;
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
      return ERROR_NOT_ENOUGH_MEMORY;
    case SQLITE_FULL:
      return ERROR_DISK_FULL;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return ERROR_BUSY;
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return ERROR_ACCESS_DENIED;
    case SQLITE_CANTOPEN:
      return ERROR_CANTOPEN;
    default:
      return ERROR_REGISTRY_IO_FAILED;
  }
}

// FILETIME ticks (100 ns since 1601) of the present moment.
std::int64_t Now() {
  constexpr std::int64_t kUnixEpochTicks = 116444736000000000;
  auto since = std::chrono::system_clock::now().time_since_epoch();
  return kUnixEpochTicks + std::chrono::duration_cast<std::chrono::nanoseconds>(since).count() / 100;
}

FILETIME ToFileTime(std::int64_t ticks) {
  auto value = static_cast<std::uint64_t>(ticks);
  return FILETIME{static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
}

// Windows's upper case of the UTF-16 units that code page 1252 produces.
char32_t Upcase(char32_t c) {
  if (c >= U'a' && c <= U'z') return c - 0x20;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 0x20;
  switch (c) {
    case 0xB5: return 0x39C;
    case 0xFF: return 0x178;
    case 0x153: return 0x152;
    case 0x161: return 0x160;
    case 0x17E: return 0x17D;
    case 0x192: return 0x191;
    default: return c;
  }
}

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

// The folder of the databases: TBXUTL_REGISTRY_DIR, else the user's
// configuration folder's "tbxutl". Empty when there is no home at all.
std::string RegistryFolder() {
  std::string folder;
  const char* dir = std::getenv("TBXUTL_REGISTRY_DIR");
  if (dir != nullptr && *dir != '\0') {
    folder = dir;
  } else {
    const char* xdg = std::getenv("XDG_CONFIG_HOME");
    if (xdg != nullptr && *xdg == '/') {
      folder = xdg;
    } else {
      const char* home = std::getenv("HOME");
      if (home != nullptr && *home != '\0') {
        folder = home;
      } else {
        struct passwd entry;
        struct passwd* found = nullptr;
        std::array<char, 4096> buffer;
        if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr &&
            found->pw_dir != nullptr) {
          folder = found->pw_dir;
        }
      }
      if (folder.empty()) return folder;
      folder += "/.config";
    }
    folder += "/tbxutl";
  }
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

// Creates the folder and its missing parents (mode 0700).
LONG EnsureFolder(const std::string& folder) {
  for (std::size_t end = folder.find('/', 1);; end = folder.find('/', end + 1)) {
    std::string part = folder.substr(0, end);
    if (mkdir(part.c_str(), 0700) != 0 && errno != EEXIST) {
      return errno == EACCES || errno == EPERM || errno == EROFS ? ERROR_ACCESS_DENIED : ERROR_CANTOPEN;
    }
    if (end == std::string::npos) break;
  }
  struct stat info;
  if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return ERROR_CANTOPEN;
  return ERROR_SUCCESS;
}

// The kernel's id of this boot; volatile keys of another boot are gone.
std::string BootId() {
  std::ifstream file("/proc/sys/kernel/random/boot_id");
  std::string id;
  std::getline(file, id);
  return id;
}

}  // namespace

int RootNumber(HKEY key) {
  // Only the low 32 bits count, as on 64-bit Windows.
  auto low = static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(key));
  return low >= 0x80000000u && low < 0x80000000u + kRootCount ? static_cast<int>(low - 0x80000000u) : -1;
}

std::string FoldName(std::string_view name) {
  std::string folded;
  folded.reserve(name.size());
  for (char c : name) {
    auto byte = static_cast<unsigned char>(c);
    if (byte < 0x80) {
      folded.push_back(static_cast<char>(Upcase(byte)));
      continue;
    }
    WCHAR unit = 0;
    MultiByteToWideChar(CP_ACP, 0, &c, 1, &unit, 1);
    AppendUtf8(folded, Upcase(unit));
  }
  return folded;
}

// The connection to one database file with its prepared statements. The
// mutex serialises the threads of the process; other processes are kept
// apart by SQLite's locks.
struct Store::Connection {
  sqlite3* db = nullptr;
  std::array<sqlite3_stmt*, kStatementCount> statements{};
  std::mutex mutex;
  std::atomic<bool> corrupt{false};

  ~Connection() {
    for (sqlite3_stmt* statement : statements) sqlite3_finalize(statement);
    sqlite3_close_v2(db);
  }

  LONG Exec(const char* sql) { return StatusFromSqlite(sqlite3_exec(db, sql, nullptr, nullptr, nullptr)); }
};

namespace {

// One run of a kept statement: binds in order, steps, and is reset (with its
// bindings cleared) when it goes.
class Query {
 public:
  Query(Store::Connection& connection, Statement which) : m_db(connection.db) {
    sqlite3_stmt*& slot = connection.statements[which];
    if (slot == nullptr) {
      m_rc = sqlite3_prepare_v3(m_db, kStatementText[which], -1, SQLITE_PREPARE_PERSISTENT, &slot, nullptr);
    }
    m_statement = slot;
  }
  ~Query() {
    if (m_statement != nullptr) {
      sqlite3_reset(m_statement);
      sqlite3_clear_bindings(m_statement);
    }
  }
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  Query& Bind(std::int64_t value) {
    if (Ok()) m_rc = sqlite3_bind_int64(m_statement, ++m_bound, value);
    return *this;
  }
  Query& Bind(std::string_view bytes) {
    if (!Ok()) return *this;
    ++m_bound;
    m_rc = bytes.empty() ? sqlite3_bind_zeroblob(m_statement, m_bound, 0)
                         : sqlite3_bind_blob64(m_statement, m_bound, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
    return *this;
  }
  Query& BindOptional(const char* text) {
    if (text == nullptr) {
      if (Ok()) m_rc = sqlite3_bind_null(m_statement, ++m_bound);
      return *this;
    }
    return Bind(std::string_view(text));
  }

  // True for a row; false at the end or on an error (see Status).
  bool Step() {
    if (!Ok()) return false;
    m_rc = sqlite3_step(m_statement);
    return m_rc == SQLITE_ROW;
  }
  // Runs a statement that gives no rows.
  LONG Run() {
    Step();
    return Status();
  }
  LONG Status() const { return StatusFromSqlite(m_rc); }

  std::int64_t Int(int column) const { return sqlite3_column_int64(m_statement, column); }
  bool IsNull(int column) const { return sqlite3_column_type(m_statement, column) == SQLITE_NULL; }
  std::string Bytes(int column) const {
    const void* data = sqlite3_column_blob(m_statement, column);
    int size = sqlite3_column_bytes(m_statement, column);
    return data == nullptr ? std::string() : std::string(static_cast<const char*>(data), size);
  }
  std::size_t Size(int column) const { return static_cast<std::size_t>(sqlite3_column_bytes(m_statement, column)); }

 private:
  bool Ok() const { return m_rc == SQLITE_OK || m_rc == SQLITE_ROW || m_rc == SQLITE_DONE; }

  sqlite3* m_db;
  sqlite3_stmt* m_statement = nullptr;
  int m_rc = SQLITE_OK;
  int m_bound = 0;
};

// Runs body in one transaction (IMMEDIATE for a change) under the
// connection's mutex; commits when it answers ERROR_SUCCESS, else rolls back.
template <typename Body>
LONG InTransaction(Store::Connection& connection, bool write, Body&& body) {
  std::lock_guard lock(connection.mutex);
  if (connection.corrupt) return ERROR_REGISTRY_CORRUPT;
  LONG status = Query(connection, write ? kBeginWrite : kBeginRead).Run();
  if (status == ERROR_SUCCESS) {
    status = body();
    if (status == ERROR_SUCCESS) {
      status = Query(connection, kCommit).Run();
    }
    if (status != ERROR_SUCCESS && !sqlite3_get_autocommit(connection.db)) {
      Query(connection, kRollback).Run();
    }
  }
  if (status == ERROR_REGISTRY_CORRUPT) connection.corrupt = true;
  return status;
}

struct KeyRow {
  KeyId parent = 0;
  bool isVolatile = false;
  std::string className;
  std::int64_t written = 0;
};

// The key's row; ERROR_KEY_DELETED when it is gone.
LONG ReadKey(Store::Connection& connection, KeyId key, KeyRow* row = nullptr) {
  Query query(connection, kKey);
  if (!query.Bind(key).Step()) return query.Status() != ERROR_SUCCESS ? query.Status() : ERROR_KEY_DELETED;
  if (row != nullptr) {
    row->parent = query.Int(0);
    row->isVolatile = query.Int(1) != 0;
    row->className = query.Bytes(2);
    row->written = query.Int(3);
  }
  return ERROR_SUCCESS;
}

// Follows path from `from`; ERROR_FILE_NOT_FOUND at a missing component.
LONG Walk(Store::Connection& connection, KeyId from, const std::vector<std::string_view>& path, KeyId* out) {
  KeyId current = from;
  for (std::string_view component : path) {
    if (component.size() > kMaxKeyNameLength) return ERROR_FILE_NOT_FOUND;
    Query query(connection, kFindChild);
    if (!query.Bind(current).Bind(FoldName(component)).Step()) {
      return query.Status() != ERROR_SUCCESS ? query.Status() : ERROR_FILE_NOT_FOUND;
    }
    current = query.Int(0);
  }
  *out = current;
  return ERROR_SUCCESS;
}

LONG Touch(Store::Connection& connection, KeyId key, std::int64_t now) {
  return Query(connection, kTouchKey).Bind(key).Bind(now).Run();
}

// Reads one integer from a PRAGMA or query.
LONG ReadInteger(sqlite3* db, const char* sql, std::int64_t* value) {
  sqlite3_stmt* statement = nullptr;
  int rc = sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
  if (rc == SQLITE_OK) {
    rc = sqlite3_step(statement);
    if (rc == SQLITE_ROW) *value = sqlite3_column_int64(statement, 0);
  }
  sqlite3_finalize(statement);
  return rc == SQLITE_ROW ? ERROR_SUCCESS : rc == SQLITE_DONE ? ERROR_REGISTRY_CORRUPT : StatusFromSqlite(rc);
}

LONG ReadText(sqlite3* db, const char* sql, std::string* value) {
  sqlite3_stmt* statement = nullptr;
  int rc = sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
  if (rc == SQLITE_OK) {
    rc = sqlite3_step(statement);
    if (rc == SQLITE_ROW) {
      const unsigned char* text = sqlite3_column_text(statement, 0);
      *value = text != nullptr ? reinterpret_cast<const char*>(text) : "";
    }
  }
  sqlite3_finalize(statement);
  return rc == SQLITE_ROW || rc == SQLITE_DONE ? ERROR_SUCCESS : StatusFromSqlite(rc);
}

// Whether the file is sound, and whether it still has to be laid out.
LONG CheckFile(sqlite3* db, bool* isNew) {
  std::string check;
  LONG status = ReadText(db, "PRAGMA quick_check(1)", &check);
  if (status != ERROR_SUCCESS) return status;
  if (check != "ok") return ERROR_REGISTRY_CORRUPT;
  std::int64_t applicationId = 0, version = 0, objects = 0;
  if ((status = ReadInteger(db, "PRAGMA application_id", &applicationId)) != ERROR_SUCCESS ||
      (status = ReadInteger(db, "PRAGMA user_version", &version)) != ERROR_SUCCESS ||
      (status = ReadInteger(db, "SELECT count(*) FROM sqlite_schema", &objects)) != ERROR_SUCCESS) {
    return status;
  }
  *isNew = applicationId == 0 && version == 0 && objects == 0;
  if (*isNew) return ERROR_SUCCESS;
  return applicationId == kApplicationId && version == kSchemaVersion ? ERROR_SUCCESS : ERROR_REGISTRY_CORRUPT;
}

// Switches a new file to the WAL journal; another process that opens the
// same new file at once may hold it for a moment.
LONG UseWal(sqlite3* db) {
  for (int attempt = 0;; ++attempt) {
    std::string mode;
    LONG status = ReadText(db, "PRAGMA journal_mode=WAL", &mode);
    if (status == ERROR_SUCCESS && mode == "wal") return ERROR_SUCCESS;
    if ((status != ERROR_SUCCESS && status != ERROR_BUSY) || attempt == 100) {
      return status != ERROR_SUCCESS ? status : ERROR_BUSY;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10 + attempt));
  }
}

// Lays out a new file: tables, format marks and the file's roots. Runs in
// one transaction, so that of two processes creating the file at once the
// second finds it done.
LONG LayOut(Store::Connection& connection, bool userFile) {
  return InTransaction(connection, true, [&]() -> LONG {
    std::int64_t applicationId = 0;
    LONG status = ReadInteger(connection.db, "PRAGMA application_id", &applicationId);
    if (status != ERROR_SUCCESS || applicationId == kApplicationId) return status;
    if ((status = connection.Exec(kSchema)) != ERROR_SUCCESS) return status;
    std::string marks = "PRAGMA application_id=" + std::to_string(kApplicationId) +
                        "; PRAGMA user_version=" + std::to_string(kSchemaVersion) + ";";
    if ((status = connection.Exec(marks.c_str())) != ERROR_SUCCESS) return status;
    std::int64_t now = Now();
    for (int root = 0; root < kRootCount; ++root) {
      if ((root == kCurrentUser) != userFile) continue;
      sqlite3_stmt* insert = nullptr;
      int rc = sqlite3_prepare_v2(connection.db,
                                  "INSERT INTO keys(id, parent, name, folded, class, volatile, written) "
                                  "VALUES(?1, 0, ?2, ?2, NULL, 0, ?3)",
                                  -1, &insert, nullptr);
      if (rc == SQLITE_OK) {
        sqlite3_bind_int64(insert, 1, Store::RootKeyId(root));
        sqlite3_bind_blob(insert, 2, kRootNames[root], static_cast<int>(std::strlen(kRootNames[root])),
                          SQLITE_STATIC);
        sqlite3_bind_int64(insert, 3, now);
        rc = sqlite3_step(insert);
      }
      sqlite3_finalize(insert);
      if (rc != SQLITE_DONE) return StatusFromSqlite(rc);
    }
    return ERROR_SUCCESS;
  });
}

// Removes the volatile keys of an earlier boot.
LONG ClearVolatileKeys(Store::Connection& connection) {
  std::string boot = BootId();
  if (boot.empty()) return ERROR_SUCCESS;
  std::string stored;
  LONG status = ReadText(connection.db, "SELECT value FROM meta WHERE name = 'boot'", &stored);
  if (status != ERROR_SUCCESS || stored == boot) return status;
  return InTransaction(connection, true, [&]() -> LONG {
    sqlite3_stmt* statement = nullptr;
    int rc = sqlite3_prepare_v2(connection.db,
                                "INSERT INTO meta(name, value) VALUES('boot', ?1) "
                                "ON CONFLICT(name) DO UPDATE SET value = excluded.value",
                                -1, &statement, nullptr);
    if (rc == SQLITE_OK) {
      sqlite3_bind_text(statement, 1, boot.c_str(), static_cast<int>(boot.size()), SQLITE_STATIC);
      rc = sqlite3_step(statement);
    }
    sqlite3_finalize(statement);
    if (rc != SQLITE_DONE) return StatusFromSqlite(rc);
    // A volatile key has only volatile subkeys, so none is left without
    // its parent.
    return connection.Exec(
        "DELETE FROM vals WHERE key IN (SELECT id FROM keys WHERE volatile);"
        "DELETE FROM keys WHERE volatile;");
  });
}

}  // namespace

Store::Store(std::unique_ptr<Connection> connection) : m_connection(std::move(connection)) {}

Store::~Store() = default;

LONG Store::Open(const std::string& path, bool userFile, std::shared_ptr<Store>* out) {
  auto connection = std::make_unique<Connection>();
  int rc = sqlite3_open_v2(path.c_str(), &connection->db,
                           SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  if (rc != SQLITE_OK) return StatusFromSqlite(rc);
  sqlite3_extended_result_codes(connection->db, 1);
  sqlite3_busy_timeout(connection->db, kBusyTimeoutMs);

  // Nothing is written before the file is known to be ours or new.
  bool isNew = false;
  LONG status = CheckFile(connection->db, &isNew);
  if (status == ERROR_SUCCESS) status = UseWal(connection->db);
  if (status == ERROR_SUCCESS) status = connection->Exec("PRAGMA synchronous=NORMAL");
  if (status == ERROR_SUCCESS && isNew) status = LayOut(*connection, userFile);
  if (status == ERROR_SUCCESS) status = ClearVolatileKeys(*connection);
  if (status != ERROR_SUCCESS) return status;
  out->reset(new Store(std::move(connection)));
  return ERROR_SUCCESS;
}

LONG Store::ForRoot(int root, std::shared_ptr<Store>* out) {
  static auto* mutex = new std::mutex;  // both outlive static destructors
  static auto* stores = new std::map<std::string, std::shared_ptr<Store>>;

  std::string folder = RegistryFolder();
  if (folder.empty()) return ERROR_CANTOPEN;
  std::string path = folder + (root == kCurrentUser ? "/user.db" : "/machine.db");
  std::lock_guard lock(*mutex);
  auto found = stores->find(path);
  if (found != stores->end() && !found->second->m_connection->corrupt) {
    *out = found->second;
    return ERROR_SUCCESS;
  }
  if (found != stores->end()) stores->erase(found);  // corrupt: look at the file afresh
  LONG status = EnsureFolder(folder);
  if (status == ERROR_SUCCESS) status = Open(path, root == kCurrentUser, out);
  if (status == ERROR_SUCCESS) stores->emplace(path, *out);
  return status;
}

LONG Store::OpenKey(KeyId from, const std::vector<std::string_view>& path, KeyId* out) {
  Connection& c = *m_connection;
  return InTransaction(c, false, [&]() -> LONG {
    LONG status = ReadKey(c, from);
    return status != ERROR_SUCCESS ? status : Walk(c, from, path, out);
  });
}

LONG Store::CreateKey(KeyId from, const std::vector<std::string_view>& path, const char* className,
                      bool isVolatile, KeyId* out, bool* created) {
  Connection& c = *m_connection;
  return InTransaction(c, true, [&]() -> LONG {
    KeyRow row;
    LONG status = ReadKey(c, from, &row);
    if (status != ERROR_SUCCESS) return status;
    KeyId current = from;
    bool parentVolatile = row.isVolatile;
    bool madeLast = false;
    std::int64_t now = Now();
    for (std::size_t i = 0; i < path.size(); ++i) {
      std::string folded = FoldName(path[i]);
      {
        Query find(c, kFindChild);
        if (find.Bind(current).Bind(folded).Step()) {
          current = find.Int(0);
          parentVolatile = find.Int(1) != 0;
          madeLast = false;
          continue;
        }
        if (find.Status() != ERROR_SUCCESS) return find.Status();
      }
      if (path[i].size() > kMaxKeyNameLength) return ERROR_INVALID_PARAMETER;
      if (parentVolatile && !isVolatile) return ERROR_CHILD_MUST_BE_VOLATILE;
      Query insert(c, kInsertKey);
      insert.Bind(current).Bind(path[i]).Bind(folded);
      insert.BindOptional(className);
      if ((status = insert.Bind(isVolatile ? 1 : 0).Bind(now).Run()) != ERROR_SUCCESS) return status;
      KeyId child = sqlite3_last_insert_rowid(c.db);
      if ((status = Touch(c, current, now)) != ERROR_SUCCESS) return status;
      current = child;
      parentVolatile = isVolatile;
      madeLast = true;
    }
    *out = current;
    *created = madeLast;
    return ERROR_SUCCESS;
  });
}

LONG Store::DeleteKey(KeyId from, const std::vector<std::string_view>& path) {
  Connection& c = *m_connection;
  return InTransaction(c, true, [&]() -> LONG {
    LONG status = ReadKey(c, from);
    KeyId target = 0;
    if (status != ERROR_SUCCESS || (status = Walk(c, from, path, &target)) != ERROR_SUCCESS) return status;
    KeyRow row;
    if ((status = ReadKey(c, target, &row)) != ERROR_SUCCESS) return status;
    if (row.parent == 0) return ERROR_ACCESS_DENIED;
    {
      Query children(c, kHasChildren);
      if (children.Bind(target).Step()) return ERROR_ACCESS_DENIED;
      if (children.Status() != ERROR_SUCCESS) return children.Status();
    }
    if ((status = Query(c, kDeleteKeyValues).Bind(target).Run()) != ERROR_SUCCESS ||
        (status = Query(c, kDeleteKeyRow).Bind(target).Run()) != ERROR_SUCCESS) {
      return status;
    }
    return Touch(c, row.parent, Now());
  });
}

LONG Store::CheckKey(KeyId key) {
  Connection& c = *m_connection;
  return InTransaction(c, false, [&]() -> LONG { return ReadKey(c, key); });
}

LONG Store::GetValue(KeyId key, std::string_view name, DWORD* type, std::string* data, DWORD* size) {
  Connection& c = *m_connection;
  return InTransaction(c, false, [&]() -> LONG {
    Query query(c, kGetValue);
    if (!query.Bind(key).Bind(FoldName(name)).Step()) {
      if (query.Status() != ERROR_SUCCESS) return query.Status();
      LONG status = ReadKey(c, key);
      return status != ERROR_SUCCESS ? status : ERROR_FILE_NOT_FOUND;
    }
    *type = static_cast<DWORD>(query.Int(0));
    if (data != nullptr) *data = query.Bytes(1);
    *size = static_cast<DWORD>(query.Size(1));
    return ERROR_SUCCESS;
  });
}

LONG Store::SetValue(KeyId key, std::string_view name, DWORD type, const BYTE* data, DWORD size) {
  Connection& c = *m_connection;
  return InTransaction(c, true, [&]() -> LONG {
    LONG status = ReadKey(c, key);
    if (status != ERROR_SUCCESS) return status;
    std::string_view bytes(reinterpret_cast<const char*>(data), data != nullptr ? size : 0);
    Query upsert(c, kSetValue);
    upsert.Bind(key).Bind(FoldName(name)).Bind(name).Bind(static_cast<std::int64_t>(type)).Bind(bytes);
    if ((status = upsert.Run()) != ERROR_SUCCESS) return status;
    return Touch(c, key, Now());
  });
}

LONG Store::DeleteValue(KeyId key, std::string_view name) {
  Connection& c = *m_connection;
  return InTransaction(c, true, [&]() -> LONG {
    LONG status = ReadKey(c, key);
    if (status != ERROR_SUCCESS) return status;
    if ((status = Query(c, kDeleteValue).Bind(key).Bind(FoldName(name)).Run()) != ERROR_SUCCESS) return status;
    if (sqlite3_changes(c.db) == 0) return ERROR_FILE_NOT_FOUND;
    return Touch(c, key, Now());
  });
}

LONG Store::SubkeyAt(KeyId key, DWORD index, SubkeyRecord* out) {
  Connection& c = *m_connection;
  return InTransaction(c, false, [&]() -> LONG {
    LONG status = ReadKey(c, key);
    if (status != ERROR_SUCCESS) return status;
    Query query(c, kSubkeyAt);
    if (!query.Bind(key).Bind(static_cast<std::int64_t>(index)).Step()) {
      return query.Status() != ERROR_SUCCESS ? query.Status() : ERROR_NO_MORE_ITEMS;
    }
    out->name = query.Bytes(0);
    out->className = query.Bytes(1);
    out->written = ToFileTime(query.Int(2));
    return ERROR_SUCCESS;
  });
}

LONG Store::ValueAt(KeyId key, DWORD index, ValueRecord* out) {
  Connection& c = *m_connection;
  return InTransaction(c, false, [&]() -> LONG {
    LONG status = ReadKey(c, key);
    if (status != ERROR_SUCCESS) return status;
    Query query(c, kValueAt);
    if (!query.Bind(key).Bind(static_cast<std::int64_t>(index)).Step()) {
      return query.Status() != ERROR_SUCCESS ? query.Status() : ERROR_NO_MORE_ITEMS;
    }
    out->name = query.Bytes(0);
    out->type = static_cast<DWORD>(query.Int(1));
    out->data = query.Bytes(2);
    return ERROR_SUCCESS;
  });
}

LONG Store::Stats(KeyId key, KeyStats* out) {
  Connection& c = *m_connection;
  return InTransaction(c, false, [&]() -> LONG {
    KeyRow row;
    LONG status = ReadKey(c, key, &row);
    if (status != ERROR_SUCCESS) return status;
    out->className = row.className;
    out->written = ToFileTime(row.written);
    Query subkeys(c, kSubkeyStats);
    if (!subkeys.Bind(key).Step()) return subkeys.Status();
    out->subkeys = static_cast<DWORD>(subkeys.Int(0));
    out->maxSubkeyName = static_cast<DWORD>(subkeys.Int(1));
    out->maxClass = static_cast<DWORD>(subkeys.Int(2));
    Query values(c, kValueStats);
    if (!values.Bind(key).Step()) return values.Status();
    out->values = static_cast<DWORD>(values.Int(0));
    out->maxValueName = static_cast<DWORD>(values.Int(1));
    out->maxValueData = static_cast<DWORD>(values.Int(2));
    return ERROR_SUCCESS;
  });
}

LONG Store::Flush(KeyId key) {
  LONG status = CheckKey(key);
  if (status != ERROR_SUCCESS) return status;
  Connection& c = *m_connection;
  std::lock_guard lock(c.mutex);
  // Copies the journal into the database file and syncs it; when other
  // connections keep it busy past the timeout, what is committed stays in
  // the journal and is safe there too.
  int rc = sqlite3_wal_checkpoint_v2(c.db, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
  status = StatusFromSqlite(rc);
  if (status == ERROR_REGISTRY_CORRUPT) c.corrupt = true;
  return status == ERROR_BUSY ? ERROR_SUCCESS : status;
}

}  // namespace tbx::detail::registry
