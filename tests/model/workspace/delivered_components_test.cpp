#include "workspace/delivered_components.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/error.h"
#include "base/file_utils.h"
#include "model/workspace/workspace_parts.h"
#include "support/child_process.h"

namespace {

using testing::StartsWith;

class DeliveredComponents : public testing::Test {
protected:
  DeliveredComponents() { v_error_set("of an earlier failure"); }

  bool install(const char *sub_folder) const {
    return install_bundled_components(machine.folder.path(), sub_folder);
  }
  Contents contents() const { return contents_of(machine.folder.path()); }

  PretendedMachine machine;
};

TEST_F(DeliveredComponents, AllFilesAreCopiedIntoANewFolder) {
  machine.deliver({{"codesets/a.codeset", "A"},
                   {"codesets/\xC3\xA5 %s.codeset", ""},
                   {"codesets/large", std::string(10'000, 'x')},
                   {"codesets/.hidden", "H"},
                   {"layouts/b.layout", "B"}});
  EXPECT_TRUE(install("codesets")) << v_error_get();
  EXPECT_EQ(contents(), (Contents{{"codesets/", ""},
                                  {"codesets/a.codeset", "A"},
                                  {"codesets/\xC3\xA5 %s.codeset", ""},
                                  {"codesets/large", std::string(10'000, 'x')},
                                  {"codesets/.hidden", "H"}}));
  EXPECT_EQ(std::filesystem::status(machine.folder / "codesets").permissions(),
            std::filesystem::perms::owner_all);
}

TEST_F(DeliveredComponents, ExistingFilesAreKept) {
  machine.deliver({{"codesets/a", "delivered"}, {"codesets/b", "B"}, {"codesets/c", "C"}});
  put(machine.folder.path(),
      {{"codesets/a", "the user's"}, {"codesets/c/", ""}, {"codesets/own", "x"}});
  EXPECT_TRUE(install("codesets"));
  EXPECT_EQ(contents(), (Contents{{"codesets/", ""},
                                  {"codesets/a", "the user's"},
                                  {"codesets/b", "B"},
                                  {"codesets/c/", ""},
                                  {"codesets/own", "x"}}));
}

TEST_F(DeliveredComponents, OnlyRegularFilesAreDelivered) {
  machine.deliver({{"codesets/a", "A"}, {"codesets/folder/inside", "x"}});
  ASSERT_EQ(mkfifo((machine.install / "codesets/pipe").c_str(), 0700), 0);
  std::filesystem::create_symlink("nowhere", machine.install / "codesets/dangling");
  std::filesystem::create_symlink("a", machine.install / "codesets/link");
  EXPECT_TRUE(install("codesets"));
  EXPECT_EQ(contents(), (Contents{{"codesets/", ""}, {"codesets/a", "A"}, {"codesets/link", "A"}}));
  EXPECT_FALSE(std::filesystem::is_symlink(machine.folder / "codesets/link"));
}

TEST_F(DeliveredComponents, NothingIsInstalledIfNothingIsDelivered) {
  EXPECT_TRUE(install("codesets"));
  EXPECT_EQ(contents(), Contents());
}

TEST_F(DeliveredComponents, AnEmptyDeliveryMakesAnEmptyFolder) {
  machine.deliver({{"codesets/", ""}});
  EXPECT_TRUE(install("codesets"));
  EXPECT_EQ(contents(), (Contents{{"codesets/", ""}}));
}

TEST_F(DeliveredComponents, AMissingInstallFolderIsAFailure) {
  fake_platform.install_folder.reset();
  EXPECT_FALSE(install("codesets"));
  EXPECT_STREQ(v_error_get(), "Error getting exe path from system.");
  EXPECT_EQ(contents(), Contents());
}

TEST_F(DeliveredComponents, ADeliveryThatIsNoFolderIsAFailure) {
  machine.deliver({{"codesets", "a file"}});
  EXPECT_FALSE(install("codesets"));
  EXPECT_STREQ(v_error_get(), "Cannot open folder.\n\nError 20: Not a directory");
  EXPECT_EQ(contents(), Contents());
}

TEST_F(DeliveredComponents, AWorkspaceThatIsMissingOrAFileIsAFailure) {
  machine.deliver({{"codesets/a", "A"}});
  EXPECT_FALSE(install_bundled_components((machine.folder / "missing").c_str(), "codesets"));
  EXPECT_STREQ(v_error_get(), "Cannot create folder.\n\nError 2: No such file or directory");
  write_file(machine.folder / "file", "");
  EXPECT_FALSE(install_bundled_components((machine.folder / "file").c_str(), "codesets"));
  EXPECT_STREQ(v_error_get(), "Cannot get file status.\n\nError 20: Not a directory");
}

TEST_F(DeliveredComponents, ATargetThatIsAFileIsAFailure) {
  machine.deliver({{"codesets/a", "A"}});
  put(machine.folder.path(), {{"codesets", "the user's"}});
  EXPECT_FALSE(install("codesets"));
  EXPECT_EQ(contents(), (Contents{{"codesets", "the user's"}}));
}

TEST_F(DeliveredComponents, AFailureRemovesTheNewFolder) {
  machine.deliver({{"codesets/a", "A"}, {"codesets/z", "Z"}});
  machine.deliver_unreadable("codesets/m");
  EXPECT_FALSE(install("codesets"));
  EXPECT_STREQ(v_error_get(), "File read error.");
  EXPECT_EQ(contents(), Contents());
}

TEST_F(DeliveredComponents, AFailureKeepsAnExistingFolder) {
  machine.deliver({{"codesets/a", "A"}, {"codesets/z", "Z"}});
  machine.deliver_unreadable("codesets/m");
  put(machine.folder.path(), {{"codesets/own", "x"}});
  EXPECT_FALSE(install("codesets"));
  Contents left = contents();
  EXPECT_EQ(left["codesets/own"], "x");
  // Each copy is complete or missing.
  EXPECT_FALSE(left.contains("codesets/m"));
  EXPECT_TRUE(!left.contains("codesets/a") || left["codesets/a"] == "A");
  EXPECT_TRUE(!left.contains("codesets/z") || left["codesets/z"] == "Z");
}

TEST_F(DeliveredComponents, ANameThatIsNotUtf8IsAFailure) {
  machine.deliver({{"codesets/a", "A"}, {"codesets/\xFF", "x"}});
  EXPECT_FALSE(install("codesets"));
  EXPECT_THAT(v_error_get(), StartsWith("Could not convert filename to unicode.\n\n"));
  EXPECT_EQ(contents(), Contents());
}

TEST_F(DeliveredComponents, AFullDiskLeavesNothing) {
  machine.deliver({{"codesets/a", std::string(10'000, 'x')}});
  for (const unsigned long limit : {0UL, 100UL, 4096UL, 9999UL}) {
    EXPECT_EQ(with_file_size_limit(
                  limit, [&] { return install("codesets") ? "installed" : v_error_get(); }),
              "File write error.");
    EXPECT_EQ(contents(), Contents()) << limit;
  }
}

TEST_F(DeliveredComponents, DeletingKeepsTheReportOfExhaustedMemory) {
  v_error_set_out_of_memory();
  delete_components_folder(machine.folder.path(), "missing");
  EXPECT_STREQ(v_error_get(), "The program has run out of memory.");
  EXPECT_TRUE(v_error_did_run_out_of_memory());
}

TEST_F(DeliveredComponents, DeletingAFolderRemovesItsFiles) {
  put(machine.folder.path(), {{"codesets/a", "A"}, {"codesets/.b", "B"}, {"layouts/c", "C"}});
  std::filesystem::create_symlink(machine.folder / "layouts/c", machine.folder / "codesets/link");
  delete_components_folder(machine.folder.path(), "codesets");
  EXPECT_EQ(contents(), (Contents{{"layouts/", ""}, {"layouts/c", "C"}}));
  delete_components_folder(machine.folder.path(), "codesets");
  delete_components_folder(machine.folder.path(), "templates");
  EXPECT_EQ(contents(), (Contents{{"layouts/", ""}, {"layouts/c", "C"}}));
}

TEST_F(DeliveredComponents, DeletingAFolderKeepsItsSubFolders) {
  put(machine.folder.path(), {{"codesets/a", "A"}, {"codesets/deep/b", "B"}});
  delete_components_folder(machine.folder.path(), "codesets");
  EXPECT_EQ(contents(),
            (Contents{{"codesets/", ""}, {"codesets/deep/", ""}, {"codesets/deep/b", "B"}}));
}

class ComponentUpgrade : public DeliveredComponents {
protected:
  ComponentUpgrade() {
    machine.deliver({{"layouts/x.layout", "delivered"}});
    put(machine.folder.path(), {{"layouts/x.layout", "old"}});
  }

  std::string upgraded(const char *digest) const {
    upgrade_component_if_needed((machine.folder / "layouts").c_str(), "x.layout", digest);
    return read_file(machine.folder / "layouts/x.layout");
  }
};

// The digests of "old" and of "new".
constexpr const char *digest_of_old = "149603e6c03516362a8da23f624db945";
constexpr const char *digest_of_new = "22af645d1859cb5ca6da0c484f1f37ea";

TEST_F(ComponentUpgrade, AFileWithTheOldDigestIsReplaced) {
  EXPECT_EQ(upgraded(digest_of_old), "delivered");
}

TEST_F(ComponentUpgrade, AnyOtherFileIsKept) {
  EXPECT_EQ(upgraded(digest_of_new), "old");
  EXPECT_EQ(upgraded("149603E6C03516362A8DA23F624DB945"), "old");
  EXPECT_EQ(upgraded(""), "old");
}

TEST_F(ComponentUpgrade, WithoutADeliveredFileTheOldOneIsKept) {
  std::filesystem::remove(machine.install / "layouts/x.layout");
  EXPECT_EQ(upgraded(digest_of_old), "old");
  std::filesystem::create_directory(machine.install / "layouts/x.layout");
  EXPECT_EQ(upgraded(digest_of_old), "old");
  fake_platform.install_folder.reset();
  EXPECT_EQ(upgraded(digest_of_old), "old");
}

TEST_F(ComponentUpgrade, AMissingFileIsNotInstalled) {
  std::filesystem::remove(machine.folder / "layouts/x.layout");
  upgrade_component_if_needed((machine.folder / "layouts").c_str(), "x.layout", digest_of_old);
  upgrade_component_if_needed((machine.folder / "none").c_str(), "x.layout", digest_of_old);
  EXPECT_EQ(contents(), (Contents{{"layouts/", ""}}));
}

} // namespace
