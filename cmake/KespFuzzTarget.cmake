# kesp_fuzz_target(<name> [SOURCES conversation_stage.cpp ...] [USES kesp_network kesp_network_fakes ...])
#
# A fuzzer's target: the function LLVMFuzzerTestOneInput of <name>_fuzz.cpp. SOURCES are what else it is made of; what
# several targets share is named by each of them.
#
# The build of tools/fuzz (KESP_FUZZ) makes the program <name>_fuzz of it, with libFuzzer; the target `fuzzers` is all of
# them. The native build links all targets into one program, fuzz_replay, where the function has another name for each;
# everything else in those files is in an anonymous namespace. The test fuzz.<name> lets it run the files of
# seeds/<name> and findings/<name>.
#
# kesp_fuzz_replay() comes after the last target.
if(KESP_FUZZ)
  add_custom_target(fuzzers)
endif()

function(kesp_fuzz_target name)
  cmake_parse_arguments(FUZZ "" "" "SOURCES;USES" ${ARGN})
  if(FUZZ_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "kesp_fuzz_target does not know ${FUZZ_UNPARSED_ARGUMENTS}")
  endif()
  set_property(GLOBAL APPEND PROPERTY KESP_FUZZ_TARGETS ${name})
  set_property(GLOBAL APPEND PROPERTY KESP_FUZZ_SOURCES ${name}_fuzz.cpp ${FUZZ_SOURCES})
  set_property(GLOBAL APPEND PROPERTY KESP_FUZZ_USES ${FUZZ_USES})
  if(KESP_FUZZ)
    add_executable(${name}_fuzz ${name}_fuzz.cpp ${FUZZ_SOURCES})
    target_link_libraries(${name}_fuzz PRIVATE kesp_options ${FUZZ_USES})
    target_link_options(${name}_fuzz PRIVATE -fsanitize=fuzzer)
    add_dependencies(fuzzers ${name}_fuzz)
  else()
    set_source_files_properties(${name}_fuzz.cpp PROPERTIES
      COMPILE_DEFINITIONS LLVMFuzzerTestOneInput=KespFuzz_${name})
    add_test(NAME fuzz.${name} COMMAND fuzz_replay ${name}
      "${CMAKE_CURRENT_SOURCE_DIR}/seeds/${name}" "${CMAKE_CURRENT_SOURCE_DIR}/findings/${name}")
    set_tests_properties(fuzz.${name} PROPERTIES LABELS fuzz TIMEOUT 60)
  endif()
endfunction()

function(kesp_fuzz_replay)
  if(KESP_FUZZ)
    return()
  endif()
  get_property(targets GLOBAL PROPERTY KESP_FUZZ_TARGETS)
  get_property(sources GLOBAL PROPERTY KESP_FUZZ_SOURCES)
  get_property(uses GLOBAL PROPERTY KESP_FUZZ_USES)
  list(REMOVE_DUPLICATES sources)
  list(REMOVE_DUPLICATES uses)
  set(table "${CMAKE_CURRENT_BINARY_DIR}/replay_targets.inc")
  list(TRANSFORM targets REPLACE "(.+)" "KESP_FUZZ_TARGET(\\1)\n" OUTPUT_VARIABLE entries)
  list(JOIN entries "" entries)
  file(CONFIGURE OUTPUT "${table}" CONTENT "${entries}" @ONLY)
  add_executable(fuzz_replay replay_main.cpp ${sources})
  target_include_directories(fuzz_replay PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
  target_link_libraries(fuzz_replay PRIVATE ${uses} GTest::gmock)
  kesp_compile_as_test(fuzz_replay)
  # A target whose folders went elsewhere would pass for ever.
  list(GET targets 0 any)
  add_test(NAME fuzz.without_input COMMAND fuzz_replay ${any} "${CMAKE_CURRENT_SOURCE_DIR}/nowhere")
  set_tests_properties(fuzz.without_input PROPERTIES LABELS fuzz TIMEOUT 60
    PASS_REGULAR_EXPRESSION "there is no input for")
endfunction()
