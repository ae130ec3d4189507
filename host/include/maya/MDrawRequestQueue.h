#pragma once

#include <maya/MDrawRequest.h>

#include <deque>

/// What a shape's class wants to draw, in order.
class MDrawRequestQueue {
 public:
  bool isEmpty() const { return requests_.empty(); }
  void add(MDrawRequest& request) { requests_.push_back(request); }
  /// Takes the first one out; of an empty queue one that says nothing.
  MDrawRequest remove() {
    if (isEmpty()) return {};
    MDrawRequest first = requests_.front();
    requests_.pop_front();
    return first;
  }

 private:
  std::deque<MDrawRequest> requests_;
};
