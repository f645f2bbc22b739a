// SPDX-License-Identifier: BSD-3-Clause
// Which section point is an element's top or bottom: the last and the first point of its section
// category.
#pragma once

#include <odb_API.h>

#include <map>
#include <string>
#include <vector>

namespace odbs {

// The section point chosen for each element of an instance, looked up by label. Built per instance
// on first use and kept while this object lives.
class SectionPointChoice {
 public:
  // `top`: the last point of the category, else the first.
  explicit SectionPointChoice(bool top) : top_(top) {}

  // A table for the elements of `instance`; valid until the next call.
  class Table {
   public:
    // The chosen point's number, or -1 for an element that is unknown or has no section points.
    int pointOf(int elementLabel) const;

   private:
    friend class SectionPointChoice;
    int firstLabel_ = 0;
    std::vector<int> byLabel_;   // dense over the labels, where their range allows
    std::map<int, int> sparse_;  // otherwise
  };
  const Table& of(const odb_Instance& instance);

 private:
  bool top_;
  std::map<std::string, Table> tables_;
};

}  // namespace odbs
