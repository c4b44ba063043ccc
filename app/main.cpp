#include "app/application.h"
#include "app/codesets_manager.h"

// Not defined in the tool's static library, because only the frame calls it, and the linker
// searches the tool's library before the frame's.
void v_init_application_configuration(ApplicationConfiguration *configuration) {
  configuration->application_id = v_codesets_manager_id;
  configuration->run = run;
}

int main(int argc, char **argv) { return v_main(argc, argv); }
