#include "host/dg/foreign_data.h"

#include <map>

namespace host::dg {
namespace {

std::map<std::string, ForeignReader, std::less<>>& readers() {
  static std::map<std::string, ForeignReader, std::less<>> all;
  return all;
}

}  // namespace

void setForeignReader(std::string_view type, ForeignReader reader) {
  if (reader)
    readers()[std::string(type)] = std::move(reader);
  else if (const auto found = readers().find(type); found != readers().end())
    readers().erase(found);
}

bool hasForeignReader(std::string_view type) {
  return readers().contains(type);
}

Result<DataPtr> readForeign(std::string_view type, const std::vector<ForeignWord>& words) {
  const auto found = readers().find(type);
  if (found == readers().end()) return fail("values of type '{}' are not known", type);
  return found->second(words);
}

}  // namespace host::dg
