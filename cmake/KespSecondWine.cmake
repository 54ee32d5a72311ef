# The 64-bit Wine tests that run once more in the second Wine (tools/second-wine), as wine10.<name>.
#
# They are those that show what Windows itself does for the library: loading, registration, automation, marshaling,
# windows, sockets and ports. All 32-bit tests run there anyway.
set(KESP_SECOND_WINE_TESTS
  clients clients.registration clients.first_conversation.vbs clients.gpib clients.serial clients.serial_conversation.vbs
  error_box network_win serial_control)

# Each of them must be a test: a name that was changed would be left out without a word.
function(kesp_check_second_wine_tests)
  get_property(added GLOBAL PROPERTY KESP_SECOND_WINE_ADDED)
  foreach(name IN LISTS KESP_SECOND_WINE_TESTS)
    if(NOT name IN_LIST added)
      message(FATAL_ERROR "cmake/KespSecondWine.cmake: there is no 64-bit test ${name}")
    endif()
  endforeach()
endfunction()
if(NOT WIN32)
  cmake_language(DEFER CALL kesp_check_second_wine_tests)
endif()
