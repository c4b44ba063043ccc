#include <fcntl.h>
#include <unistd.h>

#include "tools/commands.h"

namespace {

// A standard stream that the caller has closed would have the number of the next file that is
// opened, and messages would be written into that file. Reading from the substitute for standard
// input, and writing to those for the other two, fails as it would with a closed one.
void occupy_closed_streams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; stream++) {
    if (fcntl(stream, F_GETFD) == -1) {
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

} // namespace

// Without setlocale: all texts, numbers and messages of the system are the same in every locale,
// and UTF-8.
int main(int argc, char **argv) {
  occupy_closed_streams();
  return v_tools_run(argc, argv);
}
