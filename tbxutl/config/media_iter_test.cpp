#include "tbxutl/config/media_iter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tbxutl/config/registry.h"
#include "tbxutl/config/registry_testing.h"

namespace {

// The media list lives at fixed keys: each test starts and ends without them.
class MediaIterTest : public ::testing::Test {
 protected:
  void SetUp() override { DeleteRoots(); }
  void TearDown() override { DeleteRoots(); }

  static void DeleteRoots() {
    WUTLRegistry::DeleteRegistryKey(WUTLMediaIter::GetMediaRootHKCU());
    WUTLRegistry::DeleteRegistryKey(WUTLMediaIter::GetMediaRootHKLM());
    // The keys above go only when nothing else is left in them.
    RegDeleteKeyA(HKEY_CURRENT_USER, "SOFTWARE\\Tobix");
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Tobix");
  }

  // An item key; a null label or path leaves that value out.
  static void AddItem(const CString& root, const char* name, DWORD type, const char* label, const char* path) {
    WUTLRegistry key(root + "\\" + name, KEY_ALL_ACCESS, 1);
    ASSERT_EQ(key.SetValue("Type", type), ERROR_SUCCESS);
    if (label != nullptr) {
      ASSERT_EQ(key.SetValue("VolumeLabel", label), ERROR_SUCCESS);
    }
    if (path != nullptr) {
      ASSERT_EQ(key.SetValue("Path", path), ERROR_SUCCESS);
    }
  }

  // Every item of an iterator from its current one on, as
  // "name|label|path|type".
  static std::vector<std::string> Walk(WUTLMediaIter& media) {
    std::vector<std::string> items;
    for (; media.More(); media.Next()) {
      CString name, label, path;
      DWORD type = 0;
      EXPECT_EQ(media.GetFullCDName(name) + media.GetVolumeLabel(label) + media.GetPath(path) +
                    media.GetMediaType(type),
                4);
      items.push_back(std::string(name) + "|" + label.GetString() + "|" + path.GetString() + "|" +
                      std::to_string(type));
    }
    return items;
  }

