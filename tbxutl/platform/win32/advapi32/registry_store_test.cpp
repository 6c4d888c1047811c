// The registry store on Linux: its files, its own rules where Wine's
// registry differs from Windows's, damaged files, and several processes at
// once. Child processes are this program run again with
// TBXUTL_REGISTRY_CHILD naming their part.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "tbxutl/platform/windows.h"
#include "tbxutl/testing/temp_folder_testing.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;

constexpr int kStartFd = 100;  // children wait until this pipe is closed
constexpr int kAckFd = 101;    // the crash writer reports each stored value here
constexpr int kValuesPerWriter = 500;
constexpr const char* kMultiKey = "Software\\TbxutlTest\\Multi";
constexpr const char* kCrashKey = "Software\\TbxutlTest\\Crash";

std::string CrashData(std::uint32_t i) {
  std::string data(4096, static_cast<char>('a' + i % 26));
  std::memcpy(data.data(), &i, sizeof i);
  return data;
}

HKEY CreateKey(HKEY parent, const char* path) {
  HKEY key = nullptr;
  EXPECT_EQ(RegCreateKeyExA(parent, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr), ERROR_SUCCESS);
  return key;
}

// --- The children's parts --------------------------------------------------

void WaitForStart() {
  char byte;
  while (read(kStartFd, &byte, 1) > 0) {
  }
}

int RunWriter(int writer) {
  WaitForStart();
  HKEY key = nullptr;
  if (RegCreateKeyExA(HKEY_CURRENT_USER, kMultiKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) != 0) {
    return 10;
  }
  for (int i = 0; i < kValuesPerWriter; ++i) {
    std::string name = "w" + std::to_string(writer) + "-" + std::to_string(i);
    DWORD data = static_cast<DWORD>(writer * 1000 + i);
    LONG status = RegSetValueExA(key, name.c_str(), 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data);
    if (status != ERROR_SUCCESS) {
      std::fprintf(stderr, "writer %d: value %d: status %ld\n", writer, i, static_cast<long>(status));
      return 11;
    }
  }
  return RegCloseKey(key) == ERROR_SUCCESS ? 0 : 12;
}

// Writes values until it is killed, telling each one it has stored.
int RunCrashWriter(std::uint32_t first) {
  HKEY key = nullptr;
  if (RegCreateKeyExA(HKEY_CURRENT_USER, kCrashKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) != 0) {
    return 20;
  }
  for (std::uint32_t i = first;; ++i) {
    std::string name = "c" + std::to_string(i);
    std::string data = CrashData(i);
    if (RegSetValueExA(key, name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>(data.data()),
                       static_cast<DWORD>(data.size())) != ERROR_SUCCESS ||
        write(kAckFd, &i, sizeof i) != sizeof i) {
      return 21;
    }
  }
}

int RunChild(const std::string& part) {
  std::size_t colon = part.find(':');
  std::string kind = part.substr(0, colon), argument = colon == std::string::npos ? "" : part.substr(colon + 1);
  if (kind == "writer") return RunWriter(std::stoi(argument));
  if (kind == "crash") return RunCrashWriter(static_cast<std::uint32_t>(std::stoul(argument)));
  if (kind == "delete") return static_cast<int>(RegDeleteKeyA(HKEY_CURRENT_USER, argument.c_str()));
  if (kind == "volatile") {  // keys created as volatile make their missing parents volatile too
    RegCloseKey(CreateKey(HKEY_CURRENT_USER, "Software\\Kept"));
    HKEY key = nullptr;
    if (RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Volatile\\Sub", 0, nullptr, REG_OPTION_VOLATILE,
                        KEY_ALL_ACCESS, nullptr, &key, nullptr) != 0) {
      return 30;
    }
    return RegCloseKey(key);
  }
  return 99;
}

// Runs before the tests: a child does its part and ends there.
const bool kIsChild = [] {
  const char* part = std::getenv("TBXUTL_REGISTRY_CHILD");
  if (part != nullptr) std::exit(RunChild(part));
  return false;
}();

// --- The parent's side ------------------------------------------------------

// Sets (or, given null, unsets) an environment variable for the time of a
// test.
class EnvScope {
 public:
  EnvScope(const char* name, const char* value) : m_name(name) {
    const char* old = std::getenv(name);
    if (old != nullptr) m_old = old;
    if (value != nullptr) {
      setenv(name, value, 1);
    } else {
      unsetenv(name);
    }
  }
  ~EnvScope() {
    if (m_old) {
      setenv(m_name, m_old->c_str(), 1);
    } else {
      unsetenv(m_name);
    }
  }
  EnvScope(const EnvScope&) = delete;
  EnvScope& operator=(const EnvScope&) = delete;

