#include <fcntl.h>
#include <unistd.h>

#include "tools/commands.h"

namespace {

// The next file opened would get the descriptor of a standard stream that the caller has closed,
// and messages would be written into that file. The substitutes are opened in the wrong direction,
// so that reading and writing fail as they do on a closed stream.
void occupy_closed_streams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; stream++) {
    if (fcntl(stream, F_GETFD) == -1) {
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
}

} // namespace

// Does not call setlocale, so that texts, numbers and system messages are the same in every locale,
// and UTF-8.
int main(int argc, char **argv) {
  occupy_closed_streams();
  return v_tools_run(argc, argv);
}
