// SPDX-License-Identifier: BSD-3-Clause
// The headings of a print file. The order matters where one heading begins like another.
#include "importer/results/dat_table.h"

#include "base/text.h"

namespace odbs::importer {

namespace {

constexpr std::string_view kTensor = "11 22 33 12 13 23";
constexpr std::string_view kInertia = "XX YY ZZ XY XZ YZ";

constexpr DatKind kKinds[] = {
    // *NODE PRINT
    {"displacements (vx,vy,vz)", DatRows::nodes, "U", "1 2 3"},
    {"displacements (v(i)", DatRows::nodes, "U", "*"},
    {"velocities (vx,vy,vz)", DatRows::nodes, "V", "1 2 3"},
    {"forces (fx,fy,fz)", DatRows::nodes, "RF", "1 2 3"},
    {"total force (fx,fy,fz)", DatRows::totals, "RF", "1 2 3"},
    {"temperatures", DatRows::nodes, "NT", "-"},
    {"static temperatures", DatRows::nodes, "TS", "-"},
    {"total temperatures", DatRows::nodes, "TT", "-"},
    {"static pressures", DatRows::nodes, "PS", "-"},
    {"total pressures", DatRows::nodes, "PT", "-"},
    {"network pressures", DatRows::nodes, "PN", "-"},
    {"pressure coefficients", DatRows::nodes, "CP", "-"},
    {"Mach number", DatRows::nodes, "MACH", "-"},
    {"mass flows", DatRows::nodes, "MF", "-"},
    {"Change in depth", DatRows::nodes, "DEPT", "-"},
    {"turbulence conservative variables", DatRows::nodes, "TURB", "*"},
    {"heat generation", DatRows::nodes, "RFL", "-"},
    {"total heat generation", DatRows::totals, "RFL", "-"},
    // *EL PRINT
    {"stresses (elem", DatRows::points, "S", kTensor},
    {"viscous stresses (elem", DatRows::points, "SVF", kTensor},
    {"strains (elem", DatRows::points, "E", kTensor},
    {"mechanical strains (elem", DatRows::points, "ME", kTensor},
    {"equivalent plastic strain (elem", DatRows::points, "PEEQ", "-"},
    {"internal energy density (elem", DatRows::points, "ENER", "-"},
    {"internal state variables (elem", DatRows::points, "SDV", "*"},
    {"heat flux (elem", DatRows::points, "HFL", "1 2 3"},
    {"global coordinates (elem", DatRows::points, "COORD", "1 2 3"},
    {"internal energy (elem", DatRows::elements, "ELSE", "-"},
    {"kinetic energy (elem", DatRows::elements, "ELKE", "-"},
    {"volume (elem", DatRows::elements, "EVOL", "-"},
    {"mass (elem", DatRows::elements, "EMAS", "MASS XX YY ZZ XY XZ YZ"},
    {"centrifugal force(elem", DatRows::elements, "CENT", "-"},
    {"body heating (elem", DatRows::elements, "EBHE", "-"},
    {"total internal energy", DatRows::totals, "ELSE", "-"},
    {"total kinetic energy", DatRows::totals, "ELKE", "-"},
    {"total volume", DatRows::totals, "EVOL", "-"},
    {"total mass moment of inertia about", DatRows::totals, "INERTIA ABOUT CENTER", kInertia},
    {"total mass moment of inertia", DatRows::totals, "INERTIA", kInertia},
    {"total mass", DatRows::totals, "EMAS", "-"},
    {"center of gravity for set", DatRows::totals, "CENTER OF GRAVITY", "1 2 3"},
    {"total body heating", DatRows::totals, "EBHE", "-"},
    // *CONTACT PRINT
    {"relative contact displacement (slave node", DatRows::nodes, "CDIS", "OPEN SLIP1 SLIP2"},
    {"relative contact displacement (slave elem", DatRows::faces, "CDIS", "OPEN SLIP1 SLIP2"},
    {"contact stress (slave node", DatRows::nodes, "CSTR", "PRESS SHEAR1 SHEAR2"},
    {"contact stress (slave elem", DatRows::faces, "CSTR", "PRESS SHEAR1 SHEAR2"},
    {"contact print energy (slave node", DatRows::nodes, "CELS", "-"},
    {"contact print energy (slave elem", DatRows::faces, "CELS", "-"},
    {"total contact spring energy", DatRows::totals, "CELS", "-"},
    {"total number of contact elements", DatRows::totals, kDatContactElements, "-"},
    // *SECTION PRINT, *FACE PRINT
    {"statistics for", DatRows::statistics, kDatStatistics, ""},
    {"surface stress vector", DatRows::facePoints, "DRAG", "*"},
    {"heat flux at the integration points", DatRows::facePoints, "FLUX", "*"},
    {"total surface force", DatRows::totals, "DRAG", "1 2 3"},
    {"total surface flux", DatRows::totals, "FLUX", "-"},
    // Modes
    {"B U C K L I N G   F A C T O R", DatRows::modes, kDatBuckling, "FACTOR"},
    {"P A R T I C I P A T I O N   F A C T O R S   F O R", DatRows::modes, kDatHarmonic,
     "FREQUENCY REAL IMAGINARY"},
    {"P A R T I C I P A T I O N   F A C T O R S", DatRows::modes, kDatParticipation,
     "X Y Z RX RY RZ"},
    {"E F F E C T I V E   M O D A L   M A S S", DatRows::modes, kDatEffectiveMass,
     "X Y Z RX RY RZ"},
    {"T O T A L   E F F E C T I V E   M A S S", DatRows::modeTotals, kDatTotalEffectiveMass,
     "X Y Z RX RY RZ"},
    {"E I G E N M O D E   T U R N I N G", DatRows::diameterModes, kDatTurning, ""},
    // Its columns depend on the headings of the columns: see the reader.
    {"E I G E N V A L U E   O U T P U T", DatRows::modes, kDatEigenvalues, ""},
};

struct StatisticsPart {
  std::string_view subheading;
  std::string_view columns;
};

constexpr StatisticsPart kStatisticsParts[] = {
    {"total surface force (fx,fy,fz)", "SOF1 SOF2 SOF3 SOM1 SOM2 SOM3"},
    {"total normal surface force", "SOFN1 SOFN2 SOFN3 SOMN1 SOMN2 SOMN3"},
    {"total shear surface force", "SOFS1 SOFS2 SOFS3 SOMS1 SOMS2 SOMS3"},
    {"center of gravity and mean normal", "CENTER1 CENTER2 CENTER3 NORMAL1 NORMAL2 NORMAL3"},
    {"moment about the center of gravity", "SOMC1 SOMC2 SOMC3"},
    {"area, normal force (+ = tension), shear force (size), torque",
     "SOAREA SOFNORMAL SOFSHEAR SOTORQUE SOBENDING"},
    {"area,  normal force (+ = tension) and shear force", "SOAREA SOFNORMAL SOFSHEAR"},
};

}  // namespace

const DatKind* findDatKind(std::string_view text) {
  for (const DatKind& kind : kKinds) {
    if (startsWith(text, kind.heading)) return &kind;
  }
  return nullptr;
}

std::string_view statisticsColumns(std::string_view subheading) {
  for (const StatisticsPart& part : kStatisticsParts) {
    if (startsWith(subheading, part.subheading)) return part.columns;
  }
  return {};
}

int nDatKeys(DatRows rows) {
  switch (rows) {
    case DatRows::nodes:
    case DatRows::elements:
    case DatRows::modes:
      return 1;
    case DatRows::points:
    case DatRows::faces:
    case DatRows::diameterModes:
      return 2;
    case DatRows::facePoints:
      return 3;
    default:
      return 0;
  }
}

}  // namespace odbs::importer
