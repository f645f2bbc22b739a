# SPDX-License-Identifier: BSD-3-Clause
# Target odbs_hdf5: the HDF5 C library, the distribution's own on Linux.
find_package(HDF5 REQUIRED COMPONENTS C)
add_library(odbs_hdf5 INTERFACE)
target_include_directories(odbs_hdf5 SYSTEM INTERFACE ${HDF5_C_INCLUDE_DIRS})
target_link_libraries(odbs_hdf5 INTERFACE ${HDF5_C_LIBRARIES})
target_compile_definitions(odbs_hdf5 INTERFACE ${HDF5_C_DEFINITIONS})
