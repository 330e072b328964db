# GoogleTest from Debian's sources, built with the cross compiler.
set(INSTALL_GTEST OFF CACHE INTERNAL "")
set(BUILD_GMOCK ON CACHE INTERNAL "")
set(gtest_disable_pthreads ON CACHE INTERNAL "")
# Built quickly rather than fast, as the tests are.
set(release_flags "${CMAKE_CXX_FLAGS_RELEASE}")
set(CMAKE_CXX_FLAGS_RELEASE "-O0")
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
set(CMAKE_CXX_FLAGS_RELEASE "${release_flags}")
# System headers, so that our warnings do not apply to them.
foreach(library gtest gmock)
  get_target_property(directories ${library} INTERFACE_INCLUDE_DIRECTORIES)
  set_target_properties(${library} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${directories}")
endforeach()
