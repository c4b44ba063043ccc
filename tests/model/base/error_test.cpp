#include "base/error.h"

#include <cerrno>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <zip.h>

#include "support/memory.h"

namespace {

constexpr const char *out_of_memory = "The program has run out of memory.";
constexpr const char *informative_out_of_memory =
    "The program has run out of memory.\n\n"
    "Suggestion: Consider increasing memory by adding more RAM to the computer or by\n"
    "increasing the amount of virtual memory on your system.\n\n"
    "Alternatively, it could be that you have too many things open/running on your\n"
    "computer simultaneously.";
constexpr const char *internal_graphics_error =
    "An internal error in the graphics subsystem occurred.";

class Error : public testing::Test {
protected:
  void SetUp() override { v_error_clear(); }
  void TearDown() override { v_error_clear(); }
};

TEST_F(Error, NoMessageReadsAsAnEmptyText) {
  ASSERT_NE(v_error_get(), nullptr);
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_FALSE(v_error_did_run_out_of_memory());
}

TEST_F(Error, SettingReplacesTheMessageWithACopy) {
  std::string text = "first";
  v_error_set(text.c_str());
  text = "other";
  EXPECT_STREQ(v_error_get(), "first");
  v_error_set("second");
  EXPECT_STREQ(v_error_get(), "second");
}

TEST_F(Error, TheCurrentMessageCanBeSetAndAppendedToItself) {
  v_error_set("message");
  v_error_set(v_error_get());
  EXPECT_STREQ(v_error_get(), "message");
  v_error_append(v_error_get());
  EXPECT_STREQ(v_error_get(), "message\n\nmessage");
  v_error_append_utf8_printf("<%s>", v_error_get());
  EXPECT_STREQ(v_error_get(), "<message\n\nmessage>\n\nmessage\n\nmessage");
}

TEST_F(Error, PercentSignsInPlainTextsAreKept) {
  v_error_set("100 %s of %n <b>&amp; \xC3\xA5");
  EXPECT_STREQ(v_error_get(), "100 %s of %n <b>&amp; \xC3\xA5");
  v_error_append("50 %d");
  EXPECT_STREQ(v_error_get(), "50 %d\n\n100 %s of %n <b>&amp; \xC3\xA5");
  v_error_append_utf8_printf("Name: %s", "a%sb");
  EXPECT_STREQ(v_error_get(), "Name: a%sb\n\n50 %d\n\n100 %s of %n <b>&amp; \xC3\xA5");
}

TEST_F(Error, FormattedSettingReplacesTheMessage) {
  v_error_set("old");
  v_error_set_utf8_printf("%s has %d%%", "\xC3\xA5", 7);
  EXPECT_STREQ(v_error_get(), "\xC3\xA5 has 7%");
}

TEST_F(Error, AppendingPutsTheNewSentenceInFront) {
  v_error_append("B");
  EXPECT_STREQ(v_error_get(), "B");
  v_error_set("A");
  v_error_append("B");
  EXPECT_STREQ(v_error_get(), "B\n\nA");
  v_error_append("C");
  EXPECT_STREQ(v_error_get(), "C\n\nB\n\nA");
}

TEST_F(Error, FormattedAppendingAlsoPutsTheNewSentenceInFront) {
  v_error_append_utf8_printf("%d", 1);
  EXPECT_STREQ(v_error_get(), "1");
  v_error_append_utf8_printf("%s-%d", "x", 2);
  EXPECT_STREQ(v_error_get(), "x-2\n\n1");
}

void append_through_list(const char *format, ...) G_GNUC_PRINTF(1, 2);
void append_through_list(const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  v_error_append_utf8_vprintf(format, arguments);
  va_end(arguments);
}

TEST_F(Error, AppendingFromAnArgumentListAlsoPutsTheNewSentenceInFront) {
  append_through_list("%s", "first");
  EXPECT_STREQ(v_error_get(), "first");
  append_through_list("%s %d", "second", 2);
  EXPECT_STREQ(v_error_get(), "second 2\n\nfirst");
}

TEST_F(Error, AppendingToAnEmptyMessageStillSeparates) {
  v_error_set("");
  v_error_append("B");
  EXPECT_STREQ(v_error_get(), "B\n\n");
}

TEST_F(Error, ClearRemovesTheMessageAndTheFlag) {
  v_error_set_out_of_memory();
  v_error_clear();
  EXPECT_STREQ(v_error_get(), "");
  EXPECT_FALSE(v_error_did_run_out_of_memory());
}

TEST_F(Error, AKeeperPutsMessageAndFlagBack) {
  void (*const states[])() = {
      v_error_clear,
      [] { v_error_set("message"); },
      v_error_set_out_of_memory,
      [] {
        v_error_set_out_of_memory();
        v_error_append("Context.");
      },
  };
  void (*const clean_ups[])() = {
      [] {},
      v_error_clear,
      [] { v_error_set("The clean-up failed."); },
      v_error_set_out_of_memory,
  };
  for (const auto set_state : states) {
    for (const auto clean_up : clean_ups) {
      v_error_clear();
      set_state();
      const std::string message = v_error_get();
      const bool did_run_out_of_memory = v_error_did_run_out_of_memory();
      {
        const VErrorKeeper keeper;
        EXPECT_EQ(v_error_get(), message);
        clean_up();
      }
      EXPECT_EQ(v_error_get(), message);
      EXPECT_EQ(v_error_did_run_out_of_memory(), did_run_out_of_memory);
    }
  }
}

TEST_F(Error, TheKeeperRestoresAStateWithoutAMessage) {
  {
    const VErrorKeeper keeper;
    v_error_set("The clean-up failed.");
  }
  v_error_append("Sentence.");
  EXPECT_STREQ(v_error_get(), "Sentence.");
}

TEST_F(Error, ACopyIsRestoredLater) {
  v_error_set_out_of_memory();
  VErrorCopy copy = v_error_copy();
  EXPECT_STREQ(v_error_get(), out_of_memory);
  v_error_set("other");
  v_error_restore(std::move(copy));
  EXPECT_STREQ(v_error_get(), out_of_memory);
  EXPECT_TRUE(v_error_make_more_informative_if_out_of_memory());
}

TEST_F(Error, FixedMessagesHaveTheirTextAndFlag) {
  const struct {
    void (*set)();
    const char *message;
    bool out_of_memory;
  } rows[] = {
      {v_error_set_file_io_reading, "File I/O error when reading file.", false},
      {v_error_set_file_io_reading_broken_file,
       "File I/O error when reading file: The file is broken.", false},
      {v_error_set_file_io_writing, "File I/O error when writing to file.", false},
      {v_error_set_not_enough_diskspace, "There is not enough disk space on this computer.", false},
      {v_error_set_out_of_memory, out_of_memory, true},
      {v_error_set_informative_out_of_memory, informative_out_of_memory, true},
      {v_error_set_unknown, "An unknown program error has occured.", false},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.message);
    // Each message sets the flag, whatever it was before.
    for (const auto prepare : {v_error_set_out_of_memory, v_error_set_file_io_reading}) {
      prepare();
      row.set();
      EXPECT_STREQ(v_error_get(), row.message);
      EXPECT_EQ(v_error_did_run_out_of_memory(), row.out_of_memory);
    }
  }
}

