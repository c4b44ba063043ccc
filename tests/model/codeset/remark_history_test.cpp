#include "codeset/remark_history.h"

#include <iterator>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "base/error.h"
#include "codeset/codeset_io.h"
#include "support/files.h"
#include "support/values/remarks.h"

namespace {

const Translations x = {{"sv", "x"}};
const Translations y = {{"sv", "y"}};

// A remark list with its history, and rows that are updated only from the returned exchanges, like
// the rows of a window.
class History {
public:
  explicit History(const Remarks &remarks = {}) : list(list_of(remarks)) {
    for (VRemark *remark = list->head.next; remark != &list->tail; remark = remark->next) {
      rows.push_back(remark);
    }
    history = v_remark_history_new(list.get());
  }

  VRemarkExchange add(const std::string &code, const Translations &description = {}) {
    return follow(v_remark_history_add_remark(history.get(), remark_of(code, description)));
  }

  // Replaces the remark that has the code.
  std::optional<VRemarkExchange> edit(const std::string &code, const std::string &new_code,
                                      const Translations &new_description = {}) {
    return follow(v_remark_history_replace_remark(history.get(), find(code),
                                                  remark_of(new_code, new_description)));
  }

  VRemarkExchange remove(const std::string &code) {
    return follow(v_remark_history_remove_remark(history.get(), find(code)));
  }

  std::optional<VRemarkExchange> undo() { return follow(v_remark_history_undo(history.get())); }

  std::optional<VRemarkExchange> redo() { return follow(v_remark_history_redo(history.get())); }

  bool can_undo() const { return v_remark_history_can_undo(history.get()); }
  bool can_redo() const { return v_remark_history_can_redo(history.get()); }

  VRemark *find(const std::string &code) const {
    return v_remark_list_get_remark_for_code(list.get(), code.c_str());
  }

  Remarks remarks() const { return remarks_of(list); }
  Codes codes() const { return codes_of(list); }

  OwnedRemarkList list;
  OwnedRemarkHistory history;

private:
  VRemarkExchange follow(const VRemarkExchange &exchange) {
    if (exchange.removed != nullptr) {
      EXPECT_EQ(rows.at(exchange.removed_index), exchange.removed);
      EXPECT_EQ(exchange.removed->prev, nullptr);
      rows.erase(rows.begin() + exchange.removed_index);
    }
    if (exchange.inserted != nullptr) {
      rows.insert(rows.begin() + exchange.inserted_index, exchange.inserted);
    }
    expect_rows_as_remarks();
    return exchange;
  }

  std::optional<VRemarkExchange> follow(const std::optional<VRemarkExchange> &exchange) {
    if (exchange) {
      follow(*exchange);
    }
    return exchange;
  }

  void expect_rows_as_remarks() const {
    const VRemark *remark = list->head.next;
    for (const VRemark *row : rows) {
      ASSERT_EQ(row, remark);
      remark = remark->next;
    }
    ASSERT_EQ(remark, &list->tail);
  }

  std::vector<VRemark *> rows;
};

TEST(RemarkHistory, DestroyingNoHistoryDoesNothing) { v_remark_history_destroy(nullptr); }

TEST(RemarkHistory, ANewHistoryHasNothingToUndoOrRedo) {
  History history({{"1", x}});
  EXPECT_FALSE(history.can_undo());
  EXPECT_FALSE(history.can_redo());
  EXPECT_EQ(history.undo(), std::nullopt);
  EXPECT_EQ(history.redo(), std::nullopt);
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}}));
}

TEST(RemarkHistory, AddingCanBeUndoneAndRedone) {
  History history({{"1", x}, {"10", x}});
  const VRemarkExchange added = history.add("2", y);
  EXPECT_EQ(added.removed, nullptr);
  EXPECT_EQ(added.removed_index, -1);
  EXPECT_EQ(added.inserted, history.find("2"));
  EXPECT_EQ(added.inserted_index, 1);
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"2", y}, {"10", x}}));
  EXPECT_TRUE(history.can_undo());
  EXPECT_FALSE(history.can_redo());

  EXPECT_EQ(history.undo(), (VRemarkExchange{added.inserted, 1, nullptr, -1}));
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"10", x}}));
  EXPECT_FALSE(history.can_undo());
  EXPECT_TRUE(history.can_redo());

  EXPECT_EQ(history.redo(), added);
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"2", y}, {"10", x}}));
  EXPECT_TRUE(history.can_undo());
  EXPECT_FALSE(history.can_redo());
}

