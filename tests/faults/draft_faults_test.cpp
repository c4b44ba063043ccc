// When any system call fails while a codeset is saved through its draft, the old file, the new one
// or the draft is whole, and the save fails only where it would fail without drafts.

#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "faults/injector.h"
#include "faults/promises.h"
#include "support/values/remarks.h"
#include "workspace/drafts.h"

namespace {

constexpr const char *file_name = "workspace/codesets/a.codeset";

const Call calls[] = {Call::open,   Call::fopen,  Call::read,    Call::fread,   Call::write,
                      Call::fwrite, Call::fflush, Call::close,   Call::fclose,  Call::unlink,
                      Call::mkdir,  Call::stat,   Call::opendir, Call::readdir, Call::closedir};

// Larger than a single write.
OwnedCodeset codeset_of_version(const char *version) {
  OwnedCodeset codeset = v_codeset_new();
  codeset->name = langstr_of({{"sv", "Namn"}});
  codeset->version = copy_text(version);
  for (int i = 0; i < 400; i++) {
    v_remark_list_add_remark_last(codeset->remarks.get(),
                                  remark_of(std::to_string(i), {{"sv", std::string(300, 'x')}}));
  }
  return codeset;
}

// "" for a codeset that is missing or incomplete.
std::string version_of(const OwnedCodeset &codeset) {
  return codeset && remarks_of(codeset->remarks).size() == 400 ? codeset->version.get() : "";
}

class DraftFaults : public testing::TestWithParam<Call> {
protected:
  DraftFaults() {
    std::filesystem::create_directories(on_ground("workspace/codesets"));
    EXPECT_TRUE(v_codeset_io_write_to_file(codeset_of_version("1").get(), file.c_str()));
  }
  ~DraftFaults() override {
    std::filesystem::remove_all(on_ground("workspace"));
    std::filesystem::remove_all(on_ground("home"));
  }

  const std::string file = on_ground(file_name);
};

TEST_P(DraftFaults, KeepOneWholeCopyOfTheWork) {
  const OwnedCodeset drafted = codeset_of_version("2");
  const OwnedCodeset saved = codeset_of_version("3");
  int injected_faults = 0;
  for (bool is_struck = true; is_struck && !HasFailure();) {
    std::filesystem::remove_all(on_ground("home"));
    ASSERT_TRUE(v_codeset_io_write_to_file(codeset_of_version("1").get(), file.c_str()));
    const int descriptors = count_open_descriptors();
    injector::start(ground_folder(), {{GetParam()}, injected_faults + 1, EIO});
    OwnedDraft draft = v_draft_open(file.c_str());
    v_draft_write(draft.get(), drafted.get());
    const bool is_saved = v_draft_save_codeset(draft.get(), saved.get());
    draft.reset();
    const Report report = injector::stop();
    is_struck = report.hit.has_value();
    injected_faults += is_struck;
    SCOPED_TRACE(std::string(name_of(GetParam())) + " number " + std::to_string(injected_faults) +
                 (is_struck ? " fails: " + report.hit->path : " is not reached"));

    EXPECT_EQ(count_open_descriptors(), descriptors);
    EXPECT_THAT(report.left_open, testing::IsEmpty());
    const OwnedDraft left = v_draft_open(file.c_str());
    const std::string in_draft = version_of(left->left_behind);
    const std::string in_file = version_of(v_codeset_io_read_from_file(file.c_str()));
    if (is_saved) {
      EXPECT_EQ(in_file, "3");
      EXPECT_THAT(in_draft, testing::AnyOf("", "2", "3"));
    } else {
      EXPECT_THAT(report.hit->path, testing::Eq(file_name)) << v_error_get();
      EXPECT_EQ(in_draft, "3");
    }
    EXPECT_TRUE(is_struck || in_draft.empty());
  }
  RecordProperty("injected_faults", injected_faults);
}

INSTANTIATE_TEST_SUITE_P(Calls, DraftFaults, testing::ValuesIn(calls),
                         [](const auto &call) { return std::string(name_of(call.param)); });

} // namespace
