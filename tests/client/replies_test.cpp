// SPDX-License-Identifier: BSD-3-Clause
// Whole replies of sets, catalogue, history, field values and nodal results, put together from
// records.
#include <gtest/gtest.h>

#include "base/bytes.h"
#include "client/catalogue.h"
#include "client/field_values.h"
#include "client/history.h"
#include "client/model_records.h"
#include "client/nodal_results.h"
#include "client/sets.h"
#include "tests/client/bytes.h"

namespace odbs::client::test {
namespace {

using Records = std::vector<Bytes>;
using Ints = std::vector<std::int32_t>;
using Reals = std::vector<float>;

// Feeds the records to a builder and returns what it builds.
template <typename Builder>
auto build(const Records& records, Builder builder = Builder()) {
  std::uint64_t offset = 0;
  for (const Bytes& record : records) {
    builder.add(recordOf(record.payload(), offset));
    offset += record.payload().size() + 2;
  }
  return builder.finish();
}

// The offset at which the builder finds the records malformed, or -1.
template <typename Builder>
std::int64_t offsetOfError(const Records& records, Builder builder = Builder()) {
  try {
    build(records, builder);
    return -1;
  } catch (const MalformedRecord& error) {
    return static_cast<std::int64_t>(error.offset());
  }
}

std::string f64(double value) {
  std::string bytes(8, '\0');
  putF64(reinterpret_cast<unsigned char*>(bytes.data()), value);
  return bytes;
}

TEST(Sets, OfOneInstanceAreJoinedFromTheirChunks) {
  const SetsReply reply = build<SetsBuilder>(
      {Bytes(1).text("T"), Bytes(2).u32(0), Bytes(5).text("N"), Bytes(8).u32(1).u32(2),
       Bytes(8).u32(3), Bytes(11), Bytes(11), Bytes(6).text("EMPTY"), Bytes(11), Bytes(7).text("S"),
       Bytes(10).u32(5).u32(1), Bytes(11)});
  EXPECT_EQ(reply.title, "T");
  ASSERT_EQ(reply.sets.size(), 3u);
  EXPECT_EQ(reply.sets[0].labels, (Ints{1, 2, 3}));
  EXPECT_EQ(reply.sets[1].kind, SetKind::kElements);
  EXPECT_TRUE(reply.sets[1].labels.empty());
  EXPECT_EQ(reply.sets[2].labels, (Ints{5}));
  EXPECT_EQ(reply.sets[2].faces, (Ints{1}));
}

TEST(Sets, OfSeveralInstancesSayWhoseTheyAre) {
  const SetsReply reply = build<SetsBuilder>(
      {Bytes(5).text("BOTH"), Bytes('H').text("A"), Bytes(8).u32(1), Bytes(11), Bytes('I'),
       Bytes('H').text("A"), Bytes(5).text("OWN"), Bytes(8).u32(2), Bytes(11), Bytes('I'),
       Bytes('I'), Bytes('|').text("Error in Sets definition"), Bytes(6).text("E"), Bytes(11)});
  ASSERT_EQ(reply.sets.size(), 3u);
  EXPECT_EQ(reply.sets[0].instance, "A");
  EXPECT_TRUE(reply.sets[0].isOfAssembly);
  EXPECT_EQ(reply.sets[1].instance, "A");
  EXPECT_FALSE(reply.sets[1].isOfAssembly);
  EXPECT_EQ(reply.sets[2].instance, "");
  EXPECT_EQ(reply.messages.size(), 1u);
}

TEST(Sets, OutOfPlaceAreRefused) {
  EXPECT_EQ(offsetOfError<SetsBuilder>({Bytes(8).u32(1)}), 0);
  EXPECT_EQ(offsetOfError<SetsBuilder>({Bytes(5).text("N"), Bytes(9).u32(1)}), 8);
  EXPECT_EQ(offsetOfError<SetsBuilder>({Bytes(5).text("N"), Bytes(6).text("E")}), 8);
  EXPECT_EQ(offsetOfError<SetsBuilder>({Bytes(5).text("N")}), 0);
}

Records catalogueEntry(std::uint32_t step, const std::string& field, std::uint32_t frame) {
  return {Bytes(12).u32(step).raw(f64(1)).text(std::string("Step-") +
                                               static_cast<char>('0' + step) + "\x01" + "d"),
          Bytes(13).text("*STATIC"), Bytes(14).text(field).text("text"),
          Bytes(16).text(field + "1").text(field + "2"),
          Bytes(15)
              .u32(frame)
              .u32(0)
              .u32(0)
              .raw(f64(frame))
              .raw(f64(0))
              .u32(0)
              .u32(8)
              .u32(4)
              .u32(2)
              .u32(0)
              .text("")};
}

TEST(Catalogue, KeepsEachStepAndFieldOnce) {
  Records records{Bytes(1).text("T"), Bytes(2).u32(0)};
  for (std::uint32_t step = 1; step <= 2; ++step) {
    for (std::uint32_t frame = 0; frame < 3; ++frame) {
      for (const char* field : {"S", "E"}) {
        for (const Bytes& record : catalogueEntry(step, field, frame)) records.push_back(record);
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
      {Bytes('2').u32(1).u32(1).raw(f64(0)).text("Step-1").text(""),
       Bytes('4').text("Node 1").text("").u32(1).u32(1).u32(0).u32(0),
       Bytes('6').text("U1").text("").u32(2).u32(0), Bytes('8').f32(0), Bytes('8').f32(5),
       Bytes('8').f32(1), Bytes('8').f32(6), Bytes('6').text("U2").text("").u32(2).u32(1),
       Bytes('8').f32(10), Bytes('8').f32(7), Bytes('8').f32(-7)});
  const std::vector<HistoryOutput>& outputs = history.steps.at(0).regions.at(0).outputs;
  ASSERT_EQ(outputs.size(), 2u);
  EXPECT_EQ(outputs[0].times, (Reals{0, 1}));
  EXPECT_EQ(outputs[0].values, (Reals{5, 6}));
  EXPECT_TRUE(outputs[0].conjugates.empty());
  EXPECT_EQ(outputs[1].times, (Reals{10}));
  EXPECT_EQ(outputs[1].conjugates, (Reals{-7}));
}

TEST(History, OutOfPlaceIsRefused) {
  const Bytes step = Bytes('2').u32(1).u32(1).raw(f64(0)).text("S").text("");
  const Bytes region = Bytes('4').text("N").text("").u32(1).u32(1).u32(0).u32(0);
  const Bytes output = Bytes('6').text("U").text("").u32(2).u32(0);
  EXPECT_EQ(offsetOfError<HistoryBuilder>({region}), 0);
  EXPECT_EQ(offsetOfError<HistoryBuilder>({step, output}), 28);
  EXPECT_EQ(offsetOfError<HistoryBuilder>({step, Bytes('8').f32(1)}), 28);
  EXPECT_NE(offsetOfError<HistoryBuilder>({step, region, output, Bytes('8').f32(1)}), -1);
  EXPECT_NE(offsetOfError<HistoryBuilder>({step, region, output, Bytes('8').f32(1), output}), -1);
}

TEST(FieldValues, GetTheirLabelsBack) {
  const FieldValues values = build<FieldValuesBuilder>(
      {Bytes(1).text("T"), Bytes(2).u32(0), Bytes('%').u32(16), Bytes('H').text("A"),
       Bytes(0x1E).raw("C3D8    ").i32(-1).i32(-1), Bytes(0x1F).u32(1).i32(-1).u32(1).f32(1).f32(2),
       Bytes(0x17).u32(2).f32(3).f32(4), Bytes(0x20).u32(2).u32(1).f32(5).f32(6), Bytes('%').u32(1),
       Bytes(0x1E).raw("C3D4    ").i32(2).i32(5),
       Bytes('\'').f32(1).f32(0).f32(0).f32(0).f32(1).f32(0), Bytes(0x21).u32(9).u32(3).f32(7),
       Bytes(0x16).u32(4).f32(8), Bytes(0x15).f32(9), Bytes(0x18).u32(5).u32(6).f32(10),
       Bytes(0x22).u32(8).f32(11)});
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
  const Bytes block = Bytes(0x1E).raw("C3D8    ").i32(-1).i32(-1);
  EXPECT_EQ(offsetOfError<FieldValuesBuilder>({Bytes(0x15).f32(1)}), 0);
  EXPECT_EQ(offsetOfError<FieldValuesBuilder>({block, Bytes(0x15).f32(1), Bytes(0x15)}), 26);
  EXPECT_EQ(offsetOfError<FieldValuesBuilder>({block, Bytes(3).u32(1)}), 19);
}

TEST(NodalResults, AreBlocksByInstanceAndQuantity) {
  const NodalResults results =
      build({Bytes(1).text("T"), Bytes(2).u32(1), Bytes('H').text("A"), Bytes(0x11).u32(1).f32(5),
             Bytes(0x11).u32(2).f32(6), Bytes(0x12).u32(3).f32(7).f32(-7), Bytes('H').text("B"),
             Bytes(0x12).u32(1).f32(8).f32(9).f32(-8).f32(-9), Bytes('"').u32(4).u32(0),
             Bytes('H').text("A"), Bytes('"').u32(9).u32(0), Bytes('"').u32(2).u32(0),
             Bytes('"').u32(9).u32(0), Bytes(0x26).u32(1).f32(1), Bytes(0x39).u32(1).f32(2),
             Bytes(0x50).u32(1).f32(3).f32(4), Bytes('|').text("M")},
            NodalResultsBuilder("U"));
  const struct {
    const char *quantity, *instance;
    bool isComplex;
    std::size_t nComponents, firstValue, nValues, firstComponent, firstConjugate;
  } kBlocks[] = {{"U", "A", false, 1, 0, 2, 0, 0},   {"U", "A", true, 1, 2, 1, 2, 0},
                 {"U", "B", true, 2, 3, 1, 3, 1},    {"UR1", "A", false, 1, 4, 1, 5, 3},
                 {"UR2", "A", false, 1, 5, 1, 6, 3}, {"UR3", "A", true, 1, 6, 1, 7, 3}};
  ASSERT_EQ(results.blocks.size(), std::size(kBlocks));
  for (std::size_t i = 0; i < std::size(kBlocks); ++i) {
    const NodalBlock& block = results.blocks[i];
    const auto& row = kBlocks[i];
    EXPECT_EQ(block.quantity, row.quantity) << i;
    EXPECT_EQ(block.instance, row.instance) << i;
    EXPECT_EQ(block.isComplex, row.isComplex) << i;
    EXPECT_EQ(block.nComponents, row.nComponents) << i;
    EXPECT_EQ(block.firstValue, row.firstValue) << i;
    EXPECT_EQ(block.nValues, row.nValues) << i;
    EXPECT_EQ(block.firstComponent, row.firstComponent) << i;
    EXPECT_EQ(block.firstConjugate, row.firstConjugate) << i;
  }
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
  const Bytes title = Bytes(1).text("");
  const NodalResultsBuilder builder("U");
  EXPECT_EQ(offsetOfError({Bytes(0x11).u32(1).f32(1)}, builder), 0);  // another reply's leftovers
  EXPECT_EQ(offsetOfError({Bytes('"').u32(1).u32(0)}, builder), 0);
  EXPECT_EQ(offsetOfError({title, Bytes(0x11).u32(1)}, builder), 7);
  EXPECT_EQ(offsetOfError({title, Bytes(0x12).u32(1).f32(1).f32(1).f32(1)}, builder), 7);
  EXPECT_EQ(offsetOfError({title, Bytes('I')}, builder), 7);
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
