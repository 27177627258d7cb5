// The ordered list of the variables of an analysis: it owns them, knows which is the
// target, which the frequency weight and which are target responses, and stores the case
// counts of the run. Names are unique within a list (the weight's name excepted: see
// SetWeightVar).
#ifndef ZRCOMMON920R_XML_VARS_VARLIST_H
#define ZRCOMMON920R_XML_VARS_VARLIST_H

#include <istream>
#include <ostream>
#include <string>
#include <vector>

#include "zrcommon920r/xml/vars/variable.h"

namespace ZRXML_920 {

// Bookkeeping: fNCont and fNCat count the continuous and categorical variables added (a
// weight counts in neither); fTargetIndex is the target's index, the last added target
// winning; fvResponses lists the target responses, fFirstResponse being the first of them.
// Indices are kept as the operations below state, odd parts included, and never checked
// against the variables' own roles afterwards.
class ZRVarList {
 public:
  ZRVarList();
  // Deep: every variable cloned; counters, indices and counts copied.
  ZRVarList(const ZRVarList & other);
  ZRVarList & operator=(const ZRVarList & other);
  // Deletes every variable.
  virtual ~ZRVarList();

  // Each adds a ZRContVar built from the arguments (see its constructors) and returns its
  // index; -1, nothing added, for an empty name or one already in the list. Role 1 makes
  // it the target, role 2 a target response.
  int AddContVar(const std::string & name, const std::string & label,
                 IZRVariable::VariableRole role);
  int AddContVar(const std::string & name, const std::string & label, double min, double max,
                 IZRVariable::VariableRole role, bool binned, int nBins);
  int AddContVar(const std::string & name, const std::string & label,
                 const std::vector<double> & cuts, bool binned, IZRVariable::VariableRole role);
  int AddContVar(const std::string & name, const std::string & label, double min, double max,
                 const std::vector<double> & cuts, bool binned, IZRVariable::VariableRole role);
  // Adds a ZRCatVar, not ordinal, as AddContVar does; -1 too for a level other than 2 or 3.
  int AddCatVar(const std::string & name, const std::string & label, int nCategories,
                IZRVariable::MeasureLevel level, IZRVariable::VariableRole role);
  // Adds a ZRCatVar of level 2 (numbers) or 3 (text) whose encoder has learnt categories in
  // order; its number of categories is the encoder's count of distinct ones. The forms with
  // sumFreqWts store them; those with labels set them as the encoder's value labels.
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<double> & categories, IZRVariable::VariableRole role);
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<std::string> & categories, IZRVariable::VariableRole role);
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<double> & categories, const std::vector<double> & sumFreqWts,
                IZRVariable::VariableRole role);
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<std::string> & categories, const std::vector<double> & sumFreqWts,
                IZRVariable::VariableRole role);
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<double> & categories, const std::vector<std::string> & labels,
                IZRVariable::VariableRole role);
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<std::string> & categories,
                const std::vector<std::string> & labels, IZRVariable::VariableRole role);
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<double> & categories, const std::vector<double> & sumFreqWts,
                const std::vector<std::string> & labels, IZRVariable::VariableRole role);
  int AddCatVar(const std::string & name, const std::string & label,
                const std::vector<std::string> & categories, const std::vector<double> & sumFreqWts,
                const std::vector<std::string> & labels, IZRVariable::VariableRole role);
  // Makes a ZRWeightVar the list's weight: appended when there is none, otherwise in the
  // old weight's slot (the old one deleted). Returns its index. Intended: the name is not
  // checked against the list.
  int SetWeightVar(const std::string & name, const std::string & label,
                   IZRVariable::WRoundingOption option);
  // Adds a copy of variable by its level: 1 continuous, 2 and 3 categorical, 4 the weight
  // (as SetWeightVar). -1 for null, a name in the list, or any other level.
  int AddNewVar(const IZRVariable * variable);
  // Deletes the variable at index and closes the gap; false when out of range. Intended:
  // removing a categorical target leaves fNCat as it was; a removed variable of role 1
  // clears the target index even when it was not that target; the responses are updated
  // after the gap is closed (so the last index is no longer in range and stays listed),
  // and later responses are not renumbered.
  bool RemoveVar(int index);
  // RemoveVar of the first variable of that name; false when there is none.
  bool RemoveVar(std::string name);
  // The first index whose variable has exactly that name; -1 when none.
  int FindVariable(const std::string & name) const;
  // Null when index is out of range.
  IZRVariable * GetVarAt(int index);
  const IZRVariable * GetVarAt(int index) const;
  // Null when the name is not in the list.
  IZRVariable * GetVariable(const std::string & name);
  const IZRVariable * GetVariable(const std::string & name) const;
  // The encoder of the variable at index; null when out of range.
  IZREncoder * GetEncoderAt(int index);
  const IZREncoder * GetEncoderAt(int index) const;
  int GetNumCatVar() const { return fNCat; }
  int GetNumContVar() const { return fNCont; }
  int GetTargetIndex() const { return fTargetIndex; }
  int GetTargetRespIndex() const { return fFirstResponse; }
  int GetFreqWeightIndex() const { return fWeightIndex; }
  // The variable at the target, first response or weight index; null when it is negative.
  const IZRVariable * GetTargetVariable() const;
  const IZRVariable * GetTargetRespVariable() const;
  const IZRVariable * GetFreqWeightVariable() const;
  // The indices of the target responses.
  const std::vector<int> & GetMutipleResponseVariables() const { return fvResponses; }
  // The number of categories of the target, of the first response; 0 without one.
  int GetNTargetCats() const;
  int GetNOutputCats() const;
  // The number of variables of role 4 (input), of role 5 (possible input).
  int GetNumInputVars() const;
  int GetNumPossibleInputVars() const;
  // The number of categories of each input variable, in list order.
  std::vector<int> GetNInputCats();
  // Appends the names of the inputs (role 4) to inputs and of the responses (role 2) to
  // responses, in list order.
  void GetVarNames(std::vector<std::string> & inputs, std::vector<std::string> & responses) const;
  // The role of the variable at index; 0 when out of range.
  IZRVariable::VariableRole GetVariableRole(int index);
  // Gives the variable at index a role; false when out of range. Role 1 sets the target
  // index only when there is no target yet (Intended: a second target keeps the first in
  // the index, though its own role changes). Role 2 lists it as a response. Any other role
  // clears the target index when the variable was of role 1; a variable leaving role 2
  // stays listed as a response.
  bool SetVariableRole(int index, IZRVariable::VariableRole role);
  // Passes the replacement to the variable at index; false when out of range.
  bool SetMissingValueReplacement(int index, const std::string & replacement);
  // UpdateNumberOfCategories of every variable; the sum of the results, held at the limits
  // of int.
  int UpdateNumbersOfCategories();
  // Gives the categorical target encoder (ownership passes to the list) and sets its
  // number of categories from it. True when encoder is a category encoder (type 2 or 3)
  // with categories. Intended: the replacement takes place even when the answer is false.
  // Without a categorical target, or for null, nothing changes, encoder is deleted, and
  // the answer is false.
  bool ChangeTargetEncoder(IZREncoder * encoder);
  void SetListwiseDeletion(bool listwise) { fbListwiseDeletion = listwise; }
  bool GetListwiseDeletion() const { return fbListwiseDeletion; }
  // Case counts of the run; the list only stores them.
  void SetUnWeightedCount(double count) { fUnWeightedCount = count; }
  double GetUnWeightedCount() const { return fUnWeightedCount; }
  void SetWeightedCount(double count) { fWeightedCount = count; }
  double GetWeightedCount() const { return fWeightedCount; }
  void SetDroppedCount(double count) { fDroppedCount = count; }
  double GetDroppedCount() const { return fDroppedCount; }
  void SetBadWeightCount(double count) { fBadWeightCount = count; }
  double GetBadWeightCount() const { return fBadWeightCount; }
  void SetWeightedDroppedCount(double count) { fWeightedDroppedCount = count; }
  double GetWeightedDroppedCount() const { return fWeightedDroppedCount; }
  // The field formats element: stored as a pointer, never owned.
  void SetFieldFormatsElement(XMLElement * element) { fFieldFormats = element; }
  XMLElement * GetFieldFormatsElement() { return fFieldFormats; }

  // Object "ZRVarList": int number of variables; for each, int level and the variable's
  // object; int fNCont, fNCat, fTargetIndex, fFirstResponse. Returns 2, plus 1 and the
  // variable's count for each variable, plus 5; 0 on a stream that is not clean.
  int WriteObjectXML(std::ostream & out, int nTabs) const;
  // First empties the list (variables, counters, target, weight and response indices;
  // the case counts and the listwise flag stay), then reads as written. The weight index
  // and the responses are not saved: a caller that needs them sets them by role. A failed
  // read prints "Failure reading ZRVarList!" on std::cerr (or lets through what a variable
  // threw, freeing it) and throws a new IOException; the list keeps what was read so far.
  int ReadObjectXML(std::istream & in);
  void Display() const;

 protected:
  // Lists index as a target response; false for an index out of range.
  bool AddResponseVariable(int index);
  // Takes index off the responses; false for an index out of range, true otherwise.
  bool RemoveResponseVariable(int index);
  // Adds index to the responses (add) or takes it off, then fixes fFirstResponse.
  // Intended: always false.
  bool ChangeVariableRole(bool add, int index);

 private:
  // Appends variable (owned) under the rules of the Add functions; its index.
  int Append(IZRVariable * variable, bool continuous, IZRVariable::VariableRole role);
  // Puts the weight in place; its index.
  int PlaceWeight(IZRVariable * weight);
  void Clear();

  std::vector<IZRVariable *> fvVars;
  int fNCont;
  int fNCat;
  int fTargetIndex;
  int fFirstResponse;
  int fWeightIndex;
  bool fbListwiseDeletion;
  double fUnWeightedCount;
  double fWeightedCount;
  double fDroppedCount;
  double fBadWeightCount;
  double fWeightedDroppedCount;
  std::vector<int> fvResponses;
  XMLElement * fFieldFormats;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_VARS_VARLIST_H
