#include "cli/reg_file.h"

#include <cstdio>
#include <sstream>

namespace tbxcli {
namespace {

constexpr std::uint32_t kRegSz = 1;
constexpr std::uint32_t kRegBinary = 3;
constexpr std::uint32_t kRegDword = 4;

std::string Trim(const std::string& s) {
  std::size_t a = s.find_first_not_of(" \t\r");
  if (a == std::string::npos) return {};
  std::size_t b = s.find_last_not_of(" \t\r");
  return s.substr(a, b - a + 1);
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// A quoted string at text[pos] (pos on the opening quote); pos ends after
// the closing quote.
std::optional<std::string> QuotedString(const std::string& text, std::size_t& pos) {
  std::string out;
  for (++pos; pos < text.size(); ++pos) {
    char c = text[pos];
    if (c == '"') {
      ++pos;
      return out;
    }
    if (c == '\\' && pos + 1 < text.size()) c = text[++pos];
    out += c;
  }
  return std::nullopt;
}

std::optional<std::vector<std::uint8_t>> HexBytes(const std::string& list) {
  std::vector<std::uint8_t> bytes;
  std::string item;
  std::istringstream in(list);
  while (std::getline(in, item, ',')) {
    item = Trim(item);
    if (item.empty() && in.eof() && bytes.empty()) break;  // "hex:" with no bytes
    if (item.size() != 2 || HexDigit(item[0]) < 0 || HexDigit(item[1]) < 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(HexDigit(item[0]) * 16 + HexDigit(item[1])));
  }
  return bytes;
}

// The data after "=": a string, dword:, hex: or hex(N):, or "-".
std::optional<std::string> ParseData(const std::string& data, RegFileValue& value) {
  if (data == "-") {
    value.remove = true;
    return std::nullopt;
  }
  if (!data.empty() && data[0] == '"') {
    std::size_t pos = 0;
    std::optional<std::string> text = QuotedString(data, pos);
    if (!text || Trim(data.substr(pos)) != "") return "a string value must be one quoted text";
    value.type = kRegSz;
    value.data.assign(text->begin(), text->end());
    value.data.push_back(0);
    return std::nullopt;
  }
  if (data.rfind("dword:", 0) == 0) {
    std::string digits = data.substr(6);
    if (digits.empty() || digits.size() > 8) return "dword: takes 1 to 8 hexadecimal digits";
    std::uint32_t number = 0;
    for (char c : digits) {
      if (HexDigit(c) < 0) return "dword: takes 1 to 8 hexadecimal digits";
      number = number * 16 + static_cast<std::uint32_t>(HexDigit(c));
    }
    value.type = kRegDword;
    for (int i = 0; i < 4; ++i) value.data.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
    return std::nullopt;
  }
  if (data.rfind("hex", 0) == 0) {
    std::size_t colon = data.find(':');
    if (colon == std::string::npos) return "hex data needs a colon";
    std::string kind = data.substr(3, colon - 3);
    value.type = kRegBinary;
    if (!kind.empty()) {
      if (kind.size() < 3 || kind.front() != '(' || kind.back() != ')') return "hex(N): needs a type number";
      std::string number = kind.substr(1, kind.size() - 2);
      if (number.empty() || number.size() > 8) return "hex(N): needs a hexadecimal type number";
      value.type = 0;
      for (char c : number) {
        if (HexDigit(c) < 0) return "hex(N): needs a hexadecimal type number";
        value.type = value.type * 16 + static_cast<std::uint32_t>(HexDigit(c));
      }
    }
    std::optional<std::vector<std::uint8_t>> bytes = HexBytes(data.substr(colon + 1));
    if (!bytes) return "hex data must be two-digit bytes separated by commas";
    value.data = std::move(*bytes);
    return std::nullopt;
  }
  return "unknown kind of value data";
}

// Joins continued lines; each logical line keeps the number of its first.
std::vector<std::pair<int, std::string>> LogicalLines(const std::string& text) {
  std::vector<std::pair<int, std::string>> lines;
  std::istringstream in(text);
  std::string raw;
  int number = 0;
  bool continuing = false;
  while (std::getline(in, raw)) {
    ++number;
    std::string line = continuing ? Trim(raw) : raw;
    if (!line.empty() && line.back() == '\r') line.pop_back();
    bool continues = !line.empty() && line.back() == '\\' && line.find("=hex") != std::string::npos;
    if (continuing) {
      bool more = !line.empty() && line.back() == '\\';
      if (more) line.pop_back();
      lines.back().second += line;
      continuing = more;
      continue;
    }
    if (continues) line.pop_back();
    lines.emplace_back(number, line);
    continuing = continues;
  }
  return lines;
}

std::string EscapeQuoted(const std::string& text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '\\' || c == '"') out += '\\';
    out += c;
  }
  return out + "\"";
}

}  // namespace

