#pragma once
// The XML form of a language-tagged string: sibling elements of the same name, one per translation,
// each with the attribute "lang" and the text as content.

#include <cstdio>
#include <string>

#include <libxml/tree.h>

#include "base/xml_element.h"
#include "langstr/langstr.h"

// Collapses whitespace inside a text to single spaces, or keeps its line feeds.
enum class LangstrSpacing { compact, keep_lines };
enum class LangTag { may_be_empty, required };

// Reads every child element of that name into langstr. Without such an element it succeeds with an
// empty string. Stops at the first failure: langstr is empty and the result is false with the
// message of v_xml_parse_langstr_translation.
bool v_xml_parse_langstr(OwnedLangstr &langstr, xmlDoc *document, const xmlNode *parent,
                         const char *element_name, LangstrSpacing spacing);
// The same; null with that message, or with "Missing XML node: <name>" when there is no such
// element.
OwnedLangstr v_xml_parse_required_langstr(xmlDoc *document, const xmlNode *parent,
                                          const char *element_name, LangstrSpacing spacing);
// Reads one element and sets it in langstr. False with "Missing XML attribute: lang", "Empty XML
// lang attribute where not allowed.", "Empty text content in XML where not allowed." or the message
// of the attribute or text getter.
bool v_xml_parse_langstr_translation(OwnedLangstr &langstr, xmlDoc *document,
                                     const xmlNode *element, LangTag lang_tag,
                                     LangstrSpacing spacing);
// The same into a collection, for callers that read many elements one at a time.
bool v_xml_collect_langstr_translation(VLangstrCollection &collection, const XmlElement &element,
                                       LangTag lang_tag, LangstrSpacing spacing);

// Appends one line per translation, indented by depth tabs, in ISO-8859-1; tag and text are
// escaped.
void v_xml_append_langstr(std::string &xml, const VLangstr *langstr, const char *element_name,
                          int depth);
// Writes the same. False with "File I/O error when writing to file."; part of it may be written.
bool v_xml_write_langstr(std::FILE *stream, const VLangstr *langstr, const char *element_name,
                         int depth);
// Adds one child element per translation to a tree. False with the message of
// v_xml_add_child_element_with_latin1_text_content or v_xml_set_attribute.
bool v_xml_add_langstr(xmlNode *parent, const VLangstr *langstr, const char *element_name);