TEST_F(Error, UnknownMessageCanBeReplacedByTheProgram) {
  const char *const original = v_error_message_unknown;
  v_error_message_unknown = "Something 100 %s unknown.";
  v_error_set_unknown();
  v_error_message_unknown = original;
  EXPECT_STREQ(v_error_get(), "Something 100 %s unknown.");
}

TEST_F(Error, SettingResetsTheFlagAndAppendingKeepsIt) {
  const auto set_from_gerror = [] {
    v_error_set_from_gerror_and_free(g_error_new_literal(1, 2, "x"));
  };
  void (*const sets[])() = {
      [] { v_error_set("x"); },
      [] { v_error_set_utf8_printf("%s", "x"); },
      v_error_set_unknown,
      v_error_set_from_errno,
      +set_from_gerror,
      [] { v_error_set_from_zip_error_code(ZIP_ER_NOENT); },
      [] { v_error_set_from_cairo_status(10); },
  };
  for (const auto set : sets) {
    v_error_set_out_of_memory();
    v_error_append("Context.");
    EXPECT_TRUE(v_error_did_run_out_of_memory());
    v_error_append_utf8_printf("More %s.", "context");
    EXPECT_TRUE(v_error_did_run_out_of_memory());
    set();
    EXPECT_FALSE(v_error_did_run_out_of_memory());
    v_error_append("Context.");
    EXPECT_FALSE(v_error_did_run_out_of_memory());
  }
}

TEST_F(Error, ErrnoBecomesItsNumberAndText) {
  for (const int number : {ENOENT, EACCES, ENOSPC, 0, 99999}) {
    errno = number;
    v_error_set_from_errno();
    const std::string expected = "Error " + std::to_string(number) + ": " + g_strerror(number);
    EXPECT_EQ(v_error_get(), expected);
  }
  errno = ENOENT;
  v_error_set_from_errno();
  EXPECT_STREQ(v_error_get(), "Error 2: No such file or directory");
}

TEST_F(Error, ErrnoIsReadBeforeTheOldMessageIsFreed) {
  v_error_set("old");
  errno = EACCES;
  v_error_set_from_errno();
  EXPECT_STREQ(v_error_get(), "Error 13: Permission denied");
}

TEST_F(Error, GErrorBecomesItsCodeAndMessage) {
  v_error_set_from_gerror_and_free(
      g_error_new_literal(g_quark_from_string("q"), 42, "100 %s \xC3\xA5"));
  EXPECT_STREQ(v_error_get(), "GError 42: 100 %s \xC3\xA5");
  v_error_set_from_gerror_and_free(g_error_new_literal(g_quark_from_string("q"), -1, ""));
  EXPECT_STREQ(v_error_get(), "GError -1: ");
}

