#include "gui/owned_objects.h"

#include <gtest/gtest.h>
#include <gtk/gtk.h>

namespace {

guint count_references(void *object) { return G_OBJECT(object)->ref_count; }

TEST(OwnedObjects, TakeHoldsTheReferenceThatWasGiven) {
  GtkListStore *store = gtk_list_store_new(1, G_TYPE_STRING);
  const OwnedObject<GtkListStore> owned = take(store);
  EXPECT_EQ(count_references(store), 1u);
}

TEST(OwnedObjects, ShareAddsAReferenceAndDropsIt) {
  const OwnedObject<GtkListStore> owned = take(gtk_list_store_new(1, G_TYPE_STRING));
  {
    const OwnedObject<GtkListStore> shared = share(owned.get());
    EXPECT_EQ(count_references(owned.get()), 2u);
  }
  EXPECT_EQ(count_references(owned.get()), 1u);
}

TEST(OwnedObjects, SinkTakesOverAFloatingReference) {
  GtkWidget *label = gtk_label_new("");
  ASSERT_TRUE(g_object_is_floating(label));
  const OwnedObject<GtkWidget> owned = sink(label);
  EXPECT_FALSE(g_object_is_floating(label));
  EXPECT_EQ(count_references(label), 1u);
}

TEST(OwnedObjects, NullStaysNull) {
  EXPECT_EQ(take<GtkWidget>(nullptr), nullptr);
  EXPECT_EQ(share<GtkWidget>(nullptr), nullptr);
  EXPECT_EQ(sink<GtkWidget>(nullptr), nullptr);
}

} // namespace
