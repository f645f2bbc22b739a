// SPDX-License-Identifier: BSD-3-Clause
// Field arithmetic, scalar fields and envelopes. Results are computed at once, slice by slice, in
// double precision, and stored in that of the operands.
#include "odb/src/errors.h"
#include "odb/src/field_data.h"
#include "odb/src/result_store.h"
#include "odb/src/tensor.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace odbs::engine {

namespace {

using Complex = std::complex<double>;
constexpr double kPi = 3.14159265358979323846;
constexpr int kSlice = 16384;

// ---- Results ----

void setNumber(FieldBlock& block, Part part, std::size_t i, double value) {
  Storage& storage = block.database->storage;
  const auto put = [&](auto& arrays) {
    auto& array = part == Part::kData        ? arrays.data
                  : part == Part::kConjugate ? arrays.conjugate
                                             : arrays.orientation;
    using Real = typename std::decay_t<decltype(array.edit(storage))>::value_type;
    array.edit(storage)[i] = static_cast<Real>(value);
  };
  if (block.precision == odb_Enum::DOUBLE_PRECISION) {
    put(block.doubles);
  } else {
    put(block.singles);
  }
}

template <class Real>
void resizeArrays(FieldBlock& block) {
  Storage& storage = block.database->storage;
  BlockArrays<Real>& arrays = block.arrays<Real>();
  const auto n = static_cast<std::size_t>(block.layout->nValues);
  const std::size_t numbers = n * static_cast<std::size_t>(block.width);
  arrays.data.edit(storage).resize(numbers);
  if (block.complex) arrays.conjugate.edit(storage).resize(numbers);
  if (block.oriented) arrays.orientation.edit(storage).resize(4 * n);
}

// A block of results with room for its numbers.
Block resultBlock(const FieldBlock& like, const std::shared_ptr<const FieldDescriptor>& descriptor,
                  odb_Enum::odb_DataTypeEnum type, int width, bool complex, bool isDouble) {
  Block block = sameLayout(like, descriptor, type, width);
  block->precision = isDouble ? odb_Enum::DOUBLE_PRECISION : odb_Enum::SINGLE_PRECISION;
  block->complex = complex;
  block->oriented = like.oriented && width == like.width && type != odb_Enum::SCALAR;
  if (isDouble) {
    resizeArrays<double>(*block);
  } else {
    resizeArrays<float>(*block);
  }
  return block;
}

bool isDouble(const FieldBlock& block) {
  return block.precision == odb_Enum::DOUBLE_PRECISION;
}

void copyOrientation(FieldBlock& from, FieldBlock& to) {
  if (!to.oriented) return;
  const int n = from.layout->nValues;
  std::vector<double> all(4 * static_cast<std::size_t>(n));
  readValues(from, Part::kOrientation, 0, n, all.data());
  for (std::size_t i = 0; i < all.size(); ++i) setNumber(to, Part::kOrientation, i, all[i]);
}

// The components of a slice of values, imaginary parts 0 where there are none.
class Slice {
 public:
  void read(FieldBlock& block, int first, int n) {
    const std::size_t count = static_cast<std::size_t>(n) * static_cast<std::size_t>(block.width);
    real_.resize(count);
    imaginary_.assign(count, 0.0);
    readValues(block, Part::kData, first, n, real_.data());
    if (block.complex) readValues(block, Part::kConjugate, first, n, imaginary_.data());
  }
  Complex at(std::size_t i) const { return {real_[i], imaginary_[i]}; }
  double real(std::size_t i) const { return real_[i]; }

