// The three variables: ZRContVar (continuous), ZRCatVar (numeric or string categorical)
// and ZRWeightVar (frequency weight). Each owns its encoder and copies deeply (copy,
// operator=, Clone), encoder included; the field format element is copied as a pointer
// and never owned.
//
// Persistence follows encoder.h: WriteObjectXML returns the elements written (0 on a
// stream that is not clean), a successful ReadObjectXML the elements read; a failed read
// prints one line "Failure reading <class>!" on std::cerr and throws a new IOException,
// or lets through the one its encoder threw, leaving the variable valid with what was read
// so far. Only the fields listed at each class are saved.
#ifndef ZRCOMMON920R_XML_VARS_VARIABLE_H
#define ZRCOMMON920R_XML_VARS_VARIABLE_H

#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "zrcommon920r/xml/vars/encoder.h"
#include "zrcommon920r/xml/vars/ivariable.h"

namespace ZRXML_920 {
namespace detail {

// The owning pointer to a variable's encoder: copies clone it, so variables copy deeply.
class OwnedEncoder {
 public:
  OwnedEncoder() = default;
  explicit OwnedEncoder(IZREncoder * encoder) : fp(encoder) {}
  OwnedEncoder(const OwnedEncoder & other)
      : fp(other.fp != nullptr ? other.fp->Clone() : nullptr) {}
  OwnedEncoder & operator=(const OwnedEncoder & other) {
    if (this != &other) Reset(other.fp != nullptr ? other.fp->Clone() : nullptr);
    return *this;
  }
  ~OwnedEncoder() { delete fp; }
  // Deletes the present encoder and owns encoder instead.
  void Reset(IZREncoder * encoder) {
    if (encoder == fp) return;
    delete fp;
    fp = encoder;
  }
  IZREncoder * Get() const { return fp; }
  IZREncoder * operator->() const { return fp; }
  explicit operator bool() const { return fp != nullptr; }

 private:
  IZREncoder * fp = nullptr;
};

}  // namespace detail

// A continuous variable: range, bins, mean and standard deviation as known, with a
// ZRContEncoder (none only after default construction).
class ZRContVar : public IZRVariable {
 public:
  // Role input, storage real, no range (min Value::SYSMISVALUE, max the highest double),
  // fNBins -1, and no encoder.
  ZRContVar();
  // As above with role, and a default ZRContEncoder.
  ZRContVar(const std::string & name, const std::string & label, VariableRole role);
  // Stores min, max, role and nBins; storage undefined (Intended: 0 here, 2 elsewhere). The
  // encoder bins nBins ways over [min, max] when binned, max > min and nBins >= 2, and is a
  // default ZRContEncoder otherwise.
  ZRContVar(const std::string & name, const std::string & label, double min, double max,
            VariableRole role, bool binned, int nBins);
  // Stores the cut points, with fNBins = cuts + 1; the encoder bins by them when binned and
  // there are at least 2 bins, and is a default ZRContEncoder otherwise.
  ZRContVar(const std::string & name, const std::string & label, const std::vector<double> & cuts,
            bool binned, VariableRole role);
  // As above, with min and max stored too.
  ZRContVar(const std::string & name, const std::string & label, double min, double max,
            const std::vector<double> & cuts, bool binned, VariableRole role);
  ZRContVar(const ZRContVar & other);
  ZRContVar & operator=(const ZRContVar & other);
  ~ZRContVar() override;

  // 1.
  MeasureLevel GetMeasureLevel() override;
  std::string GetVariableName() override;
  std::string GetVariableLabel() override;
  void SetVariableLabel(const std::string & label) override;
  // The encoder's number of categories; fNBins without an encoder.
  int GetNumberOfCategories() const override;
  VariableRole GetVariableRole() override;
  void SetVariableRole(VariableRole role) override;
  VariableStorage GetVariableStorage() override;
  void SetVariableStorage(VariableStorage storage) override;
  void SetFieldFormatElement(XMLElement * element) override;
  const XMLElement * GetFieldFormatElement() const override;
  XMLElement * GetFieldFormatElement() override;
  // fNBins takes the encoder's number of categories (unchanged without an encoder).
  int UpdateNumberOfCategories() override;
  void SetMissingValueReplacement(const std::string & replacement) override;
  const std::string * GetMissingValueReplacement() const override;
  IZRVariable * Clone() const override;
  const IZREncoder * GetEncoder() const override;
  IZREncoder * GetEncoder() override;
  // 2 (no data) when min > max, 1 (constant) when they are equal, else 0.
  VarStatus GetVarStatus() override;
  // Object "ZRContVar": string name, label; int role, fNBins; double min, max, mean,
  // standard deviation; int storage; bool replacement flag; string replacement when set;
  // double sums of frequency and complete weights; int encoder type (0 without one); the
  // encoder's object. The cut points and the outlier method are not saved. A read takes
  // encoder type 1 only: any other prints "Wrong encoder type in ZRContVar!" on std::cout
  // and fails (Intended: so a variable without encoder cannot be read back).
  int WriteObjectXML(std::ostream & out, int nTabs) const override;
  int ReadObjectXML(std::istream & in) override;
  // False: a continuous variable is never a flag.
  bool SetFlagVariable(bool flag) override;
  bool IsFlagVariable() const override;
  void Display() const override;