RegFileParse ParseRegFile(const std::string& text) {
  RegFileParse result;
  auto fail = [&result](int line, const std::string& what) {
    result.keys.clear();
    result.error = "line " + std::to_string(line) + ": " + what;
    return result;
  };
  bool seenHeader = false;
  for (const auto& [number, raw] : LogicalLines(text)) {
    std::string line = Trim(raw);
    if (!seenHeader) {
      if (line.empty()) continue;
      if (line != "REGEDIT4" && line != "Windows Registry Editor Version 5.00") {
        return fail(number, "not a registry file (the first line must be REGEDIT4)");
      }
      seenHeader = true;
      continue;
    }
    if (line.empty() || line[0] == ';') continue;
    if (line[0] == '[') {
      if (line.back() != ']') return fail(number, "a key line must end with ]");
      RegFileKey key;
      key.path = line.substr(1, line.size() - 2);
      if (!key.path.empty() && key.path[0] == '-') {
        key.remove = true;
        key.path.erase(0, 1);
      }
      if (key.path.empty()) return fail(number, "empty key name");
      result.keys.push_back(std::move(key));
      continue;
    }
    if (result.keys.empty()) return fail(number, "a value before the first key");
    if (result.keys.back().remove) return fail(number, "a value under a key that is deleted");
    RegFileValue value;
    std::size_t pos = 0;
    if (line[0] == '@') {
      pos = 1;
    } else if (line[0] == '"') {
      std::optional<std::string> name = QuotedString(line, pos);
      if (!name) return fail(number, "a value name without its closing quote");
      value.name = *name;
      if (value.name.empty()) return fail(number, "an empty value name (use @ for the default value)");
    } else {
      return fail(number, "expected [key], \"name\"=data or @=data");
    }
    while (pos < line.size() && (line[pos] == ' ' || line[pos] == '\t')) ++pos;
    if (pos >= line.size() || line[pos] != '=') return fail(number, "expected = after the value name");
    if (std::optional<std::string> error = ParseData(Trim(line.substr(pos + 1)), value)) {
      return fail(number, *error);
    }
    result.keys.back().values.push_back(std::move(value));
  }
  if (!seenHeader) return fail(1, "not a registry file (the first line must be REGEDIT4)");
  return result;
}

std::string FormatRegFile(const std::vector<RegFileKey>& keys) {
  std::string out = "REGEDIT4\n";
  for (const RegFileKey& key : keys) {
    out += "\n[" + std::string(key.remove ? "-" : "") + key.path + "]\n";
    for (const RegFileValue& value : key.values) {
      out += value.name.empty() ? "@" : EscapeQuoted(value.name);
      out += '=';
      if (value.remove) {
        out += "-\n";
        continue;
      }
      bool terminated = !value.data.empty() && value.data.back() == 0;
      bool printable = terminated;
      for (std::size_t i = 0; printable && i + 1 < value.data.size(); ++i) printable = value.data[i] != 0;
      if (value.type == kRegSz && printable) {
        out += EscapeQuoted(std::string(value.data.begin(), value.data.end() - 1));
      } else if (value.type == kRegDword && value.data.size() == 4) {
        char digits[16];
        std::snprintf(digits, sizeof digits, "dword:%02x%02x%02x%02x", value.data[3], value.data[2],
                      value.data[1], value.data[0]);
        out += digits;
      } else {
        char head[32];
        if (value.type == kRegBinary) {
          std::snprintf(head, sizeof head, "hex:");
        } else {
          std::snprintf(head, sizeof head, "hex(%x):", static_cast<unsigned>(value.type));
        }
        out += head;
        for (std::size_t i = 0; i < value.data.size(); ++i) {
          char byte[4];
          std::snprintf(byte, sizeof byte, "%02x", value.data[i]);
          if (i > 0) out += ',';
          out += byte;
        }
      }
      out += '\n';
    }
  }
  return out;
}

}  // namespace tbxcli
