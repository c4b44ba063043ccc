#pragma once
// A second opinion on what a file says. Codeset, settings and pointer files are read from the
// parser library's finished tree, one rule after the other and without any care for speed. Nothing
// of the program's own readers is used, so that an error of theirs is not repeated here; only the
// natural order, which has tests of its own, is shared.

#include <map>
#include <optional>
#include <string>

#include "support/values/remarks.h"

// All text is ISO-8859-1.
struct CodesetContents {
  Translations name;
  Translations author;
  std::optional<std::string> version;
  Remarks remarks; // in code order
};

bool operator==(const CodesetContents &a, const CodesetContents &b);

// Null when the file is refused. The message is the one that the error state holds afterwards, if
// it held the given one before.
struct CodesetReading {
  std::optional<CodesetContents> contents;
  std::string message;
};

CodesetReading second_read_codeset(const std::string &path, const std::string &held_message);

// Fields of a settings record by name, each as text.
using SettingsFields = std::map<std::string, std::string>;

struct SettingsReading {
  bool is_read;
  SettingsFields fields;
  std::string message;
  // Some element of a settings file could not be used. Then readers may differ in which of several
  // messages is the last one.
  bool is_partly_read;
};

// Overwrites the given fields, named as in fields_of_settings, with those of the file.
SettingsReading second_read_settings(const std::string &path, SettingsFields fields,
                                     const std::string &held_message);
// A list of texts as one field.
std::string settings_field_of(const std::vector<std::string> &texts);
std::string settings_field_of(const Remarks &remarks);

struct PointerReading {
  std::optional<std::string> workspace_path; // UTF-8; null when the file is refused
  std::string message;
};

PointerReading second_read_pointer(const std::string &path, const std::string &held_message);

// The bytes of the codeset's file.
std::string second_write_codeset(const CodesetContents &contents);

// The result of setting the translations one after the other.
Translations second_collect(const Translations &translations);
