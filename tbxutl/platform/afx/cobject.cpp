#include "tbxutl/platform/afx/cobject.h"

#include <new>

const CRuntimeClass CObject::classCObject = {"CObject", static_cast<int>(sizeof(CObject)), 0xFFFF,
                                             nullptr, nullptr};

CObject* CRuntimeClass::CreateObject() const {
  if (m_pfnCreateObject == nullptr) return nullptr;
  try {
    return m_pfnCreateObject();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const {
  for (const CRuntimeClass* c = this; c != nullptr; c = c->m_pBaseClass) {
    if (c == pBaseClass) return TRUE;
  }
  return FALSE;
}

const CRuntimeClass* CObject::GetRuntimeClass() const { return &classCObject; }

CObject::~CObject() = default;

void CObject::Serialize(CArchive&) {}

void CObject::AssertValid() const {}

void CObject::Dump(CDumpContext&) const {}

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const {
  return GetRuntimeClass()->IsDerivedFrom(pClass);
}

BOOL CObject::IsSerializable() const { return GetRuntimeClass()->m_wSchema != 0xFFFF; }
