#include <gtest/gtest.h>

#include "base/error.h"
#include "model/workspace/workspace_parts.h"
#include "workspace/delivered_components.h"
#include "workspace/workspace.h"

namespace {

constexpr const char *no_digest = "00000000000000000000000000000000";
constexpr const char *standard_digest = "fbf64e8b689a7e27434603f2cbb84636";

struct EarlierLayout {
  const char *name;
  const char *first;
  const char *second;
};

constexpr EarlierLayout earlier_layouts[] = {
    {"bundled_grey_blocks.layout", "aa4e1af1ed60d7e3e8c5efa44377f207",
     "654c93ccc429308d49345b7ce8e3b992"},
    {"bundled_modern.layout", "a2e28f8bd698b869d9e47f1c59f7092d",
     "33afda9bcf867ddd84ad06d49f796460"},
    {"bundled_simple.layout", "a03d1a613373bc8f9765210b128ccdcf",
     "5daeefabb08e012aa358fb50fbf7687c"},
    {"bundled_white_blocks.layout", "6deb29cead8c3f577ca2f9eb4d7fe28d",
     "9f5172002cafc9e6a1ba3faff18f0234"},
};

// Opens a workspace with the layouts of a test. Each file starts with its digest.
class LayoutUpgrade : public testing::Test {
protected:
  LayoutUpgrade() {
    make_folder(workspace);
    for (const EarlierLayout &layout : earlier_layouts) {
      delivered[layout.name] = std::string(no_digest) + layout.name;
    }
    delivered["standard.layout"] = std::string(no_digest) + "standard";
  }

  // Returns the layouts after opening.
  Contents opened_with(const Contents &layouts) const {
    put(machine.install / "layouts", delivered);
    put(workspace + "/layouts", layouts);
    EXPECT_NE(v_workspace_open(), nullptr) << v_error_get();
    return contents_of(workspace + "/layouts");
  }

  PretendedMachine machine;
  std::string workspace = home_folder() + "/Vantorelle Workspace";
  Contents delivered;
};

TEST_F(LayoutUpgrade, EachEarlierVersionIsReplacedByTheDeliveredOne) {
  for (const EarlierLayout &layout : earlier_layouts) {
    for (const char *digest : {layout.first, layout.second}) {
      EXPECT_EQ(opened_with({{layout.name, digest}}),
                (Contents{{layout.name, delivered[layout.name]}}))
          << digest;
    }
    std::filesystem::remove_all(workspace + "/layouts");
  }
}

TEST_F(LayoutUpgrade, ADigestAppliesToItsOwnFileNameOnly) {
  for (const EarlierLayout &of_digest : earlier_layouts) {
    for (const char *digest : {of_digest.first, of_digest.second, standard_digest}) {
      Contents layouts;
      for (const EarlierLayout &layout : earlier_layouts) {
        if (digest == standard_digest || layout.name != of_digest.name) {
          layouts[layout.name] = digest;
        }
      }
      if (digest != standard_digest) {
        layouts["standard.layout"] = digest;
      }
      layouts["bundled_other.layout"] = digest;
      EXPECT_EQ(opened_with(layouts), layouts) << digest;
      std::filesystem::remove_all(workspace + "/layouts");
    }
  }
}

TEST_F(LayoutUpgrade, UpgradesAllLayoutsAtOnce) {
  Contents layouts;
  for (const EarlierLayout &layout : earlier_layouts) {
    layouts[layout.name] = layout.second;
  }
  layouts["standard.layout"] = standard_digest;
  layouts["own.layout"] = no_digest;
  Contents expected = delivered;
  expected["own.layout"] = no_digest;
  EXPECT_EQ(opened_with(layouts), expected);
}

TEST_F(LayoutUpgrade, TheOldStandardLayoutIsReplacedByAllMissingLayouts) {
  Contents expected = delivered;
  expected["bundled_modern.layout"] = "edited";
  EXPECT_EQ(
      opened_with({{"standard.layout", standard_digest}, {"bundled_modern.layout", "edited"}}),
      expected);
}

TEST_F(LayoutUpgrade, TheOldStandardLayoutIsRemovedEvenIfNoneIsDelivered) {
  delivered.erase("standard.layout");
  EXPECT_EQ(opened_with({{"standard.layout", standard_digest}}), delivered);
}

TEST_F(LayoutUpgrade, AnEditedStandardLayoutIsKeptAndNothingIsAdded) {
  const Contents edited = {{"standard.layout", no_digest}};
  EXPECT_EQ(opened_with(edited), edited);
}

TEST_F(LayoutUpgrade, WithoutAStandardLayoutNothingIsAdded) {
  EXPECT_EQ(opened_with({}), Contents());
}

TEST_F(LayoutUpgrade, ADeliveredEarlierVersionIsUpgradedStepByStep) {
  const EarlierLayout &modern = earlier_layouts[1];
  delivered[modern.name] = modern.second;
  EXPECT_EQ(opened_with({{modern.name, modern.first}}), (Contents{{modern.name, modern.second}}));
}

TEST_F(LayoutUpgrade, FailuresAreSilent) {
  const Contents layouts = {{"standard.layout", standard_digest},
                            {"bundled_modern.layout", earlier_layouts[1].first}};
  put(workspace + "/layouts", layouts);
  fake_platform.install_folder.reset();
  EXPECT_NE(v_workspace_open(), nullptr);
  EXPECT_EQ(contents_of(workspace + "/layouts"),
            (Contents{{"bundled_modern.layout", earlier_layouts[1].first}}));
}

} // namespace
