# Tests that run Windows programs and scripts under Wine, registered in the native build's CTest.
#
# kesp_wine_test(NAME <name> PROGRAM <path> [BITS 64 32] [ARGS ...] [INSTRUMENT <device.json>] [TIMEOUT <s>]
#                [SERIAL <com number> [WIRE]] [HOSTS <hosts.json>] [DRIVER <bus.json>] [LOCALE <name>] [STANDALONE]
#                [SCREEN] [ALL_PORTS] [CHANGES_REGISTRY] [SHARDS <n>])
#
# kesp_wine_program(<name> SOURCES a_test.cpp ... [USES kesp_client ...] [what kesp_wine_test takes])
#
# kesp_wine_program makes a program of GoogleTest tests, <name> with underscores and _test behind (clients.query:
# clients_query_test.exe), and its test in one place, so that no suite of it can be forgotten. kesp_wine_test is for
# programs that are there and for scripts.
#
# One test for each width (both unless BITS says otherwise), named wine64.<name> and wine32.<name>. 32-bit ones run in the
# second Wine, and so do, as wine10.<name>, the 64-bit ones that cmake/KespSecondWine.cmake lists.
#   PROGRAM     an .exe as a path within the Windows build (tests/win/foo.exe), or a .vbs or .js file of this folder
#   ARGS        {host} and {port} stand for the simulated instrument's, {com} for its COM port's number
#   INSTRUMENT  runs the simulated instrument along; the file of a device, or BUILT_IN
#   SERIAL      puts the instrument on that COM port, from 33 up and no other test's; without INSTRUMENT the built-in one
#   WIRE        puts no instrument there; the program itself is the other end, through a network connection
#   HOSTS       runs it on a simulated network with the hosts of that file of this folder (tools/with-network-hosts),
#               in a Windows of its own with the library registered; not with INSTRUMENT or SERIAL
#   DRIVER      runs with the simulated GPIB driver beside the program; a bus of this folder, or BUILT_IN
#   LOCALE      runs in a Windows of that language, such as ja_JP.UTF-8, and alone, because Wine notes the language down
#   STANDALONE  does not need the library registered
#   SCREEN      opens windows, and runs while no other such test does: they would take the focus from one another
#   ALL_PORTS   opens every COM port there is, and runs before all tests that have one in the same Windows; such a test
#               is named by KESP_ALL_PORTS_TEST below
#   CHANGES_REGISTRY  runs alone and must leave the library registered; that of the other width is not registered meanwhile
#   SHARDS      shares the program's cases out to that many tests, named <name>.1 and so on, which run side by side; with
#               SERIAL each has a port of its own, the numbers behind that one
# In the Windows builds it does nothing, so that a folder's list file is the same for all builds.
set(KESP_WINE_TEST "${CMAKE_SOURCE_DIR}/tools/wine-test")
set(KESP_WITH_INSTRUMENT "${CMAKE_SOURCE_DIR}/tools/with-instrument")
set(KESP_WITH_SERIAL_LINE "${CMAKE_SOURCE_DIR}/tools/with-serial-line")
set(KESP_WITH_NETWORK_HOSTS "${CMAKE_SOURCE_DIR}/tools/with-network-hosts")
set(KESP_ONLY_EDITION "${CMAKE_SOURCE_DIR}/tests/both_widths/only_edition")
set(KESP_SKIPPED 77)
set(KESP_WINE_TEST_OPTIONS STANDALONE CHANGES_REGISTRY WIRE SCREEN ALL_PORTS)
set(KESP_WINE_TEST_VALUES INSTRUMENT SERIAL HOSTS DRIVER LOCALE TIMEOUT SHARDS)

# kesp_after_all_ports(<test> <label of the tests>): for a test that has a COM port of its own. It is an order and no lock,
# since tests with ports of their own run side by side; and the first is the better place for a test that takes long.
set(KESP_ALL_PORTS_TEST clients.editing)
function(kesp_after_all_ports name windows)
  # Both widths of the second Wine have the same ports.
  string(REPLACE wine10 wine32 windows ${windows})
  set_tests_properties(${name} PROPERTIES DEPENDS ${windows}.${KESP_ALL_PORTS_TEST})
endfunction()

