// Delivered components: installing them, and bringing those of earlier versions up to date.

#include <cstring>

#include <glib.h>
#include <gtest/gtest.h>

#include "base/owned.h"
#include "faults/component_promises.h"
#include "workspace/delivered_components.h"

namespace {

// A file as an earlier version delivered it. No file can be made for a given digest, so the tests
// replace the known digest by that of these texts.
struct EarlierFile {
  const char *text;
  const char *digest;
};
constexpr EarlierFile earlier_files[] = {
    {"earlier standard", "fbf64e8b689a7e27434603f2cbb84636"},
    {"earlier modern", "33afda9bcf867ddd84ad06d49f796460"},
    {"earlier simple", "a03d1a613373bc8f9765210b128ccdcf"},
};

const char *take_for(const char *digest) {
  for (const EarlierFile &file : earlier_files) {
    const OwnedText real(g_compute_checksum_for_string(G_CHECKSUM_MD5, file.text, -1));
    if (std::strcmp(real.get(), digest) == 0) {
      return file.digest;
    }
  }
  return digest;
}

} // namespace

// Replaces GLib's function.
extern "C" void g_checksum_get_digest(GChecksum *checksum, guint8 *digest, gsize *length) {
  const char *text = take_for(g_checksum_get_string(checksum));
  for (gsize i = 0; i < *length; i++) {
    digest[i] = static_cast<guint8>(g_ascii_xdigit_value(text[2 * i]) * 16 +
                                    g_ascii_xdigit_value(text[2 * i + 1]));
  }
}

namespace {

class ComponentFaults : public testing::Test {
protected:
  ComponentFaults() { fake_platform.install_folder = on_ground("install"); }

  static std::optional<std::string> install() {
    return install_bundled_components(on_ground("workspace").c_str(), "codesets")
               ? std::optional<std::string>("")
               : std::nullopt;
  }

  const FakePlatformReset reset;
  const Contents delivered = {{"install/codesets/a.codeset", std::string(20000, 'a')},
                              {"install/codesets/b.codeset", std::string(5000, 'b')},
                              {"install/codesets/c.codeset", "c"},
                              {"install/codesets/folder/", ""},
                              {"workspace/settings.xml", "the user's"}};
};

TEST_F(ComponentFaults, InstallIntoANewFolder) {
  sweep({.name = "install components into a new folder",
         .ground = delivered,
         .run = install,
         .promises = install_promises("codesets", untouched, untouched)});
}

TEST_F(ComponentFaults, InstallIntoAFolderThatIsThere) {
  Contents ground = delivered;
  ground["workspace/codesets/b.codeset"] = "the user's own";
  ground["workspace/codesets/d.codeset"] = "the user's as well";
  sweep({.name = "install components into a folder that is there",
         .ground = ground,
         .run = install,
         .promises = install_promises("codesets", untouched, partly_done)});
}

TEST_F(ComponentFaults, Upgrade) {
  const std::vector<Call> file_calls = {Call::fopen,  Call::open,  Call::fread,   Call::read,
                                        Call::fwrite, Call::write, Call::fflush,  Call::close,
                                        Call::fclose, Call::stat,  Call::opendir, Call::readdir,
                                        Call::unlink};
  const auto upgrade = []() -> std::optional<std::string> {
    v_delivered_components_upgrade_layouts(on_ground("workspace").c_str(),
                                           on_ground("workspace/layouts").c_str());
    return "";
  };
  // A failing call never makes the upgrade fail: the workspace stays usable with the files that it
  // has. A file that the user has changed is never touched, and none is left half written.
  const auto whole_or_gone = [](const Trial &trial) {
    for (const auto &[name, content] : trial.after) {
      const auto before = trial.before.find(name);
      const auto undisturbed = trial.undisturbed.find(name);
      const bool is_old = before != trial.before.end() && content == before->second;
      const bool is_new = undisturbed != trial.undisturbed.end() && content == undisturbed->second;
      if (!is_old && !is_new && !content.empty()) {
        return name + " is half written";
      }
    }
    for (const auto &[name, content] : trial.before) {
      const auto undisturbed = trial.undisturbed.find(name);
      const bool is_of_the_user =
          undisturbed != trial.undisturbed.end() && undisturbed->second == content;
      if (is_of_the_user && !trial.after.contains(name)) {
        return name + " is gone";
      }
    }
    return std::string();
  };
  sweep({.name = "upgrade layouts",
         .ground = {{"install/layouts/standard.layout", "new standard"},
                    {"install/layouts/bundled_grey_blocks.layout", "new grey"},
                    {"install/layouts/bundled_modern.layout", std::string(20000, 'm')},
                    {"install/layouts/bundled_simple.layout", "new simple"},
                    {"workspace/layouts/standard.layout", "earlier standard"},
                    {"workspace/layouts/bundled_modern.layout", "earlier modern"},
                    {"workspace/layouts/bundled_simple.layout", "earlier simple"},
                    {"workspace/layouts/bundled_white_blocks.layout", "the user's own"}},
         .run = upgrade,
         .promises = {{{Call::closedir}, "*", 0, Result::succeeds, "", done},
                      {file_calls, "*", 0, Result::succeeds, "", whole_or_gone}}});
}

} // namespace
