# Compiler settings that every target shares.
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_FLAGS_RELEASE "-O2")  # assertions are governed by QXMT_ASSERT, not by NDEBUG
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

find_program(QXMT_CCACHE ccache)
if(QXMT_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND};-E;env;CCACHE_BASEDIR=${CMAKE_SOURCE_DIR};CCACHE_NOHASHDIR=1;CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime;${QXMT_CCACHE}")
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options($<$<BOOL:${QXMT_PRECOMPILE}>:-fpch-preprocess>)  # the compiler cache needs it
endif()
find_program(QXMT_MOLD mold)
if(QXMT_MOLD AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  add_link_options(-fuse-ld=mold)
endif()

# A file's own warnings are errors; third-party headers come in as system headers.
add_library(qxmt_warnings INTERFACE)
target_compile_options(qxmt_warnings INTERFACE -Wall -Wextra -Wshadow -Wpedantic -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND QXMT_PRECOMPILE)
  # g++ 12 finds these in the standard library's own strings once its headers come precompiled.
  target_compile_options(qxmt_warnings INTERFACE -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)
endif()

if(QXMT_SANITIZE)
  set(sanitizers address,undefined)
  if(QXMT_SANITIZE STREQUAL "address")  # compiles and runs in two thirds of the time
    set(sanitizers address)
  endif()
  add_compile_options(-fsanitize=${sanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${sanitizers})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # The instrumentation hides initialisations from this check, which then reports variants that are set.
    add_compile_options(-Wno-maybe-uninitialized)
  endif()
endif()
if(QXMT_FUZZ AND QXMT_FUZZ_SANITIZE)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
elseif(QXMT_FUZZ)
  # Several times as many inputs a second; what the standard library's own checks don't see goes unseen.
  add_compile_options(-fsanitize=fuzzer-no-link -D_GLIBCXX_ASSERTIONS)
endif()
