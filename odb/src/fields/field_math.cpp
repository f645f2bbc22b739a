// SPDX-License-Identifier: BSD-3-Clause
// Field arithmetic. Results are computed at once, slice by slice, in double precision, and stored
// in that of the operands.
#include "odb/src/fields/field_result.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <cmath>
#include <complex>

namespace odbs::engine {

namespace {

using Complex = std::complex<double>;
constexpr double kPi = 3.14159265358979323846;
constexpr int kSlice = 16384;

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

}  // namespace
}  // namespace odbs::engine

using namespace odbs::engine;

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
