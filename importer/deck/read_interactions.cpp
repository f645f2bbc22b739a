// SPDX-License-Identifier: BSD-3-Clause
// Constraints, contact pairs and their properties, amplitudes: in the words of the database.
#include <algorithm>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

using Kind = NamedObject::Kind;

constexpr std::size_t kMaxPairs = 1'000'000;  // of one *AMPLITUDE
// What the syntax has where a parameter is left out.
constexpr double kSmooth = 0.2, kExtensionZone = 0.1, kSlipTolerance = 0.005;

// Multi-point constraints that join nodes to one other node.
constexpr std::string_view kJoints[] = {"BEAM", "ELBOW", "PIN", "LINK", "TIE"};

// The kinds of *TIE that join sectors of a model instead of surfaces.
constexpr std::string_view kSectorTies[] = {"CYCLICSYMMETRY", "MULTISTAGE", "FLUIDPERIODIC",
                                            "FLUIDCYCLIC"};

const char* enforcementOf(const std::string& type, const char* otherwise) {
  if (type.empty()) return otherwise;
  return startsWith(squeezed(type), "NODE") ? "NODE_TO_SURFACE" : "SURFACE_TO_SURFACE";
}

bool isNo(const std::string& value) {
  return value == "NO";
}

}  // namespace

std::string DeckParser::freeName(const std::string& base, Kind kind) {
  const int n = ++names_[std::to_string(static_cast<int>(kind)) + base];
  return n == 1 ? base : base + "-" + std::to_string(n);
}

NamedObject DeckParser::startObject(const Keyword& keyword, Kind kind, const char* type,
                                    const std::string& name) {
  NamedObject object;
  object.kind = kind;
  object.type = type;
  object.name = name;
  object.place = keyword.place;
  return object;
}

void DeckParser::addSpecified(const Keyword& keyword, std::string_view parameter,
                              const char* otherwise, const std::string& methodGetter,
                              const std::string& getter, NamedObject& object) {
  const bool given = !keyword.value(parameter).empty();
  object.values.emplace_back(methodGetter, std::string(given ? "SPECIFIED" : otherwise));
  if (given) object.values.emplace_back(getter, realOf(keyword.value(parameter)));
}

// Each line: slave and master surface.
void DeckParser::readTie(const Keyword& keyword) {
  const bool sectors = std::any_of(std::begin(kSectorTies), std::end(kSectorTies),
                                   [&](std::string_view p) { return keyword.has(p); });
  if (sectors) return ignore(keyword);
  const std::string& name = keyword.value("NAME");
  std::string_view line;
  while (lines_.dataLine(line)) {
    Fields fields(line);
    std::string_view slave, master;
    if (!fields.next(slave) || !fields.next(master)) fail("*TIE needs a slave and a master");
    NamedObject tie = startObject(keyword, Kind::constraint, "odb_Tie",
                                  freeName(name.empty() ? "TIE" : name, Kind::constraint));
    tie.regions = {{"slave", referenceOf(slave), true}, {"master", referenceOf(master), true}};
    tie.values = {{"adjust", !isNo(keyword.value("ADJUST"))},
                  {"tieRotations", !keyword.has("NOROTATION")},
                  {"thickness", !keyword.has("NOTHICKNESS")},
                  {"constraintEnforcement",
                   std::string(enforcementOf(keyword.value("TYPE"), "SOLVER_DEFAULT"))}};
    addSpecified(keyword, "POSITIONTOLERANCE", "COMPUTED", "positionToleranceMethod",
                 "positionTolerance", tie);
    addSpecified(keyword, "CONSTRAINTRATIO", "DEFAULT", "constraintRatioMethod", "constraintRatio",
                 tie);
    scope().objects.push_back(std::move(tie));
  }
}

