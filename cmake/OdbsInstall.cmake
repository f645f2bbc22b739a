# SPDX-License-Identifier: BSD-3-Clause
# What `cmake --install` puts where, and how outside programs find it: a CMake package (odb_server,
# with the targets odbs::odb, odbs::odb_main and odbs::client) and pkg-config files (odbs-odb,
# odbs-client).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(odbsPackageDir ${CMAKE_INSTALL_LIBDIR}/cmake/odb_server)
set(odbsHeaderDir ${CMAKE_INSTALL_INCLUDEDIR}/odb_server)

set(programs odb_server odb_client)
set(libraries odbs_base odbs_port odbs_client_records odbs_client)
set(headers base port client)
if(ODB_API STREQUAL "embedded")
  list(APPEND programs odb_import odb_modal_covariance)
  list(APPEND libraries odb odb_main odbs_hdf5)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/odb/include/ ${PROJECT_SOURCE_DIR}/odb/include/forward/
          DESTINATION ${odbsHeaderDir}/odb FILES_MATCHING PATTERN "*.h" PATTERN forward EXCLUDE)
endif()
set_target_properties(odbs_client PROPERTIES EXPORT_NAME client)

install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS ${libraries} EXPORT odb_server ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(folder ${headers})
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/${folder}/ DESTINATION ${odbsHeaderDir}/${folder}
          FILES_MATCHING PATTERN "*.h" PATTERN cli EXCLUDE)
endforeach()

install(EXPORT odb_server NAMESPACE odbs:: FILE odb_server-targets.cmake
        DESTINATION ${odbsPackageDir})
file(WRITE ${PROJECT_BINARY_DIR}/odb_server-config.cmake
"include(CMakeFindDependencyMacro)
find_dependency(Threads)
include(\${CMAKE_CURRENT_LIST_DIR}/odb_server-targets.cmake)
")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/odb_server-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/odb_server-config.cmake
              ${PROJECT_BINARY_DIR}/odb_server-config-version.cmake
        DESTINATION ${odbsPackageDir})

# odbs_pkgconfig(NAME DESCRIPTION FOLDER LIBRARIES...): a .pc file that is right wherever the tree is
# installed; FOLDER holds the headers, below include/odb_server.
function(odbs_pkgconfig name description folder)
  set(libs ${ARGN})
  list(TRANSFORM libs PREPEND "-l" REGEX "^[A-Za-z]")
  list(JOIN libs " " libs)
  file(WRITE ${PROJECT_BINARY_DIR}/${name}.pc
"prefix=\${pcfiledir}/../..
Name: ${name}
Description: ${description}
Version: ${PROJECT_VERSION}
Cflags: -I\${prefix}/${odbsHeaderDir}${folder}
Libs: -L\${prefix}/${CMAKE_INSTALL_LIBDIR} ${libs} -pthread
")
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
odbs_pkgconfig(odbs-client "starts odb_server and decodes its replies" ""
               odbs_client odbs_client_records odbs_port odbs_base)
if(ODB_API STREQUAL "embedded")
  odbs_pkgconfig(odbs-odb "the names of the ODB C++ API over HDF5 files" /odb
                 odb odbs_port odbs_base ${HDF5_C_LIBRARIES})
endif()
