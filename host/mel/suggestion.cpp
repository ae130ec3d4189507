#include "host/mel/suggestion.h"

#include <algorithm>
#include <cctype>

namespace host::mel {
namespace {

constexpr std::size_t kShortest = 4, kLong = 8;

char lower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

}  // namespace

NearestName::NearestName(std::string_view typed)
    : typed_(typed), least_((typed.size() >= kLong ? 2 : 1) + 1) {}

void NearestName::offer(std::string_view name) {
  if (typed_.size() < kShortest) return;
  const std::size_t longer = std::max(name.size(), typed_.size());
  if (longer - std::min(name.size(), typed_.size()) > least_) return;
  const std::size_t slips = slipsTo(name);
  if (slips > least_ || (slips == least_ && (found_.empty() || found_ <= name))) return;
  least_ = slips;
  found_ = name;
}

/// Slips between the typed word and a name, case aside; at least so many when they are too many.
std::size_t NearestName::slipsTo(std::string_view name) {
  for (auto* row : {&before_, &last_, &row_}) row->assign(name.size() + 1, 0);
  for (std::size_t j = 0; j <= name.size(); ++j) last_[j] = j;
  for (std::size_t i = 1; i <= typed_.size(); ++i) {
    row_[0] = i;
    std::size_t fewest = i;
    for (std::size_t j = 1; j <= name.size(); ++j) {
      const bool isSame = lower(typed_[i - 1]) == lower(name[j - 1]);
      row_[j] = std::min({last_[j] + 1, row_[j - 1] + 1, last_[j - 1] + (isSame ? 0 : 1)});
      if (i > 1 && j > 1 && lower(typed_[i - 1]) == lower(name[j - 2]) &&
          lower(typed_[i - 2]) == lower(name[j - 1]))
        row_[j] = std::min(row_[j], before_[j - 2] + 1);
      fewest = std::min(fewest, row_[j]);
    }
    // Two that change places lead from the row before the last, one slip above this one's least.
    if (fewest > least_ + 1) return fewest;
    std::swap(before_, last_);
    std::swap(last_, row_);
  }
  return last_[name.size()];
}

}  // namespace host::mel
