// SPDX-License-Identifier: BSD-3-Clause
// Whole replies of the model, sets, catalogue, history, field values and nodal results, put
// together from records.
#include <gtest/gtest.h>

#include <sstream>

#include "client/field_values.h"
#include "client/histories.h"
#include "client/model.h"
#include "client/nodal_results.h"
#include "client/result_catalogue.h"
#include "client/sets.h"
#include "tests/client/records.h"

namespace odbs::client::test {
namespace {

using Ints = std::vector<std::int32_t>;
using Reals = std::vector<float>;

TEST(Model, OfOneInstanceHasNoName) {
  const Model model = build<ModelBuilder>(
      {"0x01 'T'", "0x02 0", "0x15 'a\n'", "0x15 'b'", "$ 1 'S' 0", "0x03 10 0f 0f",
       "0x03 20 1f 2f", "0x04 <T2D2    > 7 1 10 20", "0x04 <CPS3    > 8 0 10 20 10",
       "0x04 <T2D2    > 9 1 20 10", "M 10 'SURF'"});
  EXPECT_EQ(model.title, "T");
  EXPECT_EQ(model.annotation, "a\nb");
  EXPECT_EQ(model.elementTypes, (std::vector<std::string>{"T2D2", "CPS3"}));
  ASSERT_EQ(model.instances.size(), 1u);
  const Instance& only = model.instances[0];
  EXPECT_EQ(only.name, "");
  EXPECT_FALSE(only.isRootAssembly);
  EXPECT_EQ(only.nodeLabels, (std::vector<std::int32_t>{10, 20}));
  EXPECT_EQ(only.coordinates, (std::vector<float>{0, 0, 1, 2}));
  EXPECT_EQ(only.elementLabels, (std::vector<std::int32_t>{7, 8, 9}));
  EXPECT_EQ(only.elementTypes, (std::vector<std::uint32_t>{0, 1, 0}));
  EXPECT_EQ(only.sectionNumbers, (std::vector<std::int32_t>{1, 0, 1}));
  EXPECT_EQ(only.connectivityOffsets, (std::vector<std::size_t>{0, 2, 5, 7}));
  EXPECT_EQ(only.connectivity, (std::vector<std::int32_t>{10, 20, 10, 20, 10, 20, 10}));
  EXPECT_EQ(only.rigidBodies.size(), 1u);
}

TEST(Model, OfSeveralInstancesTellsSectionGroupsFromInstances) {
  const Model model = build<ModelBuilder>({"0x01 'T'", "0x02 0", "H 'B'", "$ 1 'S' 0", "I", "H 'A'",
                                           "$ 2 'R' 0", "I", "0x11 'M' 1f 0 0", "H 'A'",
                                           "0x03 1 0f 0f", "0x04 <T2D2    > 1 1 1 1", "H 'B'",
                                           "H 'C'", "0x03 1 5f 5f", "H 'Assembly'"});
  ASSERT_EQ(model.sections.size(), 2u);
  EXPECT_EQ(model.sections[0].instance, "B");
  EXPECT_EQ(model.sections[1].instance, "A");
  ASSERT_EQ(model.instances.size(), 4u);
  EXPECT_EQ(model.instances[0].nodeLabels.size(), 1u);
  EXPECT_EQ(model.instances[1].name, "B");
  EXPECT_TRUE(model.instances[1].nodeLabels.empty());
  EXPECT_EQ(model.instances[2].coordinates, (std::vector<float>{5, 5}));
  EXPECT_EQ(model.instances[3].name, "Assembly");
  EXPECT_TRUE(model.instances[3].isRootAssembly);
}

TEST(Model, OutOfPlaceIsRefused) {
  EXPECT_EQ(offsetOfError<ModelBuilder>({"I"}), 0);
  EXPECT_EQ(offsetOfError<ModelBuilder>({"0x03 1 0f 0f", "0x03 2 0f"}), 15);
  EXPECT_EQ(offsetOfError<ModelBuilder>({"0x02 0", "} 1"}), 7);
}

TEST(Sets, OfOneInstanceAreJoinedFromTheirChunks) {
  const SetsReply reply =
      build<SetsBuilder>({"0x01 'T'", "0x02 0", "0x05 'N'", "0x08 1 2", "0x08 3", "11", "11",
                          "0x06 'EMPTY'", "11", "0x07 'S'", "10 5 1", "11"});
  EXPECT_EQ(reply.title, "T");
  ASSERT_EQ(reply.sets.size(), 3u);
  EXPECT_EQ(reply.sets[0].labels, (Ints{1, 2, 3}));
  EXPECT_EQ(reply.sets[1].kind, SetKind::kElements);
  EXPECT_TRUE(reply.sets[1].labels.empty());
  EXPECT_EQ(reply.sets[2].labels, (Ints{5}));
  EXPECT_EQ(reply.sets[2].faces, (Ints{1}));
}

TEST(Sets, OfSeveralInstancesSayWhoseTheyAre) {
  const SetsReply reply = build<SetsBuilder>({"0x05 'BOTH'", "H 'A'", "0x08 1", "11", "I", "H 'A'",
                                              "0x05 'OWN'", "0x08 2", "11", "I", "I",
                                              "| 'Error in Sets definition'", "0x06 'E'", "11"});
  ASSERT_EQ(reply.sets.size(), 3u);
  EXPECT_EQ(reply.sets[0].instance, "A");
  EXPECT_TRUE(reply.sets[0].isOfAssembly);
  EXPECT_EQ(reply.sets[1].instance, "A");
  EXPECT_FALSE(reply.sets[1].isOfAssembly);
  EXPECT_EQ(reply.sets[2].instance, "");
  EXPECT_EQ(reply.messages.size(), 1u);
}

TEST(Sets, OutOfPlaceAreRefused) {
  EXPECT_EQ(offsetOfError<SetsBuilder>({"0x08 1"}), 0);
  EXPECT_EQ(offsetOfError<SetsBuilder>({"0x05 'N'", "0x09 1"}), 8);
  EXPECT_EQ(offsetOfError<SetsBuilder>({"0x05 'N'", "0x06 'E'"}), 8);
  EXPECT_EQ(offsetOfError<SetsBuilder>({"0x05 'N'"}), 0);
}

Records catalogueEntry(int step, const std::string& field, int frame) {
  return {"12 " + std::to_string(step) + " 1d 'Step-" + std::to_string(step) +
              "\x01"
              "d'",
          "13 '*STATIC'", "14 '" + field + "' 'text'", "16 '" + field + "1' '" + field + "2'",
          "15 " + std::to_string(frame) + " 0 0 " + std::to_string(frame) + "d 0d 0 8 4 2 0 ''"};
}

TEST(Catalogue, KeepsEachStepAndFieldOnce) {
  Records records{"0x01 'T'", "0x02 0"};
  for (int step = 1; step <= 2; ++step) {
    for (int frame = 0; frame < 3; ++frame) {
      for (const char* field : {"S", "E"}) {
        const Records entry = catalogueEntry(step, field, frame);
        records.insert(records.end(), entry.begin(), entry.end());
      }
    }
  }
  const Catalogue catalogue = build(records, CatalogueBuilder(false));
  EXPECT_EQ(catalogue.steps.size(), 2u);
  EXPECT_EQ(catalogue.steps[1].procedure, "*STATIC");
  ASSERT_EQ(catalogue.fields.size(), 2u);
  EXPECT_EQ(catalogue.fields[1].components, (std::vector<std::string>{"E1", "E2"}));
  ASSERT_EQ(catalogue.entries.size(), 12u);
  EXPECT_EQ(catalogue.entries[11].step, 1u);
  EXPECT_EQ(catalogue.entries[11].field, 1u);
  EXPECT_EQ(catalogue.entries[11].frameValue, 2.0);
}

TEST(Catalogue, RefusesAFrameWithoutItsStep) {
  const Records entry = catalogueEntry(1, "S", 0);
  EXPECT_EQ(offsetOfError({entry[2], entry[4]}, CatalogueBuilder(false)), 16);
  // A frame of the other listing has another length.
  EXPECT_EQ(offsetOfError(entry, CatalogueBuilder(true)), 72);
}

TEST(History, JoinsTimesValuesAndConjugates) {
  const History history = build<HistoryBuilder>(
      {"0x32 1 1 0d 'Step-1' ''", "0x34 'Node 1' '' 1 1 0 0", "0x36 'U1' '' 2 0", "0x38 0f",
       "0x38 5f", "0x38 1f", "0x38 6f", "0x36 'U2' '' 2 1", "0x38 10f", "0x38 7f", "0x38 -7f"});
  const std::vector<HistoryOutput>& outputs = history.steps.at(0).regions.at(0).outputs;
  ASSERT_EQ(outputs.size(), 2u);
  EXPECT_EQ(outputs[0].times, (Reals{0, 1}));
  EXPECT_EQ(outputs[0].values, (Reals{5, 6}));
  EXPECT_TRUE(outputs[0].conjugates.empty());
  EXPECT_EQ(outputs[1].times, (Reals{10}));
  EXPECT_EQ(outputs[1].conjugates, (Reals{-7}));
}

TEST(History, OutOfPlaceIsRefused) {
  const char* const step = "0x32 1 1 0d 'S' ''";
  const char* const region = "0x34 'N' '' 1 1 0 0";
  const char* const output = "0x36 'U' '' 2 0";
  EXPECT_EQ(offsetOfError<HistoryBuilder>({region}), 0);
  EXPECT_EQ(offsetOfError<HistoryBuilder>({step, output}), 28);
  EXPECT_EQ(offsetOfError<HistoryBuilder>({step, "0x38 1f"}), 28);
  EXPECT_NE(offsetOfError<HistoryBuilder>({step, region, output, "0x38 1f"}), -1);
  EXPECT_NE(offsetOfError<HistoryBuilder>({step, region, output, "0x38 1f", output}), -1);
}

TEST(FieldValues, GetTheirLabelsBack) {
  const FieldValues values = build<FieldValuesBuilder>(
      {"0x01 'T'", "0x02 0", "% 16", "H 'A'", "0x1E <C3D8    > -1 -1", "0x1F 1 -1 1 1f 2f",
       "0x17 2 3f 4f", "0x20 2 1 5f 6f", "% 1", "0x1E <C3D4    > 2 5", "39 1f 0f 0f 0f 1f 0f",
       "0x21 9 3 7f", "0x16 4 8f", "0x15 9f", "0x18 5 6 10f", "0x22 8 11f"});
  EXPECT_EQ(values.elementLabels, (Ints{1, 1, 2, 9, 9, 9, 9, 8}));
  EXPECT_EQ(values.thirdLabels, (Ints{-1, -1, -1, 3, 4, 4, 5, 5}));
  EXPECT_EQ(values.integrationPoints, (Ints{1, 2, 1, 1, 1, 1, 6, 6}));
  EXPECT_EQ(values.components, (Reals{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}));
  ASSERT_EQ(values.blocks.size(), 2u);
  EXPECT_EQ(values.blocks[0].nComponents, 2u);
  EXPECT_EQ(values.blocks[0].nDirections, 0u);
  EXPECT_EQ(values.blocks[1].firstValue, 3u);
  EXPECT_EQ(values.blocks[1].firstComponent, 6u);
  EXPECT_EQ(values.blocks[1].nValues, 5u);
  EXPECT_EQ(values.blocks[1].valueType, 1u);
  EXPECT_EQ(values.blocks[1].instance, "A");
  EXPECT_EQ(values.blocks[1].head.sectionPoint, 5);
  EXPECT_EQ(values.blocks[1].nDirections, 6u);
}

TEST(FieldValues, OutOfPlaceAreRefused) {
  const char* const block = "0x1E <C3D8    > -1 -1";
  EXPECT_EQ(offsetOfError<FieldValuesBuilder>({"0x15 1f"}), 0);
  EXPECT_EQ(offsetOfError<FieldValuesBuilder>({block, "0x15 1f", "0x15"}), 26);
  EXPECT_EQ(offsetOfError<FieldValuesBuilder>({block, "0x03 1"}), 19);
}

TEST(NodalResults, AreBlocksByInstanceAndQuantity) {
  const NodalResults results =
      build({"0x01 'T'", "0x02 1", "H 'A'", "0x11 1 5f", "0x11 2 6f", "0x12 3 7f -7f", "H 'B'",
             "0x12 1 8f 9f -8f -9f", "34 4 0", "H 'A'", "34 9 0", "34 2 0", "34 9 0", "0x26 1 1f",
             "0x39 1 2f", "0x50 1 3f 4f", "| 'M'"},
            NodalResultsBuilder("U"));
  std::ostringstream blocks;  // name, instance, complex, components, and four places in the arrays
  for (const NodalBlock& one : results.blocks) {
    blocks << one.quantity << one.instance << ' ' << one.isComplex << one.nComponents << ' '
           << one.firstValue << one.nValues << one.firstComponent << one.firstConjugate << '\n';
  }
  EXPECT_EQ(blocks.str(),
            "UA 01 0200\nUA 11 2120\nUB 12 3131\n"
            "UR1A 01 4153\nUR2A 01 5163\nUR3A 11 6173\n");
  EXPECT_EQ(results.nodeLabels, (Ints{1, 2, 3, 1, 1, 1, 1}));
  EXPECT_EQ(results.components, (Reals{5, 6, 7, 8, 9, 1, 2, 3}));
  EXPECT_EQ(results.conjugates, (Reals{-7, -8, -9, 4}));
  ASSERT_EQ(results.failed.size(), 2u);
  EXPECT_EQ(results.failed[0].instance, "B");
  EXPECT_EQ(results.failed[1].labels, (Ints{2, 9}));
  EXPECT_EQ(results.analysisKind, 1);
  EXPECT_EQ(results.messages.size(), 1u);
}

TEST(NodalResults, OutOfPlaceAreRefused) {
  const char* const title = "0x01 ''";
  const NodalResultsBuilder builder("U");
  EXPECT_EQ(offsetOfError({"0x11 1 1f"}, builder), 0);  // another reply's leftovers
  EXPECT_EQ(offsetOfError({"34 1 0"}, builder), 0);
  EXPECT_EQ(offsetOfError({title, "0x11 1"}, builder), 7);
  EXPECT_EQ(offsetOfError({title, "0x12 1 1f 1f 1f"}, builder), 7);
  EXPECT_EQ(offsetOfError({title, "I"}, builder), 7);
}

TEST(Layers, GetTheirOwnDataBackButForTheFirst) {
  Section section;
  section.layers = {{1, 3, "NEXT", "", 2, 0}, {2, 3, "LAST", "", 3, 0}, {3, 3, "LAST", "", 3, 0}};
  const auto own = ownLayers(section);
  ASSERT_EQ(own.size(), 3u);
  EXPECT_FALSE(own[0].has_value());
  EXPECT_EQ(own[1]->material, "NEXT");
  EXPECT_EQ(own[1]->layerNumber, 2u);
  EXPECT_EQ(own[2]->material, "LAST");
  section.layers.resize(1);
  EXPECT_EQ(ownLayers(section)[0]->material, "NEXT");
}

}  // namespace
}  // namespace odbs::client::test
