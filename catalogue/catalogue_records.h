// SPDX-License-Identifier: BSD-3-Clause
// One catalogue entry and the records it is sent as. An entry stands for one combination of step,
// frame and field output and repeats its step's and frame's data in full. A listing that is
// computed and one that is replayed from the cache file go through the same functions.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace odbs {

// Which results are listed; each is what the parent later asks for in a different way.
enum class CatalogueListing {
  kNodal,         // sub-letters d and D
  kElement,       // s and S
  kVectorTensor,  // v and V
};

struct CatalogueEntry {
  int stepNumber = 0;                        // from 1
  double totalTime = 0;                      // of the step, in the model's time unit
  std::string stepText;                      // name, byte 01, description
  std::string procedure;                     //
  std::string fieldName;                     //
  std::string fieldDescription;              //
  std::vector<std::string> componentLabels;  // element entries only
  int frameIndex = 0;                        //
  int domain = 0;                            //
  int mode = 0;                              //
  double frameValue = 0;                     //
  double frequency = 0;                      //
  int complex = 0;                           // 0 or 1
  std::vector<int> classification;           // nodal: class - 1; element: position mask, invariant
                                             // mask, tensor kind mask, section point flag
  std::string frameDescription;              //
};

// Numbers in `CatalogueEntry::classification`.
inline int classificationCount(CatalogueListing listing) {
  return listing == CatalogueListing::kNodal ? 1 : 4;
}

// Step name, the byte 01, step description: at most 199 bytes, cut at the end.
std::string stepText(std::string_view name, std::string_view description);

// The records of an entry. Each is written at once, past the output buffer: what a failed command
// left there waits for the next command that flushes.
void sendStep(int outputFd, const CatalogueEntry& entry);
void sendProcedure(int outputFd, const CatalogueEntry& entry);
void sendField(int outputFd, const CatalogueEntry& entry);
void sendComponents(int outputFd, const CatalogueEntry& entry);  // nothing without labels
void sendFrame(int outputFd, const CatalogueEntry& entry);

}  // namespace odbs
