#pragma once
// Makes the graphics library refuse what a surface is to own, and watches when that is freed. The
// linker leads the program's calls here.

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
