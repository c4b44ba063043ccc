#pragma once
// Documents without a root element. The XML library refuses such files, but its documentation lets
// a document have none, so the library is made to say so. A test program that links
// xml_roots.cpp redirects xmlDocGetRootElement with vantorelle_wrap.

// While it exists, no document has a root element.
class MissingXmlRoots {
public:
  MissingXmlRoots();
  ~MissingXmlRoots();
  MissingXmlRoots(const MissingXmlRoots &) = delete;
  MissingXmlRoots &operator=(const MissingXmlRoots &) = delete;
};
