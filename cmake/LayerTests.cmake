# ct_add_layer_tests(<layer> <target> SOURCES <files...> LIBS <libs...>)
# Builds one GoogleTest executable for a layer's tests and registers every case with CTest under
# the layer's label, so that `ctest -L <layer>` runs one layer.
function(ct_add_layer_tests layer target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main GTest::gmock Threads::Threads)
  gtest_discover_tests(${target}
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    PROPERTIES LABELS "${layer};${ARG_LABELS}"
    DISCOVERY_TIMEOUT 60)
endfunction()
