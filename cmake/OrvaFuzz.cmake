# Builds the fuzz targets of tests/fuzz with everything else, and makes each a CTest test fuzz.NAME with label fuzz.
#
# They are programs for Linux: a project of its own, configured in the folder "fuzz" without this project's toolchain and
# options, and run without Wine.
include(ExternalProject)

set(ORVA_FUZZ_SOURCE_DIR "${CMAKE_SOURCE_DIR}/tests/fuzz")
ExternalProject_Add(orva_fuzz
  SOURCE_DIR "${ORVA_FUZZ_SOURCE_DIR}"
  BINARY_DIR "${CMAKE_BINARY_DIR}/fuzz"
  PREFIX "${CMAKE_BINARY_DIR}/fuzz-steps"
  CMAKE_GENERATOR Ninja
  # The inner project finds out which sources have changed.
  BUILD_ALWAYS ON
  INSTALL_COMMAND "")

file(GLOB fuzz_sources CONFIGURE_DEPENDS "${ORVA_FUZZ_SOURCE_DIR}/*Fuzz.cpp")
foreach(source IN LISTS fuzz_sources)
  get_filename_component(name "${source}" NAME_WE)
  string(REGEX REPLACE "Fuzz$" "" name "${name}")
  add_test(NAME fuzz.${name} COMMAND "${ORVA_TOOLS_DIR}/run-fuzz" ${name})
  # Started first, because nothing else takes as long in a thorough run. Each runs for 300 seconds at most; the time-out is
  # for one that hangs.
  set_tests_properties(fuzz.${name} PROPERTIES
    LABELS fuzz
    COST 1000
    TIMEOUT 600
    ENVIRONMENT "ORVA_BUILD_DIR=${CMAKE_BINARY_DIR}")
endforeach()