 private:
  const char* m_name;
  std::optional<std::string> m_old;
};

// Points the registry at a folder for the time of a test.
class RegistryFolderScope : public EnvScope {
 public:
  explicit RegistryFolderScope(const std::string& folder) : EnvScope("TBXUTL_REGISTRY_DIR", folder.c_str()) {}
};

// Starts this program as a child with its part; the pipes' ends given are
// passed as kStartFd and kAckFd.
pid_t Spawn(const std::string& part, const std::string& folder, int startFd = -1, int ackFd = -1) {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    if (std::strncmp(*variable, "TBXUTL_REGISTRY_", 16) != 0) variables.emplace_back(*variable);
  }
  variables.push_back("TBXUTL_REGISTRY_CHILD=" + part);
  variables.push_back("TBXUTL_REGISTRY_DIR=" + folder);
  std::vector<char*> envp;
  for (std::string& variable : variables) envp.push_back(variable.data());
  envp.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (startFd >= 0) posix_spawn_file_actions_adddup2(&actions, startFd, kStartFd);
  if (ackFd >= 0) posix_spawn_file_actions_adddup2(&actions, ackFd, kAckFd);
  std::string program = fs::read_symlink("/proc/self/exe").string();
  char* argv[] = {program.data(), nullptr};
  pid_t pid = -1;
  int error = posix_spawn(&pid, program.c_str(), &actions, nullptr, argv, envp.data());
  posix_spawn_file_actions_destroy(&actions);
  EXPECT_EQ(error, 0) << std::strerror(error);
  return error == 0 ? pid : -1;
}

// The child's exit code, or 128 + the signal that ended it.
int Wait(pid_t pid) {
  int status = 0;
  if (waitpid(pid, &status, 0) != pid) return -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string ReadBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

void WriteBytes(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// SQLite's full check of a database file: "ok" when sound.
std::string IntegrityCheck(const std::string& path) {
  sqlite3* db = nullptr;
  std::string result = "cannot open";
  if (sqlite3_open_v2(path.c_str(), &db, SQLITE_OPEN_READWRITE, nullptr) == SQLITE_OK) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, "PRAGMA integrity_check", -1, &statement, nullptr) == SQLITE_OK &&
        sqlite3_step(statement) == SQLITE_ROW) {
      result = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
    } else {
      result = sqlite3_errmsg(db);
    }
    sqlite3_finalize(statement);
  }
  sqlite3_close(db);
  return result;
}

std::vector<std::string> ValueNamesInOrder(HKEY key) {
  std::vector<std::string> names;
  char name[64];
  DWORD length = sizeof name;
  for (DWORD i = 0; RegEnumValueA(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
    names.emplace_back(name, length);
    length = sizeof name;
  }
  return names;
}

// Runs one statement on a database file.
void Execute(const std::string& path, const char* sql) {
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(db);
  sqlite3_close(db);
}

}  // namespace

// --- Files and folders -------------------------------------------------------

TEST(RegistryStore, CreatesItsFolderAndFilesOnFirstUse) {
  tbx::testing::TempFolder temp;
  const std::string folder = temp.File("a/b");
  {
    RegistryFolderScope scope(folder);
    RegCloseKey(CreateKey(HKEY_CURRENT_USER, "Software\\Test"));
    EXPECT_TRUE(fs::exists(folder + "/user.db"));
    EXPECT_FALSE(fs::exists(folder + "/machine.db"));
    for (HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CLASSES_ROOT, HKEY_USERS, HKEY_CURRENT_CONFIG}) {
      RegCloseKey(CreateKey(root, "Test"));
    }
    EXPECT_TRUE(fs::exists(folder + "/machine.db"));
    struct stat info;
    ASSERT_EQ(stat(folder.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700u);
  }
  EXPECT_EQ(IntegrityCheck(folder + "/user.db"), "ok");
  EXPECT_EQ(IntegrityCheck(folder + "/machine.db"), "ok");

  // Without TBXUTL_REGISTRY_DIR: the user's configuration folder.
  EnvScope noFolder("TBXUTL_REGISTRY_DIR", nullptr);
  EnvScope home("HOME", temp.File("home").c_str());
  {
    EnvScope xdg("XDG_CONFIG_HOME", temp.File("xdg").c_str());
    RegCloseKey(CreateKey(HKEY_CURRENT_USER, "Software\\Test"));
    EXPECT_TRUE(fs::exists(temp.File("xdg/tbxutl/user.db")));
  }
  EnvScope xdg("XDG_CONFIG_HOME", "");
  RegCloseKey(CreateKey(HKEY_CURRENT_USER, "Software\\Test"));
  EXPECT_TRUE(fs::exists(temp.File("home/.config/tbxutl/user.db")));
}

