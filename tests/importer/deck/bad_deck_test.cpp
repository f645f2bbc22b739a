// SPDX-License-Identifier: BSD-3-Clause
// Broken, absurd and malicious decks: each ends in one message with file and line, quickly.
#include <random>

#include "tests/importer/deck_files.h"

namespace odbs::importer {
namespace {

struct BadDeck {
  const char* text;      // after the eleven lines of the cube
  const char* expected;  // beginning of the message, after "model.inp:"
};

void PrintTo(const BadDeck& bad, std::ostream* out) {
  *out << bad.expected;
}

const BadDeck kBadDecks[] = {
    {"*NODE\n1x,0,0\n", "13: \"1x\" is not a whole number"},
    {"*NODE\n-1,0,0\n", "13: label -1 is not between"},
    {"*NODE\n99999999999,0,0\n", "13: label 99999999999 is not between"},
    {"*NODE\n9,0,zero\n", "13: \"zero\" is not a number"},
    {"*NODE\n9,nan,0\n", "13: a coordinate is not a finite number"},
    {"*NODE\n9,1e999,0\n", "13: \"1e999\" is not a number"},
    {"*NODE\n\x1B[31m\xFF,0\n", "13: \"\\x1b[31m\\xff\" is not a whole number"},
    {"*PARAMETER\na = b\n", "13: parameter a cannot be evaluated: there is no parameter b"},
    {"*PARAMETER\na = 2*(1\n", "13: parameter a cannot be evaluated: it ends too early"},
    {"*PARAMETER\na = 1/0\n", "13: parameter a cannot be evaluated: it divides by 0"},
    {"*PARAMETER\na\n", "13: *PARAMETER needs NAME = VALUE"},
    {"*ELEMENT, TYPE=U1, ELSET=U\n5,1\n*ELCOPY, OLD SET=U, ELEMENT SHIFT=1, SHIFT NODES=1, "
     "REFLECT\n",
     "14: elements of type U1 cannot be reflected"},
    {"*ELEMENT\n2,1,2\n", "12: *ELEMENT without the parameter TYPE"},
    {"*ELEMENT, TYPE=C3D8\n2,1,2,3,4,5,6,7\n", "13: element 2 of type C3D8 has 7 of 8 nodes"},
    {"*ELEMENT, TYPE=T3D2\n2,1,9\n", "13: element 2 has the node 9, which is not defined"},
    {"*ELEMENT, TYPE=T3D2\n2,1,\n3,,2\n", "14: a node of element 2 is missing"},
    {"*ELEMENT, TYPE=T3D2\n2,1,-2\n", "13: label -2 is not between"},
    {"*ELEMENT, TYPE=T3D2\n1,1,2\n", "13: an element is defined a second time; the first is at"},
    {"*ELEMENT, TYPE=U1\n5,\n", "13: element 5 of type U1 has no nodes"},
    {"*NSET\n1\n", "12: *NSET without the parameter NSET"},
    {"*NSET, NSET=A\nB\n", "13: there is no set B so far"},
    {"*NSET, NSET=A, GENERATE\n5,1,1\n", "13: the last label of GENERATE is below"},
    {"*NSET, NSET=A, GENERATE\n1,5,-1\n", "13: the increment of GENERATE is negative"},
    {"*SURFACE, NAME=S\nNONE, S1\n", "13: surface S names the set NONE, which is not"},
    {"*SURFACE, TYPE=BLOB, NAME=S\n", "12: unknown surface type BLOB"},
    {"*SURFACE, TYPE=SEGMENTS, NAME=S\nLINE,1,1\n", "13: the profile must begin with one START"},
    {"*SURFACE, TYPE=SEGMENTS, NAME=S\nSTART,1,1\nHOP,2,2\n", "14: \"HOP\" is no segment"},
    {"*SOLID SECTION, ELSET=X, MATERIAL=M\n", "12: the section's element set X is not defined"},
    {"*SOLID SECTION, ELSET=EALL, MATERIAL=M\n", "12: the section's material M is not defined"},
    {"*SHELL SECTION, ELSET=EALL, COMPOSITE\n", "12: a composite section without layers"},
    {"*SHELL SECTION, ELSET=EALL\n1., -3\n", "13: a section cannot have -3 section points"},
    {"*ELASTIC\n1,2\n", "12: *ELASTIC without a *MATERIAL before it"},
    {"*MATERIAL, NAME=M\n*ELASTIC, TYPE=ODD\n1\n", "13: unknown type of elasticity ODD"},
    {"*RIGID BODY, ELSET=EALL\n", "12: *RIGID BODY without the parameter REFNODE"},
    {"*RIGID BODY, REF NODE=99\n", "12: the rigid body names the node 99"},
    {"*RIGID BODY, REF NODE=1, ELSET=X\n", "12: the rigid body names the set X"},
    {"*INSTANCE, NAME=A, PART=B\n", "12: *INSTANCE outside of *ASSEMBLY"},
    {"*ASSEMBLY, NAME=A\n", "12: there are nodes or elements outside of parts"},
    {"*PART, NAME=P\n*PART, NAME=Q\n", "13: *PART inside of another block"},
    {"*PART, NAME=P\n", "12: *PART without *END PART"},
    {"*STEP\n*STEP\n", "13: *STEP inside of a step"},
    {"*INCLUDE\n", "12: *INCLUDE without the parameter INPUT"},
    {"*INCLUDE, INPUT=none.inp\n", "12: included file none.inp does not exist"},
    {"*INCLUDE, INPUT=model.inp\n", "12: "},
    {"*INCLUDE, INPUT=.\n", "12: "},
    {"*NGEN\n1,2000000000\n", "13: the deck generates more than"},
    {"*NGEN\n1,8,3\n", "13: the increment does not lead"},
    {"*NGEN\n1,30,1\n", "13: node 30 is not defined"},
    {"*ELGEN\n1,2000000000,1,1\n", "13: the deck generates more than"},
    {"*ELGEN\n1,100000,1,1,100000,1,1\n", "13: the deck generates more than"},
    {"*ELGEN\n1,2,-5,1\n", "13: a generated element would have the node"},
    {"*NFILL\nNALL,NALL,999999999,1\n", "13: *NFILL cannot make"},
    {"*NCOPY, OLD SET=NALL, CHANGE NUMBER=5\n1\n", "12: *NCOPY needs SHIFT"},
    {"*,X=1\n", "12: a keyword line without a keyword"},
};

class BadDecks : public DeckTest, public ::testing::WithParamInterface<BadDeck> {};

TEST_P(BadDecks, AreRefusedAtTheirLine) {
  const std::string expected = std::string("model.inp:") + GetParam().expected;
  EXPECT_EQ(expected, refusal(kCube + GetParam().text).substr(0, expected.size()))
      << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Table, BadDecks, ::testing::ValuesIn(kBadDecks));

TEST_F(DeckTest, WhatIsNoDeckIsRefused) {
  EXPECT_EQ("model.inp:2: holds a NUL byte: this is not a text file",
            refusal(std::string("*NODE\n1,\0,0\n", 13)));
  EXPECT_NE(std::string::npos, refusal("").find("no keyword line"));
  EXPECT_NE(std::string::npos, refusal("just words\n").find("no keyword line"));
  EXPECT_NE(std::string::npos, refusal("*HEADING\n").find("defines no nodes"));
  EXPECT_EQ("model.inp:2: a line of 5000000 characters is too long",
            refusal("*NODE\n" + std::string(5000000, '1') + "\n"));
  EXPECT_THROW(readDeck(files_.file("absent.inp")), DeckError);
  EXPECT_THROW(readDeck(files_.file(".")), DeckError);
  EXPECT_THROW(readDeck(files_.file(std::string(4000, 'x'))), DeckError);
}

TEST_F(DeckTest, PartsWithoutInstancesAndUnknownPartsAreRefused) {
  const BadDeck rows[] = {// after a part and the start of the assembly, five lines
                          {"*END ASSEMBLY\n", "6: the deck has parts but no *INSTANCE"},
                          {"*INSTANCE, NAME=I, PART=Q\n", "6: there is no part Q"},
                          {"*INSTANCE, NAME=I, PART=P\n1,2,3,4,5\n",
                           "7: the rotation of an instance needs seven numbers"},
                          {"*INSTANCE, NAME=I, PART=P\n1,2,3,1,2,3,90\n",
                           "7: the two points of a rotation axis are the same"},
                          {"*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n*NSET, NSET=N\nJ.1\n",
                           "9: there is no instance J"},
                          {"*INSTANCE, NAME=I, PART=P\n*NODE\n2\n*END INSTANCE\n*END ASSEMBLY\n",
                           "6: instance I has nodes of its own, but its part has nodes too"},
                          {"*INSTANCE, NAME=I, PART=P\n*END INSTANCE\n*INSTANCE, NAME=I, PART=P\n",
                           "8: instance I is defined twice"}};
  const std::string part = "*PART, NAME=P\n*NODE\n1\n*END PART\n*ASSEMBLY, NAME=A\n";
  for (const BadDeck& row : rows) {
    EXPECT_EQ(std::string("model.inp:") + row.expected, refusal(part + row.text));
  }
}

TEST_F(DeckTest, IncludesInACircleAndIncludeBombsEnd) {
  files_.write("a.inc", "*INCLUDE, INPUT=b.inc\n");
  files_.write("b.inc", "*INCLUDE, INPUT=a.inc\n");
  EXPECT_NE(std::string::npos, refusal("*INCLUDE, INPUT=a.inc\n").find("b.inc:1: "));
  for (int i = 0; i < 12; ++i) {
    std::string text;
    for (int k = 0; k < 10; ++k) text += "*INCLUDE, INPUT=l" + std::to_string(i + 1) + ".inc\n";
    files_.write("l" + std::to_string(i) + ".inc", text);
  }
  files_.write("l12.inc", "** end\n");
  EXPECT_NE(std::string::npos, refusal("*INCLUDE, INPUT=l0.inc\n").find("includes too many files"));
}

TEST_F(DeckTest, SetsThatDoubleEachOtherStaySmall) {
  std::string text = kCube + "*NSET, NSET=S0\n1,3,5\n";
  for (int i = 1; i < 200; ++i) {
    const std::string last = "S" + std::to_string(i - 1);
    text += "*NSET, NSET=S" + std::to_string(i) + "\n" + last + "," + last + "," + last + "\n";
  }
  EXPECT_EQ((std::vector<std::int32_t>{1, 3, 5}), nodeSet(read(text), "S199"));
}

// Whatever happens to a deck's bytes, reading it returns or throws DeckError.
TEST_F(DeckTest, DamagedDecksNeverDoMoreThanFail) {
  const std::string whole =
      kCube +
      "*NSET, NSET=A, GENERATE\n1,8,2\n*SURFACE, NAME=S\nEALL,S1\n*MATERIAL, NAME=M\n*ELASTIC\n"
      "210000.,.3\n*SOLID SECTION, ELSET=EALL, MATERIAL=M\n*NGEN, NSET=B\n1,2,1\n"
      "*ELGEN\n1,1,1,1\n*SHELL SECTION, ELSET=EALL, COMPOSITE\n1,3,M,45\n"
      "*STEP, NLGEOM\nwords\n*STATIC\n.1,1.\n*CLOAD\nA,1,1.\n*END STEP\n";
  std::mt19937 random(20260101);
  const auto pick = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
  const std::string bytes = "*,,=\n\n\"-+.0199999eE NST\t\r";
  int refused = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = whole;
    for (std::size_t n = pick(4) + 1; n > 0; --n) {
      const std::size_t at = pick(text.size());
      switch (pick(4)) {
        case 0:
          text[at] = bytes[pick(bytes.size())];
          break;
        case 1:
          text.insert(at, 1, bytes[pick(bytes.size())]);
          break;
        case 2:
          text.erase(at, pick(20) + 1);
          break;
        default:
          text.insert(at, text.substr(pick(text.size()), pick(60)));
      }
    }
    try {
      read(text);
    } catch (const DeckError&) {
      ++refused;
    }
  }
  EXPECT_GT(refused, 300);
  EXPECT_LT(refused, 3000);
}

}  // namespace
}  // namespace odbs::importer