// The kind and the degrees of freedom follow in a keyword for themselves.
void DeckParser::readCoupling(const Keyword& keyword) {
  const std::string& name = keyword.value("CONSTRAINTNAME");
  NamedObject coupling = startObject(keyword, Kind::constraint, "odb_Coupling",
                                     freeName(name.empty() ? "COUPLING" : name, Kind::constraint));
  required(keyword, "REFNODE");
  required(keyword, "SURFACE");
  coupling.regions = {{"controlPoint", referenceOf(keyword.find("REFNODE")->raw), false},
                      {"surface", referenceOf(keyword.find("SURFACE")->raw), true}};
  if (keyword.has("INFLUENCERADIUS")) {
    coupling.values.emplace_back("influenceRadius", realOf(keyword.value("INFLUENCERADIUS")));
  }
  scope().objects.push_back(std::move(coupling));
  couplingOpen_ = true;
}

void DeckParser::readCouplingKind(const Keyword& keyword) {
  if (!couplingOpen_) return ignore(keyword);
  couplingOpen_ = false;
  auto& values = scope().objects.back().values;
  const bool kinematic = keyword.name == "KINEMATIC";
  const bool structural = keyword.value("COUPLING") == "STRUCTURAL";
  values.emplace_back("couplingType", std::string(kinematic    ? "KINEMATIC"
                                                  : structural ? "DISTRIBUTING_STRUCTURAL"
                                                               : "DISTRIBUTING"));
  const std::string& weighting = keyword.value("WEIGHTINGMETHOD");
  values.emplace_back("weightingMethod", weighting.empty() ? std::string("UNIFORM") : weighting);
  bool coupled[6] = {}, any = false;
  std::string_view line;
  while (lines_.dataLine(line)) {
    Fields fields(line);
    std::string_view field;
    if (!fields.next(field)) continue;
    const std::int64_t first = integerOf(field);
    const std::int64_t last = fields.next(field) && !field.empty() ? integerOf(field) : first;
    if (first < 1 || last < first || last > 6) fail("a coupling has the directions 1 to 6");
    for (std::int64_t d = first; d <= last; ++d) coupled[d - 1] = any = true;
  }
  const char* const names[6] = {"u1", "u2", "u3", "ur1", "ur2", "ur3"};
  for (std::size_t d = 0; d < 6; ++d) values.emplace_back(names[d], coupled[d] || !any);
}

// Each line: node or set, first and last direction. Lines with the same directions are one object.
void DeckParser::readKinematicCoupling(const Keyword& keyword) {
  required(keyword, "REFNODE");
  const Reference control = referenceOf(keyword.find("REFNODE")->raw);
  for (const auto& fields : dataFields()) {
    if (fields.empty()) continue;
    NamedObject coupling = startObject(keyword, Kind::constraint, "odb_Coupling",
                                       freeName("KINEMATIC COUPLING", Kind::constraint));
    coupling.regions = {{"controlPoint", control, false},
                        {"couplingNodes", referenceOf(fields[0]), false}};
    const std::int64_t first = fields.size() > 1 ? integerOf(fields[1]) : 1;
    const std::int64_t last = fields.size() > 2   ? integerOf(fields[2])
                              : fields.size() > 1 ? first
                                                  : 6;
    coupling.values = {{"couplingType", std::string("KINEMATIC")},
                       {"weightingMethod", std::string("UNIFORM")}};
    const char* const names[6] = {"u1", "u2", "u3", "ur1", "ur2", "ur3"};
    for (std::int64_t d = 1; d <= 6; ++d) {
      coupling.values.emplace_back(names[d - 1], d >= first && d <= last);
    }
    scope().objects.push_back(std::move(coupling));
  }
}

// Kind, node or set, and the node or set that it follows. Kinds that join nodes in other ways have
// no place.
void DeckParser::readMpc(const Keyword& keyword) {
  const bool user = keyword.has("USER");
  bool left = false;
  for (const auto& fields : dataFields()) {
    const std::string type = fields.empty() ? std::string() : upperCase(fields[0]);
    const bool known =
        user || std::find(std::begin(kJoints), std::end(kJoints), type) != std::end(kJoints);
    if (!known || fields.size() < 3) {
      left = true;
      continue;
    }
    NamedObject mpc =
        startObject(keyword, Kind::constraint, "odb_MPC", freeName("MPC", Kind::constraint));
    mpc.regions = {{"surface", referenceOf(fields[1]), false},
                   {"controlPoint", referenceOf(fields[2]), false}};
    mpc.values = {{"mpcType", user ? std::string("USER_DEFINED") : type}};
    if (user) {
      const bool nodes = keyword.value("MODE") == "NODE";
      mpc.values.emplace_back("userMode", std::string(nodes ? "NODE_MODE" : "DOF_MODE"));
      const auto number = parseInt(type);
      mpc.values.emplace_back("userType", static_cast<int>(number.value_or(0)));
    }
    scope().objects.push_back(std::move(mpc));
  }
  if (left) ignore(keyword);
}

