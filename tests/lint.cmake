# House rules that a compiler does not check.
add_test(NAME lint_layers COMMAND "${PROJECT_SOURCE_DIR}/tests/lint/layers.sh" "${PROJECT_SOURCE_DIR}")
add_test(NAME lint_size COMMAND "${PROJECT_SOURCE_DIR}/tests/lint/size.sh" "${PROJECT_SOURCE_DIR}")
foreach(lint IN ITEMS format functions test_stems script_text)
  add_test(NAME lint_${lint} COMMAND "${PROJECT_SOURCE_DIR}/tests/lint/${lint}.sh" "${PROJECT_SOURCE_DIR}")
endforeach()
if(TARGET qxModelingToolkit)
  add_test(NAME lint_exports
           COMMAND "${PROJECT_SOURCE_DIR}/tests/lint/exports.sh" "$<TARGET_FILE:qxModelingToolkit>" "$<TARGET_FILE:qxhost>")
endif()
# The toolkit by itself: C++17, the API headers, OpenGL and the standard library, nothing else.
if(TARGET toolkit_isolation)
  add_test(NAME toolkit_isolation
           COMMAND "${CMAKE_COMMAND}" --build "${PROJECT_BINARY_DIR}" --target toolkit_isolation)
  set_tests_properties(toolkit_isolation PROPERTIES TIMEOUT 900 RUN_SERIAL ON)
  # And against an SDK tree, as a modeller with the real host builds it.
  add_test(NAME toolkit_sdk_build
           COMMAND "${PROJECT_SOURCE_DIR}/tests/lint/sdk_build.sh" "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/sdk_check")
  set_tests_properties(toolkit_sdk_build PROPERTIES TIMEOUT 900 RUN_SERIAL ON)
endif()
