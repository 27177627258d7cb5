// Encoders: what turns a raw value of a variable into the number the analysis works with,
// deciding on the way what counts as missing. IZREncoder is the interface; ZRContEncoder
// (continuous values, optionally with a ZRBinningEncoder) and ZRRoundEncoder (frequency
// weights) handle numbers; ZRCatNumEncoder and ZRStringEncoder give the categories of a
// categorical variable the dense codes 0, 1, 2, ... in order of first appearance.
//
// Missing values come in two kinds: the system-missing value (Value::SYSMISVALUE, the
// lowest double) and user-missing values, which are discrete values with labels and, for
// the numeric encoders, one closed interval [low, high]. A NaN is never missing by the
// system test; it is missing only where an interval or discrete test says so (never).
//
// Persistence is the object stream of xml/core/objstream.h. WriteObjectXML returns the
// number of elements written (0 on a stream that is not clean); ReadObjectXML returns the
// same count on success. A failed read prints one line "Failure reading <class>!" on
// std::cerr ("Failure reading ZRRoundEncoder from XML!" for the weight's) and throws a new
// IOException (catch IOException *, delete it); the encoder stays valid but holds what was read
// before the failure. Strings come back as written, still escaped ("R&D" reads "R&amp;D"), and
// doubles rounded at 15 digits.
#ifndef ZRCOMMON920R_XML_VARS_ENCODER_H
#define ZRCOMMON920R_XML_VARS_ENCODER_H

#include <istream>
#include <ostream>
#include <string>
#include <unordered_map>
#include <vector>

#include "zrcommon920r/xml/vars/ivariable.h"

namespace ZRXML_920 {

class XMLObj;

// The abstract encoder. Every concrete class overrides every operation.
class IZREncoder {
 public:
  enum EncoderType : int { kContinuous = 1, kCatNumeric = 2, kCatString = 3, kRounding = 4 };

  virtual ~IZREncoder() = default;

  virtual EncoderType GetEncoderType() = 0;
  // Categories of a categorical encoder, bins of a continuous one, 0 for a weight.
  virtual int GetNumberOfCategories() const = 0;
  // The code of value; a categorical encoder learns an unseen value here.
  virtual double Encode(const std::string & value) = 0;
  virtual double Encode(double value) = 0;
  // As Encode, but an unseen category is never learnt (it gives -1.0).
  virtual double EncodeConst(const std::string & value) const = 0;
  virtual double EncodeConst(double value) const = 0;
  virtual bool IsMissing(const std::string & value) const = 0;
  virtual bool IsMissing(double value) const = 0;
  // The category of a code as text, and as a number.
  virtual std::string Decode(int code) = 0;
  virtual double DecodeNum(int code) const = 0;
  // A deep copy, owned by the caller.
  virtual IZREncoder * Clone() const = 0;
  virtual void SetValueLabels(const std::vector<std::string> & labels) = 0;
  virtual void SetValueLabel(int code, const std::string & label) = 0;
  // Adds a discrete user-missing value with its label; false where the encoder takes no
  // value of that kind.
  virtual bool AddDiscreteUserMissing(double value, const std::string & label) = 0;
  virtual bool AddDiscreteUserMissing(const std::string & value, const std::string & label) = 0;
  // Sets the closed missing interval [low, high]; false unless high > low and no interval
  // is set yet (so an interval is set once only), or where the encoder has none.
  virtual bool SetMissingInterval(double low, double high) = 0;
  // The lists, or null where the encoder keeps no such list.
  virtual const std::vector<std::string> * GetValueLabels() const = 0;
  virtual const std::vector<double> * GetDiscreteMissValues() const = 0;
  virtual const std::vector<std::string> * GetDiscreteMissValuesStr() const = 0;
  virtual const std::vector<std::string> * GetMissValueLabels() const = 0;
  // False when no interval is set; otherwise writes both ends and returns true.
  virtual bool GetMissingInterval(double & low, double & high) const = 0;
  virtual int WriteObjectXML(std::ostream & out, int nTabs) const = 0;
  virtual int ReadObjectXML(std::istream & in) = 0;
  virtual void Display() const = 0;

