// SPDX-License-Identifier: BSD-3-Clause
// Decks imported by the program's own entry and opened again through the API.
#pragma once

#include <odb_API.h>
#include <odb_Interaction.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <set>
#include <string>
#include <vector>

#include "importer/command_line.h"
#include "tests/importer/deck_files.h"

namespace odbs::importer {

using Ints = std::vector<int>;

class ImportTest : public ::testing::Test {
 protected:
  ~ImportTest() override {
    if (odb_ && !odb_->isClosed()) odb_->close();
  }
  // Imports a text and opens the database.
  odb_Odb& import(const std::string& text) { return importFile(files_.write("model.inp", text)); }
  odb_Odb& importFile(const std::string& deck) {
    if (odb_ && !odb_->isClosed()) odb_->close();
    const std::string path = files_.file("model.odb");
    EXPECT_EQ(0, runImport({deck, "-o", path, "--quiet"}));
    odb_ = &openOdb(path.c_str(), true);
    return *odb_;
  }
  odb_Instance& instance(const std::string& name) {
    return odb_->rootAssembly().instances()[name.c_str()];
  }

  DeckFolder files_;
  odb_Odb* odb_ = nullptr;
};

template <class Sequence>
Ints labelsOf(const Sequence& members) {
  Ints labels;
  for (int i = 0; i < members.size(); ++i) labels.push_back(members[i].label());
  return labels;
}

inline Ints connectivityOf(const odb_Element& element) {
  int n = 0;
  const int* const nodes = element.connectivity(n);
  return {nodes, nodes + n};
}

inline Ints facesOf(const odb_Set& surface) {
  Ints faces;
  for (int i = 0; i < surface.faces().size(); ++i) faces.push_back(surface.faces()[i]);
  return faces;
}

inline void expectAt(const odb_Instance& instance, int label, double x, double y, double z) {
  const odb_Node node = instance.getNodeFromLabel(label);
  const float* const at = node.coordinates();
  EXPECT_NEAR(x, at[0], 1e-5) << "node " << label;
  EXPECT_NEAR(y, at[1], 1e-5) << "node " << label;
  EXPECT_NEAR(z, at[2], 1e-5) << "node " << label;
}

}  // namespace odbs::importer
