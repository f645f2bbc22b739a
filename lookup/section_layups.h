// SPDX-License-Identifier: BSD-3-Clause
// Section layups: of each section category its layers, with their section points, material and ply
// name, and which layup each element has. Worked out once per open database, on first use.
#pragma once

#include <odb_API.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "lookup/label_table.h"

namespace odbs {

struct LayupLayer {
  int number = 0;           // from 1
  std::string material;     // empty: not known
  std::string ply;          // empty: unnamed
  std::vector<int> points;  // section-point numbers, innermost first
};

struct SectionLayup {
  std::string section;             // full name of the section that the category leads to
  std::string material;            // of a section without layers; empty otherwise
  std::vector<int> points;         // of the whole section, innermost first
  std::vector<LayupLayer> layers;  // those that have points, in the order of their points

  // True for the section's full name and for the shortened one that is sent.
  bool isNamed(std::string_view name) const;
};

class SectionLayups {
 public:
  explicit SectionLayups(odb_Odb& odb);

  // One for each section category, in repository order.
  const std::vector<SectionLayup>& all() const { return all_; }

  // For the elements of `instance` the index in all(), -1 for an element without a category. Built
  // on first use; valid as long as this object.
  const LabelTable& ofElements(const odb_Instance& instance);

 private:
  std::vector<SectionLayup> all_;
  std::map<std::string, int> byCategory_;
  std::map<std::string, LabelTable> byInstance_;
};

// The layups of an open database; valid until it is closed or reopened.
SectionLayups& sectionLayupsOf(odb_Odb& odb);

}  // namespace odbs
