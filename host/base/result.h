#pragma once

#include <fmt/core.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <utility>

namespace host {

/// What kind of fault it is, for callers that answer kinds differently; the sentence is for people.
enum class ErrorKind : std::uint8_t {
  Failed,       ///< the work itself went wrong, or no other kind fits
  BadArgument,  ///< a value, an index or an object that this call can't take
  NotFound,     ///< nothing has that name or is at that place
  Unsupported,  ///< legal, but this host doesn't do it
  NotLicensed,  ///< the licence doesn't cover it
  OutOfMemory,
};

/// A user or data fault: one sentence the user can act on, and its kind.
struct Error {
  ErrorKind kind = ErrorKind::Failed;
  std::string message;

  Error() = default;
  Error(std::string text) : message(std::move(text)) {}  // implicit: most faults just failed
  Error(ErrorKind kindIn, std::string text) : kind(kindIn), message(std::move(text)) {}
};

/// A value, or the reason why there is none. On failure the object worked on is unchanged.
template <class T>
using Result = tl::expected<T, Error>;

/// Builds the failed half of a Result from a format string.
template <class... Args>
[[nodiscard]] tl::unexpected<Error> fail(fmt::format_string<Args...> format, Args&&... args) {
  return tl::unexpected<Error>(Error(fmt::format(format, std::forward<Args>(args)...)));
}
template <class... Args>
[[nodiscard]] tl::unexpected<Error> fail(ErrorKind kind, fmt::format_string<Args...> format,
                                         Args&&... args) {
  return tl::unexpected<Error>(Error(kind, fmt::format(format, std::forward<Args>(args)...)));
}

[[nodiscard]] inline tl::unexpected<Error> failWith(Error error) {
  return tl::unexpected<Error>(std::move(error));
}

/// The same fault, told from where it was met: "<place>: <reason>". The kind stays.
[[nodiscard]] inline tl::unexpected<Error> failAt(std::string_view place, const Error& reason) {
  return tl::unexpected<Error>(Error(reason.kind, fmt::format("{}: {}", place, reason.message)));
}

}  // namespace host

/// Returns the error of `expression` to the caller, if it has one.
#define HOST_TRY(expression)                                                     \
  do {                                                                           \
    if (auto hostTryResult_ = (expression); !hostTryResult_)                     \
      return ::tl::unexpected<::host::Error>(std::move(hostTryResult_).error()); \
  } while (false)
