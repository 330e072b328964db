# orva_add_tests(NAME SOURCES a.cpp ... [LINK lib ...] [TIMEOUT seconds] [ENVIRONMENT variable=value ...]) builds one test
# program and registers each source file *Test.cpp as one CTest test, so that a failure names the file and files run in
# parallel.
#
# A file's test filters by the suites in its TEST, TEST_F and TEST_P lines. A file without a test is an error.
function(orva_add_tests NAME)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINK;ENVIRONMENT" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 180)
  endif()
  set(program test_${NAME})
  add_executable(${program} ${ARG_SOURCES})
  target_link_libraries(${program} PRIVATE orva_options orva_test_harness gmock gtest ${ARG_LINK})
  target_precompile_headers(${program} REUSE_FROM orva_test_harness)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${ARG_SOURCES})

  foreach(source IN LISTS ARG_SOURCES)
    if(NOT source MATCHES "Test\\.cpp$")
      continue()
    endif()
    file(STRINGS "${source}" lines REGEX "^TEST(_F|_P)?\\(")
    set(filter "")
    foreach(line IN LISTS lines)
      string(REGEX REPLACE "^TEST(_F|_P)?\\( *([A-Za-z0-9_]+).*$" "\\2" suite "${line}")
      list(APPEND filter "${suite}.*" "*/${suite}.*")
    endforeach()
    list(REMOVE_DUPLICATES filter)
    if(NOT filter)
      message(FATAL_ERROR "${source} holds no test")
    endif()
    list(JOIN filter ":" filter)
    get_filename_component(stem "${source}" NAME_WE)
    add_test(NAME ${NAME}.${stem}
      COMMAND "${ORVA_TOOLS_DIR}/run-test" "results/${NAME}.${stem}.xml" $<TARGET_FILE:${program}>
        --gtest_filter=${filter} --gtest_brief=1
      WORKING_DIRECTORY "${CMAKE_BINARY_DIR}")
    set_tests_properties(${NAME}.${stem} PROPERTIES
      TIMEOUT ${ARG_TIMEOUT}
      LABELS ${NAME}
      ENVIRONMENT "${ARG_ENVIRONMENT}")
  endforeach()
endfunction()

# orva_add_script_tests(NAME [ENVIRONMENT variable=value ...]) registers each script *Test.sh of the folder NAME as one CTest
# test. ORVA_BUILD_DIR is this build's folder.
function(orva_add_script_tests NAME)
  cmake_parse_arguments(ARG "" "" "ENVIRONMENT" ${ARGN})
  file(GLOB scripts CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${NAME}/*Test.sh")
  foreach(script IN LISTS scripts)
    get_filename_component(stem "${script}" NAME_WE)
    add_test(NAME ${NAME}.${stem} COMMAND "${script}" WORKING_DIRECTORY "${CMAKE_BINARY_DIR}")
    set_tests_properties(${NAME}.${stem} PROPERTIES
      TIMEOUT 180
      LABELS ${NAME}
      ENVIRONMENT "ORVA_BUILD_DIR=${CMAKE_BINARY_DIR};${ARG_ENVIRONMENT}")
  endforeach()
endfunction()
