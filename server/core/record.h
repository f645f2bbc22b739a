// SPDX-License-Identifier: BSD-3-Clause
// Reply records in two ranks. The primitives build one record in the staging area and send it,
// buffered or direct. The calls below them send the records that several exporters share.
// Exporters own the tags of their records. Loops over millions of items use `reserveRecord`
// (server/core/channel.h) and put the payload themselves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "server/core/channel.h"

namespace odbs {

// ---- Primitives: the staging area ----

// Starts a record: the staging area holds the tag alone.
void beginRecord(unsigned char tag);

// Append to the staging area. What does not fit its 10240 bytes is left out: a number as a whole,
// bytes and texts by their end. A text is its byte count (u32, of what is kept) and its bytes,
// without a NUL; `reserved` bytes after it stay free for what the record must bring after the
// text. Numbers that do not fit return false.
bool putU32(std::uint32_t value);
bool putI32(std::int32_t value);
bool putF32(float value);
bool putF64(double value);
void putBytes(const void* bytes, std::size_t n);
void putText(std::string_view text, std::size_t reserved = 0);

// Payload bytes staged so far.
std::uint32_t recordLength();

// Frames the staged record into the output buffer, which is written out first when it would reach
// its threshold. Does nothing when no record was begun.
void appendRecord(int outputFd);

// Frames the staged record and writes it at once. Only while the output buffer is empty.
void sendDirect(int outputFd);

// ---- Records that exporters share ----

// End-of-command acknowledgement, direct: the bytes 01 00 7E.
void sendAck(int outputFd);

// Message record, direct: '|' and a text.
void sendMessage(int outputFd, std::string_view text);

// Name record, buffered: 'H' and a text, cut at 10235 bytes.
void sendNameRecord(int outputFd, std::string_view text);

// Marker record, buffered: 'I' alone.
void sendMarker(int outputFd);

// A text record with a tag of the caller's, buffered: the layout of the name record.
void sendTextRecord(int outputFd, unsigned char tag, std::string_view text);

// Label chunks, buffered: `n` labels in records of at most 30; none when n is 0 or less. The pair
// form interleaves each element label with the integer of the same place in `associated`.
void sendNodeLabels(int outputFd, const int* labels, int n);
void sendElementLabels(int outputFd, const int* labels, int n);
void sendElementLabelPairs(int outputFd, const int* labels, const int* associated, int n);

}  // namespace odbs
