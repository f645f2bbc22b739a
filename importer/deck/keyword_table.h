// SPDX-License-Identifier: BSD-3-Clause
// The keywords of the deck's syntax and the parameters of those that are read. Both may be
// abbreviated to any beginning that fits no other name. The table has the keywords that are not
// read too, or a beginning of theirs would be taken for another keyword. "Squeezed" names are in
// upper case and without blanks.
#pragma once

#include <string>
#include <string_view>

namespace odbs::importer {

// What a spelling, squeezed, stands for.
struct Spelling {
  std::string name;     // in full, squeezed; empty: unknown, or ambiguous
  std::string text;     // in full, with blanks
  std::string choices;  // of an ambiguous spelling: two of the names that begin with it, "A or B"
};

// The keyword that `spelled` (without the asterisk) is or begins. Of several the one that all the
// others begin with is meant: ELEM is ELEMENT, not ELEMENT OUTPUT.
Spelling keywordSpelled(std::string_view spelled);

// True when the parameters of the keyword of that name are listed.
bool hasParameterList(std::string_view keyword);
// The same for a parameter of a keyword.
Spelling parameterSpelled(std::string_view keyword, std::string_view spelled);

std::string squeezed(std::string_view text);

}  // namespace odbs::importer
