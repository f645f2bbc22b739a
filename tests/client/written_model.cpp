// SPDX-License-Identifier: BSD-3-Clause
// Writes the models of written_model.h through the API.
#include "tests/client/written_model.h"

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
#include <odb_embedded.h>

#include <algorithm>
#include <random>

#include "tests/support/sequences.h"

namespace odbs::client::test {

namespace {

using tests::doubleRows;
using tests::floatRows;
using tests::floats;
using tests::ints;
using tests::rows;

// Writes one random model; what it writes it also notes in `expected`.
class RandomModel {
 public:
  RandomModel(const std::string& path, std::uint32_t seed)
      : random_(seed),
        odb_(Odb(("random" + std::to_string(seed)).c_str(), "Random model", "", path.c_str())) {
    odb_.extendApi(odb_Enum::odb_SECTION, sections_);
    odb_.extendApi(odb_Enum::odb_MATERIAL, materials_);
  }

  Model write() {
    odb_embedded::JobData job;
    job.analysisCode = odb_Enum::odb_AnalysisCodeEnum(1 + upTo(1));
    odb_embedded::setJobData(odb_, job);
    expected_.title = "Random model";
    expected_.analysisKind = static_cast<int>(job.analysisCode) - 1;
    addMaterials();
    const int nInstances = 1 + upTo(3);
    for (int i = 0; i < nInstances; ++i) addInstance(i);
    if (nInstances == 1) {
      expected_.instances.front().name.clear();
      for (Section& section : expected_.sections) section.instance.clear();
    } else {
      expected_.instances.emplace_back();
      expected_.instances.back().name = odb_.rootAssembly().name().CStr();
      expected_.instances.back().isRootAssembly = true;
    }
    odb_.save();
    odb_.close();
    return expected_;
  }

 private:
  int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

  // Ascending labels, some of them large.
  std::vector<int> labels(int n) {
    std::vector<int> all(static_cast<std::size_t>(n));
    int label = upTo(3) == 0 ? 700000000 + upTo(1000) : upTo(5);
    for (int& one : all) one = label += 1 + upTo(4);
    return all;
  }

  void addMaterials() {
    for (const char* name : {"ALPHA", "BETA"}) {
      odb_Material& material = materials_.Material(name);
      Material noted;
      noted.name = name;
      const double modulus = 1000 * (1 + upTo(200));
      material.Elastic(doubleRows({{modulus, 0.3}}));
      noted.elastic.emplace().type = "ISOTROPIC";
      noted.elastic->values = {static_cast<float>(modulus), 0.3f, 0, 0, 0, 0};
      if (upTo(1) == 1) {
        material.Density(doubleRows({{7.8e-9}}));
        noted.density = 7.8e-9f;
      }
      expected_.materials.push_back(noted);
    }
  }

  void addInstance(int number) {
    const std::string suffix(1, static_cast<char>('A' + number));
    const bool isPlanar = upTo(2) == 0;
    odb_Part& part =
        odb_.Part(("PART-" + suffix).c_str(), isPlanar ? odb_Enum::TWO_D_PLANAR : odb_Enum::THREE_D,
                  odb_Enum::DEFORMABLE_BODY);
    Instance noted;
    noted.name = "INST-" + suffix;
    addNodes(part, noted, isPlanar ? 2 : 3);
    addElements(part, noted);
    odb_Instance& instance = odb_.rootAssembly().Instance(noted.name.c_str(), part);
    addSection(instance, noted, suffix);
    expected_.instances.push_back(noted);
  }

  void addNodes(odb_Part& part, Instance& noted, int nCoordinates) {
    const std::vector<int> nodeLabels = labels(2 + upTo(40));
    odb_SequenceSequenceFloat rows;
    for (std::size_t i = 0; i < nodeLabels.size(); ++i) {
      std::vector<float> row;
      for (int k = 0; k < nCoordinates; ++k) {
        row.push_back(static_cast<float>(upTo(2000000) - 1000000) / 1024);
      }
      noted.coordinates.insert(noted.coordinates.end(), row.begin(), row.end());
      rows.append(floats(row));
    }
    noted.nCoordinates = static_cast<std::uint32_t>(nCoordinates);
    noted.nodeLabels.assign(nodeLabels.begin(), nodeLabels.end());
    part.addNodes(ints(nodeLabels), rows);
  }

