#pragma once
// CObject and run-time class records: class names, sizes and bases known at
// run time, kind tests, and creation of objects from their class record
// (the expression and unit classes are made from lists of such records).

#include "tbxutl/export.h"
#include "tbxutl/platform/windows.h"

class CObject;
class CArchive;
class CDumpContext;

struct TBXUTL_API CRuntimeClass {
  const char* m_lpszClassName;
  int m_nObjectSize;
  UINT m_wSchema;                  // 0xFFFF: not serialisable
  CObject* (*m_pfnCreateObject)();  // null: not dynamically creatable
  const CRuntimeClass* m_pBaseClass;

  // A new object of the class, or null when the class cannot be created
  // dynamically (or allocation failed).
  CObject* CreateObject() const;
  BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;
};

class TBXUTL_API CObject {
 public:
  // Virtual members in this order; derived classes extend the table.
  virtual const CRuntimeClass* GetRuntimeClass() const;
  virtual ~CObject();
  virtual void Serialize(CArchive& ar);
  virtual void AssertValid() const;
  virtual void Dump(CDumpContext& dc) const;

  BOOL IsKindOf(const CRuntimeClass* pClass) const;
  BOOL IsSerializable() const;

  static const CRuntimeClass classCObject;

  CObject(const CObject&) = delete;
  CObject& operator=(const CObject&) = delete;

 protected:
  CObject() = default;
};

#define RUNTIME_CLASS(class_name) (&class_name::class##class_name)

#define DECLARE_DYNAMIC(class_name)                       \
 public:                                                  \
  static const CRuntimeClass class##class_name;           \
  const CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name) \
  DECLARE_DYNAMIC(class_name)         \
  static CObject* CreateObject();

#define TBXUTL_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, pfnNew)        \
  const CRuntimeClass class_name::class##class_name = {                                    \
      #class_name, static_cast<int>(sizeof(class_name)), schema, pfnNew,                    \
      RUNTIME_CLASS(base_class_name)};                                                      \
  const CRuntimeClass* class_name::GetRuntimeClass() const { return RUNTIME_CLASS(class_name); }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name) \
  TBXUTL_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name)                         \
  CObject* class_name::CreateObject() { return new class_name; }                \
  TBXUTL_IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, class_name::CreateObject)
