#include "cli/reg_command.h"

#include <cstdint>
#include <fstream>
#include <iterator>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "cli/reg_file.h"
#include "tbxutl/platform/windows.h"

namespace tbxcli {
namespace {

struct Root {
  const char* name;
  const char* shortName;
  HKEY key;
};

const Root kRoots[] = {
    {"HKEY_CLASSES_ROOT", "HKCR", HKEY_CLASSES_ROOT},     {"HKEY_CURRENT_USER", "HKCU", HKEY_CURRENT_USER},
    {"HKEY_LOCAL_MACHINE", "HKLM", HKEY_LOCAL_MACHINE},   {"HKEY_USERS", "HKU", HKEY_USERS},
    {"HKEY_CURRENT_CONFIG", "HKCC", HKEY_CURRENT_CONFIG},
};

struct KeyPath {
  const Root* root;
  std::string subKey;  // without leading or trailing backslashes
  std::string Full() const { return subKey.empty() ? root->name : std::string(root->name) + "\\" + subKey; }
};

bool SameText(const std::string& a, const char* b) {
  std::size_t n = 0;
  for (; b[n] != '\0'; ++n) {
    if (n >= a.size() || std::toupper(static_cast<unsigned char>(a[n])) != std::toupper(static_cast<unsigned char>(b[n]))) {
      return false;
    }
  }
  return n == a.size();
}

std::optional<KeyPath> ParseKeyPath(std::string path) {
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  std::size_t slash = path.find('\\');
  std::string rootName = path.substr(0, slash);
  std::string rest = slash == std::string::npos ? "" : path.substr(slash + 1);
  while (!rest.empty() && rest.back() == '\\') rest.pop_back();
  for (const Root& root : kRoots) {
    if (SameText(rootName, root.name) || SameText(rootName, root.shortName)) return KeyPath{&root, rest};
  }
  return std::nullopt;
}

const char* TypeName(DWORD type) {
  switch (type) {
    case REG_NONE: return "REG_NONE";
    case REG_SZ: return "REG_SZ";
    case REG_EXPAND_SZ: return "REG_EXPAND_SZ";
    case REG_BINARY: return "REG_BINARY";
    case REG_DWORD: return "REG_DWORD";
    case REG_MULTI_SZ: return "REG_MULTI_SZ";
    case REG_QWORD: return "REG_QWORD";
    default: return "REG_UNKNOWN";
  }
}

std::optional<DWORD> TypeFromName(const std::string& name) {
  for (DWORD type : {REG_NONE, REG_SZ, REG_EXPAND_SZ, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD}) {
    if (SameText(name, TypeName(type))) return type;
  }
  return std::nullopt;
}

// One line on standard error; answers the failure status.
int Failure(Streams io, const std::string& message) {
  io.err << "tbxutl: reg: " << message << "\n";
  return kExitFailure;
}

std::string StatusText(LONG status) {
  char text[32];
  std::snprintf(text, sizeof text, "error %ld", static_cast<long>(status));
  return text;
}

// The failure of opening path: a missing key, or the status.
int KeyFailure(Streams io, const KeyPath& path, LONG status) {
  return Failure(io, status == ERROR_FILE_NOT_FOUND ? "no such key: " + path.Full()
                                                    : path.Full() + ": " + StatusText(status));
}

// Owns an open key.
class Key {
 public:
  Key() = default;
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  ~Key() {
    if (m_key != nullptr) RegCloseKey(m_key);
  }
  HKEY* Out() { return &m_key; }
  HKEY get() const { return m_key; }

