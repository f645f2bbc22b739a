// SPDX-License-Identifier: BSD-3-Clause
// Texts of unknown origin, made safe to print: names in databases and lines of damaged files must
// not reach a terminal as control characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace odbs {

// `text` with control characters as \n, \t, \xNN and bytes that are not UTF-8 as \xNN.
std::string printable(std::string_view text);

// The length of the UTF-8 sequence at text[at], or 0 when there is none of several bytes.
std::size_t utf8Length(std::string_view text, std::size_t at);

// Two lower-case hexadecimal digits.
std::string hexByte(unsigned char byte);

}  // namespace odbs