TEST(RegistryStore, FlushLeavesEverythingInTheDatabaseFile) {
  tbx::testing::TempFolder temp, copy;
  {
    RegistryFolderScope scope(temp.path());
    HKEY key = CreateKey(HKEY_CURRENT_USER, "Software\\Flushed");
    DWORD data = 42;
    ASSERT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data), 0);
    ASSERT_EQ(RegFlushKey(key), ERROR_SUCCESS);
    RegCloseKey(key);
  }
  fs::copy_file(temp.File("user.db"), copy.File("user.db"));  // the file alone, without its journal
  RegistryFolderScope scope(copy.path());
  DWORD data = 0, size = sizeof data;
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Flushed", 0, KEY_READ, &key), ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExA(key, "v", nullptr, nullptr, reinterpret_cast<BYTE*>(&data), &size), ERROR_SUCCESS);
  EXPECT_EQ(data, 42u);
  RegCloseKey(key);
}

TEST(RegistryStore, VolatileKeysEndWithTheBoot) {
  tbx::testing::TempFolder temp;
  ASSERT_EQ(Wait(Spawn("volatile", temp.path())), 0);
  // The next process of the same boot finds them; one of another boot not.
  EXPECT_EQ(Wait(Spawn("delete:Software\\Volatile\\Sub", temp.path())), 0);
  ASSERT_EQ(Wait(Spawn("volatile", temp.path())), 0);
  Execute(temp.File("user.db"), "UPDATE meta SET value = 'an earlier boot' WHERE name = 'boot'");
  RegistryFolderScope scope(temp.path());
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Volatile", 0, KEY_READ, &key), ERROR_FILE_NOT_FOUND);
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Kept", 0, KEY_READ, &key), ERROR_SUCCESS);
  RegCloseKey(key);
}

// --- Rules Wine's registry does not share -----------------------------------

TEST(RegistryStore, ValuesEnumerateInCreationOrder) {
  tbx::testing::TempFolder temp;
  RegistryFolderScope scope(temp.path());
  HKEY key = CreateKey(HKEY_CURRENT_USER, "Software\\Order");
  DWORD data = 1;
  for (const char* name : {"zulu", "alpha", "Mike", "", "ZULU"}) {
    ASSERT_EQ(RegSetValueExA(key, name, 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data), 0);
  }
  EXPECT_EQ(ValueNamesInOrder(key), (std::vector<std::string>{"zulu", "alpha", "Mike", ""}))
      << "an overwritten value keeps its place";
  ASSERT_EQ(RegDeleteValueA(key, "alpha"), ERROR_SUCCESS);
  ASSERT_EQ(RegSetValueExA(key, "Alpha", 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data), 0);
  EXPECT_EQ(ValueNamesInOrder(key), (std::vector<std::string>{"zulu", "Mike", "", "Alpha"}));
  RegCloseKey(key);
}

TEST(RegistryStore, DocumentedLimitsAndRights) {
  tbx::testing::TempFolder temp;
  RegistryFolderScope scope(temp.path());
  HKEY key = CreateKey(HKEY_CURRENT_USER, "Software\\Limits");
  const std::string tooLong(256, 'k');
  HKEY sub = nullptr;
  EXPECT_EQ(RegCreateKeyExA(key, ("New\\" + tooLong).c_str(), 0, nullptr, 0, KEY_READ, nullptr, &sub, nullptr),
            ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegOpenKeyExA(key, "New", 0, KEY_READ, &sub), ERROR_FILE_NOT_FOUND) << "nothing half-made is left";
  EXPECT_EQ(RegOpenKeyExA(key, tooLong.c_str(), 0, KEY_READ, &sub), ERROR_FILE_NOT_FOUND);

  char className[] = "MyClass";
  ASSERT_EQ(RegCreateKeyExA(key, "Classy", 0, className, 0, KEY_ENUMERATE_SUB_KEYS, nullptr, &sub, nullptr), 0);
  DWORD count = 0;
  EXPECT_EQ(RegQueryInfoKeyA(sub, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr),
            ERROR_ACCESS_DENIED)
      << "querying a key needs KEY_QUERY_VALUE";
  RegCloseKey(sub);
  ASSERT_EQ(RegOpenKeyExA(key, "Classy", 0, KEY_QUERY_VALUE, &sub), 0);
  char buffer[8];
  DWORD length = 7;
  EXPECT_EQ(RegQueryInfoKeyA(sub, buffer, &length, nullptr, &count, nullptr, nullptr, nullptr, nullptr, nullptr,
                             nullptr, nullptr),
            ERROR_MORE_DATA);
  EXPECT_EQ(length, 7u) << "the class's length without its terminator";
  RegCloseKey(sub);

  // Null result pointers (Wine 8 faults on some of these).
  EXPECT_EQ(RegOpenKeyExA(key, "x", 0, KEY_READ, nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegOpenKeyA(key, "x", nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegCreateKeyA(key, "x", nullptr), ERROR_INVALID_PARAMETER);
  EXPECT_EQ(RegCreateKeyExA(key, "x", 0, nullptr, 0, KEY_READ, nullptr, nullptr, nullptr), ERROR_BADKEY);

  DWORD disposition = 0;
  ASSERT_EQ(RegCreateKeyExA(key, "", 0, nullptr, 0, KEY_READ, nullptr, &sub, &disposition), 0);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  RegCloseKey(sub);
  EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, ""), ERROR_ACCESS_DENIED) << "a root is never deleted";
  RegCloseKey(key);
}

