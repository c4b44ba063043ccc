#pragma once
// Fails the benchmark for a null or false result: the time of a failed call would only be short.

#include <stdexcept>

#include "base/error.h"

template <typename Result>
Result require(Result result) {
  if (!result) {
    throw std::runtime_error(v_error_get());
  }
  return result;
}
