# kesp_idl(<target> <file.idl>): compiles an interface description with widl into the folder of the build tree that
# is added to the target's includes. Gives <name>.tlb (type library), <name>.h (C++ header) and <name>_i.cpp
# (identifiers), all of the build's bitness.
set(KESP_WIDL_IMPORTS "/usr/include/wine/wine/windows" CACHE PATH "Where widl finds oaidl.idl and its like")
set(KESP_WIDL_LIBRARIES "/usr/lib/x86_64-linux-gnu/wine/x86_64-windows" CACHE PATH "Where widl finds stdole2.tlb")

enable_language(RC)

function(kesp_idl target idl)
  cmake_path(GET idl STEM name)
  set(source "${CMAKE_CURRENT_SOURCE_DIR}/${idl}")
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/generated")
  file(MAKE_DIRECTORY "${folder}")
  set(widl "${KESP_WIDL}" --win${KESP_BITS} -I "${KESP_WIDL_IMPORTS}" -L "${KESP_WIDL_LIBRARIES}")
  # Neither the time nor a path of the machine goes into what is delivered.
  set(without_time "${CMAKE_SOURCE_DIR}/tools/lib/type_library_time.py")
  add_custom_command(
    OUTPUT "${folder}/${name}.tlb"
    COMMAND "${CMAKE_COMMAND}" -E env TZ=UTC ${widl} -t -o "${folder}/${name}.tlb" "${idl}"
    COMMAND "${without_time}" "${folder}/${name}.tlb"
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    DEPENDS "${source}" "${without_time}" COMMENT "Compiling the type library ${name}.tlb (${KESP_BITS} bit)" VERBATIM)
  add_custom_command(
    OUTPUT "${folder}/${name}.h" "${folder}/${name}_i.cpp"
    COMMAND ${widl} -D KESP_CPP_HEADER -h -o "${folder}/${name}.h" "${idl}"
    COMMAND ${widl} -D KESP_CPP_HEADER -u -o "${folder}/${name}_i.cpp" "${idl}"
    WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}"
    DEPENDS "${source}" COMMENT "Compiling the C++ header ${name}.h (${KESP_BITS} bit)" VERBATIM)
  add_custom_target(${target}_generate DEPENDS "${folder}/${name}.tlb" "${folder}/${name}.h")
  # The interfaces and identifiers, for whoever speaks to the library.
  add_library(${target} STATIC "${folder}/${name}_i.cpp")
  add_dependencies(${target} ${target}_generate)
  target_include_directories(${target} SYSTEM PUBLIC "${folder}")
  set_target_properties(${target} PROPERTIES
    KESP_TYPE_LIBRARY "${folder}/${name}.tlb" KESP_HEADER "${folder}/${name}.h")
endfunction()
