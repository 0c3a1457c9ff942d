include(TarvixInstall)

option(TARVIX_WERROR "Treat warnings as errors" ${PROJECT_IS_TOP_LEVEL})

# What every target of the project is compiled with.
function(tarvix_compile_options Target)
  target_compile_features(${Target} PUBLIC cxx_std_20)
  set_target_properties(${Target} PROPERTIES CXX_EXTENSIONS OFF)
  target_compile_options(${Target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                           $<$<BOOL:${TARVIX_WERROR}>:-Werror>)
endfunction()

# The version resource of a DLL. Its texts write the minor number with two digits: "1.01".
function(tarvix_add_version_resource Name)
  set(Minor ${PROJECT_VERSION_MINOR})
  if(Minor LESS 10)
    string(PREPEND Minor 0)
  endif()
  set(VersionText "${PROJECT_VERSION_MAJOR}.${Minor}")
  set(Resource "${PROJECT_BINARY_DIR}/generated/${Name}.rc")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${Resource}" @ONLY)
  target_sources(${Name} PRIVATE "${Resource}")
endfunction()

# A library of the project: `Name` for hosts (static or shared) and `Name_objects`, the same object files with every
# internal symbol in reach, for the project's own tests, benchmarks and fuzzers. PUBLIC_HEADERS are installed and are all
# that hosts may include; NAMESPACE is all that the shared library exports.
function(tarvix_add_library Name)
  cmake_parse_arguments(PARSE_ARGV 1 Arg "" "NAMESPACE" "PUBLIC_HEADERS;SOURCES")
  string(TOUPPER ${Name} Upper)

  add_library(${Name}_objects OBJECT ${Arg_SOURCES})
  tarvix_compile_options(${Name}_objects)
  target_include_directories(${Name}_objects PUBLIC "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/generated")
  target_compile_definitions(${Name}_objects PRIVATE ${Upper}_BUILDING)
  set_target_properties(${Name}_objects PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                                                   VISIBILITY_INLINES_HIDDEN ON)

  add_library(${Name} $<TARGET_OBJECTS:${Name}_objects>)
  add_library(Tarvix::${Name} ALIAS ${Name})
  target_compile_features(${Name} PUBLIC cxx_std_20)
  target_sources(${Name} PUBLIC FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}" FILES ${Arg_PUBLIC_HEADERS})
  set_target_properties(${Name} PROPERTIES LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION}
                                           SOVERSION ${PROJECT_VERSION_MAJOR})
  if(NOT BUILD_SHARED_LIBS)
    target_compile_definitions(${Name}_objects PUBLIC ${Upper}_STATIC)
    target_compile_definitions(${Name} INTERFACE ${Upper}_STATIC)
  elseif(WIN32)
    set_target_properties(${Name} PROPERTIES PREFIX "")
    tarvix_add_version_resource(${Name})
  elseif(NOT APPLE)
    # Hidden visibility leaves the standard library's templates visible, whatever they were instantiated for.
    set(ExportMap "${PROJECT_BINARY_DIR}/generated/${Name}.map")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/exports.map.in" "${ExportMap}" @ONLY)
    target_link_options(${Name} PRIVATE "LINKER:--version-script=${ExportMap}")
    set_target_properties(${Name} PROPERTIES LINK_DEPENDS "${ExportMap}")
  endif()
  if(TARVIX_INSTALL)
    tarvix_install_library(${Name})
  endif()
endfunction()