 protected:
  IZREncoder() = default;
  IZREncoder(const IZREncoder &) = default;
  IZREncoder & operator=(const IZREncoder &) = default;
};

namespace detail {

// The numeric user-missing values shared by ZRContEncoder, ZRRoundEncoder and
// ZRCatNumEncoder: discrete values with labels, index by index, and one closed interval.
struct NumericMissing {
  std::vector<double> fvDiscreteMiss;
  std::vector<std::string> fvMissLabels;
  bool fbHasMissInterval = false;
  double fMissLow;   // Value::SYSMISVALUE until an interval is set
  double fMissHigh;  // Value::SYSMISVALUE until an interval is set

  NumericMissing();
  // Within the interval (both ends inclusive), or equal to a discrete value.
  bool IsUserMissing(double x) const {
    if (fbHasMissInterval && fMissLow <= x && x <= fMissHigh) return true;
    for (double v : fvDiscreteMiss)
      if (x == v) return true;
    return false;
  }
  bool SetInterval(double low, double high);
  bool GetInterval(double & low, double & high) const;
  void Clear();
  // Elements: bool flag; low and high when set; int count; each value and label.
  void Write(std::ostream & out, const XMLObj & obj) const;
  // The number of elements Write gives.
  int ElementCount() const;
  // Reads the same elements into this, false at the first that fails.
  bool Read(std::istream & in);
  // The discrete values, their labels (always, or only when there are some), interval.
  void Display(bool labelsWhenEmpty) const;
};

}  // namespace detail

// Cut points of a binned continuous variable: fNBins bins separated by fNBins - 1
// ascending cut points, each bin open on the left and closed on the right.
class ZRBinningEncoder {
 public:
  // No bins and no cut points.
  ZRBinningEncoder();
  // A copy of cutpoints, which must ascend; size + 1 bins.
  explicit ZRBinningEncoder(const std::vector<double> & cutpoints);
  // nBins equal bins over [low, high]: cut points low + i * (high - low) / nBins for
  // i = 1 .. nBins - 1 (each formed afresh, not as a running sum). nBins below 2 gives no
  // cut points, the bin count staying nBins.
  ZRBinningEncoder(double low, double high, int nBins);

  // The bin of x, 0 .. fNBins - 1: the number of cut points below x, so a value on a cut
  // point belongs to the lower bin. -1.0 for the system-missing value; NaN goes to the top
  // bin. Intended: with fewer than 2 bins no cut point is looked at, and the result is 0
  // for a negative x and 1 otherwise (NaN included).
  double Encode(double x) const;
  const std::vector<double> & GetBinningCutpoints() const { return fvCutpoints; }
  // Replaces the cut points; size + 1 bins.
  void SetBinningCutpoints(const std::vector<double> & cutpoints);
  int GetNumberOfCategories() const { return fNBins; }
  // Merges the empty bins, given one frequency per bin (a bin counts as empty unless its
  // frequency is above 0): each run of empty bins joins its neighbours, and the cut points
  // left are compacted to an ascending list. False, nothing changed, when the frequency
  // count is not the bin count, or when fewer than 2 or all bins are occupied.
  bool AdjustBinning(const std::vector<double> & frequencies);
  // A new encoder, owned by the caller, with the bins that AdjustBinning would merge, but
  // left uncompacted: the lowest double for leading empty bins, repeated cut points for
  // inner ones, the highest double for trailing ones; bins = cut points + 1. A plain copy
  // when AdjustBinning would change nothing.
  ZRBinningEncoder * CreateRebinned(const std::vector<double> & frequencies) const;
  ZRBinningEncoder * Clone() const { return new ZRBinningEncoder(*this); }
  void Display() const;

 private:
  // Writes into out, which holds fNBins - 1 cut points, those of the merged bins; see
  // AdjustBinning for when it returns false with out untouched.
  bool ComputeCutpoints(const std::vector<double> & frequencies, std::vector<double> & out) const;

