// SPDX-License-Identifier: BSD-3-Clause
// The program odb_modal_covariance.
#include "port/port.h"
#include "samples/modal_covariance/command_line.h"

int main(int argc, char** argv) {
  odbs::port::ignoreBrokenPipe();
  odbs::port::ignoreFileSizeLimit();
  odbs::port::removeUnfinishedWhenInterrupted();
  return odbs::runModalCovariance({argv + 1, argv + argc});
}
