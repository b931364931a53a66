# Headers as clients see them: below one folder, <tdm_c/...>, so that a client needs no further
# include directory in which names as common as "layout/group.h" would stand for themselves.

# Puts a header of src/ into the include directory of the build, under the given name. What it
# includes from src/ it includes there as <tdm_c/...>.
function(tdm_client_header header name)
  file(READ ${CMAKE_CURRENT_SOURCE_DIR}/${header} text)
  string(REPLACE "#include \"common/tdm_types.h\"" "#include <tdm_c/tdm_types.h>" text "${text}")
  string(REGEX REPLACE "#include \"([a-z_/]+[.]h)\"" "#include <tdm_c/\\1>" text "${text}")
  # Only what differs is touched, so that a new configuration compiles nothing anew.
  file(WRITE ${CMAKE_BINARY_DIR}/client_headers/${name} "${text}")
  configure_file(${CMAKE_BINARY_DIR}/client_headers/${name} ${TDM_INCLUDE_DIR}/tdm_c/${name}
                 COPYONLY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
               ${CMAKE_CURRENT_SOURCE_DIR}/${header})
endfunction()
