#include <maya/MUserData.h>
#include <maya/detail/Handle.h>

namespace host::api {

SharedRep::~SharedRep() = default;

}  // namespace host::api

MUserData::~MUserData() = default;
