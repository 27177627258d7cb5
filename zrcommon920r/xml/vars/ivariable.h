// The interface of a variable: one field of the data of an analysis, with its name, label,
// role, storage, measurement level and the encoder that turns its raw values into numbers.
// The concrete variables are in variable.h, the encoders in encoder.h.
#ifndef ZRCOMMON920R_XML_VARS_IVARIABLE_H
#define ZRCOMMON920R_XML_VARS_IVARIABLE_H

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>

namespace ZRXML_920 {

class IZREncoder;
class XMLElement;

// A variable owns its encoder; a field format element is only pointed to, never owned.
class IZRVariable {
 public:
  // The enumerations hold any int, so a code read from a stream is never out of range.
  // What the variable is for in the analysis.
  enum VariableRole : int {
    kRoleUndefined = 0,
    kRoleTarget = 1,
    kRoleTargetResponse = 2,
    kRoleFrequencyWeight = 3,
    kRoleInput = 4,
    kRolePossibleInput = 5,
    kRoleUnused = 6,
    kRoleRecordId = 7
  };
  // How the raw values are stored.
  enum VariableStorage : int {
    kStorageUndefined = 0,
    kStorageInteger = 1,
    kStorageReal = 2,
    kStorageString = 3,
    kStorageDate = 4,
    kStorageTime = 5,
    kStorageTimestamp = 6
  };
  // The measurement level, which also tells the concrete class.
  enum MeasureLevel : int {
    kLevelUnknown = 0,
    kLevelContinuous = 1,
    kLevelNumericCategorical = 2,
    kLevelStringCategorical = 3,
    kLevelFrequencyWeight = 4
  };
  // How a frequency weight is made a whole number: floor, floor(x + 0.5), or left alone.
  enum WRoundingOption : int { kRoundTruncate = 0, kRoundNearest = 1, kRoundAsIs = 2 };
  // Whether the variable can enter the analysis.
  enum VarStatus : int { kVarUsable = 0, kVarConstant = 1, kVarNoData = 2 };
  // How outliers of a continuous variable are to be handled; the library only stores it.
  enum OutlierHandleMethod : std::int32_t { kOutlierNone = 0 };

  virtual ~IZRVariable() = default;

  virtual MeasureLevel GetMeasureLevel() = 0;
  virtual std::string GetVariableName() = 0;
  virtual std::string GetVariableLabel() = 0;
  virtual void SetVariableLabel(const std::string & label) = 0;
  // The number of categories (or bins) as the variable answers it; see each class.
  virtual int GetNumberOfCategories() const = 0;
  virtual VariableRole GetVariableRole() = 0;
  virtual void SetVariableRole(VariableRole role) = 0;
  virtual VariableStorage GetVariableStorage() = 0;
  virtual void SetVariableStorage(VariableStorage storage) = 0;
  // The field format element: stored as a pointer, never owned or copied.
  virtual void SetFieldFormatElement(XMLElement * element) = 0;
  virtual const XMLElement * GetFieldFormatElement() const = 0;
  virtual XMLElement * GetFieldFormatElement() = 0;
  // Brings the stored number of categories up to date with the encoder; returns it.
  virtual int UpdateNumberOfCategories() = 0;
  // Stores the text that replaces a missing value and marks it set.
  virtual void SetMissingValueReplacement(const std::string & replacement) = 0;
  // The replacement text, or null when none is set.
  virtual const std::string * GetMissingValueReplacement() const = 0;
  // A deep copy, encoder included, owned by the caller.
  virtual IZRVariable * Clone() const = 0;
  // The variable's own encoder; null only for a continuous variable built without one.
  virtual const IZREncoder * GetEncoder() const = 0;
  virtual IZREncoder * GetEncoder() = 0;
  virtual VarStatus GetVarStatus() = 0;
  // Object stream persistence; see each class for its elements.
  virtual int WriteObjectXML(std::ostream & out, int nTabs) const = 0;
  virtual int ReadObjectXML(std::istream & in) = 0;
  // Marks a categorical variable as a flag; false where the class has no flags.
  virtual bool SetFlagVariable(bool flag) = 0;
  virtual bool IsFlagVariable() const = 0;
  // Prints the variable through the diagnostic display stream.
  virtual void Display() const = 0;

 protected:
  IZRVariable() = default;
  IZRVariable(const IZRVariable &) = default;
  IZRVariable & operator=(const IZRVariable &) = default;
};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_XML_VARS_IVARIABLE_H
