#include <maya/MThreadPool.h>
#include <maya/MThreadUtils.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "host/base/parallel.h"

/// Tasks that wait to be run.
class MThreadRootTask {
 public:
  struct Task {
    MThreadFunc function;
    void* data;
  };
  std::vector<Task> tasks;
};

namespace {

int& threadCount() {
  static int count = static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
  return count;
}

}  // namespace

int MThreadUtils::getNumThreads() {
  return threadCount();
}
int MThreadUtils::setNumThreads(int count) {
  if (count >= 1) threadCount() = count;
  return threadCount();
}
int MThreadUtils::syncNumOpenMPThreads(int) {
  return threadCount();
}

MStatus MThreadPool::init() {
  return MStatus::kSuccess;
}
void MThreadPool::release() {}
MStatus MThreadPool::newParallelRegion(MThreadCallbackFunc func, void* data) {
  if (!func) return MStatus::kInvalidParameter;
  MThreadRootTask root;
  func(data, &root);
  return MStatus::kSuccess;
}
MStatus MThreadPool::createTask(MThreadFunc func, void* data, MThreadRootTask* root) {
  if (!func || !root) return MStatus::kInvalidParameter;
  root->tasks.push_back({func, data});
  return MStatus::kSuccess;
}
MStatus MThreadPool::executeAndJoin(MThreadRootTask* root) {
  if (!root) return MStatus::kInvalidParameter;
  const std::vector<MThreadRootTask::Task> tasks = std::move(root->tasks);
  root->tasks.clear();
  // With one thread asked for, the tasks run here one after the other.
  const std::size_t grain = threadCount() == 1 ? tasks.size() + 1 : 1;
  host::parallelFor(tasks.size(), grain, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) (void)tasks[i].function(tasks[i].data);
  });
  return MStatus::kSuccess;
}
