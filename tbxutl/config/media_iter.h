#pragma once
// WUTLMediaIter: the registered media volumes (content discs and the folders
// their content was copied to). Each item is a subkey, named by the item's
// full name, of GetMediaRootHKCU() (per user) or GetMediaRootHKLM() (machine
// wide), with the values "Type" (a bit set), "VolumeLabel" and "Path"; an
// item lacking one of them is ignored. The iterator reads both branches when
// it is built, keeping the items whose type shares a bit with the mask: the
// per-user items first, then the machine-wide ones that no per-user item of
// the same name (case included) shadows, each in enumeration order.
//
// Changes to the current item are written to the per-user branch, also for
// a machine-wide item, which a per-user copy then shadows.

#include <list>

#include "tbxutl/export.h"
#include "tbxutl/platform/afx/cstring.h"
#include "tbxutl/platform/windows.h"

class TBXUTL_API WUTLMediaIter {
 public:
  struct WUTLMediaItem {
    CString m_strFullName;
    CString m_strPath;
    CString m_strVolumeLabel;
    DWORD m_dwType = 0;
  };

  explicit WUTLMediaIter(DWORD typeMask = 7);
  WUTLMediaIter(const WUTLMediaIter&) = delete;
  WUTLMediaIter& operator=(const WUTLMediaIter&) = delete;
  virtual ~WUTLMediaIter();

  // Non-zero while there is a current item.
  int More();
  // Moves on to the next item (nothing without a current item).
  void Next();

  // 1 with the current item's field, 0 (and `out` unchanged) without one.
  int GetFullCDName(CString& out);
  int GetPath(CString& out);
  int GetVolumeLabel(CString& out);
  int GetMediaType(DWORD& out);

  // Replace a field of the current item and write the item to the per-user
  // branch: 1 when written, 0 without a current item or when a write failed.
  int SetPath(CString path);
  int SetVolumeLabelA(CString label);
  int SetMediaType(DWORD type);

  // Makes the first item with exactly this volume label current: 1, or 0
  // with the current item unchanged.
  int FindVolLabel(const char* label);

  static CString GetMediaRootHKCU();
  static CString GetMediaRootHKLM();

 private:
  using ItemList = std::list<WUTLMediaItem>;

  void ReadBranch(const CString& root, DWORD typeMask, bool skipListedNames);
  int HelperWriteItem(const WUTLMediaItem& item) const;

  ItemList m_list;
  ItemList::iterator m_pos;  // m_list.end(): no current item
};
