// SPDX-License-Identifier: BSD-3-Clause
// Fields made from one number per value: scalar fields and envelopes.
#include "odb/src/fields/field_result.h"
#include "odb/src/fields/result_store.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>

namespace odbs::engine {

namespace {

constexpr int kSlice = 16384;

const char* nameOf(odb_Enum::odb_InvariantEnum which) {
  static const char* const names[] = {"",
                                      "Magnitude",
                                      "Mises",
                                      "Tresca",
                                      "Pressure",
                                      "Third Invariant",
                                      "Max. Principal",
                                      "Mid. Principal",
                                      "Min. Principal",
                                      "Max. In-Plane Principal",
                                      "Min. In-Plane Principal",
                                      "Out-of-Plane Principal"};
  return which >= odb_Enum::MAGNITUDE && which <= odb_Enum::OUTOFPLANE_PRINCIPAL ? names[which]
                                                                                 : "";
}

// A number per value: one invariant or one component. Components are found by label, since blocks
// of one field may differ in type.
struct Measure {
  odb_Enum::odb_InvariantEnum invariant = odb_Enum::UNDEFINED_INVARIANT;
  odb_String component;

  // Place of the component, -1 when the block has none of that label.
  int placeIn(FieldBlock& block) const {
    if (block.descriptor->type == odb_Enum::SCALAR) return 0;
    const odb_SequenceString& labels = componentLabels(block);
    for (int k = 0; k < labels.size(); ++k) {
      if (labels[k] == component) return k;
    }
    return -1;
  }
};

void measure(FieldBlock& block, const Measure& what, int first, int n, std::vector<double>& out) {
  const auto width = static_cast<std::size_t>(block.width);
  std::vector<double> values(static_cast<std::size_t>(n) * width);
  readValues(block, Part::kData, first, n, values.data());
  const int place = what.invariant ? -1 : what.placeIn(block);
  out.assign(static_cast<std::size_t>(n), 0.0);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double* v = &values[i * width];
    if (what.invariant) {
      out[i] = invariant(what.invariant, block.type, v, block.width, block.descriptor->engineering);
    } else if (place >= 0) {
      out[i] = v[place];
    }
  }
}

odb_FieldOutput scalarField(const odb_FieldOutput& field, const Measure& what,
                            const std::string& suffix) {
  field.bulkDataBlocks();
  const FieldData& source = *fieldOf(field);
  FieldDescriptor d;
  d.name = odb_String((std::string(source.descriptor->name.CStr()) + "_" + suffix).c_str());
  d.description =
      odb_String((std::string(source.descriptor->description.CStr()) + ": " + suffix).c_str());
  const auto descriptor = sharedDescriptor(*source.database, d);
  Field result = derivedField(source);
  result->descriptor = descriptor;
  std::vector<double> numbers;
  for (const Block& from : source.blocks) {
    if (!what.invariant && what.placeIn(*from) < 0) continue;
    Block to = resultBlock(*from, descriptor, odb_Enum::SCALAR, 1, false, isDouble(*from));
    for (int first = 0; first < from->layout->nValues; first += kSlice) {
      const int n = std::min(kSlice, from->layout->nValues - first);
      measure(*from, what, first, n, numbers);
      for (std::size_t i = 0; i < numbers.size(); ++i) {
        setNumber(*to, Part::kData, static_cast<std::size_t>(first) + i, numbers[i]);
      }
    }
    result->blocks.push_back(std::move(to));
  }
  return handleOf(result);
}

Measure componentOf(const odb_FieldOutput& field, const odb_String& label) {
  if (!field.componentLabels().isMember(label)) {
    failAbsent(std::string("field output ") + field.name().CStr() + " has no component " +
               label.CStr());
  }
  Measure what;
  what.component = label;
  return what;
}

Measure invariantOf(const odb_FieldOutput& field, odb_Enum::odb_InvariantEnum which) {
  if (!field.validInvariants().isMember(which)) {
    failAbsent(std::string("field output ") + field.name().CStr() +
               " has no such invariant: " + nameOf(which));
  }
  Measure what;
  what.invariant = which;
  return what;
}

Measure plainMeasure(const odb_FieldOutput& field) {
  if (field.type() == odb_Enum::SCALAR) return Measure();
  if (field.componentLabels().size() == 1) return componentOf(field, field.componentLabels()[0]);
  if (field.validInvariants().size() == 0) {
    failUsage(std::string("field output ") + field.name().CStr() +
              " has several components and no valid invariant to compare");
  }
  return invariantOf(field, field.validInvariants()[0]);
}

// Copies value i of `from` to `to`.
void copyValue(FieldBlock& from, FieldBlock& to, int i, std::vector<double>& scratch) {
  for (Part part : {Part::kData, Part::kConjugate, Part::kOrientation}) {
    if (!hasPart(to, part) || !hasPart(from, part)) continue;
    const auto width = static_cast<std::size_t>(partWidth(from, part));
    scratch.resize(width);
    readValues(from, part, i, 1, scratch.data());
    for (std::size_t k = 0; k < width; ++k) {
      setNumber(to, part, static_cast<std::size_t>(i) * width + k, scratch[k]);
    }
  }
}

// Loads a block's arrays, so that single values can be picked from them.
void load(FieldBlock& block) {
  for (Part part : {Part::kData, Part::kConjugate, Part::kOrientation}) {
    if (isDouble(block)) {
      blockArray<double>(block, part);
    } else {
      blockArray<float>(block, part);
    }
  }
}

odb_SequenceFieldOutput envelope(const odb_SequenceFieldOutput& fields, const Measure& what,
                                 double sign) {
  for (const odb_FieldOutput& field : fields.engineItems()) field.bulkDataBlocks();
  const FieldData& first = *fieldOf(fields[0]);
  FieldDescriptor d;
  d.name = odb_String((std::string(first.descriptor->name.CStr()) + "_index").c_str());
  d.description = "Index of the field that the envelope's value is from";
  Field winners = derivedField(first), indices = derivedField(first);
  indices->descriptor = sharedDescriptor(*first.database, d);
  std::vector<double> best, numbers, scratch;
  for (const Block& block : first.blocks) {
    const int n = block->layout->nValues;
    std::vector<FieldBlock*> rivals;
    for (const odb_FieldOutput& field : fields.engineItems()) {
      rivals.push_back(&partner(*fieldOf(field), *block));
      if (rivals.back()->width != block->width) failUsage("envelopes need fields of one type");
      load(*rivals.back());
    }
    Block winner = resultBlock(*block, first.descriptor, block->type, block->width, block->complex,
                               isDouble(*block));
    Block index = resultBlock(*block, indices->descriptor, odb_Enum::SCALAR, 1, false, false);
    std::vector<int> winning(static_cast<std::size_t>(n), 0);
    measure(*rivals[0], what, 0, n, best);
    for (std::size_t r = 1; r < rivals.size(); ++r) {
      measure(*rivals[r], what, 0, n, numbers);
      for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (sign * numbers[i] <= sign * best[i]) continue;
        best[i] = numbers[i];
        winning[i] = static_cast<int>(r);
      }
    }
    for (int i = 0; i < n; ++i) {
      const int from = winning[static_cast<std::size_t>(i)];
      copyValue(*rivals[static_cast<std::size_t>(from)], *winner, i, scratch);
      setNumber(*index, Part::kData, static_cast<std::size_t>(i), from);
    }
    winners->blocks.push_back(std::move(winner));
    indices->blocks.push_back(std::move(index));
  }
  odb_SequenceFieldOutput result;
  result.append(handleOf(winners));
  result.append(handleOf(indices));
  return result;
}