  int fNBins;
  std::vector<double> fvCutpoints;
};

// The encoder of a continuous variable: a value passes through unchanged unless missing,
// when it becomes Value::SYSMISVALUE. Missing: the system-missing value, a value in the
// missing interval, or one equal to a discrete missing value. Binning, when present, is
// for the caller (GetBinningEncoder); Encode never bins. Text input is always missing.
class ZRContEncoder : public IZREncoder {
 public:
  ZRContEncoder();
  // nBins bins over [low, high] (see ZRBinningEncoder).
  ZRContEncoder(double low, double high, int nBins);
  // Bins by the given ascending cut points; size + 1 categories.
  explicit ZRContEncoder(const std::vector<double> & cutpoints);
  ZRContEncoder(const ZRContEncoder & other);
  ZRContEncoder & operator=(const ZRContEncoder & other);
  ~ZRContEncoder() override;

  // The binning encoder, or null; owned by this encoder.
  const ZRBinningEncoder * GetBinningEncoder() const { return fBinning; }

  // 1.
  EncoderType GetEncoderType() override;
  // The binning encoder's bins when there is one, else fNCategories (1 by default).
  int GetNumberOfCategories() const override;
  // Value::SYSMISVALUE.
  double Encode(const std::string & value) override;
  // EncodeConst(value), called through the virtual table.
  double Encode(double value) override;
  // Value::SYSMISVALUE.
  double EncodeConst(const std::string & value) const override;
  // Value::SYSMISVALUE when IsMissing(value), else value itself.
  double EncodeConst(double value) const override;
  // Always true.
  bool IsMissing(const std::string & value) const override;
  // The system-missing value, then the interval, then the discrete values.
  bool IsMissing(double value) const override;
  // The empty string.
  std::string Decode(int code) override;
  // Value::SYSMISVALUE.
  double DecodeNum(int code) const override;
  IZREncoder * Clone() const override;
  // Do nothing: a continuous variable has no value labels.
  void SetValueLabels(const std::vector<std::string> & labels) override;
  void SetValueLabel(int code, const std::string & label) override;
  // Appends value and label, with no test for duplicates; true.
  bool AddDiscreteUserMissing(double value, const std::string & label) override;
  // False.
  bool AddDiscreteUserMissing(const std::string & value, const std::string & label) override;
  bool SetMissingInterval(double low, double high) override;
  // Null.
  const std::vector<std::string> * GetValueLabels() const override;
  // The discrete missing values and their labels.
  const std::vector<double> * GetDiscreteMissValues() const override;
  // Null.
  const std::vector<std::string> * GetDiscreteMissValuesStr() const override;
  const std::vector<std::string> * GetMissValueLabels() const override;
  bool GetMissingInterval(double & low, double & high) const override;
  // Object "ZRContEncoder": int fNCategories; bool interval flag; double low, double high
  // when set; int count of discrete values; each value (double) and label (string). The
  // binning encoder is not saved, and a read leaves the present one alone.
  int WriteObjectXML(std::ostream & out, int nTabs) const override;
  int ReadObjectXML(std::istream & in) override;
  void Display() const override;

 private:
  int fNCategories;
  detail::NumericMissing fMissing;
  ZRBinningEncoder * fBinning;
};

// The encoder of a frequency weight: missing (Value::SYSMISVALUE) when system-missing, not
// above 0, in the missing interval or equal to a discrete missing value; otherwise rounded
// by the option, and missing again when the rounded weight is not above 0.
class ZRRoundEncoder : public IZREncoder {
 public:
  // Option 0, truncation.
  ZRRoundEncoder();
  explicit ZRRoundEncoder(IZRVariable::WRoundingOption option);

