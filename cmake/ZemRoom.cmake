# zem_room(TARGET [MODULES name...] [SUBDIRECTORIES name...] [DEPENDS target...] [GENERATED file...]
#          [TEST_DEPENDS target...])
#
# One room of the house: every *.cpp beside the CMakeLists.txt is its code, every *_test.cpp its
# test (TARGET_test), main.cpp is left to whoever builds the program. Includes start at the root.
# Where two rooms share a directory, MODULES names the modules (name.cpp, name_test.cpp) of each.
# SUBDIRECTORIES hold more of the room, whole.
# GENERATED sources (parsers) are compiled without our warnings, which generators do not promise.

add_library(zem_options INTERFACE)
target_include_directories(zem_options INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
target_compile_definitions(zem_options INTERFACE _GNU_SOURCE)
if(ZEM_SANITIZE)
  target_compile_options(zem_options INTERFACE -fsanitize=address,undefined
                                               -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(zem_options INTERFACE -fsanitize=address,undefined)
endif()
if(ZEM_FUZZ)
  target_compile_options(zem_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(zem_options INTERFACE -ffunction-sections -fdata-sections)
  target_link_options(zem_options INTERFACE -Wl,--gc-sections -Wl,--as-needed)
endif()

add_library(zem_warnings INTERFACE)
target_compile_options(zem_warnings INTERFACE -Werror -Wall -Wextra -Wpedantic -Wshadow
                                              -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Part of clang's -Wconversion, not of the g++ one that the house is built with.
  target_compile_options(zem_warnings INTERFACE -Wno-sign-conversion)
endif()

function(zem_room target)
  cmake_parse_arguments(ARG "" "" "MODULES;SUBDIRECTORIES;DEPENDS;GENERATED;TEST_DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(ARG_MODULES)
    list(JOIN ARG_MODULES "|" modules)
    list(FILTER sources INCLUDE REGEX "/(${modules})(_test)?\\.cpp$")
  endif()
  foreach(directory IN LISTS ARG_SUBDIRECTORIES)
    file(GLOB more CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${directory}/*.cpp)
    list(APPEND sources ${more})
  endforeach()
  set(tests ${sources})
  list(FILTER tests INCLUDE REGEX "_test\\.cpp$")
  list(FILTER sources EXCLUDE REGEX "(_test|/main)\\.cpp$")

  if(NOT sources)
    add_library(${target} INTERFACE)
    target_link_libraries(${target} INTERFACE zem_options ${ARG_DEPENDS})
    return()
  endif()
  add_library(${target} STATIC ${sources})
  set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
  target_link_libraries(${target} PUBLIC zem_options ${ARG_DEPENDS} PRIVATE zem_warnings)
  if(ARG_GENERATED)
    add_library(${target}_generated OBJECT ${ARG_GENERATED})
    target_link_libraries(${target}_generated PUBLIC zem_options)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}_generated>)
  endif()

  if(tests AND BUILD_TESTING AND NOT ZEM_FUZZ)
    add_executable(${target}_test ${tests})
    target_link_libraries(${target}_test PRIVATE ${target} zem_test_support ${ARG_TEST_DEPENDS}
                                                 zem_warnings GTest::gtest_main GTest::gmock)
    gtest_discover_tests(${target}_test NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60)
  endif()
endfunction()
