// SPDX-License-Identifier: BSD-3-Clause
// *NSET, *ELSET and *SURFACE. A set named in a set must be defined before, as solvers demand; sets
// named in surfaces are looked up when the whole deck is read.
#include <algorithm>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

constexpr std::int64_t kMaxCopiedRanges = 100'000'000;  // sets in sets in sets

}  // namespace

void DeckParser::readNset(const Keyword& keyword) {
  readSet(keyword, false);
}

void DeckParser::readElset(const Keyword& keyword) {
  readSet(keyword, true);
}

void DeckParser::readSet(const Keyword& keyword, bool elements) {
  const std::string& name = required(keyword, elements ? "ELSET" : "NSET");
  Set& set = (elements ? scope().elementSets : scope().nodeSets).at(name);
  if (keyword.has("INTERNAL")) set.internal = true;
  if (keyword.has("UNSORTED") && !elements) set.unsorted = true;
  const bool generate = keyword.has("GENERATE");
  const std::int32_t owner = ownerOf(keyword);
  set.of(owner);  // an empty set exists too
  if (!elements && keyword.has("ELSET")) addNodesOfElements(keyword, set);
  std::string_view line;
  while (lines_.dataLine(line)) addSetLine(line, generate, elements, owner, set);
}

void DeckParser::addSetLine(std::string_view line, bool generate, bool elements, std::int32_t owner,
                            Set& set) {
  Fields fields(line);
  std::string_view field;
  if (generate) {
    std::int64_t values[3] = {0, 0, 1};
    std::size_t n = 0;
    for (; n < 3 && fields.next(field); ++n) {
      if (!field.empty()) values[n] = n < 2 ? labelOf(field) : integerOf(field);
      if (field.empty() && n < 2) fail("GENERATE needs a first and a last label");
    }
    if (n == 0) return;
    if (n == 1) values[1] = values[0];
    if (values[2] == 0) values[2] = 1;
    if (values[2] < 0) fail("the increment of GENERATE is negative");
    if (values[1] < values[0]) fail("the last label of GENERATE is below the first");
    const auto step =
        static_cast<std::int32_t>(std::min<std::int64_t>(values[2], values[1] - values[0] + 1));
    set.add(owner,
            {static_cast<std::int32_t>(values[0]), static_cast<std::int32_t>(values[1]), step});
    return;
  }
  while (fields.next(field)) {
    if (field.empty()) continue;
    const Reference member = referenceOf(field, owner);
    if (member.label != 0) {
      set.addLabel(member.owner, member.label);
      continue;
    }
    const Set* source = findSet(member, elements);
    if (!source) fail("there is no set " + member.setName + " so far");
    if (source == &set) continue;
    Set copy = *source;
    copy.compact();
    nResolved_ += static_cast<std::int64_t>(copy.nRanges());
    if (nResolved_ > kMaxCopiedRanges) fail("sets name each other too often");
    for (const Members& members : copy.members) {
      for (const Range& range : members.ranges) {
        set.add(members.owner == kOwn ? member.owner : members.owner, range);
      }
    }
    if (set.nRanges() > 1000 && !set.unsorted) set.compact();
  }
}

// *NSET with ELSET: the nodes of the elements that the set has so far.
void DeckParser::addNodesOfElements(const Keyword& keyword, Set& set) {
  const std::string& name = required(keyword, "ELSET");
  if (!scope().elementSets.find(name)) lines_.fail(keyword.place, "there is no set " + name);
  std::vector<std::int32_t> nodes;
  for (const std::int32_t label : membersInOrder(name, true)) {
    const ElementTable::Position at = scope().elements.find(label);
    const ElementBlock& block = scope().elements.blocks[static_cast<std::size_t>(at.block)];
    if (!block.owners.empty()) continue;
    nodes.insert(nodes.end(), block.nodes.begin() + block.offsets[at.index],
                 block.nodes.begin() + block.offsets[at.index + 1]);
  }
  std::sort(nodes.begin(), nodes.end());
  nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
  for (const std::int32_t node : nodes) set.addLabel(kOwn, node);
}

