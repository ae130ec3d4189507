#include "plugin/iconFolder.h"

#include <maya/MGlobal.h>

#include <string>

MString dataFolder(const MString& loadPath, const char* below) {
  const std::string path(loadPath.asChar());
  const std::size_t last = path.find_last_of('/');
  if (path.empty()) return MString();
  const std::string parent = last == std::string::npos ? std::string(".") : path.substr(0, last);
  return (parent + "/" + below).c_str();
}

void addIconFolder(const MString& loadPath) {
  const MString folder = dataFolder(loadPath, "data/icons");
  if (folder.length() == 0) return;
#ifdef _WIN32
  const char* const between = ";";
  const MString entry = folder;
#else
  const char* const between = ":";
  const MString entry = folder + "/%B";  // the bitmap's name goes there
#endif
  MString known;
  MGlobal::executeCommand("getenv \"XBMLANGPATH\"", known, false, false);
  if (std::string(known.asChar()).find(entry.asChar()) != std::string::npos) return;
  const MString all = known.length() == 0 ? entry : entry + between + known;
  MGlobal::executeCommand("putenv \"XBMLANGPATH\" \"" + all + "\"", false, false);
}