# Registering is a test of its own; those that need the library depend on it.
#   kesp_wine_registration(<label of the tests> <arguments of wine-register>)
function(kesp_wine_registration windows)
  foreach(step IN ITEMS register unregister)
    set(remove "")
    set(role FIXTURES_SETUP)
    if(step STREQUAL unregister)
      set(remove --remove)
      set(role FIXTURES_CLEANUP)
    endif()
    add_test(NAME ${windows}.${step} COMMAND "${CMAKE_SOURCE_DIR}/tools/wine-register" ${ARGN} ${remove})
    string(REPLACE wine registered fixture ${windows})
    set_tests_properties(${windows}.${step} PROPERTIES
      LABELS ${windows} ${role} ${fixture} TIMEOUT 120 SKIP_RETURN_CODE ${KESP_SKIPPED}
      # Setup programs do not run side by side on Windows either.
      RESOURCE_LOCK registering)
  endforeach()
endfunction()

function(kesp_wine_test)
  if(WIN32)
    return()
  endif()
  cmake_parse_arguments(TEST "${KESP_WINE_TEST_OPTIONS}" "NAME;PROGRAM;${KESP_WINE_TEST_VALUES}" "BITS;ARGS" ${ARGN})
  if(TEST_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "kesp_wine_test does not know ${TEST_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT TEST_BITS)
    set(TEST_BITS 64 32)
  endif()
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 60)
  endif()
  if(TEST_WIRE AND (TEST_INSTRUMENT OR NOT TEST_SERIAL))
    message(FATAL_ERROR "kesp_wine_test: WIRE goes with SERIAL and without INSTRUMENT")
  endif()
  if(TEST_HOSTS AND (TEST_INSTRUMENT OR TEST_SERIAL))
    message(FATAL_ERROR "kesp_wine_test: HOSTS goes without INSTRUMENT and SERIAL")
  endif()
  if(TEST_ALL_PORTS AND NOT TEST_NAME STREQUAL KESP_ALL_PORTS_TEST)
    message(FATAL_ERROR "kesp_wine_test: ALL_PORTS is for ${KESP_ALL_PORTS_TEST} alone, which other tests wait for")
  endif()
  foreach(bits IN LISTS TEST_BITS)
    kesp_add_wine_tests(wine${bits} --bits ${bits})
  endforeach()
  if(64 IN_LIST TEST_BITS AND TEST_NAME IN_LIST KESP_SECOND_WINE_TESTS)
    set(bits 64)
    kesp_add_wine_tests(wine10 --bits 64 --wine 10)
    set_property(GLOBAL APPEND PROPERTY KESP_SECOND_WINE_ADDED ${TEST_NAME})
  endif()
endfunction()

function(kesp_wine_program name)
  cmake_parse_arguments(PROGRAM "${KESP_WINE_TEST_OPTIONS}" "${KESP_WINE_TEST_VALUES}" "SOURCES;USES;BITS" ${ARGN})
  string(REPLACE . _ program "${name}_test")
  if(WIN32)
    kesp_test_program(${program} SOURCES ${PROGRAM_SOURCES} USES ${PROGRAM_USES})
    return()
  endif()
  set(arguments ${PROGRAM_UNPARSED_ARGUMENTS})
  foreach(option IN LISTS KESP_WINE_TEST_OPTIONS)
    if(PROGRAM_${option})
      list(APPEND arguments ${option})
    endif()
  endforeach()
  foreach(value IN ITEMS ${KESP_WINE_TEST_VALUES} BITS)
    if(PROGRAM_${value})
      list(APPEND arguments ${value} ${PROGRAM_${value}})
    endif()
  endforeach()
  cmake_path(RELATIVE_PATH CMAKE_CURRENT_SOURCE_DIR BASE_DIRECTORY "${CMAKE_SOURCE_DIR}" OUTPUT_VARIABLE folder)
  kesp_wine_test(NAME ${name} PROGRAM ${folder}/${program}.exe ${arguments})
endfunction()

# The tests of one Windows (its label, and the tools' options for it): one, or one for each part.
macro(kesp_add_wine_tests windows)
  if(TEST_SHARDS)
    foreach(shard RANGE 1 ${TEST_SHARDS})
      kesp_add_wine_test(${windows} ${ARGN})
    endforeach()
  else()
    set(shard "")
    kesp_add_wine_test(${windows} ${ARGN})
  endif()
