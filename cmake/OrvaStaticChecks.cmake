# The static checks, as CTest tests static.NAME with label static.
#
# Each source has a stamp, which is renewed only when the source, a header that it includes or the settings change. The
# target clang_tidy_tests checks the tests' own sources. It takes longer than all other checks together, so no CTest test
# builds it.
foreach(tool clang-tidy-14 clang++-14 clang-format-16 cppcheck shellcheck)
  string(MAKE_C_IDENTIFIER "ORVA_${tool}" variable)
  find_program(${variable} ${tool} REQUIRED)
endforeach()

# orva_clang_tidy(TARGET SOURCE...) makes TARGET, which brings the stamps of the sources up to date.
function(orva_clang_tidy TARGET)
  set(stamps "")
  foreach(source IN LISTS ARGN)
    file(RELATIVE_PATH name "${CMAKE_SOURCE_DIR}" "${source}")
    # A folder may have settings of its own.
    string(REGEX MATCH "^[^/]+" folder "${name}")
    set(settings "${CMAKE_SOURCE_DIR}/.clang-tidy")
    if(EXISTS "${CMAKE_SOURCE_DIR}/${folder}/.clang-tidy")
      list(APPEND settings "${CMAKE_SOURCE_DIR}/${folder}/.clang-tidy")
    endif()
    set(stamp "${CMAKE_BINARY_DIR}/static/clang-tidy/${name}.stamp")
    add_custom_command(OUTPUT "${stamp}"
      COMMAND "${ORVA_TOOLS_DIR}/run-clang-tidy" "${CMAKE_BINARY_DIR}" "${source}" "${stamp}"
      DEPENDS "${source}" ${settings} "${ORVA_TOOLS_DIR}/run-clang-tidy"
      DEPFILE "${stamp}.d"
      COMMENT "Checking ${name}"
      VERBATIM)
    list(APPEND stamps "${stamp}")
  endforeach()
  add_custom_target(${TARGET} DEPENDS ${stamps})
  # Generated headers.
  add_dependencies(${TARGET} orva_addin_idl orva_addin_designer_idl orva_office_idl orva_atl_test_server_idl)
endfunction()

set(folders addin bench host platform support tools ui update)
list(TRANSFORM folders APPEND "/*.cpp")
list(TRANSFORM folders PREPEND "${CMAKE_SOURCE_DIR}/")
file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${folders})
orva_clang_tidy(clang_tidy ${sources})

# The fuzz targets have a build of their own, and checked_build is compiled only with the run-time checks.
file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/tests/*.cpp")
list(FILTER sources EXCLUDE REGEX "/tests/(fuzz|checked_build)/")
orva_clang_tidy(clang_tidy_tests ${sources})

# orva_static_check(NAME COMMAND...)
function(orva_static_check NAME)
  add_test(NAME static.${NAME} COMMAND ${ARGN} WORKING_DIRECTORY "${CMAKE_SOURCE_DIR}")
  set_tests_properties(static.${NAME} PROPERTIES LABELS static)
endfunction()

orva_static_check(ClangTidy "${ORVA_TOOLS_DIR}/check-tidy" "${CMAKE_BINARY_DIR}")
# Started early and with two processors, because it takes longest after a change of a common header.
set_tests_properties(static.ClangTidy PROPERTIES PROCESSORS 2 COST 900 TIMEOUT 2400)
orva_static_check(Cppcheck "${ORVA_TOOLS_DIR}/run-cppcheck" "${CMAKE_BINARY_DIR}")
orva_static_check(Sources "${ORVA_TOOLS_DIR}/check-sources")
orva_static_check(Format "${ORVA_TOOLS_DIR}/check-format")
orva_static_check(Shell "${ORVA_TOOLS_DIR}/check-shell")
