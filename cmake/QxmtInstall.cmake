# `cmake --install` and a Debian package. The program finds module, scripts and data beside itself, so that the tree under
# lib/qxmt runs from anywhere:
#   <prefix>/bin/qxmt                  link to the program
#   <prefix>/lib/qxmt/bin/qxmt         program
#   <prefix>/lib/qxmt/lib/             libqxhost and the module
#   <prefix>/lib/qxmt/{scripts,data}/  what the module loads
#   <prefix>/include/qxmt/maya/        headers for plug-ins
#   <prefix>/share/doc/qxmt/           pages
include(GNUInstallDirs)
set(root "lib/qxmt")

set_target_properties(qxmt PROPERTIES INSTALL_RPATH "$ORIGIN/../lib")
set_target_properties(qxModelingToolkit PROPERTIES INSTALL_RPATH "$ORIGIN")
install(TARGETS qxmt RUNTIME DESTINATION "${root}/bin" COMPONENT program)
install(TARGETS qxhost qxModelingToolkit LIBRARY DESTINATION "${root}/lib" COMPONENT program)
if(TARGET qxmtWindow)
  set_target_properties(qxmtWindow PROPERTIES INSTALL_RPATH "$ORIGIN/../lib/open")
  install(TARGETS qxmtWindow RUNTIME DESTINATION "${root}/bin" COMPONENT program)
  install(TARGETS qxhost_open LIBRARY DESTINATION "${root}/lib/open" COMPONENT program)
endif()
install(DIRECTORY "${PROJECT_SOURCE_DIR}/scripts/" DESTINATION "${root}/scripts" COMPONENT program)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/data/" DESTINATION "${root}/data" COMPONENT program PATTERN "*.py" EXCLUDE)
file(CREATE_LINK "../${root}/bin/qxmt" "${CMAKE_CURRENT_BINARY_DIR}/qxmt-link" SYMBOLIC)
install(FILES "${CMAKE_CURRENT_BINARY_DIR}/qxmt-link" DESTINATION bin RENAME qxmt COMPONENT program)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/host/include/maya" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/qxmt" COMPONENT program)
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/LICENSE"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT program)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT program)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qxmt)
set(CPACK_PACKAGE_CONTACT "The qxmt team <qxmt@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Polygon-modelling and UV toolkit with the host that it runs in")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
# What the libraries need is read from them; the software renderer is loaded at run time, which nothing shows.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libegl1, libgl1-mesa-dri")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX "/usr")
set(CPACK_STRIP_FILES ON)
include(CPack)