const odb_FieldOutput& firstOf(const odb_SequenceFieldOutput& fields) {
  if (fields.size() == 0) failUsage("an envelope needs at least one field");
  return fields[0];
}

}  // namespace
}  // namespace odbs::engine

using namespace odbs::engine;

odb_FieldOutput odb_FieldOutput::getScalarField(odb_Enum::odb_InvariantEnum invariant) const {
  return scalarField(*this, invariantOf(*this, invariant), nameOf(invariant));
}
odb_FieldOutput odb_FieldOutput::getScalarField(const odb_String& componentLabel) const {
  return scalarField(*this, componentOf(*this, componentLabel), componentLabel.CStr());
}

odb_SequenceFieldOutput maxEnvelope(const odb_SequenceFieldOutput& fields) {
  return envelope(fields, plainMeasure(firstOf(fields)), 1);
}
odb_SequenceFieldOutput maxEnvelope(const odb_SequenceFieldOutput& fields,
                                    odb_Enum::odb_InvariantEnum invariant) {
  return envelope(fields, invariantOf(firstOf(fields), invariant), 1);
}
odb_SequenceFieldOutput maxEnvelope(const odb_SequenceFieldOutput& fields,
                                    const odb_String& componentLabel) {
  return envelope(fields, componentOf(firstOf(fields), componentLabel), 1);
}
odb_SequenceFieldOutput minEnvelope(const odb_SequenceFieldOutput& fields) {
  return envelope(fields, plainMeasure(firstOf(fields)), -1);
}
odb_SequenceFieldOutput minEnvelope(const odb_SequenceFieldOutput& fields,
                                    odb_Enum::odb_InvariantEnum invariant) {
  return envelope(fields, invariantOf(firstOf(fields), invariant), -1);
}
odb_SequenceFieldOutput minEnvelope(const odb_SequenceFieldOutput& fields,
                                    const odb_String& componentLabel) {
  return envelope(fields, componentOf(firstOf(fields), componentLabel), -1);
}
