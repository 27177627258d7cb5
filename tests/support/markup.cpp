// The markup of an XML element on one line.
#include "support/markup.h"

#include <memory>

namespace zrtest {

std::string FlatMarkup(const ZRXML_920::XMLElement * element) {
  if (element == nullptr) return "(null)";
  ZRXML_920::ExportFormat format;
  format.SetFormat(false);
  std::string out;
  element->ToString(out, format);
  return out;
}

std::string TakeFlatMarkup(ZRXML_920::XMLElement * made) {
  const std::unique_ptr<ZRXML_920::XMLElement> owned(made);
  return FlatMarkup(owned.get());
}

}  // namespace zrtest
