#pragma once

#include <doctest/doctest.h>
#include <maya/MDagPath.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <memory>
#include <string>

#include "host/api/session/host_session.h"

/// A new scene for tests that look at it through the API.
struct ApiScene {
  ApiScene() : session(host::api::makeHostSession()) {}

  host::mel::Value run(const std::string& mel) {
    auto done = session->executeLine(mel);
    CAPTURE(mel);
    REQUIRE_MESSAGE(done.has_value(), (done ? std::string() : done.error().message));
    return *done;
  }
  std::string text(const std::string& mel) { return run(mel).toText().value_or("an array"); }
  static MObject node(const char* name) {
    MSelectionList list;
    MObject object;
    CAPTURE(std::string(name));
    REQUIRE(list.add(name));
    REQUIRE(list.getDependNode(0, object));
    return object;
  }
  static MDagPath path(const char* name) {
    MSelectionList list;
    MDagPath path;
    CAPTURE(std::string(name));
    REQUIRE(list.add(name));
    REQUIRE(list.getDagPath(0, path));
    return path;
  }
  /// The strings of a list, joined with blanks.
  static std::string textOf(const MSelectionList& list) {
    MStringArray names;
    list.getSelectionStrings(names);
    std::string text;
    for (unsigned int i = 0; i < names.length(); ++i)
      text += (i ? " " : "") + std::string(names[i].asChar());
    return text;
  }

  std::unique_ptr<host::cmd::Session> session;
};
