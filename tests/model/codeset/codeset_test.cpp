#include "codeset/codeset.h"

#include <gtest/gtest.h>

#include "support/values/remarks.h"

namespace {

TEST(Codeset, ANewCodesetIsEmpty) {
  const OwnedCodeset codeset = v_codeset_new();
  EXPECT_EQ(codeset->name, nullptr);
  EXPECT_EQ(codeset->author, nullptr);
  EXPECT_EQ(codeset->version, nullptr);
  EXPECT_TRUE(v_remark_list_is_empty(codeset->remarks.get()));
  EXPECT_FALSE(codeset->outdated);
  EXPECT_EQ(codeset->prev, nullptr);
  EXPECT_EQ(codeset->next, nullptr);
}

TEST(Codeset, ACloneIsDeepAndInNoList) {
  OwnedCodeset codeset = v_codeset_new();
  codeset->name = langstr_of({{"sv", "namn"}});
  codeset->author = langstr_of({{"", "Anna"}});
  codeset->version = copy_text("1.2");
  codeset->outdated = true;
  const Remarks remarks = {{"b", {{"sv", "1"}}}, {"a", {{"de", "2"}}}};
  codeset->remarks = list_of(remarks);
  codeset->prev = codeset.get();

  const OwnedCodeset clone = v_codeset_clone(codeset.get());
  codeset->prev = nullptr;
  codeset.reset();
  EXPECT_EQ(translations_of(clone->name), (Translations{{"sv", "namn"}}));
  EXPECT_EQ(translations_of(clone->author), (Translations{{"", "Anna"}}));
  EXPECT_STREQ(clone->version.get(), "1.2");
  EXPECT_TRUE(clone->outdated);
  EXPECT_EQ(remarks_of(clone->remarks), remarks);
  EXPECT_EQ(clone->prev, nullptr);
  EXPECT_EQ(clone->next, nullptr);
}

TEST(Codeset, ClonesAnEmptyCodeset) {
  const OwnedCodeset clone = v_codeset_clone(v_codeset_new().get());
  EXPECT_EQ(clone->name, nullptr);
  EXPECT_EQ(clone->version, nullptr);
  EXPECT_TRUE(v_remark_list_is_empty(clone->remarks.get()));
  EXPECT_FALSE(clone->outdated);
}

// A list of codesets between two sentinels, as other tools of the suite keep it.
class Chain {
public:
  Chain() {
    head.next = &tail;
    tail.prev = &head;
  }
  VCodeset *add() {
    VCodeset *codeset = v_codeset_new().release();
    codeset->prev = tail.prev;
    codeset->next = &tail;
    tail.prev->next = codeset;
    tail.prev = codeset;
    return codeset;
  }

  VCodeset head;
  VCodeset tail;
};

TEST(Codeset, HasAnIndexAndCanBeRemovedInAList) {
  Chain chain;
  VCodeset *first = chain.add();
  const OwnedCodeset second(chain.add());
  VCodeset *third = chain.add();
  EXPECT_EQ(v_codeset_get_index(first), 0);
  EXPECT_EQ(v_codeset_get_index(third), 2);

  EXPECT_EQ(v_codeset_remove(second.get()), first);
  EXPECT_EQ(second->prev, nullptr);
  EXPECT_EQ(second->next, nullptr);
  EXPECT_EQ(first->next, third);
  EXPECT_EQ(third->prev, first);
  EXPECT_EQ(v_codeset_get_index(third), 1);

  v_codeset_destroy(first);
  EXPECT_EQ(chain.head.next, third);
  EXPECT_EQ(third->prev, &chain.head);
  v_codeset_destroy(third);
  EXPECT_EQ(chain.head.next, &chain.tail);
  EXPECT_EQ(chain.tail.prev, &chain.head);
}

TEST(Codeset, DestroyingNullIsAllowed) { v_codeset_destroy(nullptr); }

} // namespace