  double GetMin() const { return fMin; }
  double GetMax() const { return fMax; }
  void SetMinMax(double min, double max) {
    fMin = min;
    fMax = max;
  }
  double GetMean() const { return fMean; }
  void SetMean(double mean) { fMean = mean; }
  double GetStdDev() const { return fStdDev; }
  void SetStdDev(double stdDev) { fStdDev = stdDev; }
  int GetNBins() const { return fNBins; }
  void SetNBins(int nBins) { fNBins = nBins; }
  const std::vector<double> & GetCutPoints() const { return fvCutPoints; }
  double GetSumFreqWts() const { return fSumFreqWts; }
  void SetSumFreqWts(double sum) { fSumFreqWts = sum; }
  double GetSumCompWts() const { return fSumCompWts; }
  void SetSumCompWts(double sum) { fSumCompWts = sum; }
  OutlierHandleMethod GetOutlierHandleMethod() const { return fOutlierMethod; }
  void SetOutlierHandleMethod(OutlierHandleMethod method) { fOutlierMethod = method; }

 private:
  std::string fName;
  std::string fLabel;
  VariableRole fRole;
  VariableStorage fStorage;
  double fMin;
  double fMax;
  int fNBins;
  double fMean;
  double fStdDev;
  std::vector<double> fvCutPoints;
  std::string fMissReplacement;
  bool fbHasMissReplacement;
  detail::OwnedEncoder fEncoder;
  double fSumFreqWts;
  double fSumCompWts;
  OutlierHandleMethod fOutlierMethod;
  XMLElement * fFieldFormat;
};

// A categorical variable of level 2 (numbers, ZRCatNumEncoder) or 3 (text,
// ZRStringEncoder), with its stored number of categories, which rises to what the encoder
// knows and never falls.
class ZRCatVar : public IZRVariable {
 public:
  // The encoder is a ZRCatNumEncoder(nCategories) for level 2 and a
  // ZRStringEncoder(nCategories) for any other level; storage undefined.
  ZRCatVar(const std::string & name, const std::string & label, int nCategories, MeasureLevel level,
           VariableRole role, bool ordinal);
  // As above, with the sums of frequency weights per category.
  ZRCatVar(const std::string & name, const std::string & label,
           const std::vector<double> & sumFreqWts, int nCategories, MeasureLevel level,
           VariableRole role, bool ordinal);
  ZRCatVar(const ZRCatVar & other);
  ZRCatVar & operator=(const ZRCatVar & other);
  ~ZRCatVar() override;

  MeasureLevel GetMeasureLevel() override;
  std::string GetVariableName() override;
  std::string GetVariableLabel() override;
  void SetVariableLabel(const std::string & label) override;
  // The stored number of categories as it stands (see UpdateNumberOfCategories).
  int GetNumberOfCategories() const override;
  VariableRole GetVariableRole() override;
  void SetVariableRole(VariableRole role) override;
  VariableStorage GetVariableStorage() override;
  void SetVariableStorage(VariableStorage storage) override;
  void SetFieldFormatElement(XMLElement * element) override;
  const XMLElement * GetFieldFormatElement() const override;
  XMLElement * GetFieldFormatElement() override;
  // Raises the stored number to the encoder's when that is larger; returns it.
  int UpdateNumberOfCategories() override;
  void SetMissingValueReplacement(const std::string & replacement) override;
  const std::string * GetMissingValueReplacement() const override;
  IZRVariable * Clone() const override;
  const IZREncoder * GetEncoder() const override;
  IZREncoder * GetEncoder() override;
  // After the rise of UpdateNumberOfCategories: 1 (constant) for exactly one category,
  // 2 (no data) for none, 0 otherwise.
  VarStatus GetVarStatus() override;
  // Object "ZRCatVar": string name, label; int role, storage, number of categories,
  // level; bool ordinal, binary flag; int true index; bool replacement flag; string
  // replacement when set; int encoder type; the encoder's object. The sums of frequency
  // weights and the flag-variable mark are not saved. A read takes encoder types 2 and 3.
  int WriteObjectXML(std::ostream & out, int nTabs) const override;
  int ReadObjectXML(std::istream & in) override;
  // Stores flag and returns true for levels 2 and 3; false otherwise.
  bool SetFlagVariable(bool flag) override;
  bool IsFlagVariable() const override;
  void Display() const override;

