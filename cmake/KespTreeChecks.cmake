# Tests of the tree and of the products as files: format, layering, links, and what DLLs and programs import, export and carry.
function(kesp_tree_check name label)
  add_test(NAME ${name} COMMAND ${ARGN})
  set_tests_properties(${name} PROPERTIES LABELS ${label} TIMEOUT 120)
endfunction()

kesp_tree_check(style.format style "${CMAKE_SOURCE_DIR}/tools/check-format")
kesp_tree_check(style.layering style "${CMAKE_SOURCE_DIR}/tools/check_layering.py")
kesp_tree_check(style.layering_itself style "${CMAKE_SOURCE_DIR}/tools/check_layering_test.py")
kesp_tree_check(style.links style "${CMAKE_SOURCE_DIR}/tools/check_links.py")
kesp_tree_check(style.samples style "${CMAKE_SOURCE_DIR}/tools/check_samples.py")
kesp_tree_check(style.samples_itself style "${CMAKE_SOURCE_DIR}/tools/check_samples_test.py")
kesp_tree_check(style.reference style "${CMAKE_SOURCE_DIR}/tools/check_reference.py")
kesp_tree_check(style.reference_itself style "${CMAKE_SOURCE_DIR}/tools/check_reference_test.py")
kesp_tree_check(style.mutations style "${CMAKE_SOURCE_DIR}/tools/mutations_test.py")
foreach(bits IN ITEMS 64 32)
  kesp_tree_check(image.win${bits} image
    "${CMAKE_SOURCE_DIR}/tools/check-image" ${bits} "${CMAKE_SOURCE_DIR}/dist/win${bits}/KespCommObj.dll")
  foreach(file IN ITEMS kesp.exe simulator/kesp-sim.exe simulator/gpib/Gpib-32.dll)
    cmake_path(GET file FILENAME name)
    kesp_tree_check(image.win${bits}.${name} image
      "${CMAKE_SOURCE_DIR}/tools/check-image" ${bits} "${CMAKE_SOURCE_DIR}/dist/win${bits}/${file}")
  endforeach()
endforeach()