 private:
  std::vector<double> real_, imaginary_;
};

void putComplex(FieldBlock& out, std::size_t i, const Complex& value) {
  setNumber(out, Part::kData, i, value.real());
  if (out.complex) setNumber(out, Part::kConjugate, i, value.imag());
}

// ---- One operand ----

enum class Keep { kReal, kComplex };

template <class Function>
odb_FieldOutput mapped(const odb_FieldOutput& field, Keep keep, Function function) {
  field.bulkDataBlocks();
  const FieldData& source = *fieldOf(field);
  Field result = derivedField(source);
  for (const Block& from : source.blocks) {
    Block to = resultBlock(*from, source.descriptor, from->type, from->width,
                           keep == Keep::kComplex && from->complex, isDouble(*from));
    const auto width = static_cast<std::size_t>(from->width);
    Slice slice;
    for (int first = 0; first < from->layout->nValues; first += kSlice) {
      const int n = std::min(kSlice, from->layout->nValues - first);
      slice.read(*from, first, n);
      const std::size_t start = static_cast<std::size_t>(first) * width;
      for (std::size_t i = 0; i < static_cast<std::size_t>(n) * width; ++i) {
        putComplex(*to, start + i, function(slice.at(i)));
      }
    }
    copyOrientation(*from, *to);
    result->blocks.push_back(std::move(to));
  }
  return handleOf(result);
}

odb_FieldOutput mappedReal(const odb_FieldOutput& field, double (*function)(double)) {
  return mapped(field, Keep::kReal, [function](const Complex& z) { return function(z.real()); });
}

// ---- Two operands ----

bool equalLabels(const int* a, const int* b, int n) {
  return a == b || (a && b && std::equal(a, a + n, b));
}

bool sameValues(BlockLayout& a, BlockLayout& b) {
  return &a == &b ||
         (a.entityRow == b.entityRow && a.position == b.position && a.nValues == b.nValues &&
          a.category == b.category && a.point == b.point && a.elementType == b.elementType &&
          equalLabels(elementLabels(a), elementLabels(b), a.nValues) &&
          equalLabels(nodeLabels(a), nodeLabels(b), a.nValues) &&
          equalLabels(integrationPoints(a), integrationPoints(b), a.nValues) &&
          equalLabels(faceNumbers(a), faceNumbers(b), a.nValues));
}

// The block of `field` with the same values as `block`.
FieldBlock& partner(const FieldData& field, FieldBlock& block) {
  for (const Block& other : field.blocks) {
    if (sameValues(*block.layout, *other->layout)) return *other;
  }
  failUsage(std::string("field outputs ") + block.descriptor->name.CStr() + " and " +
            field.descriptor->name.CStr() + " have different blocks");
}

template <class Operation>
odb_FieldOutput combined(const odb_FieldOutput& a, const odb_FieldOutput& b, Operation operation) {
  a.bulkDataBlocks();
  b.bulkDataBlocks();
  const FieldData &left = *fieldOf(a), &right = *fieldOf(b);
  if (left.blocks.size() != right.blocks.size()) {
    failUsage(std::string("field outputs ") + left.descriptor->name.CStr() + " and " +
              right.descriptor->name.CStr() + " have different blocks");
  }
  // A scalar takes the shape of what it is combined with.
  const bool spreadLeft =
      left.descriptor->type == odb_Enum::SCALAR && right.descriptor->type != odb_Enum::SCALAR;
  Field result = derivedField(spreadLeft ? right : left);
  for (const Block& one : left.blocks) {
    FieldBlock& other = partner(right, *one);
    FieldBlock& shape = spreadLeft ? other : *one;
    if (one->width != other.width && one->width != 1 && other.width != 1) {
      failUsage("field outputs with different numbers of components cannot be combined");
    }
    Block to = resultBlock(shape, result->descriptor, shape.type, shape.width,
                           one->complex || other.complex, isDouble(*one) || isDouble(other));
    const auto wa = static_cast<std::size_t>(one->width),
               wb = static_cast<std::size_t>(other.width);
    const std::size_t width = std::max(wa, wb);
    Slice sa, sb;
    for (int first = 0; first < one->layout->nValues; first += kSlice) {
      const int n = std::min(kSlice, one->layout->nValues - first);
      sa.read(*one, first, n);
      sb.read(other, first, n);
      for (std::size_t i = 0; i < static_cast<std::size_t>(n); ++i) {
        for (std::size_t k = 0; k < width; ++k) {
          putComplex(
              *to, (static_cast<std::size_t>(first) + i) * width + k,
              operation(sa.at(i * wa + (wa == 1 ? 0 : k)), sb.at(i * wb + (wb == 1 ? 0 : k))));
        }
      }
    }
    copyOrientation(shape, *to);
    result->blocks.push_back(std::move(to));
  }
  return handleOf(result);
}

// Real operands give what real arithmetic gives, also for infinities and NaN.
Complex multiplied(const Complex& a, const Complex& b) {
  if (a.imag() == 0 && b.imag() == 0) return a.real() * b.real();
  return a * b;
}
Complex divided(const Complex& a, const Complex& b) {
  if (b.imag() == 0) return {a.real() / b.real(), a.imag() == 0 ? 0 : a.imag() / b.real()};
  return a / b;
}

// ---- Scalar fields ----

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
  d.labels.append(d.name);
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

// ---- Envelopes ----

Measure plainMeasure(const odb_FieldOutput& field) {
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
  d.labels.append(d.name);
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

odb_FieldOutput operator-(const odb_FieldOutput& field) {
  return mapped(field, Keep::kComplex, [](const Complex& z) { return -z; });
}
odb_FieldOutput operator+(const odb_FieldOutput& a, const odb_FieldOutput& b) {
  return combined(a, b, [](const Complex& x, const Complex& y) { return x + y; });
}
odb_FieldOutput operator-(const odb_FieldOutput& a, const odb_FieldOutput& b) {
  return combined(a, b, [](const Complex& x, const Complex& y) { return x - y; });
}
odb_FieldOutput operator*(const odb_FieldOutput& a, const odb_FieldOutput& b) {
  return combined(a, b, multiplied);
}
odb_FieldOutput operator/(const odb_FieldOutput& a, const odb_FieldOutput& b) {
  return combined(a, b, divided);
}
odb_FieldOutput operator+(const odb_FieldOutput& a, double b) {
  return mapped(a, Keep::kComplex, [b](const Complex& z) { return z + b; });
}
odb_FieldOutput operator-(const odb_FieldOutput& a, double b) {
  return a + -b;
}
odb_FieldOutput operator*(const odb_FieldOutput& a, double b) {
  return mapped(a, Keep::kComplex, [b](const Complex& z) { return multiplied(z, b); });
}
odb_FieldOutput operator/(const odb_FieldOutput& a, double b) {
  return mapped(a, Keep::kComplex, [b](const Complex& z) { return divided(z, b); });
}
odb_FieldOutput operator+(double a, const odb_FieldOutput& b) {
  return b + a;
}
odb_FieldOutput operator-(double a, const odb_FieldOutput& b) {
  return mapped(b, Keep::kComplex, [a](const Complex& z) { return a - z; });
}
odb_FieldOutput operator*(double a, const odb_FieldOutput& b) {
  return b * a;
}
odb_FieldOutput operator/(double a, const odb_FieldOutput& b) {
  return mapped(b, Keep::kComplex, [a](const Complex& z) { return divided(a, z); });
}

odb_FieldOutput abs(const odb_FieldOutput& field) {
  return mappedReal(field, std::fabs);
}
odb_FieldOutput sqrt(const odb_FieldOutput& field) {
  return mappedReal(field, std::sqrt);
}
odb_FieldOutput sin(const odb_FieldOutput& field) {
  return mappedReal(field, std::sin);
}
odb_FieldOutput cos(const odb_FieldOutput& field) {
  return mappedReal(field, std::cos);
}
odb_FieldOutput tan(const odb_FieldOutput& field) {
  return mappedReal(field, std::tan);
}
odb_FieldOutput asin(const odb_FieldOutput& field) {
  return mappedReal(field, std::asin);
}
odb_FieldOutput acos(const odb_FieldOutput& field) {
  return mappedReal(field, std::acos);
}
odb_FieldOutput atan(const odb_FieldOutput& field) {
  return mappedReal(field, std::atan);
}
odb_FieldOutput exp(const odb_FieldOutput& field) {
  return mappedReal(field, std::exp);
}
odb_FieldOutput exp10(const odb_FieldOutput& field) {
  return mapped(field, Keep::kReal, [](const Complex& z) { return std::pow(10.0, z.real()); });
}
odb_FieldOutput log(const odb_FieldOutput& field) {
  return mappedReal(field, std::log);
}
odb_FieldOutput log10(const odb_FieldOutput& field) {
  return mappedReal(field, std::log10);
}
odb_FieldOutput power(const odb_FieldOutput& field, float exponent) {
  return mapped(field, Keep::kReal, [exponent](const Complex& z) {
    return std::pow(z.real(), static_cast<double>(exponent));
  });
}
odb_FieldOutput degreeToRadian(const odb_FieldOutput& field) {
  return mapped(field, Keep::kReal, [](const Complex& z) { return z.real() * kPi / 180; });
}
odb_FieldOutput radianToDegree(const odb_FieldOutput& field) {
  return mapped(field, Keep::kReal, [](const Complex& z) { return z.real() * 180 / kPi; });
}
odb_FieldOutput complexMagnitude(const odb_FieldOutput& field) {
  return mapped(field, Keep::kReal, [](const Complex& z) { return std::abs(z); });
}
odb_FieldOutput complexPhase(const odb_FieldOutput& field) {
  return mapped(field, Keep::kReal, [](const Complex& z) { return std::arg(z); });
}
odb_FieldOutput complexReal(const odb_FieldOutput& field) {
  return mapped(field, Keep::kReal, [](const Complex& z) { return z.real(); });
}
odb_FieldOutput complexImag(const odb_FieldOutput& field) {
  return mapped(field, Keep::kReal, [](const Complex& z) { return z.imag(); });
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
