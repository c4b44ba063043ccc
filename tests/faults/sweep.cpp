#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "base/error.h"
#include "faults/promises.h"
#include "support/files.h"

// Present in builds that look for leaks.
extern "C" int __lsan_do_recoverable_leak_check() __attribute__((weak));

namespace {

constexpr const char *earlier_message = "of an earlier failure";

const std::vector<Call> file_calls = {
    Call::open,   Call::fopen,   Call::read,    Call::fread,    Call::write,
    Call::fwrite, Call::fflush,  Call::close,   Call::fclose,   Call::fsync,
    Call::rename, Call::unlink,  Call::mkdir,   Call::rmdir,    Call::stat,
    Call::lstat,  Call::opendir, Call::readdir, Call::closedir,
};

struct SystemError {
  int number;
  const char *name;
};
constexpr SystemError disk_errors[] = {
    {ENOSPC, "ENOSPC"}, {EIO, "EIO"}, {EACCES, "EACCES"}, {EMFILE, "EMFILE"}};
constexpr SystemError disk_is_gone = {EIO, "EIO"};
constexpr SystemError out_of_memory = {ENOMEM, "ENOMEM"};

// GLib asks for these folders once and keeps them, so they stay what they are at first.
class Ground {
public:
  Ground() {
    setenv("HOME", (folder / "home").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (folder / "home/.config").c_str(), 1);
    setenv("XDG_STATE_HOME", (folder / "home/.local/state").c_str(), 1);
  }
  std::string path() const { return folder.path(); }

private:
  TemporaryFolder folder;
};

const Ground ground;

// Changes the folder from its present contents to the given ones.
void lay_ground(const Contents &present, const Contents &contents) {
  Contents missing = contents;
  // Entries of a folder come after the folder itself.
  for (auto entry = present.rbegin(); entry != present.rend(); ++entry) {
    const auto wanted = contents.find(entry->first);
    if (wanted != contents.end() && wanted->second == entry->second) {
      missing.erase(entry->first);
    } else {
      std::filesystem::remove(on_ground(entry->first));
    }
  }
  put(ground.path(), missing);
}

std::optional<std::string> look_up(const Contents &contents, const std::string &name) {
  const auto found = contents.find(name);
  return found == contents.end() ? std::nullopt : std::optional(found->second);
}

std::string describe(const std::optional<std::string> &content) {
  return content ? std::to_string(content->size()) + " bytes" : "nothing";
}

std::set<std::string> names_of(const Trial &trial) {
  std::set<std::string> names;
  for (const Contents *contents : {&trial.before, &trial.after, &trial.undisturbed}) {
    for (const auto &[name, content] : *contents) {
      names.insert(name);
    }
  }
  return names;
}

// The entry of one name before, after, and without a fault; null for none.
using Fits = std::function<bool(const std::optional<std::string> &before,
                                const std::optional<std::string> &after,
                                const std::optional<std::string> &undisturbed)>;

std::string misfits(const Trial &trial, const Fits &fits) {
  std::string text;
  for (const std::string &name : names_of(trial)) {
    const auto before = look_up(trial.before, name);
    const auto after = look_up(trial.after, name);
    const auto undisturbed = look_up(trial.undisturbed, name);
    if (!fits(before, after, undisturbed)) {
      text += name + ": " + describe(after) + " where there was " + describe(before) +
              " and else would be " + describe(undisturbed) + "\n";
    }
  }
  return text;
}

std::string differences(const Trial &trial, const Contents &expected) {
  return misfits(
      {expected, trial.after, trial.undisturbed, trial.hit},
      [](const auto &before, const auto &after, const auto &) { return before == after; });
}

// An operation that removes a file and then writes a new one may have only removed it.
bool is_before_or_after_or_between(const std::optional<std::string> &before,
                                   const std::optional<std::string> &after,
                                   const std::optional<std::string> &undisturbed) {
  return after == before || after == undisturbed || (!after && before != undisturbed);
}

// When all later calls fail, a file that is half written cannot be removed.
bool is_never_foreign(const std::optional<std::string> &before,
                      const std::optional<std::string> &after,
                      const std::optional<std::string> &undisturbed) {
  return is_before_or_after_or_between(before, after, undisturbed) ||
         (before != undisturbed && undisturbed && undisturbed->starts_with(*after));
}

bool matches(const std::string &pattern, const std::string &text) {
  return g_pattern_match_simple(pattern.c_str(), text.c_str()) != FALSE;
}

std::string with_error(std::string message, const SystemError &error) {
  const std::string mark = "{error}";
  if (const auto place = message.find(mark); place != std::string::npos) {
    message.replace(place, mark.size(),
                    "Error " + std::to_string(error.number) + ": " + g_strerror(error.number));
  }
  return message;
}

// One run of an operation with one fault.
struct Run {
  Report report;
  std::optional<std::string> result;
  std::string message;
  Contents after;
};

class Sweep {
public:
  explicit Sweep(const Operation &swept_operation) : operation(swept_operation) {
    lay_ground(contents_of(ground.path()), {});
    lay_ground({}, operation.ground);
    before = contents_of(ground.path());
    // The first run also lets the libraries set up what they keep.
    undisturbed = run({});
    EXPECT_TRUE(undisturbed.result) << operation.name << ": " << undisturbed.message;
  }

