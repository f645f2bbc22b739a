// SPDX-License-Identifier: BSD-3-Clause
// Elements and sequences of them.
#pragma once

#include <odb_SectionCategory.h>
#include <odb_Sequences.h>
#include <odb_engine/record_sequence.h>
#include <odb_engine/tables.h>

// One element of an instance, a part or the assembly. Label -1, no type and no nodes when
// default-constructed.
class odb_Element {
 public:
  odb_Element() : table_(odbs::engine::emptyElementTable()) {}
  odb_Element(const odbs::engine::ElementTable* table, int index) : table_(table), index_(index) {}

  // The user's number of the element, unique within its instance; not an index.
  int label() const { return table_->labels[index_]; }
  // Element type such as "C3D8R". The reference stays valid as long as the database.
  const odb_String& type() const { return *block().type; }
  // Labels of the nodes; `n` gets their number. The array belongs to the database. A grounded
  // connector repeats its single node.
  const int* connectivity(int& n) const {
    const odbs::engine::ElementBlock& b = block();
    n = b.nNodes;
    return table_->connectivity + b.connectivity +
           static_cast<std::int64_t>(index_ - b.first) * b.nNodes;
  }
  // The same as a new list.
  odb_SequenceInt connectivity() const;
  // The category of the element's section; one with an empty name when it has none. Elements of one
  // category give the same object.
  const odb_SectionCategory& sectionCategory() const { return *block().category; }
  // Index in the elements() of its instance, part or assembly, counted from 0.
  int index() const { return index_; }
  // Name of the instance (or part) that has the element; empty for an element of the assembly.
  const odb_String& instanceName() const;
  // Per connected node, the name of the instance that has the node; empty for the assembly's own.
  odb_SequenceString instanceNames() const;

  bool operator==(const odb_Element& other) const {
    return table_ == other.table_ && index_ == other.index_;
  }
  bool operator!=(const odb_Element& other) const { return !(*this == other); }
  const odbs::engine::ElementTable* engineTable() const { return table_; }

 private:
  const odbs::engine::ElementBlock& block() const {
    return table_->blocks[table_->blockOf[index_]];
  }

  const odbs::engine::ElementTable* table_;
  int index_ = 0;
};

class odb_Instance;

class odb_SequenceElement : public odbs::RecordSequence<odb_Element, odbs::engine::ElementTable> {
 public:
  using RecordSequence::RecordSequence;
  // The elements of an instance, as its elements() gives them.
  explicit odb_SequenceElement(const odb_Instance& instance);
  odb_Element element(int i) const { return (*this)[i]; }
  int numElements() const { return size(); }
};
