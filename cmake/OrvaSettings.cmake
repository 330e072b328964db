# What a build of the add-in sets for itself: its version, and the publisher's key. They are constants of two small sources, so
# that another version, or a build with a key, compiles those and links once more.

# orva_add_settings(TARGET TYPE FOLDER VERSION KEY) makes a library of them, TYPE STATIC or OBJECT. Their generated headers go
# into FOLDER. KEY is a PEM file, or "" for none.
function(orva_add_settings TARGET TYPE FOLDER VERSION KEY)
  string(REPLACE "." ";" numbers "${VERSION}")
  list(GET numbers 0 ORVA_VERSION_MAJOR)
  list(GET numbers 1 ORVA_VERSION_MINOR)
  list(GET numbers 2 ORVA_VERSION_BUILD)
  set(ORVA_VERSION ${VERSION})
  configure_file("${CMAKE_SOURCE_DIR}/cmake/OrvaVersion.h.in" "${FOLDER}/OrvaVersion.h" @ONLY)
  add_library(${TARGET} ${TYPE} "${CMAKE_SOURCE_DIR}/support/Version.cpp" "${CMAKE_SOURCE_DIR}/support/UpdateKey.cpp")
  target_include_directories(${TARGET} BEFORE PRIVATE "${FOLDER}")
  target_link_libraries(${TARGET} PRIVATE orva_options)
  if(KEY)
    orva_read_key("${KEY}" key_bytes)
    configure_file("${CMAKE_SOURCE_DIR}/cmake/OrvaUpdateKey.h.in" "${FOLDER}/OrvaUpdateKey.h" @ONLY)
    target_compile_definitions(${TARGET} PRIVATE ORVA_UPDATE_KEY)
  endif()
endfunction()

# orva_read_key(FILE RESULT) sets RESULT to the 64 bytes of a public key's point on P-256, as C writes them.
function(orva_read_key FILE RESULT)
  # A SubjectPublicKeyInfo of RFC 5480 up to the point: id-ecPublicKey, secp256r1, a bit string, "uncompressed".
  set(prefix 3059301306072a8648ce3d020106082a8648ce3d03010703420004)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${FILE}")
  set(der "${CMAKE_BINARY_DIR}/CMakeFiles/update-key.der")
  execute_process(COMMAND ${ORVA_OPENSSL} pkey -pubin -in "${FILE}" -pubout -outform DER -out "${der}"
    RESULT_VARIABLE result ERROR_VARIABLE error)
  set(key "")
  if(result EQUAL 0)
    file(READ "${der}" key HEX)
  endif()
  if(NOT key MATCHES "^${prefix}([0-9a-f]+)$")
    message(FATAL_ERROR "${FILE} is not a public key on the curve P-256, in PEM. ${error}")
  endif()
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1, " bytes "${CMAKE_MATCH_1}")
  string(REGEX REPLACE ", $" "" bytes "${bytes}")
  set(${RESULT} "${bytes}" PARENT_SCOPE)
endfunction()

# orva_make_test_keys(FOLDER) makes two key pairs for the tests, once for a build folder: private.pem and public.pem, and the
# same with "other-" before.
function(orva_make_test_keys FOLDER)
  foreach(name "" "other-")
    set(private "${FOLDER}/${name}private.pem")
    set(public "${FOLDER}/${name}public.pem")
    if(NOT EXISTS "${public}")
      file(MAKE_DIRECTORY "${FOLDER}")
      execute_process(COMMAND ${ORVA_OPENSSL} genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out "${private}"
        COMMAND_ERROR_IS_FATAL ANY ERROR_QUIET)
      execute_process(COMMAND ${ORVA_OPENSSL} pkey -in "${private}" -pubout -out "${public}" COMMAND_ERROR_IS_FATAL ANY)
    endif()
  endforeach()
endfunction()

# orva_add_variant(NAME VERSION KEY) makes a second add-in of the same objects with other settings, and its setup program, in
# the build's folder NAME: the targets OrvaOscAddin-NAME and setup-NAME. A test program that links orva_settings-NAME has these
# settings; as objects they come before those of the library.
function(orva_add_variant NAME VERSION KEY)
  set(folder "${CMAKE_BINARY_DIR}/${NAME}")
  orva_add_settings(orva_settings-${NAME} OBJECT "${CMAKE_BINARY_DIR}/generated/${NAME}" ${VERSION} "${KEY}")
  add_library(OrvaOscAddin-${NAME} SHARED $<TARGET_OBJECTS:OrvaOscAddin> "${CMAKE_SOURCE_DIR}/addin/OrvaOscAddin.def")
  set_target_properties(OrvaOscAddin-${NAME} PROPERTIES
    PREFIX "" OUTPUT_NAME OrvaOscAddin RUNTIME_OUTPUT_DIRECTORY "${folder}" ARCHIVE_OUTPUT_DIRECTORY "${folder}")
  target_link_libraries(OrvaOscAddin-${NAME} PRIVATE orva_settings-${NAME})
  orva_link_addin(OrvaOscAddin-${NAME})
  orva_strip(OrvaOscAddin-${NAME} "${folder}")
  orva_add_setup(setup-${NAME} ${VERSION} OrvaOscAddin-${NAME} "${folder}")
endfunction()
