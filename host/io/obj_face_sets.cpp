#include "host/io/obj_face_sets.h"

#include <algorithm>
#include <unordered_map>

namespace host::io {
namespace {

constexpr std::size_t kMostNamesAStatement = 32;

std::vector<std::string_view> splitWords(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n\v\f\\";
  std::vector<std::string_view> words;
  for (std::size_t begin = text.find_first_not_of(kBlanks); begin != std::string_view::npos;) {
    const std::size_t end = std::min(text.find_first_of(kBlanks, begin), text.size());
    words.push_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(kBlanks, end);
  }
  return words;
}

/// Calls `body(span index, range in the object's ids, event in force)` for all faces, in order. The
/// event is null before the first statement of the kind.
template <class Body>
void forEachRun(const ObjStatements& s, std::span<const ObjObjectSpan> spans, ObjEvent::Kind kind,
                Body body) {
  std::size_t k = 0;
  const ObjEvent* state = nullptr;
  FaceId since = 0;
  const auto close = [&](FaceId end) {
    while (since < end && k < spans.size()) {
      const FaceId stop = std::min(end, spans[k].end);
      if (since < stop) body(k, ObjFaceRange{since - spans[k].first, stop - since}, state);
      since = std::max(since, stop);
      if (since >= spans[k].end) ++k;
    }
  };
  for (const ObjEvent& event : s.events) {
    if (event.kind != kind) continue;
    close(event.face);
    state = &event;
  }
  close(static_cast<FaceId>(s.faceOffsets.size()) - 1);
}

/// Adds runs to the sets of one object after another.
class SetCollector {
 public:
  void add(std::size_t object, std::vector<ObjFaceSet>& sets, std::string_view name,
           ObjFaceRange range) {
    if (object != object_) places_.clear();
    object_ = object;
    const auto [place, isNew] = places_.try_emplace(name, sets.size());
    if (isNew) sets.push_back({std::string(name), {}});
    std::vector<ObjFaceRange>& ranges = sets[place->second].ranges;
    if (!ranges.empty() && ranges.back().first + ranges.back().count > range.first)
      return;  // a name given twice
    if (!ranges.empty() && ranges.back().first + ranges.back().count == range.first)
      ranges.back().count += range.count;
    else
      ranges.push_back(range);
  }

 private:
  std::size_t object_ = at(-1);
  std::unordered_map<std::string_view, std::size_t> places_;
};

}  // namespace

std::vector<ObjObjectSpan> findObjectSpans(std::span<const ObjEvent> events, FaceId faceCount) {
  std::vector<ObjObjectSpan> spans{{{}, 0, 0}};
  for (const ObjEvent& event : events) {
    if (event.kind != ObjEvent::Kind::Object) continue;
    spans.back().end = event.face;
    if (spans.back().first == event.face) spans.pop_back();
    spans.push_back({event.text, event.face, event.face});
  }
  spans.back().end = faceCount;
  if (spans.size() > 1 && spans.back().first == faceCount) spans.pop_back();
  return spans;
}

std::vector<ObjFaceParts> collectFaceParts(const ObjStatements& statements,
                                           std::span<const ObjObjectSpan> spans,
                                           std::map<std::string, std::size_t>& warnings) {
  std::vector<ObjFaceParts> parts(spans.size());
  SetCollector groups, materials;
  const ObjEvent* split = nullptr;
  std::vector<std::string_view> names;
  forEachRun(statements, spans, ObjEvent::Kind::Group,
             [&](std::size_t k, ObjFaceRange range, const ObjEvent* state) {
               if (state == nullptr) return;
               if (state != split) {
                 names = splitWords(state->text);
                 if (names.size() > kMostNamesAStatement) {
                   warnings["group name past the 32nd"] += names.size() - kMostNamesAStatement;
                   names.resize(kMostNamesAStatement);
                 }
                 split = state;
               }
               for (const std::string_view name : names)
                 groups.add(k, parts[k].groups, name, range);
             });
  forEachRun(statements, spans, ObjEvent::Kind::Material,
             [&](std::size_t k, ObjFaceRange range, const ObjEvent* state) {
               if (state != nullptr && !state->text.empty())
                 materials.add(k, parts[k].materials, state->text, range);
             });
  forEachRun(statements, spans, ObjEvent::Kind::Smoothing,
             [&](std::size_t k, ObjFaceRange range, const ObjEvent* state) {
               auto& runs = parts[k].smoothing;
               const std::uint32_t group = state != nullptr ? state->number : 0;
               if (!runs.empty() && runs.back().group == group)
                 runs.back().faces.count += range.count;
               else
                 runs.push_back({range, group});
             });
  // Runs before the file's first statement only matter in an object that a statement reaches.
  const auto first =
      std::find_if(statements.events.begin(), statements.events.end(),
                   [](const ObjEvent& e) { return e.kind == ObjEvent::Kind::Smoothing; });
  const FaceId since = first != statements.events.end()
                           ? first->face
                           : static_cast<FaceId>(statements.faceOffsets.size());
  for (std::size_t k = 0; k < spans.size(); ++k)
    if (spans[k].end <= since) parts[k].smoothing.clear();
  return parts;
}

}  // namespace host::io
