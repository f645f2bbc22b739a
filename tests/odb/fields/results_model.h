// SPDX-License-Identifier: BSD-3-Clause
// A small database for the tests of fields and histories, and short ways to make sequences.
#pragma once

#include <odb_API.h>
#include <odb_FailureTimes.h>
#include <odb_embedded.h>

#include <functional>
#include <string>
#include <vector>
#include "tests/support/sequences.h"
#include "tests/support/temporary_folder.h"

namespace odbs::test {

using TempFolder = tests::TemporaryFolder;
using tests::doubleRows;
using tests::floats;
using tests::ints;

inline odb_SequenceSequenceFloat rows(const std::vector<std::vector<float>>& values) {
  return tests::floatRows(values);
}
// n rows of `width` numbers: start, start + 1, ...
odb_SequenceSequenceFloat counted(int n, int width, float start = 0);

// A database with instances P-1 and P-2 of one part: hexahedra 10 and 20 (C3D8), wedge 30 (C3D6),
// shells 40 and 50 (S4R), a category with section points 1 and 5, sets, and one step with no frame.
void fillModel(odb_Odb& odb);

// That database in a folder of a test.
struct ResultsModel {
  TempFolder folder;
  std::string path;
  odb_Odb* odb = nullptr;

  ResultsModel();
  ~ResultsModel();
  odb_Instance& instance(const char* name = "P-1") { return odb->rootAssembly().instances()[name]; }
  odb_Step& step() { return odb->steps()["Step-1"]; }
  odb_SectionPoint point(int number);
  // Saves, closes and opens again.
  void reopen(bool readOnly = true);
};

std::vector<int> labels(const int* values, int n);
template <class Real>
std::vector<Real> numbers(const Real* values, int n) {
  return values ? std::vector<Real>(values, values + n) : std::vector<Real>();
}

}  // namespace odbs::test