  // 4.
  EncoderType GetEncoderType() override;
  // 0.
  int GetNumberOfCategories() const override;
  // Value::SYSMISVALUE.
  double Encode(const std::string & value) override;
  // EncodeConst(value), called through the virtual table.
  double Encode(double value) override;
  // Value::SYSMISVALUE.
  double EncodeConst(const std::string & value) const override;
  // Value::SYSMISVALUE when missing; else floor(x) for option 0, floor(x + 0.5) for
  // option 1, x for any other, and Value::SYSMISVALUE when that is at or below 0 (a NaN,
  // which is not missing, passes through).
  double EncodeConst(double value) const override;
  // Always true.
  bool IsMissing(const std::string & value) const override;
  // The system-missing value, x <= 0, the interval, the discrete values.
  bool IsMissing(double value) const override;
  // The empty string.
  std::string Decode(int code) override;
  // Value::SYSMISVALUE.
  double DecodeNum(int code) const override;
  IZREncoder * Clone() const override;
  // Do nothing.
  void SetValueLabels(const std::vector<std::string> & labels) override;
  void SetValueLabel(int code, const std::string & label) override;
  // Appends value and label, with no test for duplicates; true.
  bool AddDiscreteUserMissing(double value, const std::string & label) override;
  // False.
  bool AddDiscreteUserMissing(const std::string & value, const std::string & label) override;
  bool SetMissingInterval(double low, double high) override;
  // Null.
  const std::vector<std::string> * GetValueLabels() const override;
  // The discrete missing values and their labels.
  const std::vector<double> * GetDiscreteMissValues() const override;
  // Null.
  const std::vector<std::string> * GetDiscreteMissValuesStr() const override;
  const std::vector<std::string> * GetMissValueLabels() const override;
  bool GetMissingInterval(double & low, double & high) const override;
  // Object "ZRRoundEncoder": int option; then as ZRContEncoder. A failed read prints
  // "Failure reading ZRRoundEncoder from XML!".
  int WriteObjectXML(std::ostream & out, int nTabs) const override;
  int ReadObjectXML(std::istream & in) override;
  void Display() const override;

 private:
  int fRoundOption;
  detail::NumericMissing fMissing;
};

// Categories held as numbers. Codes follow first appearance; lookup is by exact equality
// of doubles (so -0.0 finds 0.0). Missing: the system-missing value, the interval, the
// discrete values. A missing value is coded -1.0 (not Value::SYSMISVALUE) and never
// enters the table; nor does NaN, which codes -1.0 although it is not missing.
class ZRCatNumEncoder : public IZREncoder {
 public:
  // Room for capacity categories (a hint; none below 1).
  explicit ZRCatNumEncoder(int capacity);
  // Each value through Encode in order, so duplicates collapse.
  explicit ZRCatNumEncoder(const std::vector<double> & values);

  // 2.
  EncoderType GetEncoderType() override;
  // The number of categories known.
  int GetNumberOfCategories() const override;
  // -1.0.
  double Encode(const std::string & value) override;
  // -1.0 when missing or NaN; the code of a known value; else the next code, learnt.
  double Encode(double value) override;
  // -1.0.
  double EncodeConst(const std::string & value) const override;
  // As Encode(double), but -1.0 for an unseen value, which is not learnt.
  double EncodeConst(double value) const override;
  // Always true.
  bool IsMissing(const std::string & value) const override;
  bool IsMissing(double value) const override;
  // The value of code as "%.15g" text in the "C" locale ("3", "0.1", "1e+20"); empty for
  // a code out of range.
  std::string Decode(int code) override;
  // The value of code; Value::SYSMISVALUE for a code out of range.
  double DecodeNum(int code) const override;
  IZREncoder * Clone() const override;
  void SetValueLabels(const std::vector<std::string> & labels) override;
  // Grows the labels to the number of categories when shorter, then sets the label of a
  // code in range (others are ignored).
  void SetValueLabel(int code, const std::string & label) override;
  // Appends value and label; true. A known category that becomes missing keeps its code
  // but encodes -1.0 from then on.
  bool AddDiscreteUserMissing(double value, const std::string & label) override;
  // False.
  bool AddDiscreteUserMissing(const std::string & value, const std::string & label) override;
  bool SetMissingInterval(double low, double high) override;
  const std::vector<std::string> * GetValueLabels() const override;
  const std::vector<double> * GetDiscreteMissValues() const override;
  // Null.
  const std::vector<std::string> * GetDiscreteMissValuesStr() const override;
  const std::vector<std::string> * GetMissValueLabels() const override;
  bool GetMissingInterval(double & low, double & high) const override;
  // Object "ZRCatNumEncoder": int category count; each value (double) in code order; int
  // label count; each label; bool interval flag; low and high when set; int count of
  // discrete values; each value and label. A read first clears the encoder and learns
  // the values through Encode, so codes are rebuilt, not stored.
  int WriteObjectXML(std::ostream & out, int nTabs) const override;
  int ReadObjectXML(std::istream & in) override;
  void Display() const override;

