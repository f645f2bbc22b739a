// SPDX-License-Identifier: BSD-3-Clause
// The main function of programs that only have an ABQmain.
#include <odb_API.h>

#include <cstdio>
#include <exception>

int ABQmain(int argc, char** argv);

int main(int argc, char** argv) {
  int status = 1;
  try {
    odb_initializeAPI();
    status = ABQmain(argc, argv);
  } catch (const nex_Exception& error) {
    std::fprintf(stderr, "%s\n", error.UserReport().CStr());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
  } catch (...) {
    std::fprintf(stderr, "the program ended with an unknown exception\n");
  }
  odb_finalizeAPI();
  return status;
}
