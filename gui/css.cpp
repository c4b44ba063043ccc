#include "gui/css.h"

OwnedObject<GtkCssProvider> v_css_create_provider(const char *css) {
  OwnedObject<GtkCssProvider> provider = take(gtk_css_provider_new());
  gtk_css_provider_load_from_data(provider.get(), css, -1, nullptr);
  return provider;
}

void v_css_style_widget(GtkWidget *widget, const char *css) {
  gtk_style_context_add_provider(gtk_widget_get_style_context(widget),
                                 GTK_STYLE_PROVIDER(v_css_create_provider(css).get()),
                                 GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}
