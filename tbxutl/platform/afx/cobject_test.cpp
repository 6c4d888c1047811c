#include <gtest/gtest.h>

#include <memory>

#include "tbxutl/platform/afx/cobject.h"

namespace {

class Animal : public CObject {
  DECLARE_DYNAMIC(Animal)
 public:
  int legs = 0;
};
IMPLEMENT_DYNAMIC(Animal, CObject)

class Dog : public Animal {
  DECLARE_DYNCREATE(Dog)
 public:
  Dog() { legs = 4; }
};
IMPLEMENT_DYNCREATE(Dog, Animal)

class Puppy : public Dog {
  DECLARE_DYNCREATE(Puppy)
 public:
  Puppy() { legs = 4; weeks = 8; }
  int weeks = 0;
};
IMPLEMENT_DYNCREATE(Puppy, Dog)

}  // namespace

TEST(RuntimeClass, RecordsNameSizeAndBase) {
  const CRuntimeClass* puppy = RUNTIME_CLASS(Puppy);
  EXPECT_STREQ(puppy->m_lpszClassName, "Puppy");
  EXPECT_EQ(puppy->m_nObjectSize, static_cast<int>(sizeof(Puppy)));
  EXPECT_EQ(puppy->m_pBaseClass, RUNTIME_CLASS(Dog));
  EXPECT_EQ(RUNTIME_CLASS(Dog)->m_pBaseClass, RUNTIME_CLASS(Animal));
  EXPECT_EQ(RUNTIME_CLASS(Animal)->m_pBaseClass, RUNTIME_CLASS(CObject));
  EXPECT_EQ(RUNTIME_CLASS(CObject)->m_pBaseClass, nullptr);
}

TEST(RuntimeClass, KindTestsAcrossThreeLevels) {
  Puppy puppy;
  EXPECT_TRUE(puppy.IsKindOf(RUNTIME_CLASS(Puppy)));
  EXPECT_TRUE(puppy.IsKindOf(RUNTIME_CLASS(Dog)));
  EXPECT_TRUE(puppy.IsKindOf(RUNTIME_CLASS(Animal)));
  EXPECT_TRUE(puppy.IsKindOf(RUNTIME_CLASS(CObject)));

  Dog dog;
  EXPECT_FALSE(dog.IsKindOf(RUNTIME_CLASS(Puppy)));
  EXPECT_TRUE(RUNTIME_CLASS(Puppy)->IsDerivedFrom(RUNTIME_CLASS(Animal)));
  EXPECT_FALSE(RUNTIME_CLASS(Animal)->IsDerivedFrom(RUNTIME_CLASS(Puppy)));
  EXPECT_FALSE(puppy.IsSerializable());
}

TEST(RuntimeClass, CreatesObjectsFromTheirRecords) {
  // A list of class records, as the expression parser keeps its prototypes.
  const CRuntimeClass* classes[] = {RUNTIME_CLASS(Dog), RUNTIME_CLASS(Puppy)};
  int expectedLegs[] = {4, 4};
  for (int i = 0; i < 2; ++i) {
    std::unique_ptr<CObject> object(classes[i]->CreateObject());
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->GetRuntimeClass(), classes[i]);
    ASSERT_TRUE(object->IsKindOf(RUNTIME_CLASS(Animal)));
    EXPECT_EQ(static_cast<Animal*>(object.get())->legs, expectedLegs[i]);
  }
  // Only dynamically creatable classes can be made.
  EXPECT_EQ(RUNTIME_CLASS(Animal)->CreateObject(), nullptr);
  EXPECT_EQ(RUNTIME_CLASS(CObject)->CreateObject(), nullptr);
}
