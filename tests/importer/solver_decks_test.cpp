// SPDX-License-Identifier: BSD-3-Clause
// Every deck of the solver's own examples, imported and compared with the plain reading.
#include <zlib.h>

#include <algorithm>

#include "tests/importer/imported.h"
#include "tests/importer/plain_deck.h"

namespace odbs::importer {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
const char* const kDeckFolder = "Z:/usr/share/doc/calculix-ccx-test/examples/test";
#else
const char* const kDeckFolder = "/usr/share/doc/calculix-ccx-test/examples/test";
#endif

// A file's text; files compressed by gzip are unpacked.
std::string textOf(const fs::path& file) {
  std::string text;
  gzFile in = gzopen(file.string().c_str(), "rb");
  if (!in) return text;
  char buffer[65536];
  int n = 0;
  while ((n = gzread(in, buffer, sizeof buffer)) > 0)
    text.append(buffer, static_cast<std::size_t>(n));
  gzclose(in);
  return text;
}

// One deck's comparison: the first few differences, as text.
class Comparison {
 public:
  Comparison(const plain::Deck& deck, odb_Odb& odb)
      : deck_(deck), odb_(odb), instance_(odb.rootAssembly().instances()["PART-1-1"]) {}

  std::string differences() {
    nodes();
    elements();
    sets();
    sections();
    materials();
    procedures();
    return text_;
  }

 private:
  void expect(bool same, const std::string& what) {
    if (!same && ++n_ <= 3) text_ += what + "\n";
  }

  void nodes() {
    const odb_SequenceNode& nodes = instance_.nodes();
    expect(static_cast<std::size_t>(nodes.size()) == deck_.nodes.size(), "number of nodes");
    for (int i = 0; i < nodes.size(); ++i) {
      const odb_Node node = nodes[i];
      const auto found = deck_.nodes.find(node.label());
      expect(found != deck_.nodes.end(), "node " + std::to_string(node.label()) + " is too many");
      if (found == deck_.nodes.end()) continue;
      for (std::size_t d = 0; d < 3; ++d) {
        expect(node.coordinates()[d] == static_cast<float>(found->second[d]),
               "coordinates of node " + std::to_string(node.label()));
      }
    }
  }

  void elements() {
    const odb_SequenceElement& elements = instance_.elements();
    expect(static_cast<std::size_t>(elements.size()) == deck_.elements.size(),
           "number of elements");
    for (int i = 0; i < elements.size(); ++i) {
      const odb_Element element = elements[i];
      const auto found = deck_.elements.find(element.label());
      const std::string name = "element " + std::to_string(element.label());
      expect(found != deck_.elements.end(), name + " is too many");
      if (found == deck_.elements.end()) continue;
      expect(found->second.type == element.type().CStr(), "type of " + name);
      expect(found->second.nodes == connectivityOf(element), "nodes of " + name);
    }
  }

  void sets() {
    for (const auto& [name, labels] : deck_.nodeSets) {
      expect(instance_.nodeSets().isMember(name.c_str()), "node set " + name + " is missing");
      if (!instance_.nodeSets().isMember(name.c_str())) continue;
      const std::vector<int> wanted(labels.begin(), labels.end());
      expect(wanted == labelsOf(instance_.nodeSets()[name.c_str()].nodes()), "node set " + name);
    }
    for (const auto& [name, labels] : deck_.elementSets) {
      expect(instance_.elementSets().isMember(name.c_str()), "element set " + name + " is missing");
      if (!instance_.elementSets().isMember(name.c_str())) continue;
      const std::vector<int> wanted(labels.begin(), labels.end());
      expect(wanted == labelsOf(instance_.elementSets()[name.c_str()].elements()),
             "element set " + name);
    }
  }