endmacro()

# The body of kesp_wine_test for one width, one Windows, and one part where there are several, in that function's scope.
macro(kesp_add_wine_test windows)
  set(name ${windows}.${TEST_NAME})
  set(port "${TEST_SERIAL}")
  set(environment "KESP_INSTRUMENT=${CMAKE_BINARY_DIR}/simulator/kesp-sim")
  if(shard)
    string(APPEND name .${shard})
    math(EXPR index "${shard} - 1")
    list(APPEND environment GTEST_TOTAL_SHARDS=${TEST_SHARDS} GTEST_SHARD_INDEX=${index})
    if(TEST_SERIAL)
      math(EXPR port "${TEST_SERIAL} + ${index}")
    endif()
  endif()
  if(TEST_PROGRAM MATCHES "\\.exe$")
    set(program "${CMAKE_SOURCE_DIR}/build/win${bits}/${TEST_PROGRAM}")
  else()
    set(program "${CMAKE_CURRENT_SOURCE_DIR}/${TEST_PROGRAM}")
  endif()
  set(driver "")
  if(TEST_DRIVER)
    set(driver --driver)
    if(NOT TEST_DRIVER STREQUAL BUILT_IN)
      list(APPEND driver "${CMAKE_CURRENT_SOURCE_DIR}/${TEST_DRIVER}")
    endif()
  endif()
  set(locale "")
  if(TEST_LOCALE)
    set(locale --locale ${TEST_LOCALE})
  endif()
  set(command "${KESP_WINE_TEST}" ${ARGN} --timeout ${TEST_TIMEOUT} ${locale} ${driver} "${program}" ${TEST_ARGS})
  if(TEST_CHANGES_REGISTRY AND NOT ${windows} STREQUAL wine64)
    set(command "${KESP_ONLY_EDITION}" ${bits} ${command})
  endif()
  set(other_end "")
  if(TEST_WIRE)
    set(other_end --wire)
  elseif(TEST_INSTRUMENT AND NOT TEST_INSTRUMENT STREQUAL BUILT_IN)
    set(other_end "${CMAKE_CURRENT_SOURCE_DIR}/${TEST_INSTRUMENT}")
  endif()
  if(TEST_SERIAL)
    set(command "${KESP_WITH_SERIAL_LINE}" ${ARGN} --com ${port} ${other_end} -- ${command})
  elseif(TEST_HOSTS)
    set(command "${KESP_WITH_NETWORK_HOSTS}" ${ARGN} "${CMAKE_CURRENT_SOURCE_DIR}/${TEST_HOSTS}" -- ${command})
  elseif(TEST_INSTRUMENT)
    set(command "${KESP_WITH_INSTRUMENT}" ${other_end} -- ${command})
  endif()
  add_test(NAME ${name} COMMAND ${command})
  # CTest's own limit is the later one, so that the program's output is still seen when its time is up.
  math(EXPR last_resort "${TEST_TIMEOUT} + 30")
  set_tests_properties(${name} PROPERTIES
    LABELS ${windows} TIMEOUT ${last_resort} SKIP_RETURN_CODE ${KESP_SKIPPED} ENVIRONMENT "${environment}")
  # On a network of its own the library is registered by the way, where nobody else sees it.
  if(NOT TEST_STANDALONE AND NOT TEST_HOSTS)
    string(REPLACE wine registered fixture ${windows})
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED ${fixture})
  endif()
  if(TEST_SERIAL AND NOT TEST_ALL_PORTS)
    kesp_after_all_ports(${name} ${windows})
  endif()
  if(TEST_CHANGES_REGISTRY OR TEST_LOCALE)
    set_tests_properties(${name} PROPERTIES RUN_SERIAL TRUE)
  endif()
  set(locks "")
  if(TEST_SCREEN)
    # Of both widths, which share the screen.
    list(APPEND locks screen)
  endif()
  if(NOT ${windows} STREQUAL wine64)
    # The same test of the other width has the same COM port and the same files in the same Windows.
    list(APPEND locks second_wine.${TEST_NAME}.${shard})
  endif()
  set_tests_properties(${name} PROPERTIES RESOURCE_LOCK "${locks}")
endmacro()
