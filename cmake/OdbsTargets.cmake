# SPDX-License-Identifier: BSD-3-Clause
# How every library, program and test of the project is declared: one set of warnings, one include
# root (the repository), sanitizers where asked for.
function(odbs_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
  if(ODBS_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(WIN32)
    # __USE_MINGW_ANSI_STDIO: the C99 meaning of the printf formats, as on Linux.
    target_compile_definitions(${target} PRIVATE __USE_MINGW_ANSI_STDIO=1)
  endif()
  if(ODBS_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-sanitize-recover=all
                                             -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined)
  endif()
endfunction()

# Other code makes the linker copy variables of shared libraries into the program, which then exports
# them. Nobody replaces our functions, so that calls need no detour.
function(odbs_export_nothing target)
  if(NOT WIN32)
    target_compile_options(${target} PRIVATE -fPIC -fno-semantic-interposition)
  endif()
endfunction()

# odbs_library(NAME DEPENDS other ... EXCEPT a.cpp ...): the static library of a folder: all its sources,
# but those excepted; SOURCES names them one by one instead.
function(odbs_library name)
  cmake_parse_arguments(arg "" "" "SOURCES;EXCEPT;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  if(NOT arg_SOURCES)
    file(GLOB arg_SOURCES RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS *.cpp)
    if(arg_EXCEPT)
      list(REMOVE_ITEM arg_SOURCES ${arg_EXCEPT})
    endif()
  endif()
  add_library(${name} STATIC ${arg_SOURCES})
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                            $<INSTALL_INTERFACE:include/odb_server>)
  target_link_libraries(${name} PUBLIC ${arg_DEPENDS} PRIVATE ${arg_PRIVATE_DEPENDS})
  odbs_compile_options(${name})
  odbs_export_nothing(${name})
endfunction()

# odbs_program(NAME SOURCES a.cpp ... DEPENDS lib ...): a program in build/<preset>/bin.
function(odbs_program name)
  cmake_parse_arguments(arg "" "" "SOURCES;DEPENDS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${arg_DEPENDS})
  odbs_compile_options(${name})
endfunction()

# odbs_test(NAME SOURCES a.cpp ... DEPENDS lib ... LABEL label): a GoogleTest program, one CTest
# entry per test natively, one per program under Windows emulation, whose start costs a second.
function(odbs_test name)
  cmake_parse_arguments(arg "" "LABEL" "SOURCES;DEPENDS" ${ARGN})
  odbs_program(${name} SOURCES ${arg_SOURCES} DEPENDS ${arg_DEPENDS} GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE ODBS_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}"
                                             ODBS_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS "${arg_LABEL}")
  else()
    gtest_discover_tests(${name} PROPERTIES LABELS "${arg_LABEL}" DISCOVERY_TIMEOUT 60
                                            DISCOVERY_MODE PRE_TEST)
  endif()
endfunction()
