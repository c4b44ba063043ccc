#pragma once
// Owning references to GObjects, and the three ways to get one. Widgets inside a container and
// windows are raw pointers: the container owns the former, the toolkit the latter until
// gtk_widget_destroy.

#include <glib-object.h>

#include "base/owned.h"

template <typename T>
using OwnedObject = Owned<T, g_object_unref>;

// Takes ownership of a reference returned to the caller (transfer full). Null gives null.
template <typename T>
OwnedObject<T> take(T *object) {
  return OwnedObject<T>(object);
}

// Adds a reference (transfer none). Null gives null.
template <typename T>
OwnedObject<T> share(T *object) {
  return OwnedObject<T>(object == nullptr ? nullptr : static_cast<T *>(g_object_ref(object)));
}

// Sinks the floating reference of a new widget. Null gives null.
template <typename T>
OwnedObject<T> sink(T *object) {
  return OwnedObject<T>(object == nullptr ? nullptr : static_cast<T *>(g_object_ref_sink(object)));
}
