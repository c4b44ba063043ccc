#pragma once
// Owning types for everything that the program allocates. Their destructors free what they own; a
// raw pointer never owns anything. They have no run-time overhead.

#include <cstdio>
#include <memory>

#include <dirent.h>
#include <glib.h>
#include <libxml/tree.h>

// Deleter that calls a fixed function. The function is part of the type, so the owner is no larger
// than a pointer.
template <auto destroy>
struct CallOnDestroy {
  template <typename T>
  void operator()(T *thing) const noexcept {
    destroy(thing);
  }
};

template <typename T, auto destroy>
using Owned = std::unique_ptr<T, CallOnDestroy<destroy>>;

struct CloseFile {
  void operator()(std::FILE *file) const noexcept { std::fclose(file); }
};

struct CloseFolder {
  void operator()(DIR *listing) const noexcept { closedir(listing); }
};

// xmlFree is a variable, not a function, so it cannot be a template argument.
struct FreeXmlText {
  void operator()(xmlChar *text) const noexcept { xmlFree(text); }
};

// Text or bytes from GLib's allocator; the encoding is stated where one is returned.
using OwnedText = Owned<char, g_free>;
using OwnedError = Owned<GError, g_error_free>;
using OwnedXmlDoc = Owned<xmlDoc, xmlFreeDoc>;
using OwnedXmlText = std::unique_ptr<xmlChar, FreeXmlText>;
// These two ignore a failure to close; v_fs_utils_close_file and v_fs_utils_close_folder report it.
using OwnedFile = std::unique_ptr<std::FILE, CloseFile>;
using OwnedFolder = std::unique_ptr<DIR, CloseFolder>;

inline OwnedText copy_text(const char *text) { return OwnedText(g_strdup(text)); }

// Receives an owned pointer from a C function with a T** argument: f(receive(owned)).
template <typename Holder>
class Receiver {
public:
  explicit Receiver(Holder &receiving) : holder(receiving) { holder.reset(); }
  ~Receiver() { holder.reset(received); }
  Receiver(const Receiver &) = delete;
  Receiver &operator=(const Receiver &) = delete;
  operator typename Holder::pointer *() { return &received; }

private:
  Holder &holder;
  typename Holder::pointer received = nullptr;
};

template <typename Holder>
Receiver<Holder> receive(Holder &holder) {
  return Receiver<Holder>(holder);
}
