// SPDX-License-Identifier: BSD-3-Clause
// The local systems that a print file names beside values at integration points.
//
// Source: CalculiX CrunchiX User's Manual, keyword *EL PRINT (parameter GLOBAL) and the shell
// elements. What a shell without an orientation has was found by solving decks with GLOBAL=YES and
// GLOBAL=NO: axes of the middle of the element, one normal to it, one the projection of global x
// (of global z where x is within 0.1 degrees of the normal).
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "importer/deck/deck.h"
#include "importer/deck/vectors.h"

namespace odbs::importer {

class LocalSystems {
 public:
  // `mesh` must outlive this.
  explicit LocalSystems(const Scope& mesh);

  // The axes that `name` stands for in element `at` of a block: those of a shell without an
  // orientation, or of a rectangular *ORIENTATION of a solid. Nothing for other systems, which
  // differ from point to point or are projected on shells.
  std::optional<Axes> axesOf(const std::string& name, const ElementBlock& block,
                             std::size_t at) const;

 private:
  std::optional<Axes> shellAxes(const ElementBlock& block, std::size_t at) const;

  const Scope& mesh_;
  std::unordered_map<std::int32_t, std::size_t> nodes_;  // of shells, by label
};

// The quaternion (x, y, z, scalar part) whose rotation matrix has the axes as rows.
std::array<float, 4> quaternionOf(const Axes& axes);

}  // namespace odbs::importer