TEST(RegistryStore, AKeyDeletedByAnotherProcessIsDeletedHere) {
  tbx::testing::TempFolder temp;
  RegistryFolderScope scope(temp.path());
  HKEY key = CreateKey(HKEY_CURRENT_USER, "Software\\Shared");
  DWORD data = 5;
  ASSERT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data), 0);
  EXPECT_EQ(Wait(Spawn("delete:Software\\Shared", temp.path())), 0);
  EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data), ERROR_KEY_DELETED);
  RegCloseKey(key);
}

// --- Damaged files ----------------------------------------------------------

namespace {

// Every call on HKEY_CURRENT_USER answers ERROR_REGISTRY_CORRUPT and leaves
// the file as it was; the other roots go on working.
void ExpectReportedAndKept(const std::string& folder) {
  const std::string file = folder + "/user.db";
  const std::string before = ReadBytes(file);
  RegistryFolderScope scope(folder);
  HKEY key = nullptr;
  DWORD data = 1, size = sizeof data, count = 0;
  char name[16];
  EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key), ERROR_REGISTRY_CORRUPT);
  EXPECT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, "New", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            ERROR_REGISTRY_CORRUPT);
  EXPECT_EQ(RegSetValueExA(HKEY_CURRENT_USER, "v", 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), size),
            ERROR_REGISTRY_CORRUPT);
  EXPECT_EQ(RegQueryValueExA(HKEY_CURRENT_USER, "v", nullptr, nullptr, nullptr, &size), ERROR_REGISTRY_CORRUPT);
  EXPECT_EQ(RegEnumKeyA(HKEY_CURRENT_USER, 0, name, sizeof name), ERROR_REGISTRY_CORRUPT);
  EXPECT_EQ(RegQueryInfoKeyA(HKEY_CURRENT_USER, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr,
                             nullptr, nullptr, nullptr, nullptr),
            ERROR_REGISTRY_CORRUPT);
  EXPECT_EQ(RegDeleteKeyA(HKEY_CURRENT_USER, "Software"), ERROR_REGISTRY_CORRUPT);
  EXPECT_EQ(RegFlushKey(HKEY_CURRENT_USER), ERROR_REGISTRY_CORRUPT);
  EXPECT_TRUE(ReadBytes(file) == before) << "the damaged file is never rewritten";

  key = CreateKey(HKEY_LOCAL_MACHINE, "Software\\Fine");
  EXPECT_EQ(RegSetValueExA(key, "v", 0, REG_DWORD, reinterpret_cast<BYTE*>(&data), sizeof data), ERROR_SUCCESS);
  RegCloseKey(key);
}

}  // namespace

TEST(CorruptStore, FileThatIsNoDatabase) {
  tbx::testing::TempFolder temp;
  std::string garbage;
  for (int i = 0; i < 3000; ++i) garbage += "not a database " + std::to_string(i) + "\n";
  WriteBytes(temp.File("user.db"), garbage);
  ExpectReportedAndKept(temp.path());
}

