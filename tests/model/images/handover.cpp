#include "handover.h"

#include <glib.h>

namespace {

Handover *current = nullptr;

// True when the surface must refuse the block.
bool hand_over(const void *block, bool Handover::*fails) {
  if (current == nullptr) {
    return false;
  }
  current->count++;
  current->alive.push_back(block);
  return current->*fails;
}

} // namespace

cairo_status_t
real_set_user_data(cairo_surface_t *surface, const cairo_user_data_key_t *key, void *data,
                   cairo_destroy_func_t destroy) __asm__("__real_cairo_surface_set_user_data");
cairo_status_t
wrapped_set_user_data(cairo_surface_t *surface, const cairo_user_data_key_t *key, void *data,
                      cairo_destroy_func_t destroy) __asm__("__wrap_cairo_surface_set_user_data");
cairo_status_t real_set_mime_data(cairo_surface_t *surface, const char *media_type,
                                  const unsigned char *data, unsigned long length,
                                  cairo_destroy_func_t destroy,
                                  void *closure) __asm__("__real_cairo_surface_set_mime_data");
cairo_status_t wrapped_set_mime_data(cairo_surface_t *surface, const char *media_type,
                                     const unsigned char *data, unsigned long length,
                                     cairo_destroy_func_t destroy,
                                     void *closure) __asm__("__wrap_cairo_surface_set_mime_data");
void real_free(void *block) __asm__("__real_g_free");
void wrapped_free(void *block) __asm__("__wrap_g_free");

cairo_status_t wrapped_set_user_data(cairo_surface_t *surface, const cairo_user_data_key_t *key,
                                     void *data, cairo_destroy_func_t destroy) {
  return hand_over(data, &Handover::fails_for_pixels)
             ? CAIRO_STATUS_NO_MEMORY
             : real_set_user_data(surface, key, data, destroy);
}

cairo_status_t wrapped_set_mime_data(cairo_surface_t *surface, const char *media_type,
                                     const unsigned char *data, unsigned long length,
                                     cairo_destroy_func_t destroy, void *closure) {
  return hand_over(closure, &Handover::fails_for_encoded_data)
             ? CAIRO_STATUS_SURFACE_FINISHED
             : real_set_mime_data(surface, media_type, data, length, destroy, closure);
}

void wrapped_free(void *block) {
  if (current != nullptr) {
    std::erase(current->alive, block);
  }
  real_free(block);
}

Handover::Handover() { current = this; }
Handover::~Handover() { current = nullptr; }
