#include "app/application.h"

#include <libxml/parser.h>
#include <libxslt/xslt.h>
#include <pango/pangocairo.h>

#include "app/startup.h"
#include "base/error.h"
#include "gui/file_dialogs.h"
#include "gui/message_dialogs.h"
#include "gui/owned_objects.h"
#include "images/resources.h"

namespace {

int process_argc;
char **process_argv;
ApplicationConfiguration process_app_conf;
bool startup_successful = false;
bool running = false;

// The shutdown of every tool of the suite has these two steps. They are empty here, because this
// tool draws no text sheets and no style outlives its widget.
void clean_up_text_sheet_drawing() {}
void clean_up_widget_styles() {}

// Called when idle: loading the icon theme takes some 10 ms, and the first window does not wait for
// it. Windows that are already shown get the icon too.
gboolean set_icon_callback(void *configuration) {
  gtk_window_set_default_icon_name(
      static_cast<const ApplicationConfiguration *>(configuration)->application_id);
  return G_SOURCE_REMOVE;
}

} // namespace

int v_main(int argc, char **argv) {
  process_argc = argc;
  process_argv = argv;
  g_setenv("GTK_THEME", "Adwaita", TRUE);
  v_init_application_configuration(&process_app_conf);
  // Desktops find the program's desktop entry and icon by this name.
  g_set_prgname(process_app_conf.application_id);
  constexpr auto flags =
      static_cast<GApplicationFlags>(G_APPLICATION_HANDLES_COMMAND_LINE | G_APPLICATION_NON_UNIQUE);
  const OwnedObject<GtkApplication> application(
      gtk_application_new(process_app_conf.application_id, flags));
  GtkApplication *app = application.get();
  g_signal_connect(app, "activate", G_CALLBACK(app_activate_callback), &process_app_conf);
  g_signal_connect(app, "command-line", G_CALLBACK(app_command_line_callback), nullptr);
  g_signal_connect(app, "shutdown", G_CALLBACK(app_shutdown_callback), &process_app_conf);
  g_signal_connect(app, "startup", G_CALLBACK(app_startup_callback), &process_app_conf);
  return g_application_run(G_APPLICATION(app), 0, nullptr);
}

void app_startup_callback(GtkApplication *application, ApplicationConfiguration *configuration) {
  // The font map loads the system's fonts in a thread of its own. It is created this early so that
  // it is ready when the first text is measured.
  pango_cairo_font_map_get_default();
  g_idle_add_full(G_PRIORITY_LOW, set_icon_callback, configuration, nullptr);
  startup_successful = v_startup_run(application);
}

void app_activate_callback(GtkApplication *application, ApplicationConfiguration *configuration) {
  if (!startup_successful) {
    v_error_append("Startup failed.");
    v_message_show_error(nullptr, v_error_get());
    return;
  }
  if (!running) {
    running = true;
    configuration->run(process_argc, process_argv);
  } else if (configuration->reactivate != nullptr) {
    configuration->reactivate(application, configuration);
  }
}

int app_command_line_callback(GtkApplication *application, GApplicationCommandLine *, void *) {
  g_application_activate(G_APPLICATION(application));
  return 0;
}

void app_shutdown_callback(GtkApplication *, ApplicationConfiguration *) {
  v_startup_release_icons();
  v_startup_release_view_font();
  v_file_dialog_clean_up();
  clean_up_text_sheet_drawing();
  clean_up_widget_styles();
  v_resources_clean_up();
  v_startup_release_font_library();
  xsltCleanupGlobals();
  xmlCleanupParser();
}
