#pragma once
// The application frame shared by all tools of the suite: the process-wide toolkit application, its
// start-up and its shutdown. Knows the tool only through the application configuration.

#include <gtk/gtk.h>

struct ApplicationConfiguration {
  const char *application_id = nullptr; // reverse domain, static
  // Called once, on the first activation; the application ends when it returns.
  void (*run)(int argc, char **argv) = nullptr;
  // Called on later activations while the tool runs; null for none.
  void (*reactivate)(GtkApplication *application,
                     ApplicationConfiguration *configuration) = nullptr;
};

// Runs the tool and returns the exit status of the process. The arguments are passed to the tool
// but not to the toolkit.
int v_main(int argc, char **argv);

// Defined by the tool: fills in its application id and callbacks.
void v_init_application_configuration(ApplicationConfiguration *configuration);

// The application's signal handlers. Start-up does the one-time work; when it fails, the activation
// that follows shows the message.
void app_startup_callback(GtkApplication *application, ApplicationConfiguration *configuration);
void app_activate_callback(GtkApplication *application, ApplicationConfiguration *configuration);
int app_command_line_callback(GtkApplication *application, GApplicationCommandLine *command_line,
                              void *data);
void app_shutdown_callback(GtkApplication *application, ApplicationConfiguration *configuration);
