#pragma once
// The promises of installing the delivered components of one kind. Creating a workspace installs
// three kinds.

#include <string>
#include <vector>

#include "faults/promises.h"

// at_first: the folder when it fails before the first file, later: when it fails after that.
inline std::vector<Promise> install_promises(const std::string &kind, const Outcome &at_first,
                                             const Outcome &later) {
  const std::string source = "install/" + kind;
  const std::string target = "workspace/" + kind;
  const std::vector<Call> opening = {Call::fopen, Call::open};
  const std::vector<Call> reading = {Call::fread, Call::read};
  const std::vector<Call> writing = {Call::fwrite, Call::write, Call::fflush, Call::fclose,
                                     Call::close};
  const std::vector<Call> closing = {Call::fclose, Call::close};
  return {
      // A source whose status cannot be read is opened anyway.
      {{Call::stat}, source, 0, Result::succeeds, "", done},
      {{Call::opendir}, source, 0, Result::fails, "Cannot open folder.\n\n{error}", at_first},
      {{Call::stat}, target, 0, Result::fails, "Cannot get file status.\n\n{error}", at_first},
      {{Call::mkdir}, target, 0, Result::fails, "Cannot create folder.\n\n{error}", at_first},
      {{Call::readdir}, source, 0, Result::fails, "Cannot read folder contents.\n\n{error}", later},
      {{Call::closedir}, source, 0, Result::succeeds, "", done},
      // The second call is made when the file is opened, and only checks whether that could block.
      {{Call::stat}, source + "/*", 2, Result::succeeds, "", done},
      {{Call::stat}, target + "/*", 2, Result::succeeds, "", done},
      {{Call::stat}, source + "/*", 0, Result::fails, "Cannot get file status.\n\n{error}", later},
      {{Call::stat}, target + "/*", 0, Result::fails, "Cannot get file status.\n\n{error}", later},
      {opening, source + "/*", 0, Result::fails, "Opening input file failed.", later},
      {reading, source + "/*", 0, Result::fails, "File read error.", later},
      {closing, source + "/*", 0, Result::succeeds, "", done},
      {{Call::unlink}, target + "/*", 0, Result::fails, "Creating file failed.", later},
      {opening, target + "/*", 0, Result::fails, "Creating file failed.", later},
      {writing, target + "/*", 0, Result::fails, "File write error.", later},
  };
}
