// SPDX-License-Identifier: BSD-3-Clause
// Material records of model/materials.h.
#include "model/materials.h"

#include <odb_MaterialTypes.h>

#include "model/put.h"
#include "server/core/record.h"

namespace odbs {

namespace {

constexpr unsigned char kMaterialTag = 0x11;
constexpr std::uint32_t kFailStrainEntry = 0;
constexpr std::uint32_t kFailStressEntry = 1;
constexpr std::int32_t kEndOfFailures = -1;

constexpr int kElasticValues = 6;
constexpr int kFailStrainValues = 5;
constexpr int kFailStressValues = 7;

// What the elastic type may need: an empty text would mean that there is no elastic behaviour.
constexpr std::size_t kTypeRoom = 64;
// What follows the elastic type, to the end of the record.
constexpr std::size_t kLongestElastic =
    4 * (kElasticValues + (1 + kFailStrainValues) + (1 + kFailStressValues) + 1 + 1);

// Puts the first `nValues` values of the table's first row as singles, 0 for what is missing.
void putFirstRow(const odb_SequenceSequenceDouble& table, int nValues) {
  const int nGiven = table.size() > 0 ? table[0].size() : 0;
  for (int i = 0; i < nValues; ++i) {
    putF32(i < nGiven ? static_cast<float>(table[0][i]) : 0.0F);
  }
}

// Elastic behaviour.
//   size  content
//   4+n   type text
//   24    6 values of the table's first row
//   24    fail strain: u32 0, 5 values       when the material has it
//   32    fail stress: u32 1, 7 values       when the material has it
//   4     -1
void putElastic(const kmaO_Elastic& elastic) {
  putString(elastic.type(), kLongestElastic);
  putFirstRow(elastic.table(), kElasticValues);
  const kmaO_FailStrain failStrain = elastic.failStrain();
  if (failStrain.hasValue()) {
    putU32(kFailStrainEntry);
    putFirstRow(failStrain.table(), kFailStrainValues);
  }
  const kmaO_FailStress failStress = elastic.failStress();
  if (failStress.hasValue()) {
    putU32(kFailStressEntry);
    putFirstRow(failStress.table(), kFailStressValues);
  }
  putI32(kEndOfFailures);
}

// Material record, buffered.
//   offset  size  content
//   0       1     kMaterialTag
//   1       4+n   name
//   5+n     4     density, 0 when there is none
//   9+n     ...   elastic behaviour; u32 0 alone when there is none
//   end-4   4     1 when the material is an acoustic medium, else 0
void sendMaterial(const kmaO_Material& material, int outputFd) {
  beginRecord(kMaterialTag);
  putString(material.name(), 4 + kTypeRoom + kLongestElastic);
  const kmaO_Density density = material.density();
  if (density.hasValue()) {
    putFirstRow(density.table(), 1);
  } else {
    putF32(0.0F);
  }
  const kmaO_Elastic elastic = material.elastic();
  if (elastic.hasValue()) {
    putElastic(elastic);
  } else {
    putU32(0);
  }
  const kmaO_AcousticMedium acoustic = material.acousticMedium();
  putU32(acoustic.hasValue() ? 1 : 0);
  appendRecord(outputFd);
}

}  // namespace

void sendMaterials(odb_Odb& odb, int outputFd) {
  kmaO_ApiExtension api;
  odb.extendApi(odb_Enum::odb_MATERIAL, api);
  kmaO_MaterialContainerIT it(api.materials());
  for (it.first(); !it.isDone(); it.next()) sendMaterial(it.currentValue(), outputFd);
}

}  // namespace odbs
