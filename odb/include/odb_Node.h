// SPDX-License-Identifier: BSD-3-Clause
// Nodes and sequences of them.
#pragma once

#include <odb_Sequences.h>
#include <odb_engine/record_sequence.h>
#include <odb_engine/tables.h>

#include <cstddef>

// One node of an instance, a part or the assembly. Label -1 and the origin when
// default-constructed.
class odb_Node {
 public:
  odb_Node() : table_(odbs::engine::emptyNodeTable()) {}
  odb_Node(const odbs::engine::NodeTable* table, int index) : table_(table), index_(index) {}

  // The user's number of the node, unique within its instance; not an index.
  int label() const { return table_->labels[index_]; }
  // Three coordinates, also in planar models (the third is 0). An instance's nodes are transformed:
  // rotated, then translated. The array belongs to the database.
  const float* coordinates() const {
    return table_->coordinates + 3 * static_cast<std::ptrdiff_t>(index_);
  }
  // The same as a new list, of 2 numbers in planar and axisymmetric models, else 3.
  odb_SequenceFloat coordinate() const;
  // Index in the nodes() of its instance, part or assembly, counted from 0.
  int index() const { return index_; }
  // Name of the instance (or part) that has the node; empty for a node of the assembly.
  const odb_String& instanceName() const;

  bool operator==(const odb_Node& other) const {
    return table_ == other.table_ && index_ == other.index_;
  }
  bool operator!=(const odb_Node& other) const { return !(*this == other); }
  const odbs::engine::NodeTable* engineTable() const { return table_; }

 private:
  const odbs::engine::NodeTable* table_;
  int index_ = 0;
};

class odb_SequenceNode : public odbs::RecordSequence<odb_Node, odbs::engine::NodeTable> {
 public:
  using RecordSequence::RecordSequence;
  odb_Node node(int i) const { return (*this)[i]; }
};
