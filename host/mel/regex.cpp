#include "host/mel/regex.h"

#include <limits>

namespace host::mel {

namespace {

std::size_t byteOf(char c) {
  return static_cast<unsigned char>(c);
}

/// Reads `...]` from just after the bracket; null if it isn't closed.
std::optional<std::bitset<256>> readSet(std::string_view pattern, std::size_t& at,
                                        bool allowsBang) {
  std::bitset<256> set;
  const bool isNegated =
      at < pattern.size() && (pattern[at] == '^' || (allowsBang && pattern[at] == '!'));
  if (isNegated) ++at;
  for (bool isFirst = true; at < pattern.size() && (pattern[at] != ']' || isFirst);
       isFirst = false) {
    if (pattern[at] == '\\' && at + 1 < pattern.size()) ++at;
    const std::size_t low = byteOf(pattern[at]);
    std::size_t high = low;
    if (at + 2 < pattern.size() && pattern[at + 1] == '-' && pattern[at + 2] != ']') {
      at += 2;
      high = byteOf(pattern[at]);
    }
    for (std::size_t c = low; c <= high; ++c) set.set(c);
    ++at;
  }
  if (at >= pattern.size()) return std::nullopt;
  ++at;
  return isNegated ? ~set : set;
}

}  // namespace

/// Emits steps as the pattern is read; repetitions are spliced in behind the item that they repeat.
class Regex::Builder {
 public:
  Builder(Regex& regex, std::string_view pattern) : regex_(regex), pattern_(pattern) {}

  Result<void> build() {
    std::vector<std::size_t> groups;
    while (at_ < pattern_.size()) {
      const char c = pattern_[at_];
      if (c == '(') {
        groups.push_back(regex_.steps_.size());
        ++at_;
        continue;
      }
      std::size_t item = regex_.steps_.size();
      if (c == ')') {
        if (groups.empty())
          return fail("The regular expression \"{}\" has a ) without its (.", pattern_);
        item = groups.back();
        groups.pop_back();
        ++at_;
      } else {
        HOST_TRY(readItem());
      }
      repeat(item);
    }
    if (!groups.empty())
      return fail("The regular expression \"{}\" has a ( without its ).", pattern_);
    regex_.steps_.push_back({Kind::Accept});
    return {};
  }

 private:
  Result<void> readItem() {
    const char c = pattern_[at_++];
    std::bitset<256> set;
    if (c == '^' && at_ == 1) {
      regex_.steps_.push_back({Kind::Begin});
      return {};
    }
    if (c == '$' && at_ == pattern_.size()) {
      regex_.steps_.push_back({Kind::End});
      return {};
    }
    if (c == '[') {
      const auto read = readSet(pattern_, at_, false);
      if (!read) return fail("The regular expression \"{}\" has a [ without its ].", pattern_);
      set = *read;
    } else if (c == '.') {
      set.set();
    } else if (c == '\\' && at_ < pattern_.size()) {
      set.set(byteOf(pattern_[at_++]));
    } else {
      set.set(byteOf(c));
    }
    regex_.sets_.push_back(set);
    regex_.steps_.push_back({Kind::Set, static_cast<std::uint32_t>(regex_.sets_.size() - 1)});
    return {};
  }

  /// `x*` is L: split(x, out) x jump L; `x+` is L: x split(L, out).
  void repeat(std::size_t item) {
    auto& steps = regex_.steps_;
    while (at_ < pattern_.size() && (pattern_[at_] == '*' || pattern_[at_] == '+')) {
      const auto first = static_cast<std::uint32_t>(item);
      if (pattern_[at_++] == '+') {
        const auto out = static_cast<std::uint32_t>(steps.size() + 1);
        steps.push_back({Kind::Split, first, out});
        continue;
      }
      for (std::size_t i = item; i < steps.size(); ++i) {
        if (steps[i].kind == Kind::Split || steps[i].kind == Kind::Jump) ++steps[i].first;
        if (steps[i].kind == Kind::Split) ++steps[i].second;
      }
      const auto out = static_cast<std::uint32_t>(steps.size() + 2);
      steps.insert(steps.begin() + static_cast<std::ptrdiff_t>(item),
                   Step{Kind::Split, first + 1, out});
      steps.push_back({Kind::Jump, first});
    }
  }

  Regex& regex_;
  std::string_view pattern_;
  std::size_t at_ = 0;
};

Result<Regex> Regex::compile(std::string_view pattern) {
  constexpr std::size_t kLongest = 10000;
  if (pattern.size() > kLongest)
    return fail("The regular expression is longer than {} characters.", kLongest);
  Regex regex;
  HOST_TRY(Builder(regex, pattern).build());
  return regex;
}

/// Adds the threads reachable without reading a character, most preferred first. `marks` holds for
/// each step the position + 1 at which it was last added.
void Regex::follow(std::uint32_t step, std::size_t begin, std::size_t position, std::size_t length,
                   std::vector<Thread>& threads, std::vector<std::size_t>& marks) const {
  std::vector<std::uint32_t> pending{step};
  while (!pending.empty()) {
    const std::uint32_t current = pending.back();
    pending.pop_back();
    if (marks[current] == position + 1) continue;
    marks[current] = position + 1;
    const Step& s = steps_[current];
    switch (s.kind) {
      case Kind::Split:
        pending.push_back(s.second);
        pending.push_back(s.first);
        break;
      case Kind::Jump:
        pending.push_back(s.first);
        break;
      case Kind::Begin:
        if (position == 0) pending.push_back(current + 1);
        break;
      case Kind::End:
        if (position == length) pending.push_back(current + 1);
        break;
      default:
        threads.push_back({current, begin});
    }
  }
}

std::optional<std::pair<std::size_t, std::size_t>> Regex::search(std::string_view text) const {
  std::optional<std::pair<std::size_t, std::size_t>> found;
  std::vector<Thread> current, next;
  std::vector<std::size_t> marks(steps_.size(), 0);
  for (std::size_t position = 0; position <= text.size(); ++position) {
    if (!found) follow(0, position, position, text.size(), current, marks);
    if (current.empty() && found) break;
    next.clear();
    for (const Thread& thread : current) {
      const Step& s = steps_[thread.step];
      if (s.kind == Kind::Accept) {
        found = {thread.begin, position};
        break;  // what follows in the list is less preferred
      }
      if (position < text.size() && sets_[s.first].test(byteOf(text[position])))
        follow(thread.step + 1, thread.begin, position + 1, text.size(), next, marks);
    }
    std::swap(current, next);
  }
  return found;
}

/// Backtracks to the last star only, which suffices for globs.
bool globMatches(std::string_view text, std::string_view pattern) {
  constexpr std::size_t kNoStar = std::numeric_limits<std::size_t>::max();
  std::size_t t = 0, p = 0, star = kNoStar, resume = 0;
  while (t < text.size()) {
    std::size_t after = p + 1;
    bool isMatch = false;
    if (p < pattern.size() && pattern[p] == '*') {
      star = p++;
      resume = t;
      continue;
    }
    if (p < pattern.size() && pattern[p] == '[') {
      const auto set = readSet(pattern, after, true);
      if (set) {
        isMatch = set->test(byteOf(text[t]));
      } else {
        after = p + 1;
        isMatch = text[t] == '[';
      }
    } else if (p < pattern.size()) {
      isMatch = pattern[p] == '?' || pattern[p] == text[t];
    }
    if (isMatch) {
      p = after;
      ++t;
    } else if (star != kNoStar) {
      p = star + 1;
      t = ++resume;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

}  // namespace host::mel
