# ct_add_layer_tests(<layer> <target> SOURCES <files...> LIBS <libs...> [LABELS <labels...>])
# Builds one GoogleTest executable for a layer's tests and registers every case with CTest under
# the layer's label, so that `ctest -L <layer>` runs one layer. Extra labels (such as "slow")
# need the cases listed from the sources at configure time: the discovery after the build takes
# one label only.
function(ct_add_layer_tests layer target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
  add_executable(${target} ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main GTest::gmock Threads::Threads)
  # The helpers several layers' tests share.
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/testsupport)
  if(ARG_LABELS)
    gtest_add_tests(TARGET ${target} SOURCES ${ARG_SOURCES} WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
                    TEST_LIST cases)
    set_tests_properties(${cases} PROPERTIES LABELS "${layer};${ARG_LABELS}" TIMEOUT 900)
  else()
    gtest_discover_tests(${target}
      WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
      PROPERTIES LABELS "${layer}"
      DISCOVERY_TIMEOUT 60)
  endif()
endfunction()
