// SPDX-License-Identifier: BSD-3-Clause
// A small model with one of everything, and a folder for the files of a test.
#pragma once

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
#include <odb_embedded.h>

#include <string>
#include "tests/support/sequences.h"
#include "tests/support/temporary_folder.h"

namespace odbs::test {

// A folder with a blank in its name, removed when all databases are closed.
class TempFolder : public tests::TemporaryFolder {
 public:
  TempFolder() : TemporaryFolder("odb test") {}
  ~TempFolder() { odb_finalizeAPI(); }
};

using tests::doubleRows;
using tests::floatRows;
using tests::floats;
using tests::ints;
using tests::rows;

// Two unit cubes of part BLOCK placed as instances A-1 (in place) and B-1 (turned by 90 degrees
// about z, then shifted), a planar rigid part, and one of everything else. Not saved.
odb_Odb& makeSampleModel(const std::string& name, const std::string& path);

// Fields and histories of every kind on the model of tests/odb/fields/results_model.h. Not saved.
odb_Odb& makeResultsSample(const std::string& name, const std::string& path);

}  // namespace odbs::test
