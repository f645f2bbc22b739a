// SPDX-License-Identifier: BSD-3-Clause
// Parts, instances, the assembly, and rigid bodies.
#include <algorithm>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

void DeckParser::readPart(const Keyword& keyword) {
  if (level_ != Level::flat) lines_.fail(keyword.place, "*PART inside of another block");
  const std::string& name = required(keyword, "NAME");
  for (const Part& part : deck_.parts) {
    if (part.name == name) lines_.fail(keyword.place, "part " + name + " is defined twice");
  }
  deck_.flat = false;
  level_ = Level::part;
  part_ = static_cast<std::int32_t>(deck_.parts.size());
  deck_.parts.emplace_back();
  deck_.parts.back().name = name;
  systemSet_ = false;
}

void DeckParser::readEndPart(const Keyword& keyword) {
  if (level_ != Level::part) lines_.fail(keyword.place, "*END PART without *PART");
  level_ = Level::flat;
  systemSet_ = false;
}

void DeckParser::readAssembly(const Keyword& keyword) {
  if (level_ != Level::flat) lines_.fail(keyword.place, "*ASSEMBLY inside of another block");
  if (assemblySeen_) lines_.fail(keyword.place, "a second *ASSEMBLY");
  if (flatPart_ >= 0 && deck_.parts[static_cast<std::size_t>(flatPart_)].content.hasMesh()) {
    lines_.fail(keyword.place, "there are nodes or elements outside of parts before *ASSEMBLY");
  }
  deck_.flat = false;
  assemblySeen_ = true;
  level_ = Level::assembly;
  const Parameter* name = keyword.find("NAME");
  if (name && !name->value.empty()) deck_.assemblyName = name->value;
  systemSet_ = false;
}

// What follows the assembly (sets of output requests, for instance) speaks of it.
void DeckParser::readEndAssembly(const Keyword& keyword) {
  if (level_ != Level::assembly) lines_.fail(keyword.place, "*END ASSEMBLY without *ASSEMBLY");
  systemSet_ = false;
}

void DeckParser::readInstance(const Keyword& keyword) {
  if (level_ != Level::assembly) lines_.fail(keyword.place, "*INSTANCE outside of *ASSEMBLY");
  if (keyword.has("LIBRARY")) {
    lines_.fail(keyword.place, "instances of another analysis (LIBRARY) cannot be imported");
  }
  Instance instance;
  instance.name = required(keyword, "NAME");
  instance.place = keyword.place;
  const std::string& partName = required(keyword, "PART");
  const auto part = std::find_if(deck_.parts.begin(), deck_.parts.end(),
                                 [&](const Part& p) { return p.name == partName; });
  if (part == deck_.parts.end()) lines_.fail(keyword.place, "there is no part " + partName);
  if (instanceIndex(instance.name) >= 0) {
    lines_.fail(keyword.place, "instance " + instance.name + " is defined twice");
  }
  instance.part = static_cast<std::size_t>(part - deck_.parts.begin());

  // Translation, then rotation about the axis from a to b: three numbers, then seven.
  std::string_view line;
  while (lines_.dataLine(line)) {
    const auto values = realsOf(line, 7);
    instance.moved = true;
    if (values.size() <= 3) {
      for (std::size_t i = 0; i < values.size(); ++i) instance.translation[i] += values[i];
      continue;
    }
    if (values.size() < 7) fail("the rotation of an instance needs seven numbers");
    const Vec3 a{values[0], values[1], values[2]}, b{values[3], values[4], values[5]};
    if (norm(b - a) == 0) fail("the two points of a rotation axis are the same");
    for (Vec3& axis : instance.axes) axis = rotated(axis, Vec3{}, b - a, values[6]);
    instance.translation = rotated(instance.translation, a, b, values[6]);
  }
  instance_ = static_cast<std::int32_t>(deck_.instances.size());
  instanceIndices_.emplace(instance.name, instance_);
  deck_.instances.push_back(std::move(instance));
  level_ = Level::instance;
}

void DeckParser::readEndInstance(const Keyword& keyword) {
  if (level_ != Level::instance) lines_.fail(keyword.place, "*END INSTANCE without *INSTANCE");
  level_ = Level::assembly;
  systemSet_ = false;
}

void DeckParser::readRigidBody(const Keyword& keyword) {
  RigidBody body;
  body.place = keyword.place;
  const auto reference = [&](std::string_view name) {
    const Parameter* parameter = keyword.find(name);
    // The raw text: quotes around a qualified name are part of its pieces.
    return parameter && !parameter->raw.empty() ? referenceOf(parameter->raw) : Reference();
  };
  required(keyword, "REFNODE");
  body.referenceNode = reference("REFNODE");
  body.elements = reference("ELSET");
  body.pinNodes = reference("PINNSET");
  body.tieNodes = reference("TIENSET");
  // One solver's spelling: the set's nodes move with the body in full.
  if (!body.tieNodes.given()) body.tieNodes = reference("NSET");
  body.analyticSurface = reference("ANALYTICALSURFACE");
  body.isothermal = startsWith(keyword.value("ISOTHERMAL"), "Y");
  body.centerOfMass = startsWith(keyword.value("POSITION"), "CENTER");
  scope().rigidBodies.push_back(std::move(body));
}

}  // namespace odbs::importer
