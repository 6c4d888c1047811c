#pragma once
// The registry editor's text format ("REGEDIT4", or the header
// "Windows Registry Editor Version 5.00" in 8-bit text):
//
//   REGEDIT4
//
//   [HKEY_CURRENT_USER\Software\Tobix\App]
//   "Name"="text with \\ and \" escaped"
//   @="the key's default value"
//   "Count"=dword:0000002a
//   "Blob"=hex:0a,1b,\   (a "\" at the end continues the line)
//     2c
//   "Other"=hex(2):41,00        (type 2 = REG_EXPAND_SZ; any type number)
//   "Gone"=-                    (deletes the value)
//   [-HKEY_CURRENT_USER\Software\Old]   (deletes the key and its subkeys)
//
// Lines starting with ";" are comments; a line ending in "\" continues on
// the next one.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tbxcli {

struct RegFileValue {
  std::string name;  // "" is the default value
  bool remove = false;
  std::uint32_t type = 0;
  std::vector<std::uint8_t> data;
};

struct RegFileKey {
  std::string path;  // with its root name, e.g. "HKEY_CURRENT_USER\Software"
  bool remove = false;
  std::vector<RegFileValue> values;
};

struct RegFileParse {
  std::vector<RegFileKey> keys;
  std::string error;  // "line N: what is wrong"; empty when the text is good
};

RegFileParse ParseRegFile(const std::string& text);
std::string FormatRegFile(const std::vector<RegFileKey>& keys);

}  // namespace tbxcli
