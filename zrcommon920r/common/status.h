// Status values and exceptions: ZRStatus (a code, a severity and six data slots, no text),
// ZRException (a code and a message, thrown by value) and IOException (thrown by pointer
// when a persisted object cannot be read back).
#ifndef ZRCOMMON920R_COMMON_STATUS_H
#define ZRCOMMON920R_COMMON_STATUS_H

#include <cstdint>
#include <string>

namespace ZRCommon_920 {

// The outcome of an operation: a 32-bit code, a level whose sign gives the kind (0 OK,
// positive warning, negative error) and three integer and three double data slots for the
// caller's message. The status holds no text: the caller turns a code into words, and a
// code is meaningful only together with its level. A plain value; nothing here throws.
//
// Data slots are numbered 0 to 2 and callers pass no other index; for an index of 3 or more
// the getters answer 0 (0.0) and the setters do nothing, rather than reading or writing
// outside the status.
class ZRStatus {
 public:
  // OK: code 0, level 0, every data slot 0.
  ZRStatus() = default;

  // A warning (level +1) when isWarning, otherwise an error (level -1); data slots 0.
  // Never OK, whatever the code: ZRStatus(0, true) is a warning with code 0.
  ZRStatus(std::int32_t code, bool isWarning)
      : fCode(code), fLevel(static_cast<std::int16_t>(isWarning ? 1 : -1)) {}

  ZRStatus(const ZRStatus &) = default;
  ZRStatus(ZRStatus &&) = default;
  ZRStatus & operator=(const ZRStatus &) = default;
  ZRStatus & operator=(ZRStatus &&) = default;

  // Whether code, level and all six data slots agree. Scale slots are compared as doubles:
  // +0.0 equals -0.0, and a NaN differs from everything, so a status holding a NaN is not
  // equal to itself. There is no operator!= and no ordering.
  bool operator==(const ZRStatus & other) const;

  // Kind of the status, by the sign of the level.
  bool IsOK() const { return fLevel == 0; }
  bool IsError() const { return fLevel < 0; }
  bool IsWarning() const { return fLevel > 0; }

  // The status code.
  std::int32_t GetErrorCode() const { return fCode; }

  // Integer data slot index (0 to 2), 0 for a larger index.
  std::int32_t GetDiscreteDatum(unsigned int index) const;
  // Writes integer data slot index (0 to 2); does nothing for a larger index.
  void SetDiscreteDatum(unsigned int index, std::int32_t value);

  // Double data slot index (0 to 2), 0.0 for a larger index.
  double GetScaleDatum(unsigned int index) const;
  // Writes double data slot index (0 to 2), NaN and infinities included; does nothing for
  // a larger index.
  void SetScaleDatum(unsigned int index, double value);

 private:
  static constexpr unsigned int kSlots = 3;

  std::int32_t fCode = 0;
  std::int16_t fLevel = 0;  // only ever 0, +1 or -1, but read by sign
  std::int32_t fDiscreteData[kSlots] = {0, 0, 0};
  double fScaleData[kSlots] = {0.0, 0.0, 0.0};
};

// An exception with a code and a message, thrown by value (by Value on misuse: code 13 for
// a wrong type or a non-array, 14 for an index out of bounds). Not derived from
// std::exception; its one virtual member is the destructor, so a copy made with new can be
// deleted through a ZRException pointer. Only copying the message can throw (bad_alloc).
class ZRException {
 public:
  // Code 0 and an empty message.
  ZRException() = default;

  // Code code and message message.
  ZRException(int code, const std::string & message);

  ZRException(const ZRException &) = default;
  ZRException(ZRException &&) = default;
  ZRException & operator=(const ZRException &) = default;
  ZRException & operator=(ZRException &&) = default;
  virtual ~ZRException();

  // The exception code.
  int GetCode() const { return fCode; }

  // A copy of the message.
  std::string GetMessage() const { return fMessage; }

 private:
  int fCode = 0;
  std::string fMessage;
};

}  // namespace ZRCommon_920

namespace ZRXML_920 {

// Thrown when ReadObjectXML cannot read a persisted encoder, variable or variable list
// back, after a line "Failure reading <class>!" on std::cerr. It carries no data and is
// thrown as a pointer made with new: the handler catches IOException * (or void *) and
// deletes the object.
class IOException {};

}  // namespace ZRXML_920

#endif  // ZRCOMMON920R_COMMON_STATUS_H
