#pragma once
// A benchmark of something that failed would only be fast.

#include <stdexcept>

#include "base/error.h"

template <typename Result>
Result require(Result result) {
  if (!result) {
    throw std::runtime_error(v_error_get());
  }
  return result;
}