  // Per user: A (1), B (4), C (8), an item without a path; machine wide:
  // A again (2), b (2, another name by case), D (2). Created in the order
  // in which subkeys enumerate (sorted, case-blind).
  static void AddSampleItems() {
    const CString user = WUTLMediaIter::GetMediaRootHKCU();
    const CString machine = WUTLMediaIter::GetMediaRootHKLM();
    AddItem(user, "Disc A", 1, "LABEL_A", "C:\\Media\\A");
    AddItem(user, "Disc B", 4, "LABEL_B", "C:\\Media\\B");
    AddItem(user, "Disc C", 8, "LABEL_C", "C:\\Media\\C");
    AddItem(user, "Disc E", 1, "LABEL_E", nullptr);
    AddItem(machine, "Disc A", 2, "MACHINE_A", "D:\\A");
    AddItem(machine, "disc b", 2, "MACHINE_b", "D:\\b");
    AddItem(machine, "Disc D", 2, "LABEL_D", "D:\\D");
  }
};

TEST_F(MediaIterTest, WithoutTheRootKeysTheListIsEmpty) {
  WUTLMediaIter media;
  EXPECT_EQ(media.More(), 0);
  media.Next();
  CString text("kept");
  DWORD type = 99;
  EXPECT_EQ(media.GetFullCDName(text) + media.GetPath(text) + media.GetVolumeLabel(text) + media.GetMediaType(type),
            0);
  EXPECT_EQ(text, "kept");
  EXPECT_EQ(type, 99u);
  EXPECT_EQ(media.SetPath("X") + media.SetVolumeLabelA("X") + media.SetMediaType(1) + media.FindVolLabel("X"), 0);
  EXPECT_EQ(WUTLRegistry::IsValid(WUTLMediaIter::GetMediaRootHKCU()), ERROR_FILE_NOT_FOUND);
}

TEST_F(MediaIterTest, ListsByTypeWithPerUserItemsShadowingMachineItems) {
  EXPECT_EQ(WUTLMediaIter::GetMediaRootHKCU(), "HKEY_CURRENT_USER\\SOFTWARE\\Tobix\\Media");
  EXPECT_EQ(WUTLMediaIter::GetMediaRootHKLM(), "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tobix\\Media");
  AddSampleItems();
  const std::string a = "Disc A|LABEL_A|C:\\Media\\A|1", b = "Disc B|LABEL_B|C:\\Media\\B|4",
                    c = "Disc C|LABEL_C|C:\\Media\\C|8", d = "Disc D|LABEL_D|D:\\D|2",
                    machineA = "Disc A|MACHINE_A|D:\\A|2", machineB = "disc b|MACHINE_b|D:\\b|2";
  const struct {
    DWORD mask;
    std::vector<std::string> items;
  } cases[] = {
      {7, {a, b, machineB, d}},
      {0, {}},
      {8, {c}},
      {0xFFFFFFFF, {a, b, c, machineB, d}},
      // Only a listed item shadows: the per-user A is not of this type.
      {2, {machineA, machineB, d}},
  };
  for (const auto& test : cases) {
    WUTLMediaIter media(test.mask);
    EXPECT_EQ(Walk(media), test.items) << "mask " << test.mask;
  }
}

TEST_F(MediaIterTest, FindVolLabelMatchesExactlyOrLeavesThePosition) {
  AddSampleItems();
  WUTLMediaIter media;
  media.Next();
  EXPECT_EQ(media.FindVolLabel("LABEL_D"), 1);
  CString name;
  EXPECT_EQ(media.GetFullCDName(name), 1);
  EXPECT_EQ(name, "Disc D");
  for (const char* label : {"label_a", "LABEL", "LABEL_C", ""}) {
    EXPECT_EQ(media.FindVolLabel(label), 0) << label;
    EXPECT_EQ(media.GetFullCDName(name), 1);
    EXPECT_EQ(name, "Disc D") << label;
  }
  // It searches from the first item, also after the walk went past it.
  EXPECT_EQ(media.FindVolLabel("LABEL_A"), 1);
  EXPECT_EQ(Walk(media).size(), 4u);
  EXPECT_EQ(media.FindVolLabel("LABEL_B"), 1);
  EXPECT_EQ(media.More(), 1);
}

TEST_F(MediaIterTest, ChangesAreWrittenPerUserAndShadowTheMachineItem) {
  AddSampleItems();
  {
    WUTLMediaIter media;
    ASSERT_EQ(media.FindVolLabel("LABEL_D"), 1);
    EXPECT_EQ(media.SetPath("E:\\Copy"), 1);
    CString path;
    EXPECT_EQ(media.GetPath(path), 1);
    EXPECT_EQ(path, "E:\\Copy");
    ASSERT_EQ(media.FindVolLabel("LABEL_B"), 1);
    EXPECT_EQ(media.SetMediaType(1), 1);
    EXPECT_EQ(media.SetVolumeLabelA("NEW_B"), 1);
  }
  WUTLRegistry user(WUTLMediaIter::GetMediaRootHKCU() + "\\Disc D", KEY_READ);
  DWORD type = 0;
  CString label;
  EXPECT_EQ(user.GetValue("Type", type), ERROR_SUCCESS);
  EXPECT_EQ(type, 2u);
  EXPECT_EQ(user.GetValue("VolumeLabel", label), ERROR_SUCCESS);
  EXPECT_EQ(label, "LABEL_D");
  WUTLRegistry machine(WUTLMediaIter::GetMediaRootHKLM() + "\\Disc D", KEY_READ);
  EXPECT_EQ(machine.GetValue("Path", label), ERROR_SUCCESS);
  EXPECT_EQ(label, "D:\\D");

  WUTLMediaIter media;
  EXPECT_EQ(Walk(media), (std::vector<std::string>{"Disc A|LABEL_A|C:\\Media\\A|1", "Disc B|NEW_B|C:\\Media\\B|1",
                                                    "Disc D|LABEL_D|E:\\Copy|2", "disc b|MACHINE_b|D:\\b|2"}));
}

}  // namespace
