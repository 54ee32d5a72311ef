# Compiler and linker settings that hold for every target of ours.
set(KESP_SANITIZE ON CACHE STRING
  "Build the native unit tests under AddressSanitizer and UBSan (ON), ThreadSanitizer (thread) or neither (OFF)")
option(KESP_COVERAGE "Build the native unit tests for line coverage (turns the sanitizers off)" OFF)
option(KESP_FUZZ "Build the fuzzers and no tests; the compiler is clang" OFF)

add_library(kesp_options INTERFACE)
target_include_directories(kesp_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(kesp_options INTERFACE -Wall -Wextra -Wconversion -Werror)
if(WIN32)
  target_compile_definitions(kesp_options INTERFACE
    UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601 WINVER=0x0601)
  # One file and system DLLs only: the C++ runtime, the unwinder and the thread library are linked in.
  # Two builds give the same file, so there is no time in it.
  target_link_options(kesp_options INTERFACE
    -static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp -Wl,--dynamicbase -Wl,--nxcompat)
  if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    target_link_options(kesp_options INTERFACE -Wl,--high-entropy-va)
  endif()
elseif(KESP_FUZZ)
  # Warnings are GCC's business.
  target_compile_options(kesp_options INTERFACE -w -O1 -g
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kesp_options INTERFACE -fsanitize=address,undefined)
elseif(KESP_COVERAGE)
  target_compile_options(kesp_options INTERFACE --coverage -O0)
  target_link_options(kesp_options INTERFACE --coverage)
elseif(KESP_SANITIZE STREQUAL thread)
  target_compile_options(kesp_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(kesp_options INTERFACE -fsanitize=thread)
elseif(KESP_SANITIZE)
  target_compile_options(kesp_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(kesp_options INTERFACE -fsanitize=address,undefined)
endif()

# kesp_program_manifest(<target>)
#
# Tells Windows which rights the program needs, and which Windows it knows.
function(kesp_program_manifest target)
  if(WIN32)
    set(resource "${CMAKE_SOURCE_DIR}/cmake/program.rc")
    target_sources(${target} PRIVATE "${resource}")
    set_source_files_properties("${resource}" PROPERTIES OBJECT_DEPENDS "${CMAKE_SOURCE_DIR}/cmake/program.manifest")
  endif()
endfunction()

# kesp_own_unwinder(<target>)
#
# For a DLL that hosts load: its exceptions are unwound by what is linked in, whatever the host has loaded. Concerns
# 32 bit only; see the source file.
function(kesp_own_unwinder target)
  if(WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 4)
    target_sources(${target} PRIVATE "${CMAKE_SOURCE_DIR}/support/own_unwinder_win.cpp")
    target_link_options(${target} PRIVATE "-Wl,--wrap=_imp__GetModuleHandleA@4")
  endif()
endfunction()

# kesp_runtime_memory(<target>)
#
# For a DLL that hosts load: its runtime does not end them when memory runs out; see the source file.
function(kesp_runtime_memory target)
  target_sources(${target} PRIVATE "${CMAKE_SOURCE_DIR}/support/runtime_memory_win.cpp")
  target_link_options(${target} PRIVATE
    -Wl,--wrap=malloc -Wl,--wrap=calloc -Wl,--wrap=realloc -Wl,--wrap=free)
endfunction()
