# The plug-in module: toolkit folders as plain C++17 against <maya/...>, the standard library and OpenGL.
file(GLOB_RECURSE toolkit_sources CONFIGURE_DEPENDS
     plugin/*.cpp shared/*.cpp commands/*.cpp modeling/*.cpp quaddraw/*.cpp uv/*.cpp brushes/*.cpp)
if(NOT toolkit_sources)
  return()
endif()
find_package(OpenGL REQUIRED)

# The module finds its data beside the folder that it is loaded from.
file(GLOB toolkit_data RELATIVE "${PROJECT_SOURCE_DIR}" CONFIGURE_DEPENDS data/icons/*.bmp data/models/*.obj
     data/modelingToolAlphas/*.tif)
foreach(data IN LISTS toolkit_data)
  configure_file("${data}" "${PROJECT_BINARY_DIR}/${data}" COPYONLY)
endforeach()

function(qxmt_toolkit_settings target)
  set_target_properties(${target} PROPERTIES CXX_STANDARD 17 CXX_STANDARD_REQUIRED ON PREFIX "")
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${target} PRIVATE qxmt_warnings)
endfunction()

# A module shows its host the entry points alone.
function(qxmt_module_exports target)
  if(UNIX AND NOT APPLE)
    set(map "${PROJECT_SOURCE_DIR}/cmake/module_exports.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${map}")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${map}")
  endif()
endfunction()

if(QXMT_HOST STREQUAL "maya")
  if(NOT EXISTS "${MAYA_LOCATION}/include/maya/MFnPlugin.h")
    message(FATAL_ERROR "QXMT_HOST=maya needs MAYA_LOCATION: '${MAYA_LOCATION}/include/maya/MFnPlugin.h' was not found")
  endif()
  add_library(qxModelingToolkit MODULE ${toolkit_sources})
  qxmt_toolkit_settings(qxModelingToolkit)
  target_include_directories(qxModelingToolkit SYSTEM PRIVATE "${MAYA_LOCATION}/include")
  # The SDK's headers ask for these, a platform each, and its loader for the module's end.
  if(WIN32)
    target_compile_definitions(qxModelingToolkit PRIVATE NT_PLUGIN _WINDOWS _USRDLL REQUIRE_IOSTREAM NOMINMAX)
    set_target_properties(qxModelingToolkit PROPERTIES SUFFIX ".mll")
  elseif(APPLE)
    target_compile_definitions(qxModelingToolkit PRIVATE OSMac_ OSMacOS_ _BOOL REQUIRE_IOSTREAM)
    set_target_properties(qxModelingToolkit PROPERTIES SUFFIX ".bundle")
  else()
    target_compile_definitions(qxModelingToolkit PRIVATE LINUX _BOOL REQUIRE_IOSTREAM)
  endif()
  foreach(library IN ITEMS OpenMaya OpenMayaUI OpenMayaRender Foundation)
    find_library(SDK_${library} ${library} PATHS "${MAYA_LOCATION}/lib" NO_DEFAULT_PATH)
    if(SDK_${library})
      target_link_libraries(qxModelingToolkit PRIVATE "${SDK_${library}}")
    endif()
  endforeach()
  target_link_libraries(qxModelingToolkit PRIVATE OpenGL::GL)
  qxmt_module_exports(qxModelingToolkit)
  # The folder that the host's module path finds: one .mod file beside what it names.
  install(TARGETS qxModelingToolkit DESTINATION qxModelingToolkit/plug-ins)
  install(DIRECTORY scripts/ DESTINATION qxModelingToolkit/scripts)
  install(DIRECTORY data/ DESTINATION qxModelingToolkit/data PATTERN "*.py" EXCLUDE)
  install(FILES cmake/qxModelingToolkit.mod DESTINATION .)
  return()
endif()

# The objects by themselves too, so that tests reach the plans and tables inside the module.
add_library(toolkit_objects OBJECT ${toolkit_sources})
qxmt_toolkit_settings(toolkit_objects)
target_include_directories(toolkit_objects PRIVATE "${PROJECT_SOURCE_DIR}/host/include")
qxmt_precompile(toolkit_objects toolkit <maya/MGlobal.h> <maya/MFnMesh.h> <maya/MSelectionList.h> <maya/MPxCommand.h>)
add_library(qxModelingToolkit MODULE $<TARGET_OBJECTS:toolkit_objects>)
qxmt_toolkit_settings(qxModelingToolkit)
set_target_properties(qxModelingToolkit PROPERTIES LINKER_LANGUAGE CXX)
target_link_libraries(qxModelingToolkit PRIVATE OpenGL::GL qxhost)
qxmt_module_exports(qxModelingToolkit)

# The toolkit's isolation, checked by the compiler: nothing but the API headers, the toolkit folders, OpenGL and std.
add_library(toolkit_isolation OBJECT EXCLUDE_FROM_ALL ${toolkit_sources})
qxmt_toolkit_settings(toolkit_isolation)
target_include_directories(toolkit_isolation PRIVATE "${PROJECT_SOURCE_DIR}/host/include")