// One line: shell and solid surface.
void DeckParser::readShellToSolidCoupling(const Keyword& keyword) {
  const std::string& name = keyword.value("CONSTRAINTNAME");
  for (const auto& fields : dataFields()) {
    if (fields.size() < 2) fail("*SHELL TO SOLID COUPLING needs a shell and a solid surface");
    NamedObject coupling =
        startObject(keyword, Kind::constraint, "odb_ShellSolidCoupling",
                    freeName(name.empty() ? "SHELL TO SOLID" : name, Kind::constraint));
    coupling.regions = {{"shellEdge", referenceOf(fields[0]), true},
                        {"solidFace", referenceOf(fields[1]), true}};
    addSpecified(keyword, "POSITIONTOLERANCE", "COMPUTED", "positionToleranceMethod",
                 "positionTolerance", coupling);
    addSpecified(keyword, "INFLUENCEDISTANCE", "DEFAULT", "influenceDistanceMethod",
                 "influenceDistance", coupling);
    scope().objects.push_back(std::move(coupling));
  }
}

// Up to three nodes of other instances.
void DeckParser::readDisplayBody(const Keyword& keyword) {
  NamedObject body = startObject(keyword, Kind::constraint, "odb_DisplayBody",
                                 freeName("DISPLAY BODY", Kind::constraint));
  body.values.emplace_back("instanceName", required(keyword, "INSTANCE"));
  int n = 0;
  for (const auto& fields : dataFields()) {
    for (const std::string& field : fields) {
      const Reference node = referenceOf(field);
      if (node.label == 0 || ++n > 3) continue;
      const std::string getter = "referenceNode" + std::to_string(n);
      if (node.owner != kOwn) {
        const std::string& owner = deck_.instances[static_cast<std::size_t>(node.owner)].name;
        body.values.emplace_back(getter + "InstanceName", owner);
      }
      body.values.emplace_back(getter + "Label", static_cast<int>(node.label));
    }
  }
  scope().objects.push_back(std::move(body));
}

void DeckParser::readSurfaceInteraction(const Keyword& keyword) {
  property_ = required(keyword, "NAME");
  const auto same = [&](const NamedObject& o) {
    return o.kind == Kind::interactionProperty && o.name == property_;
  };
  auto& objects = deck_.objects;
  if (std::any_of(objects.begin(), objects.end(), same)) {
    warn(keyword.place,
         "surface interaction " + property_ + " is defined twice; the last definition stands");
    objects.erase(std::remove_if(objects.begin(), objects.end(), same), objects.end());
  }
  objects.push_back(
      startObject(keyword, Kind::interactionProperty, "odb_ContactProperty", property_));
}

// Friction of connectors is another matter: the next *FRICTION is theirs.
void DeckParser::readConnectorFriction(const Keyword& keyword) {
  property_.clear();
  ignore(keyword);
}

