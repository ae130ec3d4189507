#include <maya/MStatus.h>
#include <maya/MString.h>

namespace {

const char* describe(MStatus::MStatusCode code) {
  switch (code) {
    case MStatus::kSuccess:
      return "(kSuccess): Operation completed successfully";
    case MStatus::kFailure:
      return "(kFailure): Unexpected internal failure";
    case MStatus::kInsufficientMemory:
      return "(kInsufficientMemory): Insufficient memory to complete this method";
    case MStatus::kInvalidParameter:
      return "(kInvalidParameter): An argument or the object is not valid for this method";
    case MStatus::kLicenseFailure:
      return "(kLicenseFailure): The application is not licensed for this operation";
    case MStatus::kUnknownParameter:
      return "(kUnknownParameter): The parameter is not known to this method";
    case MStatus::kNotImplemented:
      return "(kNotImplemented): This method is not available here";
    case MStatus::kNotFound:
      return "(kNotFound): The item was not found";
    case MStatus::kEndOfFile:
      return "(kEndOfFile): The end of the file was reached";
  }
  return "(unknown): Unknown status code";
}

}  // namespace

MString MStatus::errorString() const {
  return MString(describe(code_));
}

void MStatus::perror(const char* text) const {
  if (code_ == kSuccess) return;
  if (text && *text) std::cerr << text << ":  ";
  std::cerr << describe(code_) << std::endl;
}

void MStatus::perror(const MString& text) const {
  perror(text.asChar());
}

std::ostream& operator<<(std::ostream& os, const MStatus& status) {
  return os << describe(status.statusCode());
}
