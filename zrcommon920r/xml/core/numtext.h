// Number text: the one place that decides how a double looks in XML, JSON, PMML and
// StatXML. Text meant for machines goes through the "C" locale whatever the process locale
// says; text made by the run-time's sprintf follows the process locale.
#ifndef ZRCOMMON920R_XML_CORE_NUMTEXT_H
#define ZRCOMMON920R_XML_CORE_NUMTEXT_H

#include <string>

namespace ZRXML_920 {

// value as text. useCFormat true: the run-time's sprintf with format (null: "%.15g"), so
// the decimal separator is the process locale's ("1,5" under a comma locale); a text of
// any length comes out whole. false: ReplaceSep(value, format), the "C"-locale "%.15g"
// text, whatever format says. NaN and infinities print as the run-time prints them
// ("nan", "-nan", "inf", "-inf"); the system-missing value prints as a number. A format
// must convert one double; one that the run-time's snprintf fails on gives "".
std::string Format(double value, bool useCFormat, const char * format);
// The exact decimal digits of value, with a leading minus when negative, over the whole
// range of long (a 64-bit long too, which a double could not carry).
std::string Format(long value);
// "C"-locale general form with 15 significant digits, as "%.15g": 0.1 gives "0.1", 1e20
// "1e+20"; rounded at the fifteenth digit, so the text need not read back to the same
// bits. format is accepted and ignored.
std::string ReplaceSep(double value, const char * format);
// "C"-locale fixed form with 16 digits after the point: 1.5 gives "1.5000000000000000".
std::string ReplaceSep(double value);
// Always ";".
std::string GetListSeparator();
// The decimal_point text of localeconv() at the moment of the call.
std::string GetDecimalCharacter();
// Always "%.15g".
std::string GetDefaultNumericFormat();

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_CORE_NUMTEXT_H
