// Reading the examples' comma-separated data sets: a header line of field names, then one
// record per line. Shared by zr_demo and zr_charts.
#ifndef ZRCOMMON920R_EXAMPLES_FUELDATA_H
#define ZRCOMMON920R_EXAMPLES_FUELDATA_H

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "zrcommon920r/zrcommon920r.h"

namespace zrexample {

// The number a field holds; false for an empty field or one that is not wholly a number.
inline bool ParseNumber(const std::string & text, double & value) {
  if (text.empty()) return false;
  char * end = nullptr;
  value = std::strtod(text.c_str(), &end);
  return end == text.c_str() + text.size();
}

// The records of a comma-separated file with a header line of names, each padded with
// empty fields to the header's length. False when the file can't be read, has fewer than
// three fields or no record, or when cancel says stop (polled before each record).
inline bool ReadCsv(const std::string & path, std::vector<std::string> & names,
                    std::vector<std::vector<std::string>> & records,
                    ZRMath_920::ZRCancelInfo & cancel) {
  std::ifstream in(path);
  std::string line, field;
  if (!in || !std::getline(in, line)) return false;
  std::stringstream header(line);
  while (std::getline(header, field, ',')) names.push_back(field);
  if (names.size() < 3) return false;
  while (std::getline(in, line)) {
    if (cancel.IsCancel()) return false;
    if (line.empty()) continue;
    std::stringstream values(line);
    std::vector<std::string> record;
    while (record.size() < names.size() && std::getline(values, field, ',')) {
      record.push_back(field);
    }
    record.resize(names.size());
    records.push_back(std::move(record));
  }
  return !records.empty();
}

}  // namespace zrexample

#endif  // ZRCOMMON920R_EXAMPLES_FUELDATA_H