TEST(RemarkHistory, EditingCanBeUndoneAndRedone) {
  History history({{"1", x}, {"2", x}, {"10", x}});
  VRemark *original = history.find("1");
  const std::optional<VRemarkExchange> edited = history.edit("1", "11", y);
  EXPECT_EQ(edited, (VRemarkExchange{original, 0, history.find("11"), 2}));
  EXPECT_EQ(history.remarks(), (Remarks{{"2", x}, {"10", x}, {"11", y}}));

  EXPECT_EQ(history.undo(), (VRemarkExchange{edited->inserted, 2, original, 0}));
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"2", x}, {"10", x}}));

  EXPECT_EQ(history.redo(), edited);
  EXPECT_EQ(history.remarks(), (Remarks{{"2", x}, {"10", x}, {"11", y}}));
}

TEST(RemarkHistory, DeletingCanBeUndoneAndRedone) {
  History history({{"1", x}, {"2", y}, {"10", x}});
  VRemark *deleted = history.find("2");
  EXPECT_EQ(history.remove("2"), (VRemarkExchange{deleted, 1, nullptr, -1}));
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"10", x}}));

  EXPECT_EQ(history.undo(), (VRemarkExchange{nullptr, -1, deleted, 1}));
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"2", y}, {"10", x}}));

  EXPECT_EQ(history.redo(), (VRemarkExchange{deleted, 1, nullptr, -1}));
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"10", x}}));
}

TEST(RemarkHistory, ADeletedRemarkCanStillBeRead) {
  History history({{"1", x}});
  const VRemark *deleted = history.remove("1").removed;
  EXPECT_STREQ(deleted->code.get(), "1");
  EXPECT_EQ(translations_of(deleted->description), x);
}

TEST(RemarkHistory, AnEditThatKeepsTheCodeIsAStep) {
  History history({{"1", x}, {"2", x}});
  ASSERT_NE(history.edit("1", "1", y), std::nullopt);
  EXPECT_EQ(history.remarks(), (Remarks{{"1", y}, {"2", x}}));
  ASSERT_NE(history.undo(), std::nullopt);
  EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"2", x}}));
}

TEST(RemarkHistory, AnEditThatChangesOnlyTheCaseOfTheCodeIsAStep) {
  History history({{"a", x}});
  ASSERT_NE(history.edit("a", "A", x), std::nullopt);
  EXPECT_EQ(history.codes(), (Codes{"A"}));
  ASSERT_NE(history.undo(), std::nullopt);
  EXPECT_EQ(history.codes(), (Codes{"a"}));
}

TEST(RemarkHistory, AnEditThatMovesATranslationIsAStep) {
  const Translations both = {{"sv", "x"}, {"de", "y"}};
  const Translations moved = {{"de", "y"}, {"sv", "x"}};
  History history({{"1", both}});
  ASSERT_NE(history.edit("1", "1", moved), std::nullopt);
  EXPECT_EQ(history.remarks(), (Remarks{{"1", moved}}));
  ASSERT_NE(history.undo(), std::nullopt);
  EXPECT_EQ(history.remarks(), (Remarks{{"1", both}}));
}

TEST(RemarkHistory, AnEditThatChangesNothingIsNoStep) {
  History history({{"1", x}});
  const VRemark *remark = history.find("1");
  EXPECT_EQ(history.edit("1", "1", x), std::nullopt);
  EXPECT_EQ(history.find("1"), remark);
  EXPECT_FALSE(history.can_undo());

  history.add("2");
  history.undo();
  EXPECT_EQ(history.edit("1", "1", x), std::nullopt);
  EXPECT_TRUE(history.can_redo());
}

