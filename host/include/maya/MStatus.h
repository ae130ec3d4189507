#pragma once

#include <maya/MIOStream.h>
#include <maya/MTypes.h>

class MString;

/// Tells whether an API call succeeded and, if not, the kind of failure.
class MStatus {
 public:
  enum MStatusCode {
    kSuccess = 0,
    kFailure,
    kInsufficientMemory,
    kInvalidParameter,
    kLicenseFailure,
    kUnknownParameter,
    kNotImplemented,
    kNotFound,
    kEndOfFile
  };

  MStatus() = default;
  MStatus(MStatusCode code) : code_(code) {}
  MStatus(bool internal, MStatusCode code) : code_(internal ? kSuccess : code) {}
  MStatus& operator=(MStatusCode code) {
    code_ = code;
    return *this;
  }

  bool operator==(const MStatus& other) const { return code_ == other.code_; }
  bool operator==(MStatusCode code) const { return code_ == code; }
  bool operator!=(const MStatus& other) const { return code_ != other.code_; }
  bool operator!=(MStatusCode code) const { return code_ != code; }
  friend bool operator==(MStatusCode code, const MStatus& status) { return status.code_ == code; }
  friend bool operator!=(MStatusCode code, const MStatus& status) { return status.code_ != code; }

  /// True on success.
  operator bool() const { return code_ == kSuccess; }
  bool error() const { return code_ != kSuccess; }
  void clear() { code_ = kSuccess; }
  MStatusCode statusCode() const { return code_; }
  /// Returns a description of the code.
  MString errorString() const;

  /// Writes "text: (code): description" to standard error, unless the status is success.
  void perror(const char* text) const;
  void perror(const MString& text) const;

 private:
  MStatusCode code_ = kSuccess;
};

typedef MStatus MS;

/// Writes "(code): description".
std::ostream& operator<<(std::ostream& os, const MStatus& status);

/// Reports a failed call with its file and line, and goes on.
#define CHECK_MSTATUS(_status)                                                                     \
  {                                                                                                \
    MStatus _maya_status = (_status);                                                              \
    if (MStatus::kSuccess != _maya_status) {                                                       \
      std::cerr << "\nAPI error detected in " << __FILE__ << " at line " << __LINE__ << std::endl; \
      _maya_status.perror("");                                                                     \
    }                                                                                              \
  }

/// Whether a call failed.
#define MFAIL(_status) (MStatus::kSuccess != (_status))

/// Reports a failed call and returns `_retVal` from the caller.
#define CHECK_MSTATUS_AND_RETURN(_status, _retVal)                                                 \
  {                                                                                                \
    MStatus _maya_status = (_status);                                                              \
    if (MStatus::kSuccess != _maya_status) {                                                       \
      std::cerr << "\nAPI error detected in " << __FILE__ << " at line " << __LINE__ << std::endl; \
      _maya_status.perror("");                                                                     \
      return (_retVal);                                                                            \
    }                                                                                              \
  }

/// Reports a failed call and returns its status from the caller.
#define CHECK_MSTATUS_AND_RETURN_IT(_status) CHECK_MSTATUS_AND_RETURN((_status), (_status))

#include <maya/MString.h>
