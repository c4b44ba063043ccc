#include "app/application.h"

int main(int argc, char **argv) { return v_main(argc, argv); }