void DeckParser::readSurface(const Keyword& keyword) {
  const std::string& type = keyword.value("TYPE");
  if (type == "SEGMENTS" || type == "CYLINDER" || type == "REVOLUTION") {
    return readAnalyticSurface(keyword);
  }
  if (!type.empty() && type != "ELEMENT" && type != "NODE" && type != "CUTTINGSURFACE" &&
      type != "CUTTING SURFACE" && type != "USER") {
    lines_.fail(keyword.place, "unknown surface type " + type);
  }
  Surface surface;
  surface.name = required(keyword, "NAME");
  surface.place = keyword.place;
  surface.nodeBased = type == "NODE";
  surface.internal = keyword.has("INTERNAL");
  if (keyword.has("COMBINE")) {
    combineSurfaces(keyword, surface);
  } else if (type.empty() || type == "ELEMENT" || type == "NODE") {
    const std::int32_t owner = ownerOf(keyword);
    std::string_view line;
    while (lines_.dataLine(line)) {
      Fields fields(line);
      std::string_view target, face;
      if (!fields.next(target) || target.empty()) continue;
      fields.next(face);
      SurfaceItem item;
      item.place = lines_.place();
      const Reference reference = referenceOf(target, owner);
      item.setOwner = reference.owner;
      if (reference.label != 0) {
        item.members.push_back({reference.owner, {{reference.label, reference.label, 1}}, {}});
      } else {
        item.setName = reference.setName;
      }
      // A node-based surface may carry an area there.
      if (!surface.nodeBased) item.face = upperCase(face);
      surface.items.push_back(std::move(item));
    }
  }
  auto& surfaces = scope().surfaces;
  const auto same = std::find_if(surfaces.begin(), surfaces.end(),
                                 [&](const Surface& s) { return s.name == surface.name; });
  if (same == surfaces.end()) {
    surfaces.push_back(std::move(surface));
  } else {
    warn(keyword.place,
         "surface " + surface.name + " is defined twice; the last definition stands");
    *same = std::move(surface);
  }
}

// COMBINE=UNION: the items of the named surfaces. Differences and intersections are not computed.
void DeckParser::combineSurfaces(const Keyword& keyword, Surface& surface) {
  const bool isUnion = keyword.value("COMBINE") == "UNION";
  if (!isUnion) {
    warn(keyword.place, "surface " + surface.name + " is left empty: only COMBINE=UNION is known");
  }
  std::string_view line;
  while (lines_.dataLine(line)) {
    Fields fields(line);
    for (std::string_view field; isUnion && fields.next(field);) {
      const std::string name = nameOf(field);
      const auto& surfaces = scope().surfaces;
      const auto found = std::find_if(surfaces.begin(), surfaces.end(),
                                      [&](const Surface& s) { return s.name == name; });
      if (found == surfaces.end()) fail("there is no surface " + name);
      surface.items.insert(surface.items.end(), found->items.begin(), found->items.end());
      nResolved_ += static_cast<std::int64_t>(found->items.size());
      if (nResolved_ > kMaxCopiedRanges) fail("surfaces name each other too often");
    }
  }
}

void DeckParser::readAnalyticSurface(const Keyword& keyword) {
  AnalyticSurface surface;
  surface.name = required(keyword, "NAME");
  surface.type = keyword.value("TYPE");
  surface.place = keyword.place;
  if (keyword.has("FILLETRADIUS")) surface.filletRadius = realOf(keyword.value("FILLETRADIUS"));
  std::vector<double> local;
  std::string_view line;
  while (lines_.dataLine(line)) {
    Fields fields(line);
    std::string_view field;
    fields.next(field);
    ProfileSegment segment;
    segment.type = upperCase(field);
    const bool isStart = segment.type == "START", isLine = segment.type == "LINE";
    const bool isArc = segment.type == "CIRCL" || segment.type == "PARAB";
    if (!isStart && !isLine && !isArc) {
      if (surface.type == "SEGMENTS" || !surface.segments.empty()) {
        fail("\"" + segment.type.substr(0, 40) + "\" is no segment of a rigid surface");
      }
      const auto row = realsOf(line, 6);
      local.insert(local.end(), row.begin(), row.end());
      // A short line leaves the rest of its points at zero.
      local.resize((local.size() + 2) / 3 * 3, 0.0);
      continue;
    }
    if (surface.segments.empty() != isStart) fail("the profile must begin with one START");
    const std::size_t n = isArc ? 4 : 2;
    while (segment.values.size() < n && fields.next(field)) {
      segment.values.push_back(static_cast<float>(realOf(field)));
    }
    segment.values.resize(n, 0.0F);
    surface.segments.push_back(std::move(segment));
  }
  const std::size_t nPoints = surface.type == "CYLINDER" ? 3 : surface.type == "REVOLUTION" ? 2 : 0;
  local.resize(3 * nPoints, 0.0);
  for (std::size_t i = 0; i < nPoints; ++i) {
    surface.localPoints.push_back({static_cast<float>(local[3 * i]),
                                   static_cast<float>(local[3 * i + 1]),
                                   static_cast<float>(local[3 * i + 2])});
  }
  if (surface.segments.size() < 2)
    lines_.fail(keyword.place, "the profile needs START and a segment");
  scope().analyticSurfaces.push_back(std::move(surface));
}

}  // namespace odbs::importer
