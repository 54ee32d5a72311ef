# kesp_room(<name> PORTABLE a.cpp ... [WINDOWS b_win.cpp ...] [TESTS a_test.cpp ...] [USES support ...] [LIBS ws2_32 ...])
#
# One folder of the library as the static library kesp_<name>. Portable files are in both builds, files
# named *_win.cpp only in the Windows build, unit tests (with fakes) only in the native build, as the
# program <name>_test. USES names other rooms, LIBS system libraries of the Windows half.
function(kesp_room name)
  cmake_parse_arguments(ROOM "" "" "PORTABLE;WINDOWS;TESTS;USES;LIBS" ${ARGN})
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
  elseif(ROOM_TESTS)
    kesp_test_program(${name}_test UNIT SOURCES ${ROOM_TESTS} USES kesp_${name})
  endif()
endfunction()
