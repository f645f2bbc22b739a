// SPDX-License-Identifier: BSD-3-Clause
// The whole model of a database as arrays, put together from the records of a G or g reply.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "client/read_reply.h"
#include "client/records/model_records.h"

namespace odbs::client {

// The mesh of one part instance, or of the root assembly.
struct Instance {
  std::string name;  // empty in a model of one instance, whose name is not sent
  bool isRootAssembly = false;

  std::uint32_t nCoordinates = 0;  // per node; 0 while there are no nodes
  std::vector<std::int32_t> nodeLabels;
  std::vector<float> coordinates;  // nCoordinates of each node, in the order of the labels

  std::vector<std::int32_t> elementLabels;
  std::vector<std::uint32_t> elementTypes;       // positions in Model::elementTypes
  std::vector<std::int32_t> sectionNumbers;      // 0: none
  std::vector<std::size_t> connectivityOffsets;  // nElements + 1, or empty without elements
  std::vector<std::int32_t> connectivity;        // node labels of this instance

  std::vector<AnalyticSurface> analyticSurfaces;
  std::vector<RigidBody> rigidBodies;  // of the last instance: the root assembly's follow its own
};

struct Model : ReplyHead {
  std::string annotation;  // all its lines, empty when there is none
  std::vector<Section> sections;
  std::vector<Material> materials;
  std::vector<Instance> instances;        // in the order of their names; the root assembly last
  std::vector<std::string> elementTypes;  // names, in the order of first use
};

// Takes the records of one reply in their order.
class ModelBuilder {
 public:
  // Throws MalformedRecord for a record that is malformed or out of order.
  void add(const Record& record);

  // Ends the model and hands it over; the builder is then empty.
  Model finish();

 private:
  void addNode(const Record& record);
  void addElement(const Record& record);
  void addName(const Record& record);
  std::uint32_t typeCode(std::string_view type);
  Instance& openInstance();

  Model model_;
  bool hasNames_ = false;    // more than one instance: names announce them
  std::string pendingName_;  // a name whose next record decides what it names
  bool namePending_ = false;
  bool inSectionGroup_ = false;
  std::string lastType_;  // most elements have the type of the one before
  std::uint32_t lastCode_ = 0;
  std::unordered_map<std::string, std::uint32_t> codes_;
};

enum class ModelScope { kNodesOnly, kWhole };

// Asks the server for the model of the database at `path` (as the server sees it). Throws
// DatabaseNotOpened and what Connection and the decoders throw.
Model readModel(Connection& server, const std::string& path, ModelScope scope = ModelScope::kWhole);

}  // namespace odbs::client
