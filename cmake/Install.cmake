# Install rules, the CMake package, the pkg-config file and the Debian package.
# Included from the top-level CMakeLists.txt; paths below the prefix are
# relative so that `cmake --install --prefix` can put them anywhere.
include(CMakePackageConfigHelpers)

set(KESTREL_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/kestrelcore)
set(KESTREL_DOC_DIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/kestrelcore)

# Public headers, in their folders under include/kestrel.
file(GLOB_RECURSE KESTREL_HEADERS CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
     ${PROJECT_SOURCE_DIR}/kestrel/*.h)
list(FILTER KESTREL_HEADERS EXCLUDE REGEX "Internal\\.h$")
list(REMOVE_ITEM KESTREL_HEADERS ${KESTREL_INTERNAL_HEADERS})
foreach(header IN LISTS KESTREL_HEADERS)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder} COMPONENT Development)
endforeach()

install(TARGETS kestrelcore EXPORT kestrelcoreTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Runtime NAMELINK_COMPONENT Development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Runtime)
install(EXPORT kestrelcoreTargets NAMESPACE kestrel:: DESTINATION ${KESTREL_CMAKE_DIR}
  COMPONENT Development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/kestrelcoreConfig.cmake.in
  ${PROJECT_BINARY_DIR}/kestrelcoreConfig.cmake INSTALL_DESTINATION ${KESTREL_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kestrelcoreConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kestrelcoreConfig.cmake
  ${PROJECT_BINARY_DIR}/kestrelcoreConfigVersion.cmake
  DESTINATION ${KESTREL_CMAKE_DIR} COMPONENT Development)

# pkg-config: written at install time, when the prefix is known (it may come
# from `cmake --install --prefix`). A static library names its dependencies
# for `pkg-config --static`.
if(KESTREL_SHARED)
  set(KESTREL_PC_PRIVATE "")
else()
  list(TRANSFORM CMAKE_DL_LIBS PREPEND -l OUTPUT_VARIABLE KESTREL_PC_DL)
  string(REPLACE ";" " " KESTREL_PC_DL "${KESTREL_PC_DL}")
  set(KESTREL_PC_PRIVATE "Requires.private: icu-uc icu-i18n libzip\nLibs.private: -pthread ${KESTREL_PC_DL}")
endif()
set(KESTREL_PC_PREFIX "@KESTREL_PC_PREFIX@") # left for the install step
configure_file(${PROJECT_SOURCE_DIR}/cmake/kestrelcore.pc.in ${PROJECT_BINARY_DIR}/kestrelcore.pc.in
  @ONLY)
install(CODE "
  get_filename_component(KESTREL_PC_PREFIX \"\${CMAKE_INSTALL_PREFIX}\" ABSOLUTE)
  configure_file(\"${PROJECT_BINARY_DIR}/kestrelcore.pc.in\" \"${PROJECT_BINARY_DIR}/kestrelcore.pc\" @ONLY)"
  COMPONENT Development)
install(FILES ${PROJECT_BINARY_DIR}/kestrelcore.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT Development)

# The documentation, and the licence once the owners have chosen one.
file(GLOB KESTREL_LICENCE ${PROJECT_SOURCE_DIR}/LICENSE* ${PROJECT_SOURCE_DIR}/LICENCE*
     ${PROJECT_SOURCE_DIR}/COPYING*)
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${KESTREL_LICENCE} DESTINATION ${KESTREL_DOC_DIR}
  COMPONENT Runtime)

# `make deb`: one package with the library, the tool, the headers and the
# CMake and pkg-config files, below /usr.
if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_PACKAGE_NAME kestrelcore)
  set(CPACK_PACKAGE_VENDOR Kestrelcore)
  set(CPACK_PACKAGE_CONTACT "Kestrelcore developers")
  set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
      "runtime library of a suite of corpus-analysis tools, with the kestrel tool")
  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_INSTALL_PREFIX /usr)
  set(CPACK_SET_DESTDIR ON) # the pkg-config file is written with the final prefix
  set(CPACK_STRIP_FILES ON)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
  include(CPack)
endif()