  void fail_single_calls() {
    const auto check = [this](const Run &run, const SystemError &error) {
      check_promise(run, error);
    };
    for (const Call call : file_calls) {
      for (const SystemError &error : disk_errors) {
        fail_in_turn({call}, error, false, check);
      }
    }
    fail_in_turn({Call::compile}, out_of_memory, false, check);
  }

  void fail_all_calls_from_one_on() {
    fail_in_turn(file_calls, disk_is_gone, true, [this](Run run, const SystemError &) {
      forget_files_beside(run.after);
      check_whatever_came_out(run, "?*", is_never_foreign);
    });
  }

  void fail_allocations() {
    fail_in_turn({Call::allocate}, out_of_memory, false,
                 [this](const Run &run, const SystemError &) {
                   check_whatever_came_out(run, operation.message_without_memory,
                                           is_before_or_after_or_between);
                 });
  }

  int injected_faults = 0;

private:
  using Check = std::function<void(const Run &, const SystemError &)>;

  Run run(const Fault &fault) const {
    v_error_set(earlier_message);
    injector::start(ground.path(), fault);
    std::optional<std::string> result = operation.run();
    Report report = injector::stop();
    Run finished = {std::move(report), std::move(result), v_error_get(),
                    contents_of(ground.path())};
    lay_ground(finished.after, before);
    return finished;
  }

  // Ends after the first run without a failing call, or after the first broken promise.
  void fail_in_turn(const std::vector<Call> &calls, const SystemError &error, bool from_then_on,
                    const Check &check) {
    bool is_struck = true;
    for (int nth = 1; is_struck && !has_new_failures(); nth++) {
      const Fault fault = {calls, nth, error.number, from_then_on};
      const int descriptors = count_open_descriptors();
      const long blocks = injector::count_library_blocks();
      const Run finished = run(fault);
      const testing::ScopedTrace trace(__FILE__, __LINE__,
                                       describe_fault(fault, error, finished.report.hit));
      EXPECT_EQ(count_open_descriptors(), descriptors) << "open descriptors";
      EXPECT_EQ(injector::count_library_blocks(), blocks) << "blocks of memory that libxml2 holds";
      EXPECT_EQ(finished.report.left_open, std::vector<std::string>()) << "open";
      is_struck = finished.report.hit.has_value();
      if (is_struck) {
        injected_faults++;
        check(finished, error);
      } else {
        check_success(finished, done);
      }
    }
    check_leaks(name_of(calls[0]), error);
  }

  // A file to be renamed is written beside the one that it replaces, under its name with a period
  // and six characters. When all later calls fail it cannot be removed. The part that is not
  // written yet is zeros.
  void forget_files_beside(Contents &after) const {
    for (const auto &[name, content] : undisturbed.after) {
      std::erase_if(after, [&](const auto &entry) {
        return matches(name + ".??????", entry.first) && content.starts_with(entry.second.c_str());
      });
    }
    std::erase_if(after,
                  [&](const auto &entry) { return matches(operation.scratch, entry.first); });
  }

  void check_success(const Run &finished, const Outcome &outcome) const {
    EXPECT_TRUE(finished.result == undisturbed.result)
        << "It gave " << describe(finished.result) << " of text and not "
        << describe(undisturbed.result) << ". " << finished.message;
    check_disk(finished, outcome);
  }

  void check_disk(const Run &finished, const Outcome &outcome) const {
    const Hit none = {Call::open, "", 0};
    const Trial trial = {before, finished.after, undisturbed.after,
                         finished.report.hit ? *finished.report.hit : none};
    EXPECT_EQ(outcome(trial), "");
  }

