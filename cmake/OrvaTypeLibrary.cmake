# orva_add_type_library(TARGET IDL [HEADER]) compiles an IDL file with widl.
#
# Makes the custom target TARGET and, in the calling directory's binary folder, NAME.tlb and, with HEADER,
# NAME.h and NAME_i.c (the identifiers). widl writes the time of day into a type library, so it runs
# under a fixed clock: two builds of one commit have to be bit-identical.
find_program(ORVA_WIDL x86_64-w64-mingw32-widl REQUIRED)
find_program(ORVA_FAKETIME faketime REQUIRED)
set(ORVA_WIDL_SEARCH
  -I/usr/include/wine/wine/windows -L/usr/lib/x86_64-linux-gnu/wine/x86_64-windows)

function(orva_add_type_library TARGET IDL)
  cmake_parse_arguments(ARG "HEADER" "" "" ${ARGN})
  get_filename_component(name "${IDL}" NAME_WE)
  get_filename_component(idl "${IDL}" ABSOLUTE)
  set(base "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  set(widl ${CMAKE_COMMAND} -E env TZ=UTC ${ORVA_FAKETIME} -f "2011-01-20 00:00:00"
    ${ORVA_WIDL} ${ORVA_WIDL_SEARCH})
  set(outputs "${base}.tlb")
  set(commands COMMAND ${widl} -t -o "${base}.tlb" "${idl}")
  if(ARG_HEADER)
    list(APPEND outputs "${base}.h" "${base}_i.c")
    list(APPEND commands COMMAND ${widl} -h -o "${base}.h" "${idl}" COMMAND ${widl} -u -o "${base}_i.c" "${idl}")
  endif()
  add_custom_command(OUTPUT ${outputs} ${commands} DEPENDS "${idl}" COMMENT "Compiling ${name}.idl" VERBATIM)
  add_custom_target(${TARGET} DEPENDS ${outputs})
endfunction()
