# kesp_room(<name> PORTABLE a.cpp ... [WINDOWS b_win.cpp ...] [FAKES a_fake.cpp b_fixture.cpp ...] [TESTS a_test.cpp ...]
#           [USES support ...] [LIBS ws2_32 ...])
#
# One folder of the library as the static library kesp_<name>. Portable files are in both builds, files
# named *_win.cpp only in the Windows build, unit tests (with fakes) only in the native build, as the
# program <name>_test. USES names other rooms, LIBS system libraries of the Windows half.
#
# FAKES are the bodies of the room's fakes and fixtures, compiled once for all tests: the static library
# kesp_<name>_fakes, which brings GoogleTest and the fakes of the rooms in USES along. <name>_test is linked with
# all of them. In the Windows build the library has the fakes only, since fixtures are for unit tests, and is built
# where a test names it.
function(kesp_room name)
  cmake_parse_arguments(ROOM "" "" "PORTABLE;WINDOWS;FAKES;TESTS;USES;LIBS" ${ARGN})
  set(sources ${ROOM_PORTABLE})
  if(WIN32)
    list(APPEND sources ${ROOM_WINDOWS})
  endif()
  add_library(kesp_${name} STATIC ${sources})
  # Portable files do not see the system's headers.
  set_source_files_properties(${ROOM_PORTABLE} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  kesp_precompile_windows_headers(kesp_${name})
  target_link_libraries(kesp_${name} PUBLIC kesp_options)
  foreach(used IN LISTS ROOM_USES)
    target_link_libraries(kesp_${name} PUBLIC kesp_${used})
  endforeach()
  if(WIN32)
    target_link_libraries(kesp_${name} PUBLIC ${ROOM_LIBS})
  endif()
  set(fakes "")
  foreach(used IN LISTS ROOM_USES)
    if(TARGET kesp_${used}_fakes)
      list(APPEND fakes kesp_${used}_fakes)
    endif()
  endforeach()
  if(WIN32)
    list(FILTER ROOM_FAKES EXCLUDE REGEX "_fixture\\.cpp$")
  endif()
  if(ROOM_FAKES)
    kesp_fakes(${name} SOURCES ${ROOM_FAKES} USES ${fakes})
    list(PREPEND fakes kesp_${name}_fakes)
  endif()
  if(ROOM_TESTS AND NOT WIN32)
    kesp_test_program(${name}_test UNIT SOURCES ${ROOM_TESTS} USES kesp_${name} ${fakes})
  endif()
endfunction()

# The library kesp_<room>_fakes of kesp_room; USES names those of other rooms.
function(kesp_fakes room)
  cmake_parse_arguments(FAKES "" "" "SOURCES;USES" ${ARGN})
  set(name kesp_${room}_fakes)
  add_library(${name} STATIC ${FAKES_SOURCES})
  target_link_libraries(${name} PUBLIC kesp_${room} ${FAKES_USES} GTest::gmock)
  kesp_compile_as_test(${name})
  if(WIN32)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
  endif()
endfunction()
