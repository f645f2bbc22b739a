// SPDX-License-Identifier: BSD-3-Clause
// The program odb_modal_covariance.
#include "samples/modal_covariance/command_line.h"

int main(int argc, char** argv) {
  return odbs::runModalCovariance({argv + 1, argv + argc});
}
