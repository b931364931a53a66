# What `cmake --install` puts in place: the library, its headers, and what lets others find them,
# pkg-config (tdm_c.pc) and CMake (find_package(tdm_c), target tdm_c::tdm_c). Included from
# src/CMakeLists.txt, which puts the headers into TDM_INCLUDE_DIR.
include(CMakePackageConfigHelpers)

install(TARGETS tdm_c EXPORT tdm_c_targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY ${TDM_INCLUDE_DIR}/tdm_c DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# GNUInstallDirs allows absolute directories; a path below the prefix keeps the file relocatable: the
# prefix is then told from the place of the file, so that `cmake --install --prefix` and a move of
# the whole tree need no option of pkg-config.
set(TDM_PC_PREFIX "${CMAKE_INSTALL_PREFIX}")
if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" up "${up}")
  set(TDM_PC_PREFIX "\${pcfiledir}/${up}")
endif()
foreach(dir LIBDIR INCLUDEDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${dir}}")
    set(TDM_PC_${dir} "${CMAKE_INSTALL_${dir}}")
  else()
    set(TDM_PC_${dir} "\${prefix}/${CMAKE_INSTALL_${dir}}")
  endif()
endforeach()
configure_file(${CMAKE_CURRENT_LIST_DIR}/tdm_c.pc.in ${CMAKE_BINARY_DIR}/tdm_c.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/tdm_c.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(TDM_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/tdm_c)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/tdm_c-config.cmake.in
                              ${CMAKE_BINARY_DIR}/tdm_c-config.cmake
                              INSTALL_DESTINATION ${TDM_CMAKE_DIR})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/tdm_c-config-version.cmake
                                 VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/tdm_c-config.cmake ${CMAKE_BINARY_DIR}/tdm_c-config-version.cmake
        DESTINATION ${TDM_CMAKE_DIR})
install(EXPORT tdm_c_targets NAMESPACE tdm_c:: DESTINATION ${TDM_CMAKE_DIR})
