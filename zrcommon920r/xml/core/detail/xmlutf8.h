// Narrow text to UTF-8 for the XML writer (xmlutf8.cpp); not part of the interface.
#ifndef ZRCOMMON920R_XML_CORE_DETAIL_XMLUTF8_H
#define ZRCOMMON920R_XML_CORE_DETAIL_XMLUTF8_H

#include <cstddef>
#include <string>

namespace ZRXML_920 {
namespace detail {

// Whether the n bytes at text are all below 0x80, which every codeset here reads as ASCII.
bool IsAscii(const char * text, std::size_t n);

// Appends the n bytes at text, read in the codeset of the calling thread's LC_CTYPE locale,
// as UTF-8. The codeset is read as ISO-8859-1 when it is ASCII or iconv cannot open it;
// each byte it rejects becomes U+FFFD and reading goes on at the next byte.
void AppendUtf8(std::string & out, const char * text, std::size_t n);

}  // namespace detail
}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_CORE_DETAIL_XMLUTF8_H