// Rows of a coefficient, slip rate, pressure and temperature. In a single row there is nothing to
// depend on: one solver's second number is then the shear stress per slip.
void DeckParser::readFriction(const Keyword& keyword) {
  if (property_.empty() || inStep_) return ignore(keyword);
  const auto property =
      std::find_if(deck_.objects.begin(), deck_.objects.end(), [&](const NamedObject& o) {
        return o.kind == Kind::interactionProperty && o.name == property_;
      });
  NamedObject friction;
  const std::string in = "tangentialBehavior.";
  const auto set = [&](const char* getter, NamedObject::Value value) {
    friction.values.emplace_back(in + getter, std::move(value));
  };
  const bool user = keyword.has("USER"), decay = keyword.has("EXPONENTIALDECAY");
  set("formulation", std::string(keyword.has("ROUGH")      ? "ROUGH"
                                 : keyword.has("LAGRANGE") ? "LAGRANGE"
                                 : decay                   ? "EXPONENTIAL_DECAY"
                                 : user                    ? "USER_DEFINED"
                                                           : "PENALTY"));
  set("directionality", std::string(keyword.has("ANISOTROPIC") ? "ANISOTROPIC" : "ISOTROPIC"));
  if (decay) {
    set("exponentialDecayDefinition",
        std::string(keyword.has("TESTDATA") ? "TEST_DATA" : "COEFFICIENTS"));
  }
  const auto number = [&](const char* parameter) { return realOf(keyword.value(parameter)); };
  if (keyword.has("DEPENDENCIES")) {
    set("dependencies", static_cast<int>(integerOf(keyword.value("DEPENDENCIES"))));
  }
  if (keyword.has("TAUMAX")) set("shearStressLimit", number("TAUMAX"));
  const bool absolute = keyword.has("ELASTICSLIP");
  set("maximumElasticSlip", std::string(absolute ? "ABSOLUTE_DISTANCE" : "FRACTION"));
  if (absolute) set("absoluteDistance", number("ELASTICSLIP"));
  if (!absolute) {
    set("fraction", keyword.has("SLIPTOLERANCE") ? number("SLIPTOLERANCE") : kSlipTolerance);
  }
  double stiffness = keyword.has("SHEARTRACTIONSLOPE") ? number("SHEARTRACTIONSLOPE") : 0;
  if (user) {
    set("nStateDependentVars",
        keyword.has("DEPVAR") ? static_cast<int>(integerOf(keyword.value("DEPVAR"))) : 0);
    set("useProperties", keyword.has("PROPERTIES"));
  }
  std::vector<std::vector<double>> rows;
  std::string_view line;
  while (lines_.dataLine(line)) rows.push_back(realsOf(line, 64));
  const bool coefficients = !user && !decay && !keyword.has("ANISOTROPIC");
  if (coefficients && rows.size() == 1 && rows[0].size() > 1) {
    if (stiffness == 0) stiffness = rows[0][1];
    rows[0].resize(1);
  }
  const char* const dependencies[] = {"slipRateDependency", "pressureDependency",
                                      "temperatureDependency"};
  for (std::size_t i = 0; coefficients && i < 3; ++i) {
    // What is the same in all rows is nothing that they depend on.
    const auto varies = [&](const std::vector<double>& row) {
      const auto at = [&](const std::vector<double>& r) { return i + 1 < r.size() ? r[i + 1] : 0; };
      return at(row) != at(rows[0]);
    };
    set(dependencies[i], std::any_of(rows.begin(), rows.end(), varies));
  }
  if (stiffness != 0) set("elasticSlipStiffness", stiffness);
  property->values = std::move(friction.values);
  property->tables = {{in + "table", std::move(rows)}};
}

