#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>

typedef unsigned int MThreadRetVal;
typedef MThreadRetVal (*MThreadFunc)(void*);
class MThreadRootTask;
typedef void (*MThreadCallbackFunc)(void*, MThreadRootTask*);

/// Runs tasks on several threads.
class MThreadPool {
 public:
  static MStatus init();
  static void release();
  /// Calls `func` with a root to which it adds tasks and which it then executes.
  static MStatus newParallelRegion(MThreadCallbackFunc func, void* data);
  static MStatus createTask(MThreadFunc func, void* data, MThreadRootTask* root);
  /// Runs the tasks of a root and waits for all of them.
  static MStatus executeAndJoin(MThreadRootTask* root);
};
