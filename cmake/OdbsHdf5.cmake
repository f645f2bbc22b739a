# SPDX-License-Identifier: BSD-3-Clause
#
# Target odbs_hdf5: the HDF5 C library. On Linux the distribution's serial one; for Windows the
# static one that scripts/build_hdf5_mingw.sh puts into the cache folder (or ODBS_HDF5_ROOT).

add_library(odbs_hdf5 INTERFACE)

if(CMAKE_CROSSCOMPILING)
  if(DEFINED ENV{ODBS_CACHE})
    set(_odbs_cache $ENV{ODBS_CACHE})
  elseif(DEFINED ENV{XDG_CACHE_HOME})
    set(_odbs_cache $ENV{XDG_CACHE_HOME}/odb_server)
  else()
    set(_odbs_cache $ENV{HOME}/.cache/odb_server)
  endif()
  set(ODBS_HDF5_ROOT ${_odbs_cache}/hdf5-1.10.8-mingw-1 CACHE PATH "HDF5 for Windows")
  if(NOT EXISTS ${ODBS_HDF5_ROOT}/lib/libhdf5.a)
    message(FATAL_ERROR "No HDF5 for Windows in ${ODBS_HDF5_ROOT}: run scripts/setup.sh")
  endif()
  target_include_directories(odbs_hdf5 SYSTEM INTERFACE ${ODBS_HDF5_ROOT}/include)
  # A separate target, so that zlib comes after it on every link line.
  add_library(odbs_hdf5_archive STATIC IMPORTED GLOBAL)
  set_target_properties(odbs_hdf5_archive PROPERTIES IMPORTED_LOCATION
                                                     ${ODBS_HDF5_ROOT}/lib/libhdf5.a)
  target_link_libraries(odbs_hdf5_archive INTERFACE ZLIB::ZLIB shlwapi ws2_32)
  target_link_libraries(odbs_hdf5 INTERFACE odbs_hdf5_archive)
else()
  set(HDF5_PREFER_PARALLEL FALSE)
  find_package(HDF5 REQUIRED COMPONENTS C)
  target_include_directories(odbs_hdf5 SYSTEM INTERFACE ${HDF5_C_INCLUDE_DIRS})
  target_link_libraries(odbs_hdf5 INTERFACE ${HDF5_C_LIBRARIES})
  target_compile_definitions(odbs_hdf5 INTERFACE ${HDF5_C_DEFINITIONS})
endif()
