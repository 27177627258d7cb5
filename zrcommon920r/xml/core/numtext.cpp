// Number text through the process locale (sprintf) or the "C" locale (to_chars, which
// prints as "%.15g" and "%.16f" do in the "C" locale, byte for byte).
#include "zrcommon920r/xml/core/numtext.h"

#include <charconv>
#include <clocale>
#include <cstdio>
#include <system_error>

namespace ZRXML_920 {

namespace {

constexpr const char * kDefaultFormat = "%.15g";
// The local buffer of the sprintf route; a longer text is formatted again into a string
// of its own length.
constexpr int kFormatBuffer = 112;
// Significant digits of the general form, and digits after the point of the fixed form.
constexpr int kGeneralDigits = 15;
constexpr int kFixedDigits = 16;

std::string ToChars(double value, std::chars_format form, int precision) {
  // Longest fixed text: 309 integer digits, a sign, a point and 16 decimals.
  char buf[352];
  const std::to_chars_result r = std::to_chars(buf, buf + sizeof buf, value, form, precision);
  return r.ec == std::errc() ? std::string(buf, r.ptr) : std::string();
}

}  // namespace

std::string Format(double value, bool useCFormat, const char * format) {
  if (format == nullptr) format = kDefaultFormat;
  if (!useCFormat) return ReplaceSep(value, format);
  char buf[kFormatBuffer];
  const int n = std::snprintf(buf, sizeof buf, format, value);
  if (n < 0) return std::string();
  if (n < kFormatBuffer) return std::string(buf, static_cast<std::size_t>(n));
  std::string text(static_cast<std::size_t>(n) + 1, '\0');
  std::snprintf(&text[0], text.size(), format, value);
  text.resize(static_cast<std::size_t>(n));
  return text;
}

std::string Format(long value) {
  char buf[24];
  const std::to_chars_result r = std::to_chars(buf, buf + sizeof buf, value);
  return std::string(buf, r.ptr);
}

std::string ReplaceSep(double value, const char *) {
  return ToChars(value, std::chars_format::general, kGeneralDigits);
}

std::string ReplaceSep(double value) {
  return ToChars(value, std::chars_format::fixed, kFixedDigits);
}

std::string GetListSeparator() {
  return ";";
}

std::string GetDecimalCharacter() {
  const std::lconv * lc = std::localeconv();
  return lc != nullptr && lc->decimal_point != nullptr ? lc->decimal_point : ".";
}

std::string GetDefaultNumericFormat() {
  return kDefaultFormat;
}

}  // namespace ZRXML_920
