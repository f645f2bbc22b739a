# SPDX-License-Identifier: BSD-3-Clause
# Fails unless PROGRAM exports exactly the three allocation hooks under their plain names.
set(expected my_libc_calloc my_libc_malloc my_libc_realloc)
if(WINDOWS)
  execute_process(COMMAND ${OBJDUMP} -p ${PROGRAM} OUTPUT_VARIABLE listing
                  COMMAND_ERROR_IS_FATAL ANY)
  # The table ends with an empty line; what follows has brackets of its own.
  string(REGEX REPLACE "^.*Ordinal/Name Pointer\\] Table" "" listing "${listing}")
  string(REGEX REPLACE "\n\n.*$" "" listing "${listing}")
  string(REGEX MATCHALL "\\[ *[0-9]+\\] [A-Za-z_0-9?@$]+" lines "${listing}")
  list(TRANSFORM lines REPLACE "^.*\\] " "")
else()
  execute_process(COMMAND ${NM} -D --defined-only ${PROGRAM} OUTPUT_VARIABLE listing
                  COMMAND_ERROR_IS_FATAL ANY)
  # The sanitizers' run-time libraries export names of theirs, and ask for some of ours.
  string(REGEX MATCHALL "[^ \n]+\n" lines "${listing}")
  list(TRANSFORM lines STRIP)
  list(FILTER lines EXCLUDE REGEX "^__(asan|ubsan|lsan)_")
endif()
list(SORT lines)
if(NOT lines STREQUAL expected)
  message(FATAL_ERROR "exported: ${lines}")
endif()
message(STATUS "exported: ${lines}")
