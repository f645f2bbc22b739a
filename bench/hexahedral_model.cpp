// SPDX-License-Identifier: BSD-3-Clause
// The hexahedral cube of bench/hexahedral_model.h, through the documented write calls; where there
// are hundreds of frames, their values through plain arrays.
#include "bench/hexahedral_model.h"

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
#include <odb_embedded.h>

#include <filesystem>
#include <numeric>
#include <random>
#include <vector>

namespace odbs::bench {

namespace {

void addNodes(odb_Part& part, int n) {
  const int nNodes = n * n * n;
  odb_SequenceInt labels(nNodes);
  odb_SequenceSequenceFloat coordinates(nNodes);
  for (int i = 0; i < nNodes; ++i) {
    labels.append(i + 1);
    odb_SequenceFloat point(3);
    point.append(static_cast<float>(i % n));
    point.append(static_cast<float>(i / n % n));
    point.append(static_cast<float>(i / n / n));
    coordinates.append(point);
  }
  part.addNodes(labels, coordinates);
}

void addElements(odb_Part& part, int n, const char* type, const odb_SectionCategory& category) {
  odb_SequenceInt labels;
  odb_SequenceSequenceInt connectivity;
  const int corners[8] = {0, 1, n + 1, n, n * n, n * n + 1, n * n + n + 1, n * n + n};
  int nElements = 0;
  for (int z = 0; z + 1 < n; ++z) {
    for (int y = 0; y + 1 < n; ++y) {
      for (int x = 0; x + 1 < n; ++x) {
        odb_SequenceInt nodes(8);
        for (const int corner : corners) nodes.append(1 + x + n * y + n * n * z + corner);
        labels.append(++nElements);
        connectivity.append(nodes);
      }
    }
  }
  part.addElements(labels, connectivity, type, "ALL", category);
}

// The cube, not saved yet.
odb_Odb& makeModel(const std::string& path, int nPerEdge, const char* type) {
  std::filesystem::remove(path);
  odb_Odb& odb = Odb("bench", "Hexahedral cube", "", path.c_str());
  odb_SectionApi sections;
  odb.extendApi(odb_Enum::odb_SECTION, sections);
  odb_MaterialApi materials;
  odb.extendApi(odb_Enum::odb_MATERIAL, materials);
  materials.Material("STEEL");
  odb_HomogeneousSolidSection& section =
      sections.HomogeneousSolidSection("Section-ALL", "STEEL", 1.0);
  odb_SectionCategory& category = odb.SectionCategory("solid < elset = ALL >", "Hexahedra");

  odb_Part& part = odb.Part("CUBE", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  addNodes(part, nPerEdge);
  addElements(part, nPerEdge, type, category);
  odb_Instance& instance = odb.rootAssembly().Instance("CUBE-1", part);
  instance.assignSection(instance.elementSets()["ALL"], section);
  return odb;
}

}  // namespace

void writeHexahedralModel(const std::string& path, int nPerEdge) {
  odb_Odb& odb = makeModel(path, nPerEdge, "C3D8R");
  odb.save();
  odb.close();
}

void writeStressField(const std::string& path, int nPerEdge) {
  constexpr int kPoints = 8;
  constexpr int kComponents = 6;
  odb_Odb& odb = makeModel(path, nPerEdge, "C3D8");
  odb_Frame frame = odb.Step("Step-1", "", odb_Enum::TIME, 1.0, "", "*STATIC").Frame(1, 1);
  odb_FieldOutput& field = frame.FieldOutput("S", "Stress", odb_Enum::TENSOR_3D_FULL);
  const int nElements = (nPerEdge - 1) * (nPerEdge - 1) * (nPerEdge - 1);
  odb_SequenceInt spread;
  const int stride = nElements / 1000 + (nElements % 1000 != 0 ? 1 : 0);
  for (int i = 0; i < nElements; i += stride) spread.append(i + 1);
  odb.rootAssembly().instances()["CUBE-1"].ElementSet("SPREAD", spread);
  odb_SequenceInt labels(nElements);
  odb_SequenceSequenceFloat data(kPoints * nElements);
  for (int i = 0; i < nElements; ++i) {
    labels.append(i + 1);
    for (int p = 0; p < kPoints; ++p) {
      odb_SequenceFloat value(kComponents);
      for (int k = 0; k < kComponents; ++k) value.append(static_cast<float>(i + p + k));
      data.append(value);
    }
  }
  field.addData(odb_Enum::INTEGRATION_POINT, odb.rootAssembly().instances()["CUBE-1"], labels,
                data);
  odb.save();
  odb.close();
}

void writeManyFrames(const std::string& path, int nFrames, int nFields) {
  odb_Odb& odb = makeModel(path, 3, "C3D8");
  const odb_Instance& instance = odb.rootAssembly().instances()["CUBE-1"];
  odb_SequenceInt labels(1);
  labels.append(1);
  odb_SequenceFloat one(1);
  one.append(1);
  odb_SequenceSequenceFloat data(1);
  data.append(one);
  odb_Step& step = odb.Step("Step-1", "Long", odb_Enum::TIME, 1.0, "", "*DYNAMIC");
  for (int i = 0; i < nFrames; ++i) {
    odb_Frame frame = step.Frame(i, static_cast<float>(i), "A frame");
    for (int k = 0; k < nFields; ++k) {
      const std::string name = "SDV" + std::to_string(k + 1);
      odb_FieldOutput& field = frame.FieldOutput(name.c_str(), "State", odb_Enum::SCALAR);
      field.addData(odb_Enum::WHOLE_ELEMENT, instance, labels, data);
    }
  }
  odb.save();
  odb.close();
}

int writeModes(const std::string& path, int nModes, int nValues) {
  constexpr int kPoints = 8;
  constexpr int kComponents = 6;
  const int nElements = (nValues + kPoints - 1) / kPoints;
  int nPerEdge = 2;
  while ((nPerEdge - 1) * (nPerEdge - 1) * (nPerEdge - 1) < nElements) ++nPerEdge;
  odb_Odb& odb = makeModel(path, nPerEdge, "C3D8");
  const odb_Instance instance = odb.rootAssembly().instances()["CUBE-1"];
  std::vector<int> labels(static_cast<std::size_t>(nElements));
  std::iota(labels.begin(), labels.end(), 1);
  odb_SequenceInt part;
  for (int i = 0; i < nElements; i += 100) part.append(labels[static_cast<std::size_t>(i)]);
  odb.rootAssembly().instances()["CUBE-1"].ElementSet("PART", part);
  std::vector<float> data(labels.size() * kPoints * kComponents);
  odb_embedded::FieldValues<float> values;
  values.position = odb_Enum::INTEGRATION_POINT;
  values.instance = instance;
  values.labels = labels.data();
  values.nLabels = nElements;
  values.data = data.data();
  values.nRows = nElements * kPoints;
  values.width = kComponents;
  std::mt19937 random(3);
  std::uniform_real_distribution<float> number(-1, 1);
  odb_Step& modes = odb.Step("Modes", "", odb_Enum::MODAL, 0, "", "*FREQUENCY");
  for (int m = 1; m <= nModes; ++m) {
    for (float& x : data) x = number(random);
    odb_Frame frame = modes.Frame(m, static_cast<float>(m));
    odb_embedded::addData(frame.FieldOutput("S", "Stress", odb_Enum::TENSOR_3D_FULL), values);
  }
  odb_SequenceFloat entries;
  for (int i = 0; i < nModes; ++i) {
    for (int j = 0; j <= i; ++j) entries.append(j == i ? 2 : number(random));
  }
  odb_SequenceSequenceFloat packed;
  packed.append(entries);
  odb_Step& response = odb.Step("Response", "", odb_Enum::FREQUENCY, 0, "", "*RANDOM RESPONSE");
  odb_Frame frame = response.Frame(1, 1);
  for (const char* name : {"MATRIX Sqq", "MATRIX RSqq"}) {
    frame.SymmetricMatrixOutput(name, "", nModes)
        .addData(odb_Enum::WHOLE_MODEL, instance, odb_SequenceInt(), packed);
  }
  odb.save();
  odb.close();
  return values.nRows;
}

}  // namespace odbs::bench
