// Diagnostic display: free functions that print named scalars, vectors and maps as plain
// text lines to one process-wide output stream, std::cout unless SetOutStream changes it.
//
// Every line is written as a line break and a flush, then the line's text and a flush, so
// a run's output ends without a final line break. Numbers are formatted by snprintf, so
// the stream's locale, width and precision never change the text (the C library's own
// locale still applies). The stream is one unsynchronised global: displays from two
// threads at once interleave.
#ifndef ZRCOMMON920R_DISPLAY_DISPLAY_H
#define ZRCOMMON920R_DISPLAY_DISPLAY_H

#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace ZRDisplay_920 {

// Makes os the output stream of every later display call. Only the address is kept: os
// must outlive its use, and the caller restores the previous stream when done.
void SetOutStream(std::ostream & os);

// The current output stream; &std::cout until SetOutStream is called, even from another
// library's static initialisers.
std::ostream * GetOutStream();

// Writes count line breaks (none when count <= 0), then text, then flushes; unlike every
// other function here it continues the current line when count is 0. A null text prints
// nothing at all, not even the breaks.
void DisplayText(const std::int32_t & count, const char * text);

// As above with the characters of text up to its first NUL.
void DisplayText(const std::int32_t & count, const std::string & text);

// One line "name = true" or "name = false".
void DisplayB(std::string name, bool value);

// One line "name = %g", or "name = miss" for the system-missing value.
void DisplayD(std::string name, double value);

// One line "name = %.17g" (enough digits to read the double back), or "name = miss".
void DisplayDF(std::string name, double value);

// One line "name = %d".
void DisplayI(std::string name, int value);

// One line "name = %d" for a 32-bit integer.
void DisplayL(std::string name, std::int32_t value);

// One line "name = value".
void DisplayS(std::string name, std::string value);

// One line "name: YYYY-MM-DD-hh-mm-ss" with the current local time (month from 1, fields
// zero-padded to two digits). Prints nothing when the local time can't be obtained.
void DisplayTimeStamp(std::string name);

// Packed arrays and vectors. A header line "name (size = n)" is followed by the elements
// in lines of a fixed number, each line starting with one blank before the first
// element's own leading blank; a part-filled last line is printed, an empty container
// prints the header alone.

// count doubles from values, 10 to a line as " %g" or " miss". The header is name alone
// when showSize is false. A count below 1, or a null values, means no elements.
void DisplayDA(std::string name, const double * values, int count, bool showSize);

// The doubles of values, 10 to a line as " %g" or " miss". With full, one value to a line
// instead, as "  = %.17g" or " miss".
void DisplayDV(std::string name, const std::vector<double> & values, bool full = false);

// The ints of values as " %d", 25 to a line.
void DisplayIV(std::string name, const std::vector<int> & values);

// The unsigned ints of values as " %u", 25 to a line.
void DisplayUV(std::string name, const std::vector<unsigned int> & values);

// The flags of values as " t" or " f", 35 to a line.
void DisplayBV(std::string name, const std::vector<bool> & values);

// The strings of values, each as a blank and the string in double quotes, 10 to a line.
void DisplaySV(std::string name, const std::vector<std::string> & values);

// The pairs of values as "(%d,%d) ", 10 to a line.
void DisplayVPII(std::string name, const std::vector<std::pair<int, int>> & values);

// count doubles without a header, 10 to a line as " %g" or " miss"; the first line lacks
// the extra leading blank of the following ones. Nothing for a count below 1 or null values.
void DisplayDAS(const double * values, int count);

// Pairs one to a line after a "name (size = n)" header: " " then the first and the second
// number, each " %g" or " miss", separated by a blank.
void DisplayVPD(std::string name, const std::vector<std::pair<double, double>> & values);

// Pairs one to a line after a "name (size = n)" header: " ", the number (" %g" or
// " miss"), a blank, then the int as "%d".
void DisplayVPDI(std::string name, const std::vector<std::pair<double, int>> & values);

// "name <none>" for no vectors; otherwise name on a line and then each vector i through
// DisplayDV under the name "vec[i]", with full passed on.
void DisplayDVV(std::string name, const std::vector<std::vector<double>> & values,
                bool full = false);

// As DisplayDVV, each vector through DisplaySV.
void DisplaySVV(std::string name, const std::vector<std::vector<std::string>> & values);

// Header "name ( number of rows =  r, number of columns =  c )", the columns part only
// when there is a row (c is the first row's size); then one line per row with the
// elements as falseText or trueText and no separator. An empty row prints an empty line.
void DisplayBVV(std::string name, const std::vector<std::vector<bool>> & values,
                const std::string & falseText, const std::string & trueText);

// Maps. An empty map prints the one line "name <empty>"; entries come in ascending key
// order.

// name, "map size = n", then the entries as " (%d,%d)", 10 to a line; the first line
// lacks the extra leading blank of the following ones.
void DisplayIIM(std::string name, const std::map<int, int> & values);

// As DisplayIIM with " (%g,%g)"; the system-missing value prints as a number here.
void DisplayDDM(std::string name, const std::map<double, double> & values);

// name, then every entry as " (%d,%d)" on one line of any length; no size line.
void DisplayVIM(std::string name, const std::map<int, int> & values);

// name, then per entry the key through DisplaySV as "Map's StringList:" and the value
// through DisplayD as "Map's double".
void DisplaySLDM(std::string name, const std::map<std::vector<std::string>, double> & values);

// name, then per entry the key through DisplayIV as "Map key" and the value through
// DisplayDV as "Map value".
void DisplayIntVecDVecMap(std::string name,
                          const std::map<std::vector<int>, std::vector<double>> & values);

// name, then per entry the key through DisplayIV as "Map key" and the value through
// DisplayI as "Map value".
void DisplayIntVecIntMap(std::string name, const std::map<std::vector<int>, int> & values);

// Triangular display of a packed lower triangle by rows. Row i (from 0) takes the next
// i + 1 elements; a row that would run past the end is cut to what is left and is the
// last; at most rows rows print, none when rows < 1.

// Header "name (number of elements = n, number of rows = r)", then row i through
// DisplayDA without size under the label "row  i: " (two blanks before the number).
void DisplayDVTR(std::string name, const std::vector<double> & values, int rows);

// The same walk without header or labels, each row through DisplayDAS.
void DisplayDVTRS(const std::vector<double> & values, int rows);

}  // namespace ZRDisplay_920

#endif  // ZRCOMMON920R_DISPLAY_DISPLAY_H
