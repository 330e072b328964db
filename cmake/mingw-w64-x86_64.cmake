# Cross toolchain: 64-bit Windows programs with Debian's mingw-w64 (POSIX thread model), run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(ORVA_TOOL_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${ORVA_TOOL_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ORVA_TOOL_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${ORVA_TOOL_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${ORVA_TOOL_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# A test program is started through the wrapper, which picks a private Wine prefix and display.
get_filename_component(ORVA_TOOLS_DIR "${CMAKE_CURRENT_LIST_DIR}/../tools" ABSOLUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR "${ORVA_TOOLS_DIR}/wine-run")