TEST(RemarkHistory, StepsOnTheSameRemarkAreUndoneOneByOne) {
  History history;
  history.add("1", x);
  history.edit("1", "2", x);
  history.edit("2", "2", y);
  history.remove("2");
  const Remarks back[] = {{{"2", y}}, {{"2", x}}, {{"1", x}}, {}};
  for (const Remarks &remarks : back) {
    EXPECT_NE(history.undo(), std::nullopt);
    EXPECT_EQ(history.remarks(), remarks);
  }
  EXPECT_EQ(history.undo(), std::nullopt);
  const Remarks again[] = {{{"1", x}}, {{"2", x}}, {{"2", y}}, {}};
  for (const Remarks &remarks : again) {
    EXPECT_NE(history.redo(), std::nullopt);
    EXPECT_EQ(history.remarks(), remarks);
  }
  EXPECT_EQ(history.redo(), std::nullopt);
}

// Each function records one step.
using StepOf = void (*)(History &history);
const StepOf new_steps[] = {
    [](History &history) { history.add("7", y); },
    [](History &history) { history.edit("1", "7", y); },
    [](History &history) { history.remove("1"); },
};

TEST(RemarkHistory, ANewStepDropsTheStepsAhead) {
  for (const StepOf new_step : new_steps) {
    History history({{"1", x}});
    history.add("2");
    history.edit("2", "3");
    history.edit("1", "4");
    history.remove("3");
    while (history.can_undo()) {
      history.undo();
    }
    history.redo(); // one step remains
    new_step(history);
    const Remarks remarks = history.remarks();
    EXPECT_FALSE(history.can_redo());
    EXPECT_EQ(history.redo(), std::nullopt);
    EXPECT_EQ(history.remarks(), remarks);
    history.undo();
    EXPECT_EQ(history.remarks(), (Remarks{{"1", x}, {"2", {}}}));
    history.undo();
    EXPECT_EQ(history.remarks(), (Remarks{{"1", x}}));
    EXPECT_FALSE(history.can_undo());
    history.redo();
    history.redo();
    EXPECT_EQ(history.remarks(), remarks);
  }
}

TEST(RemarkHistory, TheListMayBeFreedFirst) {
  History history({{"1", x}, {"2", x}});
  history.add("3");
  history.remove("1");
  history.edit("2", "4");
  history.undo();
  history.list.reset();
  history.history.reset();
}

TEST(RemarkHistory, TheListOutlivesTheHistory) {
  History history({{"1", x}, {"2", x}});
  history.add("3", y);
  history.edit("1", "5", y);
  history.remove("2");
  history.undo();
  history.history.reset();
  EXPECT_EQ(history.remarks(), (Remarks{{"2", x}, {"3", y}, {"5", y}}));
}

TEST(RemarkHistory, ChangesToOtherRemarksStay) {
  History history({{"1", x}, {"3", x}});
  history.remove("3");
  history.find("1")->description = langstr_of(y);
  history.undo();
  EXPECT_EQ(history.remarks(), (Remarks{{"1", y}, {"3", x}}));
}

// Applies random steps to a codeset and to a map. Both have the same order, because all codes have
// three digits.
class RandomEditor {
public:
  RandomEditor() : editing(start()) { codeset->name = langstr_of({{"sv", "Namn"}}); }

  void do_step() {
    const Remarks remarks = editing.remarks();
    expected = {remarks.begin(), remarks.end()};
    const auto kind = expected.empty() ? 0U : random() % 3;
    if (kind == 0) {
      add();
    } else if (kind == 1) {
      edit();
    } else {
      remove();
    }
    EXPECT_EQ(editing.remarks(), Remarks(expected.begin(), expected.end()));
  }

  // The bytes of the file that saving would write now.
  std::string bytes() {
    codeset->remarks.swap(editing.list);
    EXPECT_TRUE(v_codeset_io_write_to_file(codeset.get(), path.c_str())) << v_error_get();
    codeset->remarks.swap(editing.list);
    return read_file(path);
  }

  std::mt19937 random{20};
  History editing;

private:
  static Remarks start() {
    Remarks remarks;
    for (int code = 120; code < 1000; code += 40) {
      remarks.emplace_back(std::to_string(code), x);
    }
    return remarks;
  }

  std::string some_code() {
    return std::next(expected.begin(), static_cast<int>(random() % expected.size()))->first;
  }

  std::string free_code() {
    std::string code;
    do {
      code = std::to_string(100 + random() % 900);
    } while (expected.count(code) != 0);
    return code;
  }

  // Different on each call.
  Translations new_description() { return {{"sv", std::to_string(++descriptions)}}; }