TEST(CorruptStore, DatabaseWithDamagedPages) {
  tbx::testing::TempFolder source, damaged;
  {
    RegistryFolderScope scope(source.path());
    HKEY key = CreateKey(HKEY_CURRENT_USER, "Software\\Full");
    for (int i = 0; i < 200; ++i) {
      std::string name = "value" + std::to_string(i), data(100, 'd');
      ASSERT_EQ(RegSetValueExA(key, name.c_str(), 0, REG_BINARY, reinterpret_cast<const BYTE*>(data.data()), 100),
                0);
    }
    ASSERT_EQ(RegFlushKey(key), ERROR_SUCCESS);  // everything in user.db itself
    RegCloseKey(key);
  }
  std::string bytes = ReadBytes(source.File("user.db"));
  ASSERT_GT(bytes.size(), 8192u);
  for (std::size_t i = 4096; i < bytes.size(); i += 7) bytes[i] = '\x5A';  // every page after the first
  WriteBytes(damaged.File("user.db"), bytes);
  ExpectReportedAndKept(damaged.path());
}

TEST(CorruptStore, DatabaseOfSomethingElse) {
  tbx::testing::TempFolder temp;
  sqlite3* db = nullptr;
  ASSERT_EQ(sqlite3_open(temp.File("user.db").c_str(), &db), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(db, "CREATE TABLE notes(text); INSERT INTO notes VALUES('mine');", nullptr, nullptr,
                         nullptr),
            SQLITE_OK);
  sqlite3_close(db);
  ExpectReportedAndKept(temp.path());
}

// --- Several processes --------------------------------------------------------

TEST(RegistryStore, FourProcessesWriteAtOnce) {
  tbx::testing::TempFolder temp;
  int start[2];
  ASSERT_EQ(pipe2(start, O_CLOEXEC), 0);
  std::vector<pid_t> writers;
  for (int writer = 0; writer < 4; ++writer) {
    writers.push_back(Spawn("writer:" + std::to_string(writer), temp.path(), start[0]));
  }
  close(start[0]);
  close(start[1]);  // all start together
  for (pid_t pid : writers) EXPECT_EQ(Wait(pid), 0);

  RegistryFolderScope scope(temp.path());
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kMultiKey, 0, KEY_READ, &key), 0);
  DWORD count = 0;
  ASSERT_EQ(RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                             nullptr, nullptr),
            0);
  EXPECT_EQ(count, 4u * kValuesPerWriter);
  int wrong = 0;
  for (int writer = 0; writer < 4; ++writer) {
    for (int i = 0; i < kValuesPerWriter; ++i) {
      std::string name = "w" + std::to_string(writer) + "-" + std::to_string(i);
      DWORD data = 0, size = sizeof data;
      if (RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(&data), &size) != 0 ||
          data != static_cast<DWORD>(writer * 1000 + i)) {
        ++wrong;
      }
    }
  }
  EXPECT_EQ(wrong, 0);
  RegCloseKey(key);
  EXPECT_EQ(IntegrityCheck(temp.File("user.db")), "ok");
}

TEST(RegistryStore, KilledWriterLosesNothingItReportedStored) {
  tbx::testing::TempFolder temp;
  std::set<std::uint32_t> stored;
  std::uint32_t next = 0;
  for (int round = 0; round < 3; ++round) {
    int acks[2];
    ASSERT_EQ(pipe2(acks, O_CLOEXEC), 0);
    pid_t pid = Spawn("crash:" + std::to_string(next), temp.path(), -1, acks[1]);
    close(acks[1]);
    std::uint32_t i = 0;
    std::size_t seen = 0;
    while (seen < 100 && read(acks[0], &i, sizeof i) == sizeof i) {
      stored.insert(i);
      ++seen;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(700 * round));
    kill(pid, SIGKILL);
    EXPECT_EQ(Wait(pid), 128 + SIGKILL) << "the writer runs until it is killed";
    while (read(acks[0], &i, sizeof i) == sizeof i) stored.insert(i);
    close(acks[0]);
    ASSERT_GE(seen, 100u);
    next = *stored.rbegin() + 2;  // the value in flight may or may not be there

    RegistryFolderScope scope(temp.path());
    HKEY key = nullptr;
    ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kCrashKey, 0, KEY_READ, &key), ERROR_SUCCESS);
    int missing = 0;
    for (std::uint32_t value : stored) {
      std::string name = "c" + std::to_string(value), data(5000, '\0');
      DWORD size = static_cast<DWORD>(data.size());
      if (RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &size) != 0 ||
          data.substr(0, size) != CrashData(value)) {
        ++missing;
      }
    }
    EXPECT_EQ(missing, 0) << "round " << round;
    RegCloseKey(key);
    EXPECT_EQ(IntegrityCheck(temp.File("user.db")), "ok");
  }
}
