// The markup of an XML element on one line, for comparison with text written by hand.
#ifndef ZRCOMMON920R_TESTS_SUPPORT_MARKUP_H
#define ZRCOMMON920R_TESTS_SUPPORT_MARKUP_H

#include <string>

#include "zrcommon920r/xml/core/xmltree.h"

namespace zrtest {

// element's markup without layout; "(null)" for a null pointer.
std::string FlatMarkup(const ZRXML_920::XMLElement * element);

// The same for an element a factory made, which is deleted afterwards.
std::string TakeFlatMarkup(ZRXML_920::XMLElement * made);

}  // namespace zrtest

#endif  // ZRCOMMON920R_TESTS_SUPPORT_MARKUP_H
