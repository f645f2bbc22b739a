// SPDX-License-Identifier: BSD-3-Clause
// Which step and moment a table belongs to, and histories. Fields are in write_points.cpp.
#include "importer/write/table_writer.h"

#include <odb_embedded_results.h>

namespace odbs::importer {

namespace {

struct HistoryName {
  std::string_view quantity, name, description;
};

// Names of the values that nodes and elements have over time; vectors add their component.
constexpr HistoryName kHistoryNames[] = {
    {"U", "U", "Spatial displacement"},
    {"V", "V", "Spatial velocity"},
    {"RF", "RF", "Reaction force"},
    {"NT", "NT11", "Nodal temperature"},
    {"RFL", "RFL11", "Reaction flux"},
    {"CDIS", "C", "Contact displacement"},
    {"CSTR", "C", "Contact stress"},
    {"CELS", "CELS", "Contact energy"},
    {"CNUM", "CNUM", "Number of contact elements"},
    {"ELSE", "ELSE", "Internal energy"},
    {"ELKE", "ELKE", "Kinetic energy"},
    {"EVOL", "EVOL", "Volume"},
    {"EMAS", "EMAS", "Mass"},
    {"EBHE", "EBHE", "Body heating"},
    {"CENT", "CENT", "Centrifugal load"},
    {"MF", "MFL", "Mass flow rate"},
    {"PN", "PN", "Network pressure"},
    {kDatStatistics, "", "Surface resultant"},
    {kDatEigenvalues, "EIG", "Eigenvalue"},
    {kDatBuckling, "EIGVAL", "Buckling factor"},
    {kDatParticipation, "PF", "Participation factor"},
    {kDatEffectiveMass, "EM", "Effective mass"},
    {kDatTotalEffectiveMass, "EMTOTAL", "Effective mass of all modes"},
};

const HistoryName* historyName(std::string_view quantity) {
  for (const HistoryName& entry : kHistoryNames) {
    if (entry.quantity == quantity) return &entry;
  }
  return nullptr;
}

}  // namespace

TableWriter::TableWriter(const Deck& deck, odb_Odb& odb, const std::vector<Target>& targets,
                         ResultFrames& frames)
    : deck_(deck), odb_(odb), frames_(frames) {
  for (const Target& target : targets) {
    const Part& part = parts_.emplace_back(target, hasUserNormals(deck));
    for (const ElementBlock& block : target.mesh->elements.blocks) {
      for (const std::int32_t label : block.labels) placeOf_.emplace(label, Place{&block, &part});
    }
    for (const std::string& name : target.mesh->transformedSets) {
      const Set* const set = deck.printsLocally ? target.mesh->nodeSets.find(name) : nullptr;
      if (set == nullptr) continue;
      for (const Members& members : set->members) {
        transformed_.insert(members.labels.begin(), members.labels.end());
      }
    }
  }
}

TableWriter::Place TableWriter::placeOf(std::int32_t element) const {
  const auto found = placeOf_.find(element);
  return found == placeOf_.end() ? Place{} : found->second;
}

const TableWriter::Part* TableWriter::partOfNode(std::int32_t label) const {
  for (const Part& part : parts_) {
    if (part.nodes.count(label) != 0) return &part;
  }
  return nullptr;
}

void TableWriter::add(DatTable& table) {
  if (table.quantity == kDatEigenvalues || table.quantity == kDatBuckling) {
    flush();
    seen_.clear();
    const bool cyclic = table.rows == DatRows::diameterModes && table.nRows() > 0;
    nodalDiameter_ = cyclic ? table.keys[0] : -1;
    frames_.enterModes(table.quantity == kDatBuckling, nodalDiameter_);
    return takeModes(table);
  }
  if (table.quantity == kDatTurning) return takeTurning(table);
  const bool ofModes = table.rows == DatRows::modes || table.rows == DatRows::modeTotals;
  if (ofModes && !table.hasTime) return takeModes(table);
  if (table.quantity == kDatHarmonic) {
    flush();
    return frames_.enterHarmonic();
  }
  if (!table.hasTime) {
    ++leftOut_[table.quantity];
    return;
  }
  const Moment moment = momentOf(table);
  if (moment.step < 0) {
    ++leftOut_[table.title];
    return;
  }
  if (frames_.domain(moment.step) != Domain::frequency) return place(moment, table, nullptr);
  const bool same = pendingMoment_.step == moment.step && pendingMoment_.time == moment.time;
  if (!same) flush();
  pendingMoment_ = moment;
  pending_.push_back(std::move(table));
}

void TableWriter::finish() {
  flush();
  for (auto& [region, outputs] : histories_) {
    std::string name;
    const odb_HistoryPoint point = pointOf(region, name);
    odb_Step& step = frames_.step(region.step);
    odb_HistoryRegion& made = step.HistoryRegion(name.c_str(), "", point);
    for (auto& [key, series] : outputs) {
      odb_HistoryOutput& output = made.HistoryOutput(key.name.c_str(), key.description.c_str());
      const auto rows = [](const std::vector<double>& x, const std::vector<double>& values) {
        odb_SequenceSequenceFloat pairs(static_cast<int>(x.size()));
        for (std::size_t i = 0; i < x.size(); ++i) {
          odb_SequenceFloat pair(2);
          pair.append(static_cast<float>(x[i]));
          pair.append(static_cast<float>(values[i]));
          pairs.append(pair);
        }
        return pairs;
      };
      output.addData(rows(series.x, series.values));
      if (!series.imaginary.empty()) {
        odb_embedded::addConjugateData(output, rows(series.imaginaryX, series.imaginary));
      }
      ++nHistoryOutputs_;
    }
  }
  histories_.clear();
}

// Values of each mode: histories of the whole model over the mode's number.
void TableWriter::takeModes(const DatTable& table) {
  const int step = frames_.current();
  if (step >= frames_.nSteps() || frames_.domain(step) != Domain::modal) {
    ++leftOut_[table.title];
    return;
  }
  const std::size_t nKeys = static_cast<std::size_t>(table.nKeys), nColumns = table.columns.size();
  std::size_t frequency = 0;
  while (frequency < nColumns && table.columns[frequency] != "FREQUENCY") ++frequency;
  for (std::size_t row = 0; row < table.nRows(); ++row) {
    // Totals of all modes stand at the last one.
    if (nKeys > 0) lastMode_ = table.keys[(row + 1) * nKeys - 1];
    const std::int32_t mode = lastMode_;
    // The tables after that of the eigenvalues do not repeat the nodal diameter.
    const int diameter = nKeys == 2 ? table.keys[row * nKeys] : nodalDiameter_;
    const Region region{step, PointKind::assembly, 0, {}, diameter};
    for (std::size_t i = 0; i < nColumns; ++i) {
      addValue(region, outputOf(table, i), mode, table.values[row * nColumns + i], false);
    }
    if (table.quantity == kDatBuckling) frequency = 0;
    const bool values = table.quantity == kDatEigenvalues || table.quantity == kDatBuckling;
    if (values && frequency < nColumns) {
      frames_.announceMode(mode, table.values[row * nColumns + frequency], diameter);
    }
  }
}

// Whether modes run with the axis or against it, where they have nodal diameters.
void TableWriter::takeTurning(const DatTable& table) {
  const int step = frames_.current();
  if (step >= frames_.nSteps() || frames_.domain(step) != Domain::modal) {
    ++leftOut_[table.title];
    return;
  }
  for (std::size_t row = 0; row < table.nRows() && row < table.notes.size(); ++row) {
    const std::string& direction = table.notes[row];
    if (direction != "F" && direction != "B") continue;
    const Region region{step, PointKind::assembly, 0, {}, table.keys[2 * row]};
    addValue(region, {"TURN", "Turning direction (1 forward, -1 backward)"},
             table.keys[2 * row + 1], direction == "F" ? 1 : -1, false);
  }
}

// Modes announce themselves; what is printed a second time for a mode belongs to a later step.
TableWriter::Moment TableWriter::momentOf(const DatTable& table) {
  int mode = table.mode;
  if (mode > 0 && !seen_.insert({mode, table.title, table.set}).second) mode = 0;
  return frames_.at(table.time, mode);
}

// Of a frequency every table comes twice: real parts first, then imaginary parts in the same order.
void TableWriter::flush() {
  std::vector<DatTable> tables;
  tables.swap(pending_);
  const std::size_t half = tables.size() / 2;
  bool paired = tables.size() % 2 == 0;
  for (std::size_t i = 0; paired && i < half; ++i) {
    paired = tables[i].title == tables[half + i].title && tables[i].set == tables[half + i].set &&
             tables[i].keys == tables[half + i].keys;
  }
  for (std::size_t i = 0; i < (paired ? half : tables.size()); ++i) {
    place(pendingMoment_, tables[i], paired ? &tables[half + i] : nullptr);
  }
}

void TableWriter::place(const Moment& moment, DatTable& real, const DatTable* imaginary) {
  switch (real.rows) {
    case DatRows::points:
      return writePoints(moment, real, imaginary);
    case DatRows::nodes:
    case DatRows::elements:
    case DatRows::totals:
    case DatRows::statistics:
      addHistory(moment, real, false);
      if (imaginary != nullptr) addHistory(moment, *imaginary, true);
      return;
    case DatRows::faces:
      addFaces(moment, real, false);
      if (imaginary != nullptr) addFaces(moment, *imaginary, true);
      return;
    default:
      ++leftOut_[real.title];
  }
}

TableWriter::Output TableWriter::outputOf(const DatTable& table, std::size_t column) const {
  const HistoryName* const known = historyName(table.quantity);
  std::string name(known != nullptr ? known->name : std::string_view(table.quantity));
  const std::string& component = table.columns[column];
  if (table.quantity == kDatEigenvalues) {
    name += component == "EIGENVALUE"  ? "VAL"
            : component == "FREQUENCY" ? "FREQ"
            : component == "OMEGA"     ? "OMEGA"
                                       : "IMAG";
  } else if (table.quantity == kDatParticipation || table.quantity == kDatEffectiveMass ||
             table.quantity == kDatTotalEffectiveMass) {
    name += std::to_string(column + 1);
  } else if (table.quantity != kDatBuckling) {
    name += component;
  }
  return {name, known != nullptr ? std::string(known->description) : table.title};
}

// Contact at the faces of elements. The solver prints the points of a face that are in contact,
// more or fewer at other times: the face gets their mean, of energies their sum.
void TableWriter::addFaces(const Moment& moment, const DatTable& table, bool imaginary) {
  const std::size_t nColumns = table.columns.size();
  for (std::size_t row = 0, next = 0; row < table.nRows(); row = next) {
    std::vector<double> sums(nColumns);
    const std::int32_t element = table.keys[2 * row], face = table.keys[2 * row + 1];
    for (next = row; next < table.nRows() && table.keys[2 * next] == element &&
                     table.keys[2 * next + 1] == face;
         ++next) {
      for (std::size_t i = 0; i < nColumns; ++i) sums[i] += table.values[next * nColumns + i];
    }
    if (placeOf(element).block == nullptr) {
      unknownRows_[table.title] += next - row;
      continue;
    }
    const bool adds = table.quantity == "CELS";
    const Region region{moment.step, PointKind::face, element, std::to_string(face),
                        moment.nodalDiameter};
    for (std::size_t i = 0; i < nColumns; ++i) {
      Output output = outputOf(table, i);
      if (!adds) output.description += ", mean over the face";
      addValue(region, output, moment.x, adds ? sums[i] : sums[i] / static_cast<double>(next - row),
               imaginary);
    }
  }
}

// Totals belong to a set of the table's name that one instance alone has.
void TableWriter::takeSet(const DatTable& table, Region& region) const {
  const bool ofNodes = table.quantity == "RF" || table.quantity == "RFL";
  int nFound = 0;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    const odb_Instance& instance = parts_[i].instance;
    const bool nodes = ofNodes && instance.nodeSets().isMember(table.set.c_str());
    if (!nodes && !instance.elementSets().isMember(table.set.c_str())) continue;
    region.kind = nodes ? PointKind::nodeSet : PointKind::elementSet;
    region.label = static_cast<std::int32_t>(i);
    ++nFound;
  }
  if (nFound > 1) region.kind = PointKind::assembly;
  if (region.kind == PointKind::assembly) region.label = 0;
}