  // Groups of elements, each of one type; type names of every length up to 13.
  void addElements(odb_Part& part, Instance& noted) {
    const int nGroups = 1 + upTo(3);
    int label = 0;
    noted.connectivityOffsets.push_back(0);
    for (int group = 0; group < nGroups; ++group) {
      const std::string type = std::string("XTYPE1234567890").substr(0, 1 + upTo(12));
      const int nNodes = 1 + upTo(20);
      std::vector<int> elementLabels;
      odb_SequenceSequenceInt connectivity;
      for (int i = upTo(30); i >= 0; --i) {
        elementLabels.push_back(label += 1 + upTo(100000));
        odb_SequenceInt row;
        for (int k = 0; k < nNodes; ++k) {
          const int node = noted.nodeLabels[static_cast<std::size_t>(
              upTo(static_cast<int>(noted.nodeLabels.size()) - 1))];
          row.append(node);
          noted.connectivity.push_back(node);
        }
        connectivity.append(row);
        noted.elementLabels.push_back(label);
        noted.elementTypes.push_back(typeCode(type));
        noted.connectivityOffsets.push_back(noted.connectivity.size());
      }
      part.addElements(ints(elementLabels), connectivity, type.c_str());
    }
    noted.sectionNumbers.assign(noted.elementLabels.size(), 0);
  }

  std::uint32_t typeCode(const std::string& type) {
    std::vector<std::string>& types = expected_.elementTypes;
    const auto place = std::find(types.begin(), types.end(), type);
    if (place == types.end()) types.push_back(type);
    return static_cast<std::uint32_t>(std::find(types.begin(), types.end(), type) - types.begin());
  }

  // A section over the first half of the elements. Instances come in the order of their sections'
  // names, so the sections are numbered from 1 in that order.
  void addSection(odb_Instance& instance, Instance& noted, const std::string& suffix) {
    const std::size_t nHalf = (noted.elementLabels.size() + 1) / 2;
    const std::vector<int> half(noted.elementLabels.begin(),
                                noted.elementLabels.begin() + static_cast<long>(nHalf));
    odb_Set& region = instance.ElementSet("HALF", ints(half));
    Section section;
    section.number = static_cast<int>(expected_.sections.size()) + 1;
    section.name = "SOLE-" + suffix;
    section.instance = noted.name;
    section.material = upTo(1) == 0 ? "ALPHA" : "BETA";
    const std::string fullName = "Section-" + section.name;
    if (upTo(1) == 0) {
      section.kind = SectionKind::kHomogeneousSolid;
      instance.assignSection(
          region, sections_.HomogeneousSolidSection(fullName.c_str(), section.material.c_str()));
    } else {
      section.kind = SectionKind::kHomogeneousShell;
      section.thickness = 0.5f + static_cast<float>(upTo(8));
      instance.assignSection(region,
                             sections_.HomogeneousShellSection(fullName.c_str(), section.thickness,
                                                               section.material.c_str()));
    }
    std::fill_n(noted.sectionNumbers.begin(), nHalf, section.number);
    expected_.sections.push_back(section);
  }

