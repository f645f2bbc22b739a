// SPDX-License-Identifier: BSD-3-Clause
// What the texts of section categories and section points mean: the section that a category leads
// to, the shortened name of a section that is sent, the layer of a section point.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace odbs {

// `name` without a leading "Section-", unless nothing would be left of it. A view into `name`.
std::string_view sentSectionName(std::string_view name);

// True when `name` is the section's full name or the one that is sent.
bool isSectionNamed(std::string_view section, std::string_view name);

// The full section name that a category such as "solid < elset = PLATE >" means:
// "Section-PLATE", or "PLATE" alone when the category name starts with "connector". Nothing when
// the category names no element set.
std::optional<std::string> sectionNameOfCategory(std::string_view categoryName);

// The layer that a section point's description names, such as "fraction = 1.0, Layer = 2"; 0 when
// it names none of 1 .. nLayers.
int layerOfPoint(std::string_view description, int nLayers);

}  // namespace odbs
