#include "tbxutl/config/media_iter.h"

#include <utility>

#include "tbxutl/config/registry.h"

namespace {

constexpr char kMediaKey[] = "\\SOFTWARE\\Tobix\\Media";
constexpr char kType[] = "Type";
constexpr char kVolumeLabel[] = "VolumeLabel";
constexpr char kPath[] = "Path";

}  // namespace

WUTLMediaIter::WUTLMediaIter(DWORD typeMask) {
  ReadBranch(GetMediaRootHKCU(), typeMask, false);
  ReadBranch(GetMediaRootHKLM(), typeMask, true);
  m_pos = m_list.begin();
}

WUTLMediaIter::~WUTLMediaIter() = default;

CString WUTLMediaIter::GetMediaRootHKCU() { return CString("HKEY_CURRENT_USER") + kMediaKey; }

CString WUTLMediaIter::GetMediaRootHKLM() { return CString("HKEY_LOCAL_MACHINE") + kMediaKey; }

void WUTLMediaIter::ReadBranch(const CString& root, DWORD typeMask, bool skipListedNames) {
  WUTLRegistry branch;
  if (branch.OpenKey(root, 0, KEY_READ) != ERROR_SUCCESS) return;
  const CString prefix = root + "\\";
  CString name;
  for (DWORD index = 0; branch.GetNextSubkey(name, index) == ERROR_SUCCESS; ++index) {
    if (skipListedNames) {
      bool listed = false;
      for (const WUTLMediaItem& item : m_list) listed = listed || item.m_strFullName.Compare(name) == 0;
      if (listed) continue;
    }
    WUTLRegistry key;
    if (key.OpenKey(prefix + name, 0, KEY_READ) != ERROR_SUCCESS) continue;
    WUTLMediaItem item;
    item.m_strFullName = name;
    if (key.GetValue(kType, item.m_dwType) == ERROR_SUCCESS &&
        key.GetValue(kVolumeLabel, item.m_strVolumeLabel) == ERROR_SUCCESS &&
        key.GetValue(kPath, item.m_strPath) == ERROR_SUCCESS && (item.m_dwType & typeMask) != 0) {
      m_list.push_back(std::move(item));
    }
  }
}

int WUTLMediaIter::More() { return m_pos != m_list.end() ? 1 : 0; }

void WUTLMediaIter::Next() {
  if (m_pos != m_list.end()) ++m_pos;
}

int WUTLMediaIter::GetFullCDName(CString& out) {
  if (m_pos == m_list.end()) return 0;
  out = m_pos->m_strFullName;
  return 1;
}

int WUTLMediaIter::GetPath(CString& out) {
  if (m_pos == m_list.end()) return 0;
  out = m_pos->m_strPath;
  return 1;
}

int WUTLMediaIter::GetVolumeLabel(CString& out) {
  if (m_pos == m_list.end()) return 0;
  out = m_pos->m_strVolumeLabel;
  return 1;
}

int WUTLMediaIter::GetMediaType(DWORD& out) {
  if (m_pos == m_list.end()) return 0;
  out = m_pos->m_dwType;
  return 1;
}

int WUTLMediaIter::SetPath(CString path) {
  if (m_pos == m_list.end()) return 0;
  m_pos->m_strPath = std::move(path);
  return HelperWriteItem(*m_pos);
}

int WUTLMediaIter::SetVolumeLabelA(CString label) {
  if (m_pos == m_list.end()) return 0;
  m_pos->m_strVolumeLabel = std::move(label);
  return HelperWriteItem(*m_pos);
}

int WUTLMediaIter::SetMediaType(DWORD type) {
  if (m_pos == m_list.end()) return 0;
  m_pos->m_dwType = type;
  return HelperWriteItem(*m_pos);
}

int WUTLMediaIter::FindVolLabel(const char* label) {
  for (auto it = m_list.begin(); it != m_list.end(); ++it) {
    if (it->m_strVolumeLabel.Compare(label) == 0) {
      m_pos = it;
      return 1;
    }
  }
  return 0;
}

int WUTLMediaIter::HelperWriteItem(const WUTLMediaItem& item) const {
  WUTLRegistry key;
  if (key.OpenKey(GetMediaRootHKCU() + "\\" + item.m_strFullName, 1, KEY_ALL_ACCESS) != ERROR_SUCCESS) return 0;
  const bool written = key.SetValue(kType, item.m_dwType) == ERROR_SUCCESS &&
                       key.SetValue(kVolumeLabel, item.m_strVolumeLabel) == ERROR_SUCCESS &&
                       key.SetValue(kPath, item.m_strPath) == ERROR_SUCCESS;
  return written ? 1 : 0;
}
