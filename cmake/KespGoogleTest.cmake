# GoogleTest from the distribution's sources, so that the native and both Windows builds use the same one.
set(KESP_GOOGLETEST_SOURCES "/usr/src/googletest" CACHE PATH "The sources of GoogleTest")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
add_subdirectory("${KESP_GOOGLETEST_SOURCES}" "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
if(NOT TARGET GTest::gmock_main)
  add_library(GTest::gmock_main ALIAS gmock_main)
endif()
# It runs for seconds, and nobody looks into it with a debugger.
foreach(library IN ITEMS gtest gtest_main gmock gmock_main)
  target_compile_options(${library} PRIVATE -O0 -g0)
endforeach()
