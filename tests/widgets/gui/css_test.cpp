#include "gui/css.h"

#include <gtest/gtest.h>

#include "base/owned.h"

namespace {

GdkRGBA get_color(GtkWidget *widget) {
  GdkRGBA color;
  GtkStyleContext *context = gtk_widget_get_style_context(widget);
  gtk_style_context_get_color(context, gtk_style_context_get_state(context), &color);
  return color;
}

constexpr GdkRGBA red = {1, 0, 0, 1};

bool is_red(GtkWidget *widget) {
  const GdkRGBA color = get_color(widget);
  return gdk_rgba_equal(&color, &red) != FALSE;
}

TEST(Css, AProviderHoldsTheSheet) {
  const OwnedObject<GtkCssProvider> provider = v_css_create_provider("label { color: #ff0000 }");
  ASSERT_TRUE(provider);
  EXPECT_EQ(G_OBJECT(provider.get())->ref_count, 1u);
  const OwnedText text(gtk_css_provider_to_string(provider.get()));
  EXPECT_NE(std::string(text.get()).find("color: rgb(255,0,0)"), std::string::npos) << text.get();
}

TEST(Css, TheSheetStylesOnlyTheWidget) {
  const OwnedObject<GtkWidget> frame = sink(gtk_frame_new("styled"));
  GtkWidget *inside = gtk_label_new("inside");
  gtk_container_add(GTK_CONTAINER(frame.get()), inside);
  v_css_style_widget(frame.get(), "* { color: #ff0000 }");
  EXPECT_TRUE(is_red(frame.get()));
  // The child inherits the colour, but the sheet must not apply to it: check with a property that
  // is not inherited.
  v_css_style_widget(frame.get(), "* { margin-top: 7px }");
  GtkBorder margin;
  GtkStyleContext *context = gtk_widget_get_style_context(inside);
  gtk_style_context_get_margin(context, gtk_style_context_get_state(context), &margin);
  EXPECT_EQ(margin.top, 0);
}

TEST(Css, TheSheetHasApplicationPriority) {
  const OwnedObject<GtkWidget> label = sink(gtk_label_new("styled"));
  GtkStyleContext *context = gtk_widget_get_style_context(label.get());
  const OwnedObject<GtkCssProvider> lower = v_css_create_provider("label { color: #0000ff }");
  const OwnedObject<GtkCssProvider> higher = v_css_create_provider("label { color: #00ff00 }");
  v_css_style_widget(label.get(), "label { color: #ff0000 }");
  gtk_style_context_add_provider(context, GTK_STYLE_PROVIDER(lower.get()), 599);
  EXPECT_TRUE(is_red(label.get()));
  gtk_style_context_add_provider(context, GTK_STYLE_PROVIDER(higher.get()), 601);
  EXPECT_FALSE(is_red(label.get()));
}

} // namespace
