// Helpers of the readers of the encoders, variables and the variable list.
#ifndef ZRCOMMON920R_XML_VARS_DETAIL_PERSIST_H
#define ZRCOMMON920R_XML_VARS_DETAIL_PERSIST_H

#include <istream>
#include <string>

#include "zrcommon920r/xml/core/objstream.h"

namespace ZRXML_920 {
namespace detail {

// The start of an object of that name, on a stream that was clean to begin with.
inline bool ReadStart(std::istream & in, const std::string & name) {
  return in.good() && ParseStartObj(in, name);
}

// Prints message on std::cerr and throws a new IOException.
[[noreturn]] void FailRead(const char * message);

}  // namespace detail
}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_VARS_DETAIL_PERSIST_H
