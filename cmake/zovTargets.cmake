# What every target of this project is built with. Hosts that bring the project in
# with add_subdirectory keep their own flags: warnings and sanitizers stop here.

set(ZOV_SANITIZE "" CACHE STRING "Sanitizers for our own targets, e.g. address,undefined or thread")
option(ZOV_COVERAGE "Count executed lines in the two libraries" OFF)
option(ZOV_WERROR "Treat warnings in our own targets as errors" ${PROJECT_IS_TOP_LEVEL})

# Settings of one of our own targets: language level, visibility, warnings, sanitizers.
function(zov_own_target target)
  set_target_properties(${target} PROPERTIES
    CXX_STANDARD 20
    CXX_STANDARD_REQUIRED ON
    CXX_EXTENSIONS OFF
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-align -Wold-style-cast
    -Woverloaded-virtual -Wdouble-promotion -Wformat=2 -Wnon-virtual-dtor
    $<$<BOOL:${ZOV_WERROR}>:-Werror>
    # Sources are named from the project's root, whatever machine builds them; coverage reports need the machine's names.
    "$<$<NOT:$<BOOL:${ZOV_COVERAGE}>>:-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=>")
  if(ZOV_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  if(ZOV_SANITIZE)
    target_compile_options(${target} PRIVATE "-fsanitize=${ZOV_SANITIZE}" -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(${target} PRIVATE "-fsanitize=${ZOV_SANITIZE}")
  endif()
endfunction()

# A library of ours: its objects (linked by tests of what hosts cannot see) wrapped as the
# shared library that hosts link.
#   zov_add_library(zovUtils API zov::utils MACRO ZOV_UTILS SOURCES ... [LINKS ...])
# The public headers lie in inc/ beside the caller; the objects are ${name}Objects.
function(zov_add_library name)
  cmake_parse_arguments(arg "" "EXPORT_AS;MACRO" "SOURCES;HEADERS;LINKS" ${ARGN})
  add_library(${name}Objects OBJECT ${arg_SOURCES})
  zov_own_target(${name}Objects)
  set_target_properties(${name}Objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_definitions(${name}Objects PUBLIC ${arg_MACRO}_BUILD)
  target_include_directories(${name}Objects
    PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}/inc"
    PRIVATE "${CMAKE_CURRENT_SOURCE_DIR}/src")
  target_link_libraries(${name}Objects PUBLIC ${arg_LINKS})
  if(ZOV_COVERAGE)
    target_compile_options(${name}Objects PRIVATE --coverage -fprofile-abs-path -fprofile-update=atomic)
    target_link_options(${name}Objects PUBLIC --coverage)
  endif()

  add_library(${name} SHARED $<TARGET_OBJECTS:${name}Objects>)
  add_library(zov::${arg_EXPORT_AS} ALIAS ${name})
  zov_own_target(${name})
  set_target_properties(${name} PROPERTIES
    EXPORT_NAME ${arg_EXPORT_AS}
    LINKER_LANGUAGE CXX
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN"
    VERIFY_INTERFACE_HEADER_SETS ON)
  list(TRANSFORM arg_HEADERS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/inc/")
  target_sources(${name} PUBLIC FILE_SET HEADERS BASE_DIRS "${CMAKE_CURRENT_SOURCE_DIR}/inc" FILES ${arg_HEADERS})
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_link_libraries(${name} PUBLIC ${arg_LINKS})
  if(ZOV_COVERAGE)
    target_link_options(${name} PRIVATE --coverage)
  endif()
  if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    # A library's own calls lead to its own functions, whatever else the process has loaded. Data stays shared: type
    # information and the statics of inline functions are one in the process.
    target_compile_options(${name}Objects PRIVATE -fno-semantic-interposition)
    target_link_options(${name} PRIVATE -Wl,-Bsymbolic-functions)
    if(NOT ZOV_SANITIZE)
      target_link_options(${name} PRIVATE -Wl,--no-undefined)
    endif()
  endif()
endfunction()
