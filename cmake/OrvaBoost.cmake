# Boost is used header-only. /usr/include also has the build machine's C headers, so the build folder gets a
# directory with a link to Boost only, as a system include directory.
find_path(ORVA_BOOST_DIR boost/version.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH NO_DEFAULT_PATH REQUIRED)
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/boost-include")
file(CREATE_LINK "${ORVA_BOOST_DIR}/boost" "${CMAKE_BINARY_DIR}/boost-include/boost" SYMBOLIC)
add_library(orva_boost INTERFACE)
target_include_directories(orva_boost SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/boost-include")
