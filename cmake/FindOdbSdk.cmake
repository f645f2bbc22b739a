# SPDX-License-Identifier: BSD-3-Clause
#
# Finds the vendor's ODB C++ SDK for -DODB_API=sdk and defines the target OdbSdk::OdbSdk (include
# folders, libraries, definitions).
#
#   ODB_SDK_ROOT   the product's folder (with code/include and code/lib), its parent, or a folder
#                  that holds include and lib side by side
#
# Library names changed between releases: each entry below lists the names in the order in which
# they are tried. The first four are required, the others are linked when they are there.
# ODB_SDK_EXTRA_LIBRARIES adds names; ODB_SDK_ALL_LIBRARIES=ON links everything in the folder, the
# last resort for a release with names not known here. At run time the product's code/bin has to be
# on the library search path.

set(ODB_SDK_ROOT "" CACHE PATH "folder of the vendor's ODB C++ SDK")
set(ODB_SDK_EXTRA_LIBRARIES "" CACHE STRING "more SDK libraries, names without prefix and suffix")
option(ODB_SDK_ALL_LIBRARIES "link every library of the SDK's folder" OFF)

set(_required
    "ABQSMAOdbDdbOdb|ABQDDB_Odb"
    "ABQSMAOdbApi|ABQDDB_ODB_API"
    "ABQSMAOdbCore|ABQDDB_Core"
    "ABQSMAOdbCoreGeom|ABQSMAOdbAttrEO|ABQDDB_GeometricAttributes")
set(_optional
    ABQSMAOdbAttrEO ABQSMAOdbAttrEO2 ABQSMAAbuBasicUtils ABQSMAAbuGeom ABQSMABasShared
    ABQSMABasCoreUtils ABQSMABasAlloc ABQSMABasMem ABQSMARomDiagEx ABQSMASimInterface
    ABQSMASimContainers ABQSMASspUmaCore ABQSMAObjSimObjectsMod ABQSMAOdbCalcK
    ABQSMAStiCAE_StableTime ABQSMAMtxCoreModule standardB
    ${ODB_SDK_EXTRA_LIBRARIES})

# With a root given, nothing outside it may answer, and a changed root is looked at afresh.
if(NOT "${_OdbSdk_lastRoot}" STREQUAL "${ODB_SDK_ROOT}")
  foreach(_variable OdbSdk_INCLUDE_DIR OdbSdk_PRODUCT_INCLUDE_DIR OdbSdk_LIBRARY_DIR)
    unset(${_variable} CACHE)
  endforeach()
  set(_OdbSdk_lastRoot "${ODB_SDK_ROOT}" CACHE INTERNAL "")
endif()

set(_layouts code)
if(WIN32)
  list(APPEND _layouts win_b64/code)
else()
  list(APPEND _layouts linux_a64/code)
endif()
set(_includeDirs ${ODB_SDK_ROOT}/include)
set(_libraryDirs ${ODB_SDK_ROOT}/lib)
foreach(_layout ${_layouts})
  list(APPEND _includeDirs ${ODB_SDK_ROOT}/${_layout}/include)
  list(APPEND _libraryDirs ${ODB_SDK_ROOT}/${_layout}/lib ${ODB_SDK_ROOT}/${_layout}/bin)
endforeach()

# The SDK's folder is named explicitly, so the search roots of a cross build don't apply to it.
find_path(OdbSdk_INCLUDE_DIR odb_API.h PATHS ${_includeDirs} NO_DEFAULT_PATH
          NO_CMAKE_FIND_ROOT_PATH)
# Headers of recent releases name others relative to the product's folder.
find_path(OdbSdk_PRODUCT_INCLUDE_DIR SMAOdb NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
          PATHS ${ODB_SDK_ROOT} ${ODB_SDK_ROOT}/.. ${ODB_SDK_ROOT}/../..)

# _odbSdkLibrary(OUT NAME...): full path of the first name found, or an empty string.
function(_odbSdkLibrary out)
  unset(_path CACHE)
  find_library(_path NAMES ${ARGN} NAMES_PER_DIR PATHS ${_libraryDirs} NO_DEFAULT_PATH
               NO_CMAKE_FIND_ROOT_PATH)
  if(_path)
    set(${out} ${_path} PARENT_SCOPE)
  else()
    set(${out} "" PARENT_SCOPE)
  endif()
  unset(_path CACHE)
endfunction()

set(OdbSdk_LIBRARIES "")
set(_missing "")
foreach(_names ${_required})
  string(REPLACE "|" ";" _names "${_names}")
  _odbSdkLibrary(_library ${_names})
  if(_library)
    list(APPEND OdbSdk_LIBRARIES ${_library})
  else()
    string(REPLACE ";" " or " _names "${_names}")
    list(APPEND _missing "${_names}")
  endif()
endforeach()
foreach(_name ${_optional})
  _odbSdkLibrary(_library ${_name})
  if(_library)
    list(APPEND OdbSdk_LIBRARIES ${_library})
  endif()
endforeach()
if(ODB_SDK_ALL_LIBRARIES)
  foreach(_folder ${_libraryDirs})
    file(GLOB _all ${_folder}/*${CMAKE_IMPORT_LIBRARY_SUFFIX} ${_folder}/*.lib)
    if(NOT WIN32)
      file(GLOB _all ${_folder}/lib*.so)
    endif()
    if(_all)
      list(APPEND OdbSdk_LIBRARIES ${_all})
      break()
    endif()
  endforeach()
endif()
list(REMOVE_DUPLICATES OdbSdk_LIBRARIES)

set(_reason "")
if(NOT ODB_SDK_ROOT)
  set(_reason "give -DODB_SDK_ROOT=DIR, the product's folder")
elseif(_missing)
  string(REPLACE ";" ", " _missing "${_missing}")
  set(_reason "missing in ${ODB_SDK_ROOT}: ${_missing}")
endif()
if(_missing AND NOT ODB_SDK_ALL_LIBRARIES)
  set(OdbSdk_LIBRARIES "")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OdbSdk REQUIRED_VARS OdbSdk_LIBRARIES OdbSdk_INCLUDE_DIR
                                  REASON_FAILURE_MESSAGE "${_reason}")

if(OdbSdk_FOUND AND NOT TARGET OdbSdk::OdbSdk)
  add_library(OdbSdk::OdbSdk INTERFACE IMPORTED GLOBAL)
  set(_includes ${OdbSdk_INCLUDE_DIR})
  if(OdbSdk_PRODUCT_INCLUDE_DIR)
    list(APPEND _includes ${OdbSdk_PRODUCT_INCLUDE_DIR})
  endif()
  if(WIN32)
    set(_definitions HKS_NT ABQ_WIN86_64 __STDC_LIMIT_MACROS)
  else()
    set(_definitions TYPENAME=typename _LINUX_SOURCE ABQ_LINUX ABQ_LNX86_64)
  endif()
  set_target_properties(OdbSdk::OdbSdk PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${_includes}"
    INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${_includes}"
    INTERFACE_COMPILE_DEFINITIONS "${_definitions}"
    INTERFACE_LINK_LIBRARIES "${OdbSdk_LIBRARIES}")
endif()