// Each line: slave and master surface.
void DeckParser::readContactPair(const Keyword& keyword) {
  const std::string& adjust = keyword.value("ADJUST");
  const auto clearance = numberOf(adjust);
  std::string_view line;
  while (lines_.dataLine(line)) {
    Fields fields(line);
    std::string_view slave, master;
    fields.next(slave);
    // A surface that touches itself stands alone.
    if (!fields.next(master) || master.empty()) master = slave;
    NamedObject pair =
        startObject(keyword, Kind::interaction, "", freeName("INT", Kind::interaction));
    pair.regions = {{"slave", referenceOf(slave), true}, {"master", referenceOf(master), true}};
    pair.values = {{"sliding", std::string(keyword.has("SMALLSLIDING") ? "SMALL" : "FINITE")},
                   {"interactionProperty", keyword.value("INTERACTION")},
                   {"createStepName", inStep_ ? deck_.steps.back().name : std::string("Initial")}};
    NamedObject dynamic = pair;
    pair.isExplicit = false;
    dynamic.isExplicit = true;

    pair.type = "odb_SurfaceToSurfaceContactStd";
    const auto set = [&](const char* getter, NamedObject::Value value) {
      pair.values.emplace_back(getter, std::move(value));
    };
    const auto real = [&](const char* parameter, double otherwise) {
      return keyword.value(parameter).empty() ? otherwise : realOf(keyword.value(parameter));
    };
    set("smooth", real("SMOOTH", kSmooth));
    set("extensionZone", real("EXTENSIONZONE", kExtensionZone));
    set("hcrit", real("HCRIT", 0));
    set("enforcement", std::string(enforcementOf(keyword.value("TYPE"), "NODE_TO_SURFACE")));
    set("thickness", !keyword.has("NOTHICKNESS"));
    set("tied", keyword.has("TIED"));
    set("contactTracking",
        std::string(keyword.value("TRACKING") == "STATE" ? "ONE_CONFIG" : "TWO_CONFIG"));
    set("adjustMethod", std::string(adjust.empty()   ? "NONE"
                                    : !clearance     ? "SET"
                                    : *clearance > 0 ? "TOLERANCE"
                                                     : "OVERCLOSED"));
    if (clearance) set("adjustTolerance", *clearance);
    if (!adjust.empty() && !clearance) {
      pair.regions.push_back({"adjustSet", referenceOf(keyword.find("ADJUST")->raw), false});
    }
    scope().objects.push_back(std::move(pair));

    dynamic.type = "odb_SurfaceToSurfaceContactExp";
    const std::string& method = keyword.value("MECHANICALCONSTRAINT");
    dynamic.values.emplace_back("mechanicalConstraint",
                                method.empty() ? std::string("KINEMATIC") : method);
    dynamic.values.emplace_back("contactControls", keyword.value("CPSET"));
    addSpecified(keyword, "WEIGHT", "DEFAULT", "weightingFactorType", "weightingFactor", dynamic);
    scope().objects.push_back(std::move(dynamic));
  }
}

// Pairs of time and amplitude, up to four on a line; equally spaced ones without their times.
void DeckParser::readAmplitude(const Keyword& keyword) {
  const std::string definition = squeezed(keyword.value("DEFINITION"));
  const bool spaced = definition == "EQUALLYSPACED";
  if (!definition.empty() && definition != "TABULAR" && !spaced) return ignore(keyword);
  const std::string& name = required(keyword, "NAME");
  const auto same = [&](const NamedObject& o) {
    return o.kind == Kind::amplitude && o.name == name;
  };
  auto& objects = deck_.objects;
  if (std::any_of(objects.begin(), objects.end(), same)) {
    warn(keyword.place, "amplitude " + name + " is defined twice; the last definition stands");
    objects.erase(std::remove_if(objects.begin(), objects.end(), same), objects.end());
  }
  if (const Parameter* input = keyword.find("INPUT")) lines_.push(input->raw);
  NamedObject amplitude = startObject(keyword, Kind::amplitude, "odb_TabularAmplitude", name);
  std::vector<double> numbers;
  std::string_view line;
  while (lines_.dataLine(line)) {
    const auto row = realsOf(line, 64);
    numbers.insert(numbers.end(), row.begin(), row.end());
    if (numbers.size() > 2 * kMaxPairs) fail("an amplitude with too many values");
  }
  std::vector<std::vector<double>> rows;
  if (spaced) {
    const double step = realOf(required(keyword, "FIXEDINTERVAL"));
    const double begin = realOf(keyword.value("BEGIN"));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
      rows.push_back({begin + static_cast<double>(i) * step, numbers[i]});
    }
  } else {
    numbers.resize((numbers.size() + 1) / 2 * 2, 0.0);
    for (std::size_t i = 0; i < numbers.size(); i += 2) {
      rows.push_back({numbers[i], numbers[i + 1]});
    }
  }
  const bool total = startsWith(keyword.value("TIME"), "TOTAL");
  amplitude.values.emplace_back("timeSpan", std::string(total ? "TOTAL" : "STEP"));
  amplitude.values.emplace_back("smooth", realOf(keyword.value("SMOOTH")));
  amplitude.tables.emplace_back("data", std::move(rows));
  deck_.objects.push_back(std::move(amplitude));
}

}  // namespace odbs::importer