 private:
  HKEY m_key = nullptr;
};

struct Value {
  std::string name;
  DWORD type = REG_NONE;
  std::vector<std::uint8_t> data;
};

std::vector<Value> ReadValues(HKEY key) {
  std::vector<Value> values;
  DWORD count = 0, maxName = 0, maxData = 0;
  if (RegQueryInfoKeyA(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &count, &maxName, &maxData,
                       nullptr, nullptr) != ERROR_SUCCESS) {
    return values;
  }
  for (DWORD i = 0; i < count; ++i) {
    std::vector<char> name(maxName + 2);
    std::vector<std::uint8_t> data(maxData + 1);
    DWORD nameSize = static_cast<DWORD>(name.size()), dataSize = static_cast<DWORD>(data.size()), type = 0;
    if (RegEnumValueA(key, i, name.data(), &nameSize, nullptr, &type, data.data(), &dataSize) != ERROR_SUCCESS) break;
    data.resize(dataSize);
    values.push_back({std::string(name.data(), nameSize), type, std::move(data)});
  }
  return values;
}

std::vector<std::string> ReadSubkeys(HKEY key) {
  std::vector<std::string> names;
  for (DWORD i = 0;; ++i) {
    char name[256];
    DWORD size = sizeof name;
    if (RegEnumKeyExA(key, i, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    names.emplace_back(name, size);
  }
  return names;
}

std::string FormatData(const Value& value) {
  std::ostringstream out;
  switch (value.type) {
    case REG_SZ:
    case REG_EXPAND_SZ: {
      std::string text(value.data.begin(), value.data.end());
      return text.substr(0, text.find('\0'));
    }
    case REG_MULTI_SZ: {
      std::string text(value.data.begin(), value.data.end());
      while (!text.empty() && text.back() == '\0') text.pop_back();
      std::string shown;
      for (char c : text) shown += c == '\0' ? std::string("\\0") : std::string(1, c);
      return shown;
    }
    case REG_DWORD:
    case REG_QWORD: {
      std::uint64_t number = 0;
      for (std::size_t i = value.data.size(); i-- > 0;) number = number << 8 | value.data[i];
      out << "0x" << std::hex << number;
      return out.str();
    }
    default:
      for (std::uint8_t byte : value.data) {
        static const char kDigits[] = "0123456789ABCDEF";
        out << kDigits[byte >> 4] << kDigits[byte & 15];
      }
      return out.str();
  }
}

void PrintValue(std::ostream& out, const Value& value) {
  out << "    " << (value.name.empty() ? "(Default)" : value.name) << "    " << TypeName(value.type) << "    "
      << FormatData(value) << "\n";
}

// Data for "add /d" in the form of its type.
std::optional<std::vector<std::uint8_t>> DataFromText(DWORD type, const std::string& text, std::string& error) {
  std::vector<std::uint8_t> data;
  switch (type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
      data.assign(text.begin(), text.end());
      data.push_back(0);
      return data;
    case REG_MULTI_SZ: {
      std::string joined;
      for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == '0') {
          joined += '\0';
          ++i;
        } else {
          joined += text[i];
        }
      }
      data.assign(joined.begin(), joined.end());
      data.push_back(0);
      data.push_back(0);
      return data;
    }
    case REG_DWORD:
    case REG_QWORD: {
      std::size_t used = 0;
      unsigned long long number = 0;
      try {
        number = std::stoull(text, &used, 0);
      } catch (...) {
        used = 0;
      }
      bool fits = type == REG_QWORD || number <= 0xFFFFFFFFull;
      if (used == 0 || used != text.size() || text[0] == '-' || !fits) {
        error = "'" + text + "' is not a number for " + TypeName(type);
        return std::nullopt;
      }
      for (int i = 0; i < (type == REG_DWORD ? 4 : 8); ++i) data.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
      return data;
    }
    case REG_BINARY:
    case REG_NONE:
      if (text.size() % 2 != 0) {
        error = "binary data needs pairs of hexadecimal digits";
        return std::nullopt;
      }
      for (std::size_t i = 0; i < text.size(); i += 2) {
        std::size_t used = 0;
        int byte = -1;
        try {
          byte = std::stoi(text.substr(i, 2), &used, 16);
        } catch (...) {
        }
        if (byte < 0 || used != 2) {
          error = "binary data needs pairs of hexadecimal digits";
          return std::nullopt;
        }
        data.push_back(static_cast<std::uint8_t>(byte));
      }
      return data;
    default:
      error = "unsupported type";
      return std::nullopt;
  }
}

// Deletes a key and everything below it; a missing key is no error.
LONG DeleteTree(HKEY root, const std::string& subKey) {
  Key key;
  LONG status = RegOpenKeyExA(root, subKey.c_str(), 0, KEY_READ | KEY_WRITE, key.Out());
  if (status == ERROR_FILE_NOT_FOUND) return ERROR_SUCCESS;
  if (status != ERROR_SUCCESS) return status;
  for (const std::string& child : ReadSubkeys(key.get())) {
    status = DeleteTree(root, subKey + "\\" + child);
    if (status != ERROR_SUCCESS) return status;
  }
  return RegDeleteKeyA(root, subKey.c_str());
}

struct Options {
  std::vector<std::string> positional;
  std::optional<std::string> valueName;  // /v NAME, or "" for /ve
  std::optional<std::string> type;
  std::optional<std::string> data;
};

// Reads "/v NAME", "/ve", "/t TYPE", "/d DATA" and "/f" (accepted, as
// nothing here asks for confirmation); the error is the usage message.
std::optional<Options> ReadOptions(Args args, std::string& error) {
  Options options;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto next = [&](const char* what) -> std::optional<std::string> {
      if (i + 1 >= args.size()) {
        error = a + " needs " + what;
        return std::nullopt;
      }
      return args[++i];
    };
    if (SameText(a, "/v")) {
      if (!(options.valueName = next("a value name"))) return std::nullopt;
    } else if (SameText(a, "/ve")) {
      options.valueName = "";
    } else if (SameText(a, "/t")) {
      if (!(options.type = next("a type"))) return std::nullopt;
    } else if (SameText(a, "/d")) {
      if (!(options.data = next("data"))) return std::nullopt;
    } else if (SameText(a, "/f")) {
    } else if (!a.empty() && a[0] == '/' && a.size() <= 3) {
      error = "unknown option '" + a + "'";
      return std::nullopt;
    } else {
      options.positional.push_back(a);
    }
  }
  return options;
}

int Query(const KeyPath& path, const Options& options, Streams io) {
  Key key;
  LONG status = RegOpenKeyExA(path.root->key, path.subKey.c_str(), 0, KEY_READ, key.Out());
  if (status != ERROR_SUCCESS) {
    return KeyFailure(io, path, status);
  }
  io.out << "\n" << path.Full() << "\n";
  std::vector<Value> values = ReadValues(key.get());
  if (options.valueName) {
    for (const Value& value : values) {
      if (SameText(value.name, options.valueName->c_str())) {
        PrintValue(io.out, value);
        return kExitOk;
      }
    }
    return Failure(io, "no such value: " + (options.valueName->empty() ? std::string("(Default)") : *options.valueName));
  }
  for (const Value& value : values) PrintValue(io.out, value);
  std::vector<std::string> subkeys = ReadSubkeys(key.get());
  if (!subkeys.empty()) io.out << "\n";
  for (const std::string& name : subkeys) io.out << path.Full() << "\\" << name << "\n";
  return kExitOk;
}

int Add(const KeyPath& path, const Options& options, Streams io) {
  DWORD type = REG_SZ;
  if (options.type) {
    std::optional<DWORD> named = TypeFromName(*options.type);
    if (!named) {
      return Failure(io, "unknown type '" + *options.type + "'");
    }
    type = *named;
  }
  std::string error;
  std::optional<std::vector<std::uint8_t>> data;
  if (options.valueName) {
    data = DataFromText(type, options.data.value_or(type == REG_DWORD || type == REG_QWORD ? "0" : ""), error);
    if (!data) {
      return Failure(io, error);
    }
  }
  Key key;
  LONG status = RegCreateKeyExA(path.root->key, path.subKey.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.Out(),
                                nullptr);
  if (status == ERROR_SUCCESS && options.valueName) {
    status = RegSetValueExA(key.get(), options.valueName->c_str(), 0, type, data->data(),
                            static_cast<DWORD>(data->size()));
  }
  if (status != ERROR_SUCCESS) {
    return Failure(io, path.Full() + ": " + StatusText(status));
  }
  io.out << "The operation completed successfully.\n";
  return kExitOk;
}

int Delete(const KeyPath& path, const Options& options, Streams io) {
  LONG status;
  if (options.valueName) {
    Key key;
    status = RegOpenKeyExA(path.root->key, path.subKey.c_str(), 0, KEY_SET_VALUE, key.Out());
    if (status == ERROR_SUCCESS) status = RegDeleteValueA(key.get(), options.valueName->c_str());
  } else if (path.subKey.empty()) {
    return Failure(io, "a root key cannot be deleted");
  } else {
    Key probe;
    status = RegOpenKeyExA(path.root->key, path.subKey.c_str(), 0, KEY_READ, probe.Out());
    if (status == ERROR_SUCCESS) status = DeleteTree(path.root->key, path.subKey);
  }
  if (status != ERROR_SUCCESS) {
    return Failure(io, status == ERROR_FILE_NOT_FOUND ? "no such key or value" : path.Full() + ": " + StatusText(status));
  }
  io.out << "The operation completed successfully.\n";
  return kExitOk;
}

void CollectTree(HKEY root, const KeyPath& path, std::vector<RegFileKey>& out) {
  Key key;
  if (RegOpenKeyExA(root, path.subKey.c_str(), 0, KEY_READ, key.Out()) != ERROR_SUCCESS) return;
  RegFileKey entry;
  entry.path = path.Full();
  for (Value& value : ReadValues(key.get())) {
    entry.values.push_back({value.name, false, value.type, std::move(value.data)});
  }
  out.push_back(std::move(entry));
  for (const std::string& child : ReadSubkeys(key.get())) {
    CollectTree(root, KeyPath{path.root, path.subKey.empty() ? child : path.subKey + "\\" + child}, out);
  }
}

int Export(const KeyPath& path, const std::string& file, Streams io) {
  Key probe;
  LONG status = RegOpenKeyExA(path.root->key, path.subKey.c_str(), 0, KEY_READ, probe.Out());
  if (status != ERROR_SUCCESS) {
    return KeyFailure(io, path, status);
  }
  std::vector<RegFileKey> keys;
  CollectTree(path.root->key, path, keys);
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out << FormatRegFile(keys);
  if (!out.flush()) {
    return Failure(io, "cannot write " + file);
  }
  io.out << "The operation completed successfully.\n";
  return kExitOk;
}

int Import(const std::string& file, Streams io) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    return Failure(io, "cannot read " + file);
  }
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  RegFileParse parsed = ParseRegFile(text);
  if (!parsed.error.empty()) {
    return Failure(io, file + ": " + parsed.error);
  }
  // Every key must name a known root before anything changes.
  std::vector<KeyPath> paths;
  for (const RegFileKey& key : parsed.keys) {
    std::optional<KeyPath> path = ParseKeyPath(key.path);
    if (!path || path->subKey.empty()) {
      return Failure(io, file + ": not a key below a known root: " + key.path);
    }
    paths.push_back(*path);
  }
  for (std::size_t i = 0; i < parsed.keys.size(); ++i) {
    const RegFileKey& entry = parsed.keys[i];
    const KeyPath& path = paths[i];
    LONG status = ERROR_SUCCESS;
    if (entry.remove) {
      status = DeleteTree(path.root->key, path.subKey);
    } else {
      Key key;
      status = RegCreateKeyExA(path.root->key, path.subKey.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, key.Out(),
                               nullptr);
      for (std::size_t v = 0; status == ERROR_SUCCESS && v < entry.values.size(); ++v) {
        const RegFileValue& value = entry.values[v];
        if (value.remove) {
          status = RegDeleteValueA(key.get(), value.name.c_str());
          if (status == ERROR_FILE_NOT_FOUND) status = ERROR_SUCCESS;
        } else {
          status = RegSetValueExA(key.get(), value.name.c_str(), 0, value.type, value.data.data(),
                                  static_cast<DWORD>(value.data.size()));
        }
      }
    }
    if (status != ERROR_SUCCESS) {
      return Failure(io, path.Full() + ": " + StatusText(status));
    }
  }
  io.out << "The operation completed successfully.\n";
  return kExitOk;
}

}  // namespace

int RunReg(Args args, Streams io) {
  if (args.empty()) return UsageError(io, "reg", "missing operation");
  const std::string& operation = args[0];
  std::string error;
  std::optional<Options> options = ReadOptions(args.subspan(1), error);
  if (!options) return UsageError(io, "reg", error);
  const std::vector<std::string>& positional = options->positional;

  if (SameText(operation, "import")) {
    if (positional.size() != 1) return UsageError(io, "reg", "import takes one FILE");
    return Import(positional[0], io);
  }
  bool isExport = SameText(operation, "export");
  if (positional.size() != (isExport ? 2u : 1u)) {
    return UsageError(io, "reg", operation + (isExport ? " takes KEY and FILE" : " takes one KEY"));
  }
  std::optional<KeyPath> path = ParseKeyPath(positional[0]);
  if (!path) {
    return Failure(io, "unknown root key in '" + positional[0] + "'");
  }
  if (SameText(operation, "query")) return Query(*path, *options, io);
  if (SameText(operation, "add")) return Add(*path, *options, io);
  if (SameText(operation, "delete")) return Delete(*path, *options, io);
  if (isExport) return Export(*path, positional[1], io);
  return UsageError(io, "reg", "unknown operation '" + operation + "'");
}

}  // namespace tbxcli
