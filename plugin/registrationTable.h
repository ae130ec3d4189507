#pragma once

#include <maya/MDrawRegistry.h>
#include <maya/MFnPlugin.h>
#include <maya/MPxDrawOverride.h>

/// What a row of the load and unload tables registers.
enum class rowKind { command, context, dependNode, locatorNode, drawOverride };

/// One thing that the module registers. A row without a creator stands for a class that is not part
/// of this build: it keeps its place and its text.
struct registrationRow {
  rowKind kind;
  const char* name;  ///< command, context command, node type, or the draw override's registrant
  const char* failureText;  ///< given to `perror`
  void* (*creator)() = nullptr;
  MSyntax (*syntax)() = nullptr;
  const char* toolName = nullptr;  ///< context rows: the tool command
  void* (*toolCreator)() = nullptr;
  unsigned int typeId = 0;
  MStatus (*initialize)() = nullptr;
  const char* drawClassification = nullptr;
  MHWRender::MPxDrawOverride* (*drawOverride)(const MObject&) = nullptr;
};

/// One thing that the module takes out again, named by its load row.
struct unloadRow {
  rowKind kind;
  const char* name;
  const char* failureText;
};

extern const registrationRow kLoadRows[];
extern const unsigned int kLoadRowCount;
extern const unloadRow kUnloadRows[];
extern const unsigned int kUnloadRowCount;
