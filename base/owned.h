#pragma once
// The owning types of everything that the system allocates: a value of one of them frees what it
// holds, a raw pointer never does. Nothing here has a run-time cost over the pointer itself.

#include <cstdio>
#include <memory>

#include <dirent.h>
#include <glib.h>
#include <libxml/tree.h>

// Calls one fixed function on the pointer. The function is named, not stored.
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

// xmlFree is a variable, not a function, and so cannot be named in a type.
struct FreeXmlText {
  void operator()(xmlChar *text) const noexcept { xmlFree(text); }
};

// Text or bytes from GLib's allocator; the encoding is stated where one is returned.
using OwnedText = Owned<char, g_free>;
using OwnedError = Owned<GError, g_error_free>;
using OwnedXmlDoc = Owned<xmlDoc, xmlFreeDoc>;
using OwnedXmlText = std::unique_ptr<xmlChar, FreeXmlText>;
// These two ignore a failure of closing; v_fs_utils_close_file and v_fs_utils_close_folder report
// it.
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
