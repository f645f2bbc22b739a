// SPDX-License-Identifier: BSD-3-Clause
// Section numbering and the names that lead to sections.
#include "model/section_names.h"

#include <gtest/gtest.h>

namespace odbs::tests {
namespace {

using Names = std::vector<std::string>;

TEST(SectionNames, ThePrefixIsCutUnlessNothingIsLeft) {
  EXPECT_EQ("1-STEEL", sentSectionName("Section-1-STEEL"));
  EXPECT_EQ("Section-", sentSectionName("Section-"));
  EXPECT_EQ("section-A", sentSectionName("section-A"));
  EXPECT_EQ("", sentSectionName(""));
}

TEST(SectionNames, ACategoryLeadsToTheSectionOfItsElementSet) {
  EXPECT_EQ("Section-PLATE", sectionNameOfCategory("solid < elset = PLATE >"));
  EXPECT_EQ("PLATE", sectionNameOfCategory("connector < elset = PLATE >"));
  EXPECT_EQ("Section-PLATE", sectionNameOfCategory("shell connector < elset = PLATE >"));
  EXPECT_EQ("Section-MY", sectionNameOfCategory("< elset = MY PLATE >"));
  EXPECT_EQ("Section-PLATE>", sectionNameOfCategory("< elset = PLATE>"));
  EXPECT_EQ("Section-", sectionNameOfCategory("solid < elset = "));
  EXPECT_FALSE(sectionNameOfCategory("solid <elset = PLATE >"));
  EXPECT_FALSE(sectionNameOfCategory(""));
}

TEST(SectionNumbers, NamesThatAskForANumberGetIt) {
  const SectionNumbers expected = {{"P4", 4}, {"Section-P2", 2}, {"p17-web", 17}};
  EXPECT_EQ(expected, numberSections(Names{"Section-P2", "P4", "p17-web"}));
}

TEST(SectionNumbers, OthersAreNumberedFromOneInNameOrder) {
  const SectionNumbers expected = {{"Section-A", 1}, {"Section-B", 2}, {"Section-a", 3}};
  EXPECT_EQ(expected, numberSections(Names{"Section-a", "Section-B", "Section-A"}));
}

TEST(SectionNumbers, ATakenNumberGoesToTheFirstThatAsks) {
  const SectionNumbers expected = {{"A", 1}, {"Section-P2", 3}, {"Z", 4}, {"p2", 2}};
  EXPECT_EQ(expected, numberSections(Names{"p2", "Section-P2", "Z", "A"}));
}

TEST(SectionNumbers, NamesThatOnlyLookLikeNumbersGetFreeOnes) {
  // A lone letter, no digits, zero; the whole of "Section-" is a name of its own.
  const SectionNumbers expected = {
      {"P", 1}, {"P0", 2}, {"PLATE", 3}, {"Section-", 4}, {"Section-P", 5}};
  EXPECT_EQ(expected, numberSections(Names{"Section-P", "Section-", "PLATE", "P0", "P"}));
}

TEST(SectionNumbers, NegativeNumbersAreKept) {
  const SectionNumbers expected = {{"A", 1}, {"P-3", -3}};
  EXPECT_EQ(expected, numberSections(Names{"A", "P-3"}));
}

}  // namespace
}  // namespace odbs::tests
