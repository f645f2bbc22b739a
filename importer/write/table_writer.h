// SPDX-License-Identifier: BSD-3-Clause
// Writes the tables of a print file: integration points as fields, the rest as histories.
#pragma once

#include <odb_API.h>

#include <deque>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_set>
#include <vector>

#include "importer/results/dat_reader.h"
#include "importer/results/line_axes.h"
#include "importer/results/local_systems.h"
#include "importer/write/field_writer.h"
#include "importer/write/result_frames.h"

namespace odbs::importer {

class TableWriter {
 public:
  // A field that a table at integration points becomes.
  struct PointField {
    std::string_view quantity, name, description;
    FieldShape shape;
  };

  // An instance and its mesh in the deck.
  struct Target {
    const Scope* mesh;
    odb_Instance instance;
  };
  // Everything must outlive this. No label is in two targets.
  TableWriter(const Deck& deck, odb_Odb& odb, const std::vector<Target>& targets,
              ResultFrames& frames);

  // Takes the tables in the file's order.
  void add(DatTable& table);
  // Writes what add() has gathered.
  void finish();

  std::size_t nFields() const { return nFields_; }
  std::size_t nHistoryOutputs() const { return nHistoryOutputs_; }
  // Kinds of tables that found no place, with how often.
  const std::map<std::string, std::size_t>& leftOut() const { return leftOut_; }
  // Rows at labels that the deck does not have, by the tables' titles.
  const std::map<std::string, std::size_t>& unknownRows() const { return unknownRows_; }

 private:
  using Moment = ResultFrames::Moment;

  enum class PointKind { node, element, face, nodeSet, elementSet, assembly };
  struct Region {
    int step = 0;
    PointKind kind = PointKind::assembly;
    std::int32_t label = 0;  // of a set the position of its instance
    std::string name;        // of a set; number of a face
    int nodalDiameter = -1;  // of the modes that the values are for; -1: none
    bool operator<(const Region& other) const {
      return std::tie(step, kind, label, name, nodalDiameter) <
             std::tie(other.step, other.kind, other.label, other.name, other.nodalDiameter);
    }
  };
  struct Series {
    std::vector<double> x, values;
    std::vector<double> imaginaryX, imaginary;
  };
  struct Output {
    std::string name, description;
    bool operator<(const Output& other) const {
      return std::tie(name, description) < std::tie(other.name, other.description);
    }
  };
  using Outputs = std::map<Output, Series>;

  // The elements of one type, section category and kind of local system in a table, with the rows
  // of each.
  struct PointBlock {
    std::vector<std::int32_t> labels;
    std::vector<std::size_t> rows;  // first row of each element
    std::size_t nPoints = 0;        // of each
    std::vector<Axes> axes;         // of each element; empty: global ones, or not known
  };

  void takeModes(const DatTable& table);
  void takeTurning(const DatTable& table);
  Moment momentOf(const DatTable& table);
  void flush();
  void place(const Moment& moment, DatTable& real, const DatTable* imaginary);
  void writePoints(const Moment& moment, const DatTable& real, const DatTable* imaginary);
  std::vector<PointBlock> pointBlocks(const DatTable& table, const std::string& field);
  bool addBlock(odb_Frame& frame, const DatTable& real, const DatTable* imaginary,
                const PointBlock& block);
  static std::vector<std::pair<std::string, std::vector<std::size_t>>> fieldsOf(
      const PointField& field, const DatTable& table);
  void addPoints(odb_Frame& frame, const PointField& field, const std::string& name,
                 const PointBlock& block, std::vector<float> rows, std::vector<float> conjugate,
                 std::size_t width, const odb_SectionPoint& point);
  bool addLines(odb_Frame& frame, const PointField& field, const DatTable& real,
                const DatTable* imaginary, const PointBlock& block);
  std::vector<float> lineRows(const DatTable& table, const PointBlock& block,
                              const PointField& field, const std::vector<std::size_t>& sources,
                              const CornerShares& shares, std::size_t stride,
                              const std::vector<Axes>& axes) const;
  void takeSet(const DatTable& table, Region& region) const;
  void addFaces(const Moment& moment, const DatTable& table, bool imaginary);
  void addHistory(const Moment& moment, const DatTable& table, bool imaginary);
  void addValue(const Region& region, const Output& output, double x, double value, bool imaginary);
  Output outputOf(const DatTable& table, std::size_t column) const;
  odb_HistoryPoint pointOf(const Region& region, std::string& name);
  struct Part {
    explicit Part(const Target& target, bool userNormals)
        : instance(target.instance),
          lines(*target.mesh, userNormals),
          systems(*target.mesh),
          nodes(target.mesh->nodes.labels.begin(), target.mesh->nodes.labels.end()) {}
    odb_Instance instance;
    LineAxes lines;
    LocalSystems systems;
    std::unordered_set<std::int32_t> nodes;
  };
  struct Place {
    const ElementBlock* block = nullptr;  // null: no element of the deck
    const Part* part = nullptr;
  };
  Place placeOf(std::int32_t element) const;
  const Part* partOfNode(std::int32_t label) const;  // null: no node of the deck

  const Deck& deck_;
  odb_Odb& odb_;
  ResultFrames& frames_;
  std::deque<Part> parts_;
  std::unordered_map<std::int32_t, Place> placeOf_;  // by element label
  std::unordered_set<std::int32_t> transformed_;  // nodes that are printed in transformed systems
  std::map<Region, Outputs> histories_;
  std::int32_t lastMode_ = 0;      // of the tables of modes
  int nodalDiameter_ = -1;         // of the last table of eigenvalues
  std::vector<DatTable> pending_;  // tables of one frequency: real parts, imaginary parts
  Moment pendingMoment_;
  // What the current frame or mode already has: elements by field, tables by kind and set.
  std::map<std::string, std::unordered_set<std::int32_t>> written_;
  Moment writtenMoment_;
  std::set<std::tuple<int, std::string, std::string>> seen_;  // mode, title, set
  std::size_t nFields_ = 0, nHistoryOutputs_ = 0;
  std::map<std::string, std::size_t> leftOut_, unknownRows_;
};

}  // namespace odbs::importer
