#pragma once
// An element or processing instruction of a document, recorded from the parser's events. The record
// is reused for the next one and keeps its memory.

#include <algorithm>
#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/xml_element.h"

// A list whose items keep their memory when the list is emptied.
template <typename Items>
class ReusedList {
public:
  typename Items::value_type &add() {
    if (count == items.size()) {
      items.emplace_back();
    }
    return items[count++];
  }
  void clear() { count = 0; }
  auto begin() const { return items.begin(); }
  auto end() const { return items.begin() + static_cast<typename Items::difference_type>(count); }

private:
  Items items;
  std::size_t count = 0;
};

struct RecordedAttribute {
  std::string name;
  std::string value;
};

class RecordedElement : public XmlElement {
public:
  bool has_name(std::string_view other) const override { return *name == other; }
  bool is_element() const override { return !is_instruction; }
  XmlText get_attribute(const char *wanted) const override {
    for (const RecordedAttribute &attribute : attributes) {
      if (std::strcmp(attribute.name.c_str(), wanted) == 0) {
        return v_xml_borrowed_text(attribute.value);
      }
    }
    return {};
  }
  XmlText get_text() const override { return v_xml_borrowed_text(text); }
  bool visit_children(const XmlChildVisitor &) const override { return true; }

  void restart(const std::string *new_name, bool as_instruction) {
    name = new_name;
    is_instruction = as_instruction;
    attributes.clear();
    text.clear();
  }

  const std::string *name = nullptr; // borrowed from the reader's list
  bool is_instruction = false;
  ReusedList<std::vector<RecordedAttribute>> attributes;
  std::string text;
};

class RecordedParent final : public RecordedElement {
public:
  bool visit_children(const XmlChildVisitor &visit) const override {
    return std::all_of(children.begin(), children.end(), std::cref(visit));
  }

  // A deque: a hostile file has millions of children, and a growing vector would move all of them
  // and need twice the memory.
  ReusedList<std::deque<RecordedElement>> children;
};
