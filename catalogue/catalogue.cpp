// SPDX-License-Identifier: BSD-3-Clause
// The walk over steps, frames and field descriptors that computes a listing.
#include "catalogue/catalogue.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "catalogue/cache_file.h"
#include "catalogue/field_descriptor.h"
#include "server/core/cache_guard.h"
#include "server/core/entity_records.h"
#include "server/core/server_state.h"

namespace odbs {

namespace {

using Descriptors = std::vector<const FieldDescriptor*>;

// The number that says whether a listing covers a field, and the mask that its entries carry.
int selectorOf(const FieldDescriptor& d, CatalogueListing listing) {
  switch (listing) {
    case CatalogueListing::kNodal:
      return d.nodalClass;
    case CatalogueListing::kElement:
      return d.elementPositionMask;
    case CatalogueListing::kVectorTensor:
      return d.vectorPositionMask;
  }
  return 0;
}

class ListingWalk {
 public:
  ListingWalk(odb_Odb& odb, int outputFd, CatalogueListing listing, CacheWriter& cache)
      : odb_(odb),
        name_(odb.name().CStr()),
        outputFd_(outputFd),
        listing_(listing),
        cache_(cache) {}

  void run() {
    odb_StepRepository& steps = odb_.steps();
    odb_StepRepositoryIT it(steps);
    int stepNumber = 0;
    for (it.first(); !it.isDone(); it.next()) walkStep(steps[it.currentKey()], ++stepNumber);
  }

 private:
  void walkStep(odb_Step& step, int stepNumber) {
    entry_.stepNumber = stepNumber;
    entry_.totalTime = static_cast<double>(step.totalTime());
    entry_.stepText = stepText(step.name().CStr(), step.description().CStr());
    entry_.procedure = step.procedure().CStr();
    const odb_SequenceFrame& frames = step.frames();
    const int nFrames = frames.size();
    if (nFrames == 0) return;
    const bool everyFrame = serverState.catalogueMode == CatalogueMode::kEveryFrame;
    Descriptors covered;
    if (!everyFrame)
      covered = coveredByEnds(stepNumber, frames[0], frames[nFrames - 1], nFrames - 1);
    for (int i = 0; i < nFrames; ++i) {
      const odb_Frame frame = frames[i];
      if (everyFrame) {
        covered = coveredBy(frameDescriptors(name_, stepNumber, i, frame));
        frames.release(i);
      }
      listFrame(frame, covered);
    }
  }

  Descriptors coveredBy(const DescriptorList& list) const {
    // A field that could not be read today may be read tomorrow, by a server that starts then.
    if (!list.isWhole) cache_.abandon();
    Descriptors result;
    for (const FieldDescriptor& d : list.fields) {
      if (selectorOf(d, listing_) != 0) result.push_back(&d);
    }
    return result;
  }

  // Contract: in last-frame mode every frame lists the fields of the step's last frame, then those
  // of its first frame that the last one lacks. It saves reading every frame of a long step.
  Descriptors coveredByEnds(int stepNumber, const odb_Frame& first, const odb_Frame& last,
                            int lastIndex) const {
    Descriptors result = coveredBy(frameDescriptors(name_, stepNumber, lastIndex, last));
    std::set<std::string> names;
    for (const FieldDescriptor* d : result) names.insert(d->name);
    for (const FieldDescriptor* d : coveredBy(frameDescriptors(name_, stepNumber, 0, first))) {
      if (names.count(d->name) == 0) result.push_back(d);
    }
    return result;
  }

  void listFrame(const odb_Frame& frame, const Descriptors& covered) {
    entry_.frameIndex = frame.frameIndex();
    entry_.domain = static_cast<int>(frame.domain());
    entry_.mode = frame.mode();
    entry_.frameValue = static_cast<double>(frame.frameValue());
    entry_.frequency = static_cast<double>(frame.frequency());
    entry_.frameDescription = frame.description().CStr();
    for (const FieldDescriptor* d : covered) listField(*d);
  }

  void listField(const FieldDescriptor& d) {
    entry_.fieldName = d.name;
    entry_.fieldDescription = d.description;
    entry_.complex = d.complex ? 1 : 0;
    if (listing_ == CatalogueListing::kNodal) {
      entry_.classification = {d.nodalClass - 1};
    } else {
      entry_.componentLabels = d.componentLabels;
      entry_.classification = {selectorOf(d, listing_), d.invariantMask, d.tensorKindMask,
                               d.hasSectionPoints ? 1 : 0};
    }
    sendStep(outputFd_, entry_);
    sendProcedure(outputFd_, entry_);
    sendField(outputFd_, entry_);
    sendComponents(outputFd_, entry_);
    sendFrame(outputFd_, entry_);
    cache_.entry(entry_, listing_);
  }

  odb_Odb& odb_;
  std::string name_;
  int outputFd_;
  CatalogueListing listing_;
  CacheWriter& cache_;
  CatalogueEntry entry_;
};

}  // namespace

void sendCatalogue(odb_Odb& odb, int outputFd, CatalogueListing listing) {
  CacheKey key;
  key.databasePath = odb.path().CStr();
  key.databaseStatus = port::fileStatus(key.databasePath);
  key.everyFrame = serverState.catalogueMode == CatalogueMode::kEveryFrame;
  const std::string* path = cachePath();
  if (path && replayCache(*path, key, listing, outputFd) == Replay::kServed) return;

  CacheWriter cache(path, key);
  const std::string title = odb.analysisTitle().CStr();
  const int analysisKind = analysisKindOf(odb);
  sendAnalysisTitle(outputFd, title);
  sendAnalysisKind(outputFd, analysisKind);
  cache.analysis(title, analysisKind);
  ListingWalk(odb, outputFd, listing, cache).run();
  cache.finish();
  clearCachePath();
}

}  // namespace odbs
