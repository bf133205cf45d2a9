# What every target of the project shares: one place for flags, so that a list of targets reads as a table of contents.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

find_program(MK_CCACHE ccache)
if(MK_CCACHE)
  # Paths count from the source folder, so that another clone finds what this one compiled.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
                                  ${MK_CCACHE})
endif()

add_library(MKOptions INTERFACE)
# Simulations must give the same bits on every x86-64, so no expression may be contracted into a fused multiply-add.
target_compile_options(MKOptions INTERFACE -Wall -Wextra -Werror -ffp-contract=off)
# GCC 12 sees overlaps in sums of strings that aren't there (its bug 105651).
target_compile_options(MKOptions INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
# clang has no use for GCC's hints to its vectoriser, and minds the `&` of conditions that must not branch.
target_compile_options(MKOptions INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wno-unknown-pragmas> $<$<CXX_COMPILER_ID:Clang>:-Wno-bitwise-instead-of-logical>)
target_include_directories(MKOptions INTERFACE ${CMAKE_CURRENT_SOURCE_DIR}/Libs ${CMAKE_CURRENT_SOURCE_DIR}/Tools)
if(MK_SANITIZE)
  # What a sanitizer adds makes GCC 12 see uninitialised members in the standard library's own code.
  target_compile_options(MKOptions INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_compile_options(MKOptions INTERFACE -fsanitize=${MK_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(MKOptions INTERFACE -fsanitize=${MK_SANITIZE})
endif()
if(MK_BUILD_FUZZERS)
  # The fuzzers steer by the coverage of the libraries that they test.
  target_compile_options(MKOptions INTERFACE -fsanitize=fuzzer-no-link)
endif()

# mk_library(<name> LINKS <targets>...): a floor. Its rooms add their sources with mk_sources().
function(mk_library name)
  cmake_parse_arguments(ARG "" "" "LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC)
  target_link_libraries(${name} PUBLIC MKOptions ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
endfunction()

# mk_sources(<target> <files>...): the sources of one room, relative to its folder.
function(mk_sources target)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(${target} PRIVATE ${ARGN})
endfunction()

# mk_test(<name> SOURCES <files>... LINKS <targets>...): one test program, run by ctest under that name.
function(mk_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} MKTestCommon GTest::gmock GTest::gtest GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
endfunction()
