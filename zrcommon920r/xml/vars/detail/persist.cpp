// Failure of the readers of the encoders, variables and the variable list.
#include "zrcommon920r/xml/vars/detail/persist.h"

#include <iostream>

#include "zrcommon920r/common/status.h"

namespace ZRXML_920 {
namespace detail {

void FailRead(const char * message) {
  std::cerr << message;
  throw new IOException();
}

}  // namespace detail
}  // namespace ZRXML_920
