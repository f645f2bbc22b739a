// SPDX-License-Identifier: BSD-3-Clause
// The reader of .frd files on blocks of each format, and on files that break it.
#include "importer/results/frd_index.h"

#include <gtest/gtest.h>

#include <sstream>

#include "tests/importer/results/result_text.h"

namespace odbs::importer {
namespace {

using Block = FrdReader::Block;
using Doubles = std::vector<double>;
using Labels = std::vector<std::int32_t>;

// The message of the error that reading all of `bytes` ends with; empty when there is none.
std::string errorOf(const std::string& bytes) {
  const TemporaryFile file(bytes);
  try {
    FrdReader reader(file.path());
    while (reader.next() != Block::end) {
    }
  } catch (const ResultFileError& error) {
    const std::string text = error.what();
    return text.substr(text.find(file.name()) + file.name().size());
  }
  return {};
}

const std::string kDisp = field("DISP", {"D1", "D2", "D3"}, true);

// The blocks of a file, one a line: "nodes", "elements" with the types, or name, value, analysis
// and parameters of a result; then "; label: numbers" of each entry.
std::string blocksOf(const std::string& bytes) {
  const TemporaryFile file(bytes);
  FrdReader reader(file.path());
  std::ostringstream text;
  const auto rows = [&](const Labels& labels, const auto& numbers, std::size_t width) {
    for (std::size_t i = 0; i < labels.size(); ++i) {
      text << "; " << labels[i] << ':';
      for (std::size_t k = 0; k < width; ++k) text << ' ' << numbers[i * width + k];
    }
    text << '\n';
  };
  for (Block block = reader.next(); block != Block::end; block = reader.next()) {
    const FrdElements& elements = reader.elements();
    const FrdResult& result = reader.result();
    const FrdParameters& p = result.parameters;
    if (block == Block::nodes) {
      text << "nodes";
      rows(reader.nodes().labels, reader.nodes().coordinates, 3);
    } else if (block == Block::elements) {
      text << "elements of type " << int{elements.types[0]};
      rows(elements.labels, elements.nodes, elements.nodes.size() / elements.labels.size());
    } else {
      text << result.name << ' ' << result.value << ' ' << static_cast<int>(result.analysis)
           << result.analysisName << ' ' << result.number << " step " << p.step << ' '
           << p.increment << " mode " << p.mode << ' ' << p.nodalDiameter << ' '
           << p.generalizedMass << ' ' << p.generalizedStiffness;
      rows(result.labels, result.values, static_cast<std::size_t>(result.nStored));
    }
  }
  return text.str() + (reader.complete() ? "end" : "cut");
}

TEST(FrdReader, ReadsBlocksOfEachFormat) {
  const std::string none = " step 0 0 mode 0 0 0 0";
  std::string binaryElements = blockHead("3", 1, 2);  // announces fewer than there are
  for (const int label : {1, 2}) {
    binaryElements +=
        bytes32(label) + bytes32(11) + bytes32(0) + bytes32(1) + bytes32(1) + bytes32(2);
  }
  std::vector<std::string> many;
  for (int i = 1; i <= 8; ++i) many.push_back("SDV" + std::to_string(i));
  const std::string six =
      " 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00 5.00000E+00 6.00000E+00\r\n -2";
  const std::string two = " 7.00000E+00 8.00000E+00\r\n -3\r\n 9999\r\n";
  const std::string row = " -1         1 1.00000E+00 2.00000E+00 3.00000E+00\n";
  const struct {
    std::string bytes, blocks;
  } cases[] = {
      {"    1C\n    1UPGM               CalculiX\n" + blockHead("2", 2, 0) +
           " -1    7 1.00000E+00-2.50000E+00 0.00000E+00\n"
           " -1    8 3.00000E+00 4.00000E+00-5.00000E-01\n -3\n" +
           blockHead("3", 1, 0) + " -1    3   12    2    1\n -2    7    8    9\n -3\n" +
           blockHead("2", 1, 1) + " -1 123456789 1.00000E+00-2.50000E+00 0.00000E+00\n -3\n" +
           blockHead("3", 1, 1) + " -1       251    6    0STEEL\n" +
           " -2         1         2         3         4         5         6         7         8"
           "         9        10\n -3\n 9999\n",
       "nodes; 7: 1 -2.5 0; 8: 3 4 -0.5\nelements of type 12; 3: 7 8 9\n"
       "nodes; 123456789: 1 -2.5 0\nelements of type 6; 251: 1 2 3 4 5 6 7 8 9 10\nend"},
      // Parameters belong to one block alone.
      {"    1PSTEP                        12           3           2          \n"
       "    1PGM                2.000000E+00\n    1PGK                8.000000E+00\n"
       "    1PHID                          4\n    1PMODE                         5\n" +
           resultHead(2.5, 1, 2, 7, "MODAL", 1) + kDisp + row + " -3\n" +
           resultHead(3.5, 1, 0, 8, "", 1) + kDisp + row + " -3\n 9999\n",
       "DISP 2.5 2MODAL 7 step 2 3 mode 5 4 2 8; 1: 1 2 3\nDISP 3.5 0 8" + none +
           "; 1: 1 2 3\nend"},
      // Values that fill their columns, and shift them: exponents of three digits.
      {resultHead(1, 3, 0, 1, "", 1) + kDisp +
           " -1         1-1.00000E-05-2.00000E+15-3.00000E+00\n"
           " -1         2 1.50000-103-2.50000+102 3.00000D+00\n"
           " -1         3         nan         inf        -inf\n -3\n",
       "DISP 1 0 1" + none +
           "; 1: -1e-05 -2e+15 -3; 2: 1.5e-103 -2.5e+102 3; 3: nan inf -inf\ncut"},
      {resultHead(1, 2, 0, 1, "", 1) + kDisp +
           " -1         1-1.00000E-103-2.00000E+00 3.00000E+00\n"
           " -1         2 1.00000E-05-2.00000E-112 3.00000E+01\n -3\n 9999\n",
       "DISP 1 0 1" + none + "; 1: -1e-103 -2 3; 2: 1e-05 -2e-112 30\nend"},
      // More than six components.
      {resultHead(1, 1, 0, 1, "", 0) + field("SDV", many, false) + " -1    9" + six + "     " + two,
       "SDV 1 0 1" + none + "; 9: 1 2 3 4 5 6 7 8\nend"},
      {resultHead(1, 1, 0, 1, "", 1) + field("SDV", many, false) + " -1         9" + six +
           "          " + two,
       "SDV 1 0 1" + none + "; 9: 1 2 3 4 5 6 7 8\nend"},
      {blockHead("2", 1, 3) + bytes32(1) + bytesDouble(0.1) + bytesDouble(-0.2) +
           bytesDouble(3e-200) + binaryElements + resultHead(1, 2, 0, 1, "", 2) + kDisp +
           bytes32(1) + bytesFloat(1.5f) + bytesFloat(2) + bytesFloat(10.f) + bytes32(2) +
           bytesFloat(0) + bytesFloat(-0.25f) + bytesFloat(4) + resultHead(1, 1, 0, 1, "", 3) +
           field("NDTEMP", {"T"}, false) + bytes32(10) + bytesDouble(0.3) + " 9999\n",
       "nodes; 1: 0.1 -0.2 3e-200\nelements of type 11; 1: 1 2; 2: 1 2\nDISP 1 0 1" + none +
           "; 1: 1.5 2 10; 2: 0 -0.25 4\nNDTEMP 1 0 1" + none + "; 10: 0.3\nend"},
      // Empty blocks that announce all nodes.
      {resultHead(1, 84, 1, 2, "", 1) + kDisp + " -3\n 9999\n", "DISP 1 1 2" + none + "\nend"},
      {resultHead(1, 84, 1, 2, "", 2) + kDisp + " 9999\n", "DISP 1 1 2" + none + "\nend"},
  };
  for (const auto& c : cases) EXPECT_EQ(blocksOf(c.bytes), c.blocks);
}

TEST(FrdReader, SkimsBlocksAndReadsThemAgainInAnyOrder) {
  const TemporaryFile file("    1PSTEP                         1           4           1\n" +
                           resultHead(1, 1, 0, 1, "", 1) + kDisp +
                           " -1         1 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n" +
                           resultHead(2, 2, 0, 2, "", 2) + kDisp + bytes32(1) + bytesFloat(4) +
                           bytesFloat(5) + bytesFloat(6) + bytes32(2) + bytesFloat(7) +
                           bytesFloat(8) + bytesFloat(9) + resultHead(3, 1, 0, 3, "", 1) + kDisp +
                           " -1         1 7.00000E+00 8.00000X+00 9.00000E+00\n -3\n 9999\n");
  FrdReader reader(file.path());
  std::vector<ResultPlace> places;
  while (reader.skim() == Block::result) {
    EXPECT_EQ(reader.result().name, "DISP");
    EXPECT_TRUE(reader.result().values.empty());
    places.push_back(reader.place());
  }
  EXPECT_TRUE(reader.complete());
  ASSERT_EQ(places.size(), 3u);
  ASSERT_EQ(reader.readAt(places[1]), Block::result);
  EXPECT_EQ(reader.result().value, 2);
  EXPECT_EQ(reader.result().values, (Doubles{4, 5, 6, 7, 8, 9}));
  ASSERT_EQ(reader.readAt(places[0]), Block::result);
  EXPECT_EQ(reader.result().values, (Doubles{1, 2, 3}));
  EXPECT_THROW(reader.readAt(places[2]), ResultFileError);
}

TEST(FrdIndex, KeepsTheFramesBeforeABlockThatTheFileBreaksOffIn) {
  const std::string mesh =
      blockHead("2", 1, 1) + " -1         1 0.00000E+00 0.00000E+00 0.00000E+00\n -3\n";
  const std::string row = " -1         1 1.00000E+00 2.00000E+00 3.00000E+00\n";
  const std::string first = resultHead(1, 1, 0, 1, "", 1) + kDisp + row + " -3\n";
  const std::string text = resultHead(2, 1, 0, 2, "", 1) + kDisp + row;
  const std::string binary = resultHead(2, 1, 0, 2, "", 2) + kDisp + bytes32(1) + bytesFloat(1);
  for (const std::string& second : {text, text.substr(0, 40), text.substr(0, 120), binary}) {
    const TemporaryFile file(mesh + first + second);
    FrdReader reader(file.path());
    const FrdIndex index = indexFrd(reader);
    ASSERT_EQ(index.frames.size(), 1u);
    EXPECT_NE(index.cut.find("the file ends here"), std::string::npos) << index.cut;
  }
  const TemporaryFile file(mesh + text);
  FrdReader reader(file.path());
  EXPECT_THROW(indexFrd(reader), ResultFileCut) << "nothing is left of it";
}

TEST(FrdReader, NamesFileLineAndReasonOfABrokenText) {
  const std::string head = resultHead(1, 1, 0, 1, "", 1);
  const struct {
    std::string text;
    const char* error;
  } cases[] = {
      {"", ": the file is empty"},
      {"*HEADING\n", ":1: a record of unknown kind: \"*HEADING\""},
      {"    1C\n" + head + " -5\n", ":3: a field name (-4) expected"},
      {head + kDisp + " -1         1 1.00000E+00 2.00000X+00 3.00000E+00\n -3\n",
       ":7: a value expected, found \"2.00000X+00\""},
      {head + kDisp + " -1         1 1.00000E+00 2.00000E+00\n -3\n",
       ":7: a value expected, found \"\""},
      {head + kDisp + " -1         1 1.00000E+00 2.00000E+00 3.00000E+00 4.00000E+00\n -3\n",
       ":7: more values than the field has components"},
      {head + kDisp + " -1         0 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n",
       ":7: a node label 0 is out of range"},
      {head + kDisp + " -1         1 1.00000E+00 2.00000E+00 3.00000E+00\n",
       ":7: the file ends inside a block (the file ends here)"},
      {resultHead(1, 2, 0, 1, "", 1) + kDisp +
           " -1         1 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n",
       ":8: the block announces 2 entries and holds 1 (the file ends here)"},
      {head + " -4  DISP     9999    1\n", ":2: a field of 9999 components (the file ends here)"},
      {resultHead(1, 1, 0, 1, "", 7), ":1: format number 7 (the file ends here)"},
      {blockHead("3", 1, 1) + " -1         1   13    0    1\n", ":2: element type 13 is unknown"},
      {blockHead("3", 1, 1) + " -1         1    1    0    1\n -1\n",
       ":3: a record of nodes (-2) expected"},
  };
  for (const auto& broken : cases) {
    const std::string error = errorOf(broken.text);
    EXPECT_EQ(error.substr(0, std::string(broken.error).size()), broken.error) << error;
  }
}

TEST(FrdReader, NamesByteOffsetAndReasonOfABrokenBinaryBlock) {
  const std::string head = resultHead(1, 2, 0, 1, "", 2) + field("T", {"T"}, false);
  const std::string row = bytes32(1) + bytesFloat(1);
  EXPECT_EQ(errorOf(head + row + bytes32(-5) + bytesFloat(1)),
            ": byte " + std::to_string(head.size() + 16) + ": node label -5 (the file ends here)");
  EXPECT_NE(errorOf(head + row).find("the file ends inside a block"), std::string::npos);
  const std::string huge = resultHead(1, 2000000000, 0, 1, "", 3) + field("T", {"T"}, false);
  EXPECT_NE(errorOf(huge + row).find("the file ends inside a block"), std::string::npos);
  EXPECT_NE(errorOf(blockHead("3", 1, 2) + bytes32(1) + bytes32(99) + bytes32(0) + bytes32(0))
                .find("element type 99 is unknown"),
            std::string::npos);
}

// Whatever is cut off or overwritten: an error or a shorter result, never a crash or a hang.
TEST(FrdReader, SurvivesEveryCutAndEveryFlippedByte) {
  const std::string whole =
      "    1C\n" + blockHead("2", 1, 3) + bytes32(1) + bytesDouble(0.1) + bytesDouble(-0.2) +
      bytesDouble(3) + blockHead("3", 1, 1) +
      " -1         1   11    0    1\n -2         1"
      "         2\n -3\n    1PSTEP                         1           4           1\n" +
      resultHead(1, 1, 0, 1, "", 1) + kDisp +
      " -1         1 1.00000E+00 2.00000E+00 3.00000E+00\n -3\n" + resultHead(1, 1, 0, 1, "", 2) +
      kDisp + bytes32(1) + bytesFloat(1) + bytesFloat(2) + bytesFloat(3) + " 9999\n";
  ASSERT_EQ(errorOf(whole), "");
  int nErrors = 0;
  for (std::size_t i = 0; i < whole.size(); ++i) {
    nErrors += errorOf(whole.substr(0, i)).empty() ? 0 : 1;
    for (const char c : {'\0', '9', '-', '\n', '\xff'}) {
      std::string damaged = whole;
      damaged[i] = c;
      nErrors += errorOf(damaged).empty() ? 0 : 1;
    }
  }
  EXPECT_GT(nErrors, static_cast<int>(whole.size()));
}

}  // namespace
}  // namespace odbs::importer