  void SetNumberOfCategories(int nCategories) { fNCategories = nCategories; }
  void SetOrdinalFlag(bool ordinal) { fbOrdinal = ordinal; }
  bool GetOrdinalFlag() const { return fbOrdinal; }
  bool GetBinaryFlag() const { return fbBinaryFlag; }
  int GetBinaryFlagTrueIndex() const { return fBinaryTrueIndex; }
  // Copies the sums of frequency weights per category into sums; false, sums untouched,
  // when there are none.
  bool GetSumFreqWts(std::vector<double> & sums) const;
  // Stores flag; when it is true, takes trueIndex as the index of the true value, unless
  // trueIndex read as unsigned is above 1 (negatives included), which sets the flag back
  // to false and leaves the index. With flag false the index stays as it was.
  void SetBinaryFlag(bool flag, int trueIndex);
  // Deletes the present encoder, takes ownership of encoder and sets the number of
  // categories to its count. A null encoder is ignored.
  void ChangeEncoder(IZREncoder * encoder);

 private:
  std::string fName;
  std::string fLabel;
  bool fbOrdinal;
  bool fbBinaryFlag;
  int fBinaryTrueIndex;
  VariableRole fRole;
  VariableStorage fStorage;
  int fNCategories;
  MeasureLevel fLevel;
  std::string fMissReplacement;
  bool fbHasMissReplacement;
  detail::OwnedEncoder fEncoder;
  XMLElement * fFieldFormat;
  std::vector<double> fvSumFreqWts;
  bool fbFlagVariable;
};

// A frequency weight, with a ZRRoundEncoder. Its answers are fixed: level 4, role 3,
// no categories, usable, no replacement.
class ZRWeightVar : public IZRVariable {
 public:
  ZRWeightVar(const std::string & name, const std::string & label, WRoundingOption option);
  ZRWeightVar(const ZRWeightVar & other);
  ZRWeightVar & operator=(const ZRWeightVar & other);
  ~ZRWeightVar() override;

  // 4.
  MeasureLevel GetMeasureLevel() override;
  std::string GetVariableName() override;
  std::string GetVariableLabel() override;
  void SetVariableLabel(const std::string & label) override;
  // 0.
  int GetNumberOfCategories() const override;
  // 3.
  VariableRole GetVariableRole() override;
  // Does nothing.
  void SetVariableRole(VariableRole role) override;
  VariableStorage GetVariableStorage() override;
  void SetVariableStorage(VariableStorage storage) override;
  void SetFieldFormatElement(XMLElement * element) override;
  const XMLElement * GetFieldFormatElement() const override;
  XMLElement * GetFieldFormatElement() override;
  // 0.
  int UpdateNumberOfCategories() override;
  // Does nothing.
  void SetMissingValueReplacement(const std::string & replacement) override;
  // Null.
  const std::string * GetMissingValueReplacement() const override;
  IZRVariable * Clone() const override;
  const IZREncoder * GetEncoder() const override;
  IZREncoder * GetEncoder() override;
  // 0.
  VarStatus GetVarStatus() override;
  // Object "ZRWeightVar": string name, label; int storage; the encoder's object.
  int WriteObjectXML(std::ostream & out, int nTabs) const override;
  int ReadObjectXML(std::istream & in) override;
  // False.
  bool SetFlagVariable(bool flag) override;
  bool IsFlagVariable() const override;
  void Display() const override;

 private:
  std::string fName;
  std::string fLabel;
  VariableStorage fStorage;
  detail::OwnedEncoder fEncoder;
  XMLElement * fFieldFormat;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_VARS_VARIABLE_H
