#pragma once

namespace host {

/// Reports a broken invariant of our own and ends the program.
[[noreturn]] void assertionFailed(const char* condition, const char* file, int line,
                                  const char* remedy);

}  // namespace host

/// Checks an invariant; the text says what to do about a violation. On unless QXMT_ASSERT is 0.
#ifndef QXMT_ASSERT
#define QXMT_ASSERT 1
#endif
#if QXMT_ASSERT
#define HOST_ASSERT(condition, remedy) \
  ((condition) ? void(0) : ::host::assertionFailed(#condition, __FILE__, __LINE__, remedy))
#else
#define HOST_ASSERT(condition, remedy) void(0)
#endif
