// SPDX-License-Identifier: BSD-3-Clause
// The result catalogue (commands fd fD fs fS fv fV): which fields each frame holds.
#pragma once

#include <string>
#include <vector>

#include "client/read_reply.h"

namespace odbs::client {

constexpr unsigned char kStepTag = 12;
constexpr unsigned char kProcedureTag = 13;
constexpr unsigned char kFieldTag = 14;
constexpr unsigned char kFrameTag = 15;
constexpr unsigned char kComponentsTag = 16;

struct CatalogueStep {
  std::int32_t number = 0;  // from 1
  double totalTime = 0;     // at the step's start
  std::string name;
  std::string description;
  std::string procedure;  // comes in a separate record
};

struct CatalogueField {
  std::string name;
  std::string description;
  std::vector<std::string> components;  // element listings only
};

// One field in one frame. The numbers from `positions` on are in element listings only.
struct CatalogueEntry {
  std::size_t step = 0;   // position in Catalogue::steps
  std::size_t field = 0;  // position in Catalogue::fields
  std::int32_t frameIndex = 0;
  std::int32_t domain = 0;  // 0 time, 1 frequency, 2 modal, 3 arc length
  std::int32_t mode = 0;
  double frameValue = 0;
  double frequency = 0;
  bool isComplex = false;
  bool isScalar = false;  // nodal listing only: a scalar, else a vector
  std::int32_t positions =
      0;  // bits: 2 centroid, face; 4 integration point; 8 element node; 16 whole
  std::int32_t invariants = 0;   // bit k: invariant k
  std::int32_t tensorKinds = 0;  // bits: 1 scalar, 2, 4, 8 tensors of 6, 4, 3 components, 16 vector
  bool hasSectionPoints = false;
  std::string frameDescription;
};

struct Catalogue : ReplyHead {
  std::vector<CatalogueStep> steps;    // each once
  std::vector<CatalogueField> fields;  // each combination of texts once
  std::vector<CatalogueEntry> entries;
};

CatalogueStep decodeStep(const Record& record);
std::string decodeProcedure(const Record& record);
CatalogueField decodeField(const Record& record);  // without its components
std::vector<std::string> decodeComponents(const Record& record);
// `isNodal`: the record is of the listing at nodes; step and field are left at 0.
CatalogueEntry decodeFrame(const Record& record, bool isNodal);

class CatalogueBuilder {
 public:
  explicit CatalogueBuilder(bool isNodal) : isNodal_(isNodal) {}
  // Throws MalformedRecord for a record that is malformed or out of order.
  void add(const Record& record);
  Catalogue finish();

 private:
  void addFrame(const Record& record);

  Catalogue catalogue_;
  bool isNodal_;
  bool hasStep_ = false, hasField_ = false;  // of the entry in progress
  CatalogueStep step_;
  CatalogueField field_;
};

enum class Listing { kNodal, kElement, kTensor };

struct CatalogueRequest {
  Listing listing = Listing::kElement;
  bool everyFrame = false;  // else the last frame's fields are listed for every frame of a step
  // Empty: no cache file is named. Use a separate file for each database and each
  // listing; the server does not check which of them a file is for.
  std::string cachePath;
};

// Asks for the catalogue of a database. Throws DatabaseNotOpened and what Connection and the
// decoders throw.
Catalogue readCatalogue(Connection& server, const std::string& path,
                        const CatalogueRequest& request);

}  // namespace odbs::client