void TableWriter::addHistory(const Moment& moment, const DatTable& table, bool imaginary) {
  const std::size_t nColumns = table.columns.size();
  Region region{moment.step, PointKind::assembly, 0, table.set, moment.nodalDiameter};
  if (table.rows == DatRows::nodes || table.rows == DatRows::elements) region.name.clear();
  for (std::size_t row = 0; row < table.nRows(); ++row) {
    bool known = true;
    if (table.rows == DatRows::nodes) {
      region.kind = PointKind::node;
      region.label = table.keys[row];
      known = partOfNode(region.label) != nullptr;
    } else if (table.rows == DatRows::elements) {
      region.kind = PointKind::element;
      region.label = table.keys[row];
      known = placeOf(region.label).block != nullptr;
    } else {
      takeSet(table, region);
    }
    if (!known) {
      ++unknownRows_[table.title];
      continue;
    }
    const bool local =
        region.kind == PointKind::node && nColumns == 3 && transformed_.count(region.label) != 0;
    for (std::size_t i = 0; i < nColumns; ++i) {
      Output output = outputOf(table, i);
      if (local) output.description += " in the system of *TRANSFORM";
      addValue(region, output, moment.x, table.values[row * nColumns + i], imaginary);
    }
  }
}

void TableWriter::addValue(const Region& region, const Output& output, double x, double value,
                           bool imaginary) {
  Series& series = histories_[region][output];
  std::vector<double>& at = imaginary ? series.imaginaryX : series.x;
  // Two sets can print the same node.
  if (!at.empty() && at.back() == x) return;
  at.push_back(x);
  (imaginary ? series.imaginary : series.values).push_back(value);
}

