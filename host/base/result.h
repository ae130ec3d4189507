#pragma once

#include <fmt/core.h>

#include <string>
#include <tl/expected.hpp>
#include <utility>

namespace host {

/// A user or data fault: one sentence the user can act on.
struct Error {
  std::string message;
};

/// A value, or the reason why there is none. On failure the object worked on is unchanged.
template <class T>
using Result = tl::expected<T, Error>;

/// Builds the failed half of a Result from a format string.
template <class... Args>
[[nodiscard]] tl::unexpected<Error> fail(fmt::format_string<Args...> format, Args&&... args) {
  return tl::unexpected<Error>(Error{fmt::format(format, std::forward<Args>(args)...)});
}

[[nodiscard]] inline tl::unexpected<Error> failWith(Error error) {
  return tl::unexpected<Error>(std::move(error));
}

}  // namespace host

/// Returns the error of `expression` to the caller, if it has one.
#define HOST_TRY(expression)                                                     \
  do {                                                                           \
    if (auto hostTryResult_ = (expression); !hostTryResult_)                     \
      return ::tl::unexpected<::host::Error>(std::move(hostTryResult_).error()); \
  } while (false)