  std::mt19937 random_;
  odb_Odb& odb_;
  odb_SectionApi sections_;
  odb_MaterialApi materials_;
  Model expected_;
};

// The rod's database, not saved yet.
odb_Odb& makeRod(const std::string& path) {
  odb_Odb& odb = Odb("rod", "Rod", "", path.c_str());
  odb_embedded::JobData job;
  job.analysisCode = odb_Enum::odb_AnalysisCodeEnum(1);
  odb_embedded::setJobData(odb, job);
  odb_SectionApi sections;
  odb_MaterialApi materials;
  odb.extendApi(odb_Enum::odb_SECTION, sections);
  odb.extendApi(odb_Enum::odb_MATERIAL, materials);
  odb_Material& steel = materials.Material("STEEL");
  steel.Elastic(doubleRows({{210000, 0.3}}));
  steel.Density(doubleRows({{7.8e-9}}));

  odb_Part& part = odb.Part("ROD", odb_Enum::TWO_D_PLANAR, odb_Enum::DEFORMABLE_BODY);
  part.addNodes(ints({1, 2}), floatRows({{0, 0}, {100, 0}}));
  part.addElements(ints({7}), rows({{1, 2}}), "T2D2", "ALL");
  odb_Instance& instance = odb.rootAssembly().Instance("ROD-1", part);
  instance.assignSection(instance.elementSets()["ALL"],
                         sections.TrussSection("Section-ROD", "STEEL"));
  return odb;
}

void saveAndClose(odb_Odb& odb) {
  odb.save();
  odb.close();
}

}  // namespace

void writeRod(const std::string& path) {
  saveAndClose(makeRod(path));
}

void writeBrokenRod(const std::string& path) {
  odb_Odb& odb = makeRod(path);
  odb_Instance& instance = odb.rootAssembly().instances()["ROD-1"];
  odb_Step& step = odb.Step("Break", "", odb_Enum::TIME, 1, "", "*DYNAMIC");
  step.Frame(0, 0, "");
  odb_Frame frame = step.Frame(1, 1, "");
  frame.FieldOutput("U", "", odb_Enum::VECTOR)
      .addData(odb_Enum::NODAL, instance, ints({1, 2}), floatRows({{1, 0.5F}, {2, 1}}));
  frame.FieldOutput("UR", "", odb_Enum::VECTOR)
      .addData(odb_Enum::NODAL, instance, ints({1, 2}), floatRows({{0.25F}, {0.5F}}));
  frame.FieldOutput("STATUS", "", odb_Enum::SCALAR)
      .addData(odb_Enum::WHOLE_ELEMENT, instance, ints({7}), floatRows({{0}}));
  saveAndClose(odb);
}

void writeFailures(const std::string& path) {
  odb_Odb& odb = Odb("failures", "Failures", "", path.c_str());
  odb_Part& part = odb.Part("ROW", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  part.addNodes(ints({1, 2, 3, 4}), floatRows({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}}));
  part.addElements(ints({1, 2, 3}), rows({{1, 2}, {2, 3}, {3, 4}}), "T3D2");
  odb_Instance* const instances[] = {&odb.rootAssembly().Instance("A", part),
                                     &odb.rootAssembly().Instance("B", part)};
  odb_Step& step = odb.Step("Pull", "", odb_Enum::TIME, 2, "", "*DYNAMIC");
  for (int f = 0; f < 3; ++f) {
    odb_Frame frame = step.Frame(f, static_cast<float>(f), "");
    odb_FieldOutput& u = frame.FieldOutput("U", "", odb_Enum::VECTOR);
    for (int b = 0; b < 2; ++b) {
      odb_SequenceSequenceFloat values, conjugates;
      for (int n = 1; n <= 4; ++n) {
        const float x = static_cast<float>(1000 * b + 100 * f + n);
        values.append(floats({x, x + 10, x + 20}));
        if (f == 2) conjugates.append(floats({-x, -x - 10, -x - 20}));
      }
      u.addData(odb_Enum::NODAL, *instances[b], ints({1, 2, 3, 4}), values, odb_SectionPoint(),
                odb_SequenceSequenceFloat(), conjugates);
    }
    if (f != 1) continue;
    const auto add = [&](const char* name, odb_Enum::odb_ResultPositionEnum position, int b,
                         const std::vector<int>& labels, const std::vector<float>& values) {
      odb_SequenceSequenceFloat rows;
      for (const float value : values) rows.append(floats({value}));
      odb_FieldOutputRepository& fields = frame.fieldOutputs();
      odb_FieldOutput& field =
          fields.isMember(name) ? fields[name] : frame.FieldOutput(name, "", odb_Enum::SCALAR);
      field.addData(position, *instances[b], ints(labels), rows);
    };
    add("UR1", odb_Enum::NODAL, 1, {1}, {1});
    add("UR2", odb_Enum::NODAL, 1, {1}, {2});
    add("UR3", odb_Enum::NODAL, 1, {1}, {3});
    add("CPRESS   S/M", odb_Enum::NODAL, 0, {4}, {0.5F});
    add("STATUS", odb_Enum::WHOLE_ELEMENT, 0, {1, 2, 3}, {0, 1, 0});
    add("STATUS", odb_Enum::WHOLE_ELEMENT, 1, {1, 2, 3}, {1, 0, 1});
  }
  saveAndClose(odb);
}

Model writeRandomModel(const std::string& path, std::uint32_t seed) {
  return RandomModel(path, seed).write();
}

}  // namespace odbs::client::test