 private:
  // The code of a known value, or -1.
  int Find(double value) const;

  std::unordered_map<double, int> fValueToCode;
  std::vector<double> fvValues;
  std::vector<std::string> fvValueLabels;
  int fLastCode;
  detail::NumericMissing fMissing;
};

// Categories held as text, compared by length and bytes. Missing: equal to a discrete
// missing string; a missing string is coded -1.0 and never enters the table. Numbers
// are always missing.
class ZRStringEncoder : public IZREncoder {
 public:
  // Room for capacity categories (a hint; none below 1).
  explicit ZRStringEncoder(int capacity);
  // Each value through Encode in order, so duplicates collapse.
  explicit ZRStringEncoder(const std::vector<std::string> & values);
  // Copies rebuild the code table to point into their own map.
  ZRStringEncoder(const ZRStringEncoder & other);
  ZRStringEncoder & operator=(const ZRStringEncoder & other);

  // 3.
  EncoderType GetEncoderType() override;
  // fLastCode + 1.
  int GetNumberOfCategories() const override;
  // -1.0 when missing; the code of a known value; else the next code, learnt.
  double Encode(const std::string & value) override;
  // -1.0.
  double Encode(double value) override;
  // As Encode(string), but -1.0 for an unseen value, which is not learnt.
  double EncodeConst(const std::string & value) const override;
  // -1.0.
  double EncodeConst(double value) const override;
  bool IsMissing(const std::string & value) const override;
  // Always true.
  bool IsMissing(double value) const override;
  // The category of code; empty unless 0 <= code <= fLastCode.
  std::string Decode(int code) override;
  // Value::SYSMISVALUE.
  double DecodeNum(int code) const override;
  IZREncoder * Clone() const override;
  void SetValueLabels(const std::vector<std::string> & labels) override;
  // Grows the labels to the number of categories when shorter, then sets the label of a
  // code in range (others are ignored).
  void SetValueLabel(int code, const std::string & label) override;
  // False.
  bool AddDiscreteUserMissing(double value, const std::string & label) override;
  // Appends value and label; true.
  bool AddDiscreteUserMissing(const std::string & value, const std::string & label) override;
  // False: text has no interval.
  bool SetMissingInterval(double low, double high) override;
  const std::vector<std::string> * GetValueLabels() const override;
  // Null.
  const std::vector<double> * GetDiscreteMissValues() const override;
  const std::vector<std::string> * GetDiscreteMissValuesStr() const override;
  const std::vector<std::string> * GetMissValueLabels() const override;
  // False.
  bool GetMissingInterval(double & low, double & high) const override;
  // Object "ZRStringEncoder": int category count; each category (string) in code order;
  // int label count; each label; int count of missing strings; each string and label. A
  // read first clears the encoder and learns the categories through Encode.
  int WriteObjectXML(std::ostream & out, int nTabs) const override;
  int ReadObjectXML(std::istream & in) override;
  void Display() const override;

 private:
  // The code of a known value, or -1.
  int Find(const std::string & value) const;
  // Points the code table at the keys of fValueToCode.
  void RebuildCodeTable();

  std::unordered_map<std::string, int> fValueToCode;
  std::vector<const std::string *> fvCodeTable;  // keys of fValueToCode by code
  std::vector<std::string> fvValueLabels;
  int fLastCode;
  std::vector<std::string> fvDiscreteMissStr;
  std::vector<std::string> fvMissLabels;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_VARS_ENCODER_H
