#pragma once
// Owning references to GObjects, and the three ways to get one. Widgets inside a container and
// windows stay raw pointers: the container owns the former, the toolkit the latter, and
// gtk_widget_destroy ends a window.

#include <glib-object.h>

#include "base/owned.h"

template <typename T>
using OwnedObject = Owned<T, g_object_unref>;

// Takes over a reference that the caller was given (transfer full). Null gives null.
template <typename T>
OwnedObject<T> take(T *object) {
  return OwnedObject<T>(object);
}

// Adds a reference of the caller's own. Null gives null.
template <typename T>
OwnedObject<T> share(T *object) {
  return OwnedObject<T>(object == nullptr ? nullptr : static_cast<T *>(g_object_ref(object)));
}

// Makes the floating reference of a new widget the caller's own. Null gives null.
template <typename T>
OwnedObject<T> sink(T *object) {
  return OwnedObject<T>(object == nullptr ? nullptr : static_cast<T *>(g_object_ref_sink(object)));
}
