#pragma once
// Makes the graphics library refuse the ownership of a surface's data, and observes when the data
// is freed. The linker option --wrap redirects the program's calls to these functions.

#include <vector>

#include <cairo.h>

class Handover {
public:
  Handover();
  ~Handover();
  Handover(const Handover &) = delete;
  Handover &operator=(const Handover &) = delete;

  bool fails_for_pixels = false;
  bool fails_for_encoded_data = false;

  int count = 0;                   // of blocks that were handed over, refused ones included
  std::vector<const void *> alive; // of these, those not freed yet; only compared
};