odb_HistoryPoint TableWriter::pointOf(const Region& region, std::string& name) {
  const std::string label = std::to_string(region.label);
  const std::string diameter =
      region.nodalDiameter < 0 ? "" : " nodal diameter " + std::to_string(region.nodalDiameter);
  const auto named = [&](const char* kind, const Part& part, const std::string& what) {
    name = std::string(kind) + " " + part.instance.name().CStr() + "." + what + diameter;
  };
  switch (region.kind) {
    case PointKind::node: {
      const Part& part = *partOfNode(region.label);
      named("Node", part, label);
      return odb_HistoryPoint(part.instance.getNodeFromLabel(region.label));
    }
    case PointKind::element:
    case PointKind::face: {
      const Part& part = *placeOf(region.label).part;
      named("Element", part,
            region.kind == PointKind::face ? label + " face " + region.name : label);
      return odb_HistoryPoint(part.instance.getElementFromLabel(region.label));
    }
    case PointKind::nodeSet:
    case PointKind::elementSet: {
      const Part& part = parts_[static_cast<std::size_t>(region.label)];
      const bool ofNodes = region.kind == PointKind::nodeSet;
      named(ofNodes ? "NodeSet" : "ElementSet", part, region.name);
      return odb_HistoryPoint(ofNodes ? part.instance.nodeSets()[region.name.c_str()]
                                      : part.instance.elementSets()[region.name.c_str()]);
    }
    default:
      name = "Assembly " + deck_.assemblyName + (region.name.empty() ? "" : " " + region.name) +
             diameter;
      return odb_HistoryPoint(odb_.rootAssembly());
  }
}

}  // namespace odbs::importer