  void add() {
    const std::string code = free_code();
    expected[code] = new_description();
    editing.add(code, expected[code]);
  }

  void edit() {
    const std::string code = some_code();
    const std::string new_code = random() % 2 == 0 ? code : free_code();
    expected.erase(code);
    expected[new_code] = new_description();
    editing.edit(code, new_code, expected[new_code]);
  }

  void remove() {
    const std::string code = some_code();
    expected.erase(code);
    editing.remove(code);
  }

  std::map<std::string, Translations> expected;
  OwnedCodeset codeset = v_codeset_new();
  int descriptions = 0;
  TemporaryFolder folder;
  std::string path = folder / "a.codeset";
};

struct Snapshot {
  Remarks remarks;
  std::string bytes;
};

void expect_snapshot(RandomEditor &editor, const Snapshot &snapshot) {
  ASSERT_EQ(editor.editing.remarks(), snapshot.remarks);
  ASSERT_EQ(editor.bytes(), snapshot.bytes);
}

constexpr std::size_t many = 1000;

// One snapshot before the first step and one after each.
std::vector<Snapshot> snapshots_of_random_steps(RandomEditor &editor) {
  std::vector<Snapshot> snapshots = {{editor.editing.remarks(), editor.bytes()}};
  for (std::size_t step = 0; step < many; step++) {
    editor.do_step();
    snapshots.push_back({editor.editing.remarks(), editor.bytes()});
  }
  return snapshots;
}

TEST(RemarkHistory, AThousandRandomStepsBackAndForthGiveTheSameBytes) {
  RandomEditor editor;
  const std::vector<Snapshot> snapshots = snapshots_of_random_steps(editor);
  for (std::size_t step = many; step-- > 0;) {
    ASSERT_NE(editor.editing.undo(), std::nullopt);
    ASSERT_NO_FATAL_FAILURE(expect_snapshot(editor, snapshots[step]));
  }
  EXPECT_FALSE(editor.editing.can_undo());
  for (std::size_t step = 1; step <= many; step++) {
    ASSERT_NE(editor.editing.redo(), std::nullopt);
    ASSERT_NO_FATAL_FAILURE(expect_snapshot(editor, snapshots[step]));
  }
  EXPECT_FALSE(editor.editing.can_redo());
}

TEST(RemarkHistory, ARandomWalkThroughTheHistoryGivesTheSameBytes) {
  RandomEditor editor;
  const std::vector<Snapshot> snapshots = snapshots_of_random_steps(editor);
  std::size_t step = many;
  for (int walk = 0; walk < 50; walk++) {
    const std::size_t target = editor.random() % snapshots.size();
    for (; step > target; step--) {
      ASSERT_NE(editor.editing.undo(), std::nullopt);
    }
    for (; step < target; step++) {
      ASSERT_NE(editor.editing.redo(), std::nullopt);
    }
    ASSERT_NO_FATAL_FAILURE(expect_snapshot(editor, snapshots[target]));
  }
}

TEST(RemarkHistory, NewStepsAmongUndoneAndRedoneOnesGiveTheSameBytes) {
  RandomEditor editor;
  std::vector<Snapshot> snapshots = {{editor.editing.remarks(), editor.bytes()}};
  std::size_t step = 0;
  for (std::size_t i = 0; i < many; i++) {
    const auto kind = editor.random() % 4;
    if (kind == 0 && step > 0) {
      ASSERT_NE(editor.editing.undo(), std::nullopt);
      step--;
    } else if (kind == 1 && step + 1 < snapshots.size()) {
      ASSERT_NE(editor.editing.redo(), std::nullopt);
      step++;
    } else {
      editor.do_step();
      snapshots.resize(++step);
      snapshots.push_back({editor.editing.remarks(), editor.bytes()});
    }
    ASSERT_EQ(editor.editing.can_undo(), step > 0);
    ASSERT_EQ(editor.editing.can_redo(), step + 1 < snapshots.size());
    ASSERT_NO_FATAL_FAILURE(expect_snapshot(editor, snapshots[step]));
  }
  while (step-- > 0) {
    ASSERT_NE(editor.editing.undo(), std::nullopt);
    ASSERT_NO_FATAL_FAILURE(expect_snapshot(editor, snapshots[step]));
  }
}

} // namespace
