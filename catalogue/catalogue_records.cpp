// SPDX-License-Identifier: BSD-3-Clause
// The records of the result catalogue.
#include "catalogue/catalogue_records.h"

#include "server/core/record.h"

namespace odbs {

namespace {

constexpr unsigned char kStepTag = 12;
constexpr unsigned char kProcedureTag = 13;
constexpr unsigned char kFieldTag = 14;
constexpr unsigned char kFrameTag = 15;
constexpr unsigned char kComponentsTag = 16;

constexpr std::size_t kStepTextBytes = 199;

void sendText(int outputFd, unsigned char tag, std::string_view text) {
  beginRecord(tag);
  putText(text);
  sendDirect(outputFd);
}

}  // namespace

std::string stepText(std::string_view name, std::string_view description) {
  std::string text(name.substr(0, kStepTextBytes - 1));
  text += '\x01';
  text += description.substr(0, kStepTextBytes - text.size());
  return text;
}

// Step record, direct.
//   offset  size  content
//   0       1     0C
//   1       4     step number, from 1
//   5       8     total time, double
//   13      4+n   text: name, byte 01, description
void sendStep(int outputFd, const CatalogueEntry& entry) {
  beginRecord(kStepTag);
  putI32(entry.stepNumber);
  putF64(entry.totalTime);
  putText(entry.stepText);
  sendDirect(outputFd);
}

// Procedure record, direct.
//   offset  size  content
//   0       1     0D
//   1       4+n   text: procedure
void sendProcedure(int outputFd, const CatalogueEntry& entry) {
  sendText(outputFd, kProcedureTag, entry.procedure);
}

// Field record, direct.
//   offset  size  content
//   0       1     0E
//   1       4+n   text: name
//   5+n     4+m   text: description
void sendField(int outputFd, const CatalogueEntry& entry) {
  beginRecord(kFieldTag);
  putText(entry.fieldName, 4);
  putText(entry.fieldDescription);
  sendDirect(outputFd);
}

// Components record, direct.
//   offset  size  content
//   0       1     10
//   1       ...   text, for each component: its label
void sendComponents(int outputFd, const CatalogueEntry& entry) {
  if (entry.componentLabels.empty()) return;
  beginRecord(kComponentsTag);
  for (const std::string& label : entry.componentLabels) putText(label);
  sendDirect(outputFd);
}

// Frame record, direct.
//   offset  size  content
//   0       1     0F
//   1       4     frame index, from 0
//   5       4     domain
//   9       4     mode
//   13      8     frame value, double
//   21      8     frequency, double
//   29      4     complex flag
//   33      4*k   classification: k is 1 in nodal entries, 4 in element entries
//   33+4*k  4+n   text: frame description
void sendFrame(int outputFd, const CatalogueEntry& entry) {
  beginRecord(kFrameTag);
  putI32(entry.frameIndex);
  putI32(entry.domain);
  putI32(entry.mode);
  putF64(entry.frameValue);
  putF64(entry.frequency);
  putI32(entry.complex);
  for (const int number : entry.classification) putI32(number);
  putText(entry.frameDescription);
  sendDirect(outputFd);
}

}  // namespace odbs