TEST_F(Error, ZipErrorsBecomeTheLibrarysText) {
  for (const int code : {ZIP_ER_OK, ZIP_ER_NOENT, ZIP_ER_NOZIP, ZIP_ER_CRC, 12345}) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const std::string expected = zip_error_strerror(&error);
    v_error_set_from_zip_error(&error);
    EXPECT_EQ(v_error_get(), expected);
    v_error_clear();
    v_error_set_from_zip_error_code(code);
    EXPECT_EQ(v_error_get(), expected);
    zip_error_fini(&error);
  }
  v_error_set_from_zip_error_code(ZIP_ER_NOENT);
  EXPECT_STREQ(v_error_get(), "No such file");
}

// The library allocates the text for a code that it does not know.
TEST_F(Error, ZipErrorsLeaveNoMemoryBehind) {
  constexpr int count = 10'000;
  const auto set_messages = [] {
    for (int i = 0; i < count; i++) {
      v_error_set_from_zip_error_code(12345);
    }
  };
  set_messages();
  const std::size_t before = memory_in_use();
  set_messages();
  EXPECT_LT(memory_in_use(), before + count);
}

TEST_F(Error, CairoStatusesBecomeMessages) {
  const struct {
    int status;
    const char *message;
  } special[] = {
      {1, out_of_memory},          {10, "Error reading data."},
      {11, "Error writing data."}, {18, "File not found error."},
      {39, "PNG error."},
  };
  for (int status = -2; status <= 60; status++) {
    SCOPED_TRACE(status);
    const char *expected = internal_graphics_error;
    for (const auto &row : special) {
      if (row.status == status) {
        expected = row.message;
      }
    }
    v_error_set_out_of_memory();
    v_error_set_from_cairo_status(status);
    EXPECT_STREQ(v_error_get(), expected);
    EXPECT_EQ(v_error_did_run_out_of_memory(), status == 1);
  }
}

TEST_F(Error, OutOfMemoryIsMadeMoreInformative) {
  v_error_set_out_of_memory();
  EXPECT_TRUE(v_error_make_more_informative_if_out_of_memory());
  EXPECT_STREQ(v_error_get(), informative_out_of_memory);
  EXPECT_TRUE(v_error_did_run_out_of_memory());
  EXPECT_TRUE(v_error_make_more_informative_if_out_of_memory());
  EXPECT_STREQ(v_error_get(), informative_out_of_memory);
}

TEST_F(Error, InformativeTextReplacesTheContextToo) {
  v_error_set_out_of_memory();
  v_error_append("Context.");
  EXPECT_TRUE(v_error_make_more_informative_if_out_of_memory());
  EXPECT_STREQ(v_error_get(), informative_out_of_memory);
}

TEST_F(Error, OtherMessagesAreNotMadeMoreInformative) {
  EXPECT_FALSE(v_error_make_more_informative_if_out_of_memory());
  EXPECT_STREQ(v_error_get(), "");
  v_error_set(out_of_memory);
  EXPECT_FALSE(v_error_make_more_informative_if_out_of_memory());
  EXPECT_STREQ(v_error_get(), out_of_memory);
}

TEST_F(Error, LineLimitCutsTheMessageAndSaysSo) {
#define CUT "\n\n(Error message truncated.)"
  const struct {
    const char *message;
    int limit;
    const char *limited;
  } rows[] = {
      {"a\nb\nc\nd", 2, "a\nb" CUT},
      {"a\n\n\nb", 2, "a" CUT},
      {"a\nb\nc", 3, "a\nb\nc"},
      {"a\nb\nc", 2, "a\nb" CUT},
      {"a\nb\n", 2, "a\nb" CUT},
      {"a\nb\n", 3, "a\nb\n"},
      {"a\nb\nc", 1, "a" CUT},
      {"a", 1, "a"},
      {"a", 0, CUT},
      {"a\nb", 0, CUT},
      {"", 0, CUT},
      {"", 1, ""},
      {"a\nb\nc", -1, "a\nb\nc"},
      {"a\nb\nc", -2147483647 - 1, "a\nb\nc"},
      {"a\nb\nc", 2147483647, "a\nb\nc"},
      {"\n\n\na", 2, CUT},
      {"\n\n\n", 3, CUT},
      {"a\n\n\n\n\nb\nc", 4, "a" CUT},
      {"a %s\n\xC3\xA5 %n\nc", 2, "a %s\n\xC3\xA5 %n" CUT},
  };
#undef CUT
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << "limit " << row.limit << " of: " << row.message);
    v_error_set(row.message);
    v_error_limit_line_count(row.limit);
    EXPECT_STREQ(v_error_get(), row.limited);
  }
}

TEST_F(Error, LineLimitLeavesAnEmptyMessageEmpty) {
  for (const int limit : {-1, 0, 1}) {
    v_error_limit_line_count(limit);
    EXPECT_STREQ(v_error_get(), "");
  }
}

TEST_F(Error, LineLimitKeepsTheFlag) {
  v_error_set_informative_out_of_memory();
  v_error_limit_line_count(1);
  EXPECT_STREQ(v_error_get(), "The program has run out of memory.\n\n(Error message truncated.)");
  EXPECT_TRUE(v_error_did_run_out_of_memory());
}

} // namespace