  void check_promise(const Run &finished, const SystemError &error) const {
    const Hit &hit = *finished.report.hit;
    const Promise *promise = find_promise(hit);
    if (promise == nullptr) {
      ADD_FAILURE() << "Nothing is promised for this.";
    } else if (promise->result == Result::succeeds) {
      check_success(finished, promise->outcome);
    } else {
      EXPECT_FALSE(finished.result) << "It succeeded.";
      EXPECT_PRED2(matches, with_error(promise->message, error), finished.message);
      check_disk(finished, promise->outcome);
    }
  }

  const Promise *find_promise(const Hit &hit) const {
    for (const Promise &promise : operation.promises) {
      if (std::find(promise.calls.begin(), promise.calls.end(), hit.call) != promise.calls.end() &&
          matches(promise.where, hit.path) &&
          (promise.occurrence == 0 || promise.occurrence == hit.occurrence)) {
        return &promise;
      }
    }
    return nullptr;
  }

  // For operations with too many failing calls to list a promise for each: a success has the full
  // result, and a failure has a message.
  void check_whatever_came_out(const Run &finished, const std::string &message,
                               const Fits &fits) const {
    if (finished.result) {
      EXPECT_TRUE(finished.result == undisturbed.result) << "It succeeded with something else.";
    } else {
      EXPECT_PRED2(matches, message, finished.message);
      EXPECT_TRUE(!operation.tells_causes || finished.message != earlier_message);
    }
    check_disk(finished, [&fits](const Trial &trial) { return misfits(trial, fits); });
  }

  std::string describe_fault(const Fault &fault, const SystemError &error,
                             const std::optional<Hit> &hit) const {
    const std::string what = fault.calls.size() == 1 ? name_of(fault.calls[0]) : "call";
    std::string text = operation.name + ": " + what + " number " + std::to_string(fault.nth) +
                       (fault.from_then_on ? " and all after it fail" : " fails") + " with " +
                       error.name;
    if (hit) {
      text += std::string(": ") + name_of(hit->call) + " " + hit->path + ", call number " +
              std::to_string(hit->occurrence) + " of the kind there";
    }
    return text;
  }

  void check_leaks(const char *call, const SystemError &error) const {
    if (__lsan_do_recoverable_leak_check != nullptr) {
      EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0)
          << operation.name << ": leaks after " << call << " failed with " << error.name;
    }
  }

  static int count_failures() {
    return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
  }
  bool has_new_failures() {
    return std::exchange(known_failures, count_failures()) != count_failures();
  }

  const Operation &operation;
  Contents before;
  Run undisturbed;
  int known_failures = 0;
};

} // namespace

std::string ground_folder() { return ground.path(); }

std::string on_ground(const std::string &name) { return ground.path() + "/" + name; }

std::string untouched(const Trial &trial) { return differences(trial, trial.before); }

std::string done(const Trial &trial) { return differences(trial, trial.undisturbed); }

std::string without_what_failed(const Trial &trial) { return without(trial.hit.path)(trial); }

std::string done_but_for_what_failed(const Trial &trial) {
  Contents expected = trial.undisturbed;
  if (const auto kept = look_up(trial.before, trial.hit.path)) {
    expected[trial.hit.path] = *kept;
  } else {
    expected.erase(trial.hit.path);
  }
  return differences(trial, expected);
}

std::string partly_done(const Trial &trial) {
  return misfits(trial, [](const auto &before, const auto &after, const auto &undisturbed) {
    return after == before || after == undisturbed;
  });
}

Outcome without(const std::string &name) {
  return [name](const Trial &trial) {
    Contents expected = trial.before;
    expected.erase(name);
    return differences(trial, expected);
  };
}

Outcome with_empty(const std::string &name) {
  return [name](const Trial &trial) {
    Contents expected = trial.before;
    expected[name] = "";
    return differences(trial, expected);
  };
}

Outcome untouched_but_for(const std::string &name) {
  return [name](const Trial &trial) {
    Contents expected = trial.before;
    if (const auto made = look_up(trial.after, name)) {
      expected[name] = *made;
    }
    return differences(trial, expected);
  };
}

void sweep(const Operation &operation) {
  Sweep sweep_of_operation(operation);
  if (testing::Test::HasFailure()) {
    return;
  }
  sweep_of_operation.fail_single_calls();
  sweep_of_operation.fail_all_calls_from_one_on();
  sweep_of_operation.fail_allocations();
  std::printf("[  faults  ] %s: %d injected\n", operation.name.c_str(),
              sweep_of_operation.injected_faults);
}
