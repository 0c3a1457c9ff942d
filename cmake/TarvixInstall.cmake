# What `cmake --install` lays down, in four components:
#
#   library       what programs need to run: the shared libraries
#   development   what they need to be built: headers, archives, the CMake package and the pkg-config files
#   tools         the program with its manual page, the shells' completions and the udev rules
#   python        the Python module, when it is built
#
# Nothing in it names the place where it was installed: it may be moved.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(TarvixPackageFolder "${CMAKE_INSTALL_LIBDIR}/cmake/Tarvix")

# Sets `Result` to the way from one installed folder to another, both as seen from the prefix.
function(tarvix_relative_path Result From To)
  cmake_path(ABSOLUTE_PATH From BASE_DIRECTORY "/prefix")
  cmake_path(ABSOLUTE_PATH To BASE_DIRECTORY "/prefix")
  file(RELATIVE_PATH Way "${From}" "${To}")
  set(${Result} "${Way}" PARENT_SCOPE)
endfunction()

# The binary finds the shared libraries from its own place in `Folder`.
function(tarvix_find_libraries_from Target Folder)
  if(BUILD_SHARED_LIBS)
    tarvix_relative_path(Way "${Folder}" "${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(${Target} PROPERTIES INSTALL_RPATH "$ORIGIN/${Way}")
  endif()
endfunction()

function(tarvix_install_library Name)
  tarvix_find_libraries_from(${Name} "${CMAKE_INSTALL_LIBDIR}")
  install(TARGETS ${Name} EXPORT ${Name}Targets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT library
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT library NAMELINK_COMPONENT development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)
  install(EXPORT ${Name}Targets NAMESPACE Tarvix:: DESTINATION "${TarvixPackageFolder}" COMPONENT development)
endfunction()

# `Name`.pc. REQUIRES are the packages that whoever links the library needs, too.
function(tarvix_install_pkg_config Name)
  cmake_parse_arguments(PARSE_ARGV 1 Arg "" "DESCRIPTION" "REQUIRES")
  list(JOIN Arg_REQUIRES ", " Requires)
  set(Definition)
  if(NOT BUILD_SHARED_LIBS)
    string(TOUPPER "-D${Name}_STATIC" Definition)
  endif()
  tarvix_relative_path(PrefixWay "${CMAKE_INSTALL_LIBDIR}/pkgconfig" "")
  tarvix_relative_path(IncludeWay "" "${CMAKE_INSTALL_INCLUDEDIR}")
  tarvix_relative_path(LibraryWay "" "${CMAKE_INSTALL_LIBDIR}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/library.pc.in" "${PROJECT_BINARY_DIR}/generated/${Name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/generated/${Name}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
          COMPONENT development)
endfunction()

# The CMake package `Tarvix`. PELLUMO_MODULES are the pkg-config modules that whoever links pellumo needs, too.
function(tarvix_install_package)
  cmake_parse_arguments(PARSE_ARGV 0 Arg "" "" "PELLUMO_MODULES")
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/TarvixConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/generated/TarvixConfig.cmake" INSTALL_DESTINATION "${TarvixPackageFolder}")
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/generated/TarvixConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/generated/TarvixConfig.cmake"
                "${PROJECT_BINARY_DIR}/generated/TarvixConfigVersion.cmake"
          DESTINATION "${TarvixPackageFolder}" COMPONENT development)
endfunction()
