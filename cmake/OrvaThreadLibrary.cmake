# A copy of the compiler's static thread library whose calls for memory have other names, so that the module that links it
# can give back what the library keeps (platform/mingw/ThreadMemory.h).
find_program(ORVA_OBJCOPY ${ORVA_TOOL_PREFIX}-objcopy REQUIRED)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libpthread.a
  OUTPUT_VARIABLE thread_library OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(ORVA_THREAD_LIBRARY_FOLDER "${CMAKE_BINARY_DIR}/thread_library")
file(MAKE_DIRECTORY "${ORVA_THREAD_LIBRARY_FOLDER}")
set(renamed_library "${ORVA_THREAD_LIBRARY_FOLDER}/libpthread.a")
add_custom_command(OUTPUT "${renamed_library}"
  COMMAND ${ORVA_OBJCOPY} --enable-deterministic-archives
    --redefine-sym malloc=OrvaThreadMalloc
    --redefine-sym calloc=OrvaThreadCalloc
    --redefine-sym realloc=OrvaThreadRealloc
    --redefine-sym free=OrvaThreadFree
    --redefine-sym strdup=OrvaThreadStrdup
    "${thread_library}" "${renamed_library}"
  DEPENDS "${thread_library}"
  COMMENT "Renaming the thread library's calls for memory"
  VERBATIM)
add_custom_target(orva_thread_library DEPENDS "${renamed_library}")

# orva_use_thread_library(TARGET) links the copy instead of the original.
function(orva_use_thread_library TARGET)
  add_dependencies(${TARGET} orva_thread_library)
  target_sources(${TARGET} PRIVATE
    "${CMAKE_SOURCE_DIR}/platform/mingw/ThreadMemory.cpp"
    "${CMAKE_SOURCE_DIR}/platform/mingw/ThreadMemory.h")
  # The compiler's driver names the library last; the first folder that has it counts.
  target_link_directories(${TARGET} BEFORE PRIVATE "${ORVA_THREAD_LIBRARY_FOLDER}")
  set_property(TARGET ${TARGET} APPEND PROPERTY LINK_DEPENDS "${ORVA_THREAD_LIBRARY_FOLDER}/libpthread.a")
endfunction()
