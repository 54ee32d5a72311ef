# kesp_precompile_windows_headers(<target>)
#
# A file of the Windows build takes most of its time to read the system's headers. Here they are compiled once for all
# files that are made for Windows with the compiler settings of the product. KESP_PRECOMPILE=OFF does without, and shows
# what a file forgot to include.
option(KESP_PRECOMPILE "Compile the headers that nearly every file reads once for all" ON)

if(WIN32 AND KESP_PRECOMPILE)
  set(empty_source "${CMAKE_BINARY_DIR}/windows_headers.cpp")
  file(CONFIGURE OUTPUT "${empty_source}" CONTENT "")
  add_library(kesp_windows_headers OBJECT "${empty_source}")
  target_link_libraries(kesp_windows_headers PRIVATE kesp_options)
  target_precompile_headers(kesp_windows_headers PRIVATE
    <winsock2.h> <windows.h> <oleauto.h> <ocidl.h> <wrl/client.h>
    <algorithm> <array> <cstdint> <deque> <functional> <map> <memory> <optional> <string> <string_view> <utility>
    <variant> <vector>)
endif()

function(kesp_precompile_windows_headers target)
  # The headers hold for one set of compiler options only.
  get_directory_property(own_options COMPILE_OPTIONS)
  if(TARGET kesp_windows_headers AND NOT own_options)
    target_precompile_headers(${target} REUSE_FROM kesp_windows_headers)
  endif()
endfunction()
