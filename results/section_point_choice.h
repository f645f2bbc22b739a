// SPDX-License-Identifier: BSD-3-Clause
// Which section point is an element's top or bottom: the last and the first point of its section
// category.
#pragma once

#include <odb_API.h>

#include <map>
#include <string>

#include "lookup/label_table.h"

namespace odbs {

// The section point chosen for each element of an instance, looked up by label. Built per instance
// on first use and kept while this object lives.
class SectionPointChoice {
 public:
  // `top`: the last point of the category, else the first.
  explicit SectionPointChoice(bool top) : top_(top) {}

  // The chosen point's number for each element of `instance`, -1 for an element that is unknown or
  // has no section points.
  const LabelTable& of(const odb_Instance& instance);

 private:
  bool top_;
  std::map<std::string, LabelTable> tables_;
};

}  // namespace odbs
