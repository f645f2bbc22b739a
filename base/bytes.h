// SPDX-License-Identifier: BSD-3-Clause
// Little-endian integers and IEEE reals in byte arrays, put and taken with shifts, so that the
// bytes on the wire and in files are the same on every host. Nothing here checks bounds: the caller
// owns the array and knows its length.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace odbs {

// Stores the 16-bit value at p[0..1], lowest byte first.
inline void putU16(unsigned char* p, std::uint16_t value) {
  p[0] = static_cast<unsigned char>(value);
  p[1] = static_cast<unsigned char>(value >> 8);
}

// Stores the 32-bit value at p[0..3], lowest byte first.
inline void putU32(unsigned char* p, std::uint32_t value) {
  p[0] = static_cast<unsigned char>(value);
  p[1] = static_cast<unsigned char>(value >> 8);
  p[2] = static_cast<unsigned char>(value >> 16);
  p[3] = static_cast<unsigned char>(value >> 24);
}

// Stores the two's complement of value at p[0..3], lowest byte first.
inline void putI32(unsigned char* p, std::int32_t value) {
  putU32(p, static_cast<std::uint32_t>(value));
}

// Stores the 64-bit value at p[0..7], lowest byte first.
inline void putU64(unsigned char* p, std::uint64_t value) {
  putU32(p, static_cast<std::uint32_t>(value));
  putU32(p + 4, static_cast<std::uint32_t>(value >> 32));
}

// Stores the IEEE single at p[0..3], lowest byte first.
inline void putF32(unsigned char* p, float value) {
  std::uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  putU32(p, bits);
}

// Stores n 32-bit integers or singles from `values`, one after the other.
inline void putWords(unsigned char* p, const void* values, std::size_t n) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
  std::memcpy(p, values, 4 * n);  // the host's order is ours
#else
  for (std::size_t i = 0; i < n; ++i) {
    std::uint32_t bits;
    std::memcpy(&bits, static_cast<const unsigned char*>(values) + 4 * i, sizeof bits);
    putU32(p + 4 * i, bits);
  }
#endif
}

// Stores the IEEE double at p[0..7], lowest byte first.
inline void putF64(unsigned char* p, double value) {
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  putU64(p, bits);
}

// Takes the 16-bit value at p[0..1].
inline std::uint16_t getU16(const unsigned char* p) {
  return static_cast<std::uint16_t>(p[0] | p[1] << 8);
}

// Takes the 32-bit value at p[0..3].
inline std::uint32_t getU32(const unsigned char* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

// Takes the signed 32-bit value at p[0..3].
inline std::int32_t getI32(const unsigned char* p) {
  return static_cast<std::int32_t>(getU32(p));
}

// Takes the 64-bit value at p[0..7].
inline std::uint64_t getU64(const unsigned char* p) {
  return static_cast<std::uint64_t>(getU32(p)) | static_cast<std::uint64_t>(getU32(p + 4)) << 32;
}

// Takes the IEEE single at p[0..3].
inline float getF32(const unsigned char* p) {
  const std::uint32_t bits = getU32(p);
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// Takes the IEEE double at p[0..7].
inline double getF64(const unsigned char* p) {
  const std::uint64_t bits = getU64(p);
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

}  // namespace odbs
