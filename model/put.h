// SPDX-License-Identifier: BSD-3-Clause
// Puts the database library's own types into the record being built.
#pragma once

#include <odb_API.h>

#include <cstddef>
#include <string_view>

#include "server/core/record.h"

namespace odbs {

// The characters of `text`; valid as long as it.
inline std::string_view viewOf(const odb_String& text) {
  return {text.CStr(), static_cast<std::size_t>(text.Length())};
}

// A text: byte count and bytes, cut so that `reserved` bytes after it stay free.
inline void putString(const odb_String& text, std::size_t reserved = 0) {
  putText(viewOf(text), reserved);
}

// Bytes that the record being built can still take.
inline std::size_t recordRoom() {
  return kMaxPayload - recordLength();
}

}  // namespace odbs
