// SPDX-License-Identifier: BSD-3-Clause
// Reply records: the staging area and the records that exporters share.
#include "server/core/record.h"

#include <algorithm>
#include <cstring>

#include "server/core/label_chunks.h"

namespace odbs {

namespace {

constexpr unsigned char kAckTag = '~';
constexpr unsigned char kMessageTag = '|';
constexpr unsigned char kNameTag = 'H';
constexpr unsigned char kMarkerTag = 'I';

// The record being built, with room for its frame, so that a direct record needs no copy.
struct Staging {
  std::uint32_t length = 0;  // payload bytes
  unsigned char frame[2 + kMaxPayload] = {};
};
Staging staging;

std::uint32_t roomLeft() {
  return kMaxPayload - staging.length;
}

// The place of `n` further payload bytes, or null when they do not fit.
unsigned char* stage(std::uint32_t n) {
  if (n > roomLeft()) return nullptr;
  unsigned char* place = staging.frame + 2 + staging.length;
  staging.length += n;
  return place;
}

}  // namespace

void beginRecord(unsigned char tag) {
  staging.frame[2] = tag;
  staging.length = 1;
}

bool putU32(std::uint32_t value) {
  unsigned char* place = stage(4);
  if (place) putU32(place, value);
  return place != nullptr;
}

bool putI32(std::int32_t value) {
  return putU32(static_cast<std::uint32_t>(value));
}

bool putF32(float value) {
  unsigned char* place = stage(4);
  if (place) putF32(place, value);
  return place != nullptr;
}

bool putF64(double value) {
  unsigned char* place = stage(8);
  if (place) putF64(place, value);
  return place != nullptr;
}

void putBytes(const void* bytes, std::size_t n) {
  const auto kept = static_cast<std::uint32_t>(std::min<std::size_t>(n, roomLeft()));
  if (kept > 0) std::memcpy(stage(kept), bytes, kept);
}

void putText(std::string_view text, std::size_t reserved) {
  if (roomLeft() < 4) return;
  const std::size_t room = roomLeft() - 4;
  const std::size_t kept = std::min(text.size(), room - std::min(room, reserved));
  putU32(static_cast<std::uint32_t>(kept));
  putBytes(text.data(), kept);
}

std::uint32_t recordLength() {
  return staging.length;
}

void appendRecord(int outputFd) {
  if (staging.length == 0) return;
  std::memcpy(reserveRecord(outputFd, staging.length), staging.frame + 2, staging.length);
}

void sendDirect(int outputFd) {
  putU16(staging.frame, static_cast<std::uint16_t>(staging.length));
  writeDirect(outputFd, staging.frame, staging.length + 2);
}

void sendAck(int outputFd) {
  beginRecord(kAckTag);
  sendDirect(outputFd);
}

void sendMessage(int outputFd, std::string_view text) {
  beginRecord(kMessageTag);
  putText(text);
  sendDirect(outputFd);
}

// Text record, buffered.
//   offset  size  content
//   0       1     tag
//   1       4     byte count n
//   5       n     text
void sendTextRecord(int outputFd, unsigned char tag, std::string_view text) {
  beginRecord(tag);
  putText(text);
  appendRecord(outputFd);
}

void sendNameRecord(int outputFd, std::string_view text) {
  sendTextRecord(outputFd, kNameTag, text);
}

void sendMarker(int outputFd) {
  *reserveRecord(outputFd, 1) = kMarkerTag;
}

// Label chunk, buffered.
//   offset  size  content
//   0       1     tag: 08 nodes, 09 elements
//   1       4*k   labels, k from 1 to 30
void sendNodeLabels(int outputFd, const int* labels, int n) {
  sendLabelChunks(outputFd, kNodeLabelsTag, n, 4,
                  [=](unsigned char* p, int i) { putI32(p, labels[i]); });
}

void sendElementLabels(int outputFd, const int* labels, int n) {
  sendLabelChunks(outputFd, kElementLabelsTag, n, 4,
                  [=](unsigned char* p, int i) { putI32(p, labels[i]); });
}

// Element label pair chunk, buffered.
//   offset  size  content
//   0       1     tag 0A
//   1       8*k   k times: element label, associated integer
void sendElementLabelPairs(int outputFd, const int* labels, const int* associated, int n) {
  sendLabelChunks(outputFd, kElementLabelPairsTag, n, 8, [=](unsigned char* p, int i) {
    putI32(p, labels[i]);
    putI32(p + 4, associated[i]);
  });
}

}  // namespace odbs
