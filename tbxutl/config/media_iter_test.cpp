#include "tbxutl/config/media_iter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tbxutl/config/registry.h"
#include "tbxutl/config/registry_testing.h"

namespace {

const CString kUser = WUTLMediaIter::GetMediaRootHKCU();
const CString kMachine = WUTLMediaIter::GetMediaRootHKLM();

// The media list lives at fixed keys: each test starts and ends without them.
class MediaIterTest : public ::testing::Test {
 protected:
  void SetUp() override { DeleteRoots(); }
  void TearDown() override { DeleteRoots(); }

  static void DeleteRoots() {
    WUTLRegistry::DeleteRegistryKey(kUser);
    WUTLRegistry::DeleteRegistryKey(kMachine);
    RegDeleteKeyA(HKEY_CURRENT_USER, "SOFTWARE\\Tobix");  // only when nothing else is left in them
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Tobix");
  }

  // Per user: A (1), B (4), C (8), E without a path; machine wide: A (2),
  // b (2, another name by case), D (2). Subkeys enumerate sorted, case-blind.
  static void AddItems() {
    const struct {
      const CString& root;
      const char *name, *label, *path;
      DWORD type;
    } items[] = {{kUser, "Disc A", "LABEL_A", "C:\\A", 1},      {kUser, "Disc B", "LABEL_B", "C:\\B", 4},
                 {kUser, "Disc C", "LABEL_C", "C:\\C", 8},      {kUser, "Disc E", "LABEL_E", nullptr, 1},
                 {kMachine, "Disc A", "MACHINE_A", "D:\\A", 2}, {kMachine, "disc b", "MACHINE_b", "D:\\b", 2},
                 {kMachine, "Disc D", "LABEL_D", "D:\\D", 2}};
    for (const auto& item : items) {
      WUTLRegistry key(item.root + "\\" + item.name, KEY_ALL_ACCESS, 1);
      ASSERT_EQ(key.SetValue("Type", item.type) + key.SetValue("VolumeLabel", item.label), ERROR_SUCCESS);
      if (item.path != nullptr) {
        ASSERT_EQ(key.SetValue("Path", item.path), ERROR_SUCCESS) << item.name;
      }
    }
  }

  // The items from the current one on, as "name|label|path|type".
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
};

TEST_F(MediaIterTest, WithoutTheRootKeysTheListIsEmpty) {
  WUTLMediaIter media;
  EXPECT_EQ(media.More(), 0);
  media.Next();
  CString text("kept");
  DWORD type = 99;
  EXPECT_EQ(media.GetFullCDName(text) + media.GetPath(text) + media.GetVolumeLabel(text) + media.GetMediaType(type),
            0);
  EXPECT_EQ(std::string(text) + std::to_string(type), "kept99");
  EXPECT_EQ(media.SetPath("X") + media.SetVolumeLabelA("X") + media.SetMediaType(1) + media.FindVolLabel("X"), 0);
  EXPECT_EQ(WUTLRegistry::IsValid(kUser), ERROR_FILE_NOT_FOUND);
}

TEST_F(MediaIterTest, ListsByTypeWithPerUserItemsShadowingMachineItems) {
  EXPECT_EQ(kUser, "HKEY_CURRENT_USER\\SOFTWARE\\Tobix\\Media");
  EXPECT_EQ(kMachine, "HKEY_LOCAL_MACHINE\\SOFTWARE\\Tobix\\Media");
  AddItems();
  const std::string a = "Disc A|LABEL_A|C:\\A|1", b = "Disc B|LABEL_B|C:\\B|4", c = "Disc C|LABEL_C|C:\\C|8",
                    d = "Disc D|LABEL_D|D:\\D|2", machineA = "Disc A|MACHINE_A|D:\\A|2",
                    machineB = "disc b|MACHINE_b|D:\\b|2";
  const struct {
    DWORD mask;
    std::vector<std::string> items;
  } cases[] = {
      {7, {a, b, machineB, d}},
      {0, {}},
      {8, {c}},
      {0xFFFFFFFF, {a, b, c, machineB, d}},
      {2, {machineA, machineB, d}},  // only a listed item shadows
  };
  for (const auto& test : cases) {
    WUTLMediaIter media(test.mask);
    EXPECT_EQ(Walk(media), test.items) << "mask " << test.mask;
  }
}

TEST_F(MediaIterTest, FindVolLabelMatchesExactlyOrLeavesThePosition) {
  AddItems();
  WUTLMediaIter media;
  EXPECT_EQ(media.FindVolLabel("LABEL_D"), 1);
  for (const char* label : {"label_a", "LABEL", "LABEL_C", ""}) EXPECT_EQ(media.FindVolLabel(label), 0) << label;
  EXPECT_EQ(Walk(media), std::vector<std::string>{"Disc D|LABEL_D|D:\\D|2"});
  // From the first item on, also after the walk went past the end.
  EXPECT_EQ(media.FindVolLabel("LABEL_B"), 1);
  EXPECT_EQ(Walk(media).size(), 3u);
}

TEST_F(MediaIterTest, ChangesAreWrittenPerUserAndShadowTheMachineItem) {
  AddItems();
  {
    WUTLMediaIter media;
    ASSERT_EQ(media.FindVolLabel("LABEL_D"), 1);
    EXPECT_EQ(media.SetPath("E:\\Copy"), 1);
    ASSERT_EQ(media.FindVolLabel("LABEL_B"), 1);
    EXPECT_EQ(media.SetMediaType(1) + media.SetVolumeLabelA("NEW_B"), 2);
    EXPECT_EQ(Walk(media).front(), "Disc B|NEW_B|C:\\B|1");
  }
  WUTLRegistry machine(kMachine + "\\Disc D", KEY_READ);
  CString path;
  EXPECT_EQ(machine.GetValue("Path", path), ERROR_SUCCESS);
  EXPECT_EQ(path, "D:\\D");
  WUTLMediaIter media;
  EXPECT_EQ(Walk(media), (std::vector<std::string>{"Disc A|LABEL_A|C:\\A|1", "Disc B|NEW_B|C:\\B|1",
                                                    "Disc D|LABEL_D|E:\\Copy|2", "disc b|MACHINE_b|D:\\b|2"}));
}

}  // namespace
