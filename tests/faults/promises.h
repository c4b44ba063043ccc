#pragma once
// The promises of an operation in which a call fails, and the sweep that checks them for every
// call, one after the other.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "faults/injector.h"
#include "model/workspace/workspace_parts.h"

// The folder that everything happens in, the same for the whole program. The user's home folder is
// "home" in it, the configuration folder "home/.config", the state folder "home/.local/state", the
// installation "install".
std::string ground_folder();
// The full path of an entry of that folder.
std::string on_ground(const std::string &name);

// Contents of the folder before and after a run in which a call failed, and after a run without a
// failure.
struct Trial {
  const Contents &before;
  const Contents &after;
  const Contents &undisturbed;
  const Hit &hit;
};

// Returns the broken promise, "" if none is broken.
using Outcome = std::function<std::string(const Trial &)>;

// As before, byte for byte.
std::string untouched(const Trial &trial);
// As if nothing had failed.
std::string done(const Trial &trial);
// As before, but the file or folder of the failing call is missing.
std::string without_what_failed(const Trial &trial);
// As if nothing had failed, but the file or folder of the failing call is as before.
std::string done_but_for_what_failed(const Trial &trial);
// Every file and folder as before or as if nothing had failed, as far as the operation had come.
std::string partly_done(const Trial &trial);
// As before, but the named file is missing (without) or empty (with_empty).
Outcome without(const std::string &name);
Outcome with_empty(const std::string &name);
// As before, but the named entry may have been created.
Outcome untouched_but_for(const std::string &name);

enum class Result { fails, succeeds };

struct Promise {
  std::vector<Call> calls;
  std::string where; // path below the ground, "*" stands for any text
  int occurrence;    // of the call on that path, 0 for any
  Result result;
  std::string message; // on failure; "{error}" is the system's, "*" any text
  Outcome outcome;
};

struct Operation {
  std::string name;
  Contents ground;
  // Returns the operation's result as text, none when it failed.
  std::function<std::optional<std::string>()> run;
  // The first matching promise applies. A failing call without a matching promise fails the test.
  std::vector<Promise> promises;
  // The start of every message about exhausted memory; "*" stands for any text.
  std::string message_without_memory = "?*";
  // False for operations that only return false and set no message.
  bool tells_causes = true;
  // Pattern of the entries that may be left when they cannot be removed. "*" stands for any text.
  std::string scratch = "";
};

// Makes each call fail in turn until the operation runs through without a fault, and checks after
// each: the result, the message, the files on disk, and that nothing is left open or allocated.
// Besides single faults, all calls of the file system from the Nth on fail, as on a disk that was
// removed. Allocations fail one at a time: when every allocation fails, libxml2 itself crashes.
void sweep(const Operation &operation);
