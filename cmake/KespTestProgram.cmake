# kesp_test_program(<name> SOURCES a_test.cpp ... [USES kesp_support ...] [UNIT])
#
# A program of GoogleTest tests with its main. USES names what it is linked with. UNIT registers it with CTest, under the
# label unit; the Windows ones are registered by kesp_wine_test. A failing case is named in the program's output.
#
# The headers that nearly every test reads are compiled once for all of them. KESP_PRECOMPILE=OFF, as in the coverage
# build, shows what a file forgot to include.
# Tests run for seconds, so compiling them takes longer than optimising saves. In their own code the sanitizers leave
# out the checks of each pointer, a third of the compile time, and in the simulated instrument's; the library's has all.
add_library(kesp_test_options INTERFACE)
if(NOT KESP_FUZZ)
  target_compile_options(kesp_test_options INTERFACE -O0 -g1)
endif()
if(NOT WIN32 AND KESP_SANITIZE AND NOT KESP_COVERAGE AND NOT KESP_FUZZ)
  target_compile_options(kesp_test_options INTERFACE -fno-sanitize=null,alignment,vptr,object-size)
endif()

if(KESP_PRECOMPILE)
  set(empty_source "${CMAKE_BINARY_DIR}/test_headers.cpp")
  file(CONFIGURE OUTPUT "${empty_source}" CONTENT "")
  add_library(kesp_test_headers OBJECT "${empty_source}")
  target_link_libraries(kesp_test_headers PRIVATE kesp_options GTest::gmock kesp_test_options)
  if(WIN32)
    target_precompile_headers(kesp_test_headers PRIVATE <winsock2.h> <windows.h> <oleauto.h> <wrl/client.h>)
  endif()
  target_precompile_headers(kesp_test_headers PRIVATE
    <gmock/gmock.h> <gtest/gtest.h> <algorithm> <array> <atomic> <chrono> <cstdint> <deque> <filesystem> <fstream>
    <functional> <map> <memory> <optional> <set> <string> <thread> <vector>)
endif()

# kesp_compile_as_test(<target>)
#
# The compiler settings and the precompiled headers of tests, for a target that is linked with GoogleTest.
function(kesp_compile_as_test target)
  target_link_libraries(${target} PRIVATE kesp_options kesp_test_options)
  if(KESP_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM kesp_test_headers)
  endif()
endfunction()

function(kesp_test_program name)
  cmake_parse_arguments(PROGRAM "UNIT" "" "SOURCES;USES" ${ARGN})
  if(PROGRAM_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "kesp_test_program does not know ${PROGRAM_UNPARSED_ARGUMENTS}")
  endif()
  add_executable(${name} ${PROGRAM_SOURCES})
  target_link_libraries(${name} PRIVATE kesp_options ${PROGRAM_USES} GTest::gmock_main)
  kesp_compile_as_test(${name})
  if(KESP_FUZZ)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
  if(PROGRAM_UNIT)
    add_test(NAME unit.${name} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(unit.${name} PROPERTIES LABELS unit TIMEOUT 300)
  endif()
endfunction()
