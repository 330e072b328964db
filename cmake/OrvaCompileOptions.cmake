# Compiler and linker settings of everything we write ourselves, as the interface target orva_options.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_SCAN_FOR_MODULES OFF)
# Instead of CMake's -O3: a DLL that runs inside Outlook is better small.
# Line numbers for the DLL's debug file. Set here, so that the tests' folder can do without.
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG -g1")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG -g1")

# What most sources include, compiled once for each set of options. The sources still name what they need: clang-tidy reads
# them without it.
set(ORVA_PRECOMPILED_HEADERS <windows.h> <ole2.h> <commctrl.h> <algorithm> <functional> <map> <memory> <string> <vector>)

add_library(orva_options INTERFACE)

target_compile_definitions(orva_options INTERFACE
  UNICODE _UNICODE NOMINMAX STRICT
  _WIN32_WINNT=0x0600 WINVER=0x0600 NTDDI_VERSION=0x06000000 _WIN32_IE=0x0700)

# Further warnings for C++. The generated C files get only those of the list below.
set(ORVA_CXX_WARNINGS
  -Wconversion -Wsign-conversion -Wold-style-cast -Wdouble-promotion -Wformat-signedness
  -Woverloaded-virtual -Wsuggest-override -Wdeprecated-copy-dtor -Wredundant-decls
  -Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wextra-semi -Wunused-macros -Wdate-time -Wvla -Walloca
  -Werror=conditionally-supported)

# -Wno-restrict: g++ 12 wrongly reports the sum of a literal and a temporary string.
# -Werror=conditionally-supported: otherwise g++ silently passes a class object such as CString through C varargs as its
# address.
target_compile_options(orva_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wformat=2 -Wcast-qual -Wundef
  -Werror "$<$<COMPILE_LANGUAGE:CXX>:${ORVA_CXX_WARNINGS}>"
  -Wno-restrict
  -fno-strict-aliasing
  "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=." "-ffile-prefix-map=${CMAKE_BINARY_DIR}=build"
  -ffunction-sections -fdata-sections)

# -static: the programs need only DLLs that Windows has. The other options allow ASLR, forbid execution of data, drop sections
# that nothing refers to, and make builds of one commit bit-identical.
target_link_options(orva_options INTERFACE
  -static
  LINKER:--dynamicbase,--high-entropy-va,--nxcompat
  LINKER:--gc-sections
  LINKER:--no-insert-timestamp)

# The checked build, for the tests only: undefined behaviour that the sanitizer detects ends the program at an illegal
# instruction, a container's broken precondition ends it in abort(), and an overwritten stack frame ends it before the
# function returns. Traps instead of messages, and no check of dynamic types (vptr), because this compiler has no
# sanitizer library for Windows.
option(ORVA_CHECKED "Compile checks for undefined behaviour, container misuse and overwritten stack frames into everything" OFF)
if(ORVA_CHECKED)
  target_compile_options(orva_options INTERFACE
    $<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=undefined>
    $<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize-undefined-trap-on-error>
    $<$<COMPILE_LANGUAGE:C,CXX>:-fstack-protector-strong>)
  target_compile_definitions(orva_options INTERFACE _GLIBCXX_ASSERTIONS ORVA_CHECKED)
  target_link_options(orva_options INTERFACE -fstack-protector-strong)
endif()

include_directories(BEFORE "${CMAKE_SOURCE_DIR}")