  void sections() {
    odb_SectionApi api;
    odb_.extendApi(odb_Enum::odb_SECTION, api);
    for (const auto& [elset, material] : deck_.sectionMaterials) {
      const std::string name = "Section-" + elset;
      expect(api.sections().isMember(name.c_str()), "section " + name + " is missing");
      if (!api.sections().isMember(name.c_str())) continue;
      const odb_Section& section = api.sections()[name.c_str()];
      std::string written = material;
      if (odb_isA(odb_HomogeneousSolidSection, section)) {
        written = odb_dynamicCast(odb_HomogeneousSolidSection, section).material().CStr();
      } else if (odb_isA(odb_HomogeneousShellSection, section)) {
        written = odb_dynamicCast(odb_HomogeneousShellSection, section).material().CStr();
      }
      expect(written == material, "material of " + name);
      bool assigned = false;
      const odb_SequenceSectionAssignment& assignments = instance_.sectionAssignments();
      for (int i = 0; i < assignments.size() && !assigned; ++i) {
        if (name != assignments[i].sectionName().CStr()) continue;
        odb_Set region = assignments[i].region();
        const auto& labels = deck_.elementSets.at(elset);
        assigned = labelsOf(region.elements()) == std::vector<int>(labels.begin(), labels.end());
      }
      expect(assigned, "elements of " + name);
    }
  }

  void materials() {
    odb_MaterialApi api;
    odb_.extendApi(odb_Enum::odb_MATERIAL, api);
    for (const auto& [name, constants] : deck_.elastic) {
      expect(api.materials().isMember(name.c_str()), "material " + name + " is missing");
      if (!api.materials().isMember(name.c_str())) continue;
      const odb_SequenceSequenceDouble& table = api.materials()[name.c_str()].elastic().table();
      for (std::size_t i = 0; i < constants.size(); ++i) {
        expect(table.size() > 0 && table[0][static_cast<int>(i)] == constants[i],
               "elasticity of " + name);
      }
    }
    for (const auto& [name, density] : deck_.density) {
      const odb_Material& material = api.materials()[name.c_str()];
      expect(material.density().table()[0][0] == density, "density of " + name);
    }
  }

  void procedures() {
    std::vector<std::string> written;
    odb_StepRepository steps = odb_.steps();
    for (int i = 0; i < steps.stepList().size(); ++i) {
      std::string name = steps.stepList().Get(i).procedure().CStr();
      name = name.substr(0, name.find(','));
      name.erase(std::remove(name.begin(), name.end(), ' '), name.end());
      written.push_back(name);
    }
    expect(written == deck_.procedures, "procedures of the steps");
  }

  const plain::Deck& deck_;
  odb_Odb& odb_;
  odb_Instance instance_;
  std::string text_;
  int n_ = 0;
};

class SolverDecks : public ImportTest {};

TEST_F(SolverDecks, ArriveAsAnIndependentReadingFindsThem) {
  std::error_code error;
  std::vector<fs::path> decks;
  for (const auto& entry : fs::directory_iterator(kDeckFolder, error)) {
    const std::string name = entry.path().filename().string();
    if (name.find(".inp") != std::string::npos) decks.push_back(entry.path());
  }
  if (decks.empty()) GTEST_SKIP() << "the solver's examples are not installed";
  std::sort(decks.begin(), decks.end());
  EXPECT_EQ(355U, decks.size());
  std::vector<std::string> refused;
  for (const fs::path& deck : decks) {
    const std::string text = textOf(deck);
    const std::string file = files_.write("deck.inp", text);
    try {
      readDeck(file);
    } catch (const DeckError& e) {
      refused.push_back(deck.filename().string() + ": " + e.what());
      continue;
    }
    odb_Odb& odb = importFile(file);
    EXPECT_EQ("", Comparison(plain::readDeck(text), odb).differences()) << deck.filename();
  }
  // This one continues another analysis and has no mesh of its own.
  ASSERT_EQ(1U, refused.size());
  EXPECT_NE(std::string::npos, refused[0].find("beamread.inp: "));
  EXPECT_NE(std::string::npos, refused[0].find("the deck defines no nodes"));
}

}  // namespace
}  // namespace odbs::importer
