#include "app/application.h"
#include "app/codesets_manager.h"

// The frame's question to the tool is answered here: in a library, nothing would ask for the answer
// before the frame does.
void v_init_application_configuration(ApplicationConfiguration *configuration) {
  configuration->application_id = "org.vantorelle.VantorelleRemarkCodesetsManager";
  configuration->run = run;
}

int main(int argc, char **argv) { return v_main(argc, argv); }
