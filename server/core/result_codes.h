// SPDX-License-Identifier: BSD-3-Clause
// The numbers and names by which the protocol and the database API call results: positions, data
// types, value-type flags, and the modal stress measures.
#pragma once

#include <string_view>

namespace odbs {

// Where values are, as the API numbers it and as the selection keeps it.
namespace position {
constexpr int kNodal = 1;
constexpr int kElementNodal = 2;
constexpr int kIntegrationPoint = 3;
constexpr int kCentroid = 4;
constexpr int kElementFace = 5;
constexpr int kWholeElement = 8;
}  // namespace position

// What a field's values are, as the API numbers it.
namespace data_type {
constexpr int kScalar = 2;
constexpr int kVector = 3;
constexpr int kMatrix = 4;
constexpr int kTensor3dFull = 5;
constexpr int kTensor3dPlanar = 6;
constexpr int kTensor3dSurface = 7;
constexpr int kTensor2dPlanar = 8;
constexpr int kTensor2dSurface = 9;
}  // namespace data_type

constexpr bool isTensor(int dataType) {
  return dataType >= data_type::kTensor3dFull && dataType <= data_type::kTensor2dSurface;
}

// What values are, as the protocol says it. The catalogue combines the flags to a mask.
namespace value_type {
constexpr int kOther = 0;
constexpr int kScalar = 1;
constexpr int kTensorOf6 = 2;
constexpr int kTensorOf4 = 4;
constexpr int kTensorOf3 = 8;
constexpr int kVector = 16;
}  // namespace value_type

// The flag of values of a data type. The last three tensor types differ by their number of
// components; any other number there is kOther, as is any other type.
constexpr int valueTypeFlag(int dataType, int nComponents) {
  switch (dataType) {
    case data_type::kScalar:
    case data_type::kMatrix:  // a modal stress measure: one number for each value
      return value_type::kScalar;
    case data_type::kVector:
      return value_type::kVector;
    case data_type::kTensor3dFull:
      return value_type::kTensorOf6;
    case data_type::kTensor3dPlanar:
      return value_type::kTensorOf4;
    default:
      break;
  }
  if (!isTensor(dataType)) return value_type::kOther;
  switch (nComponents) {
    case 6:
      return value_type::kTensorOf6;
    case 4:
      return value_type::kTensorOf4;
    case 3:
      return value_type::kTensorOf3;
    default:
      return value_type::kOther;
  }
}

// The modal stress measures: covariance matrices of modes as stored, scalars as served.
constexpr std::string_view kModalSquares = "MATRIX Sqq";  // expected square of the Mises stress
constexpr std::string_view kModalRoots = "MATRIX RSqq";   // its square root

constexpr bool isModalMeasure(std::string_view fieldName) {
  return fieldName == kModalSquares || fieldName == kModalRoots;
}

}  // namespace odbs
