// SPDX-License-Identifier: BSD-3-Clause
// Prints what the readers find in result files (.frd) and print files (.dat), one line an entry, so
// that compare_readers.py can hold it against its own reading.
//
//     dump_results FILE
#include <cmath>
#include <cstdio>
#include <exception>
#include <string>

#include "base/text.h"
#include "importer/dat_reader.h"
#include "importer/frd_reader.h"

namespace {

void printRow(const std::int32_t* keys, std::size_t nKeys, const double* values,
              std::size_t nValues) {
  for (std::size_t i = 0; i < nKeys; ++i) std::printf("%d ", keys[i]);
  for (std::size_t i = 0; i < nValues; ++i) {
    // The sign of what is no number differs between the libraries that print it.
    std::printf("%.17g ", std::isnan(values[i]) ? std::fabs(values[i]) : values[i]);
  }
  std::printf("\n");
}

void printElements(const odbs::importer::FrdElements& elements) {
  std::printf("elements %zu\n", elements.labels.size());
  std::size_t at = 0;
  for (std::size_t i = 0; i < elements.labels.size(); ++i) {
    std::printf("%d %d %d ", elements.labels[i], elements.types[i], elements.groups[i]);
    const std::size_t nNodes =
        static_cast<std::size_t>(odbs::importer::frdNodesPerElement(elements.types[i]));
    printRow(elements.nodes.data() + at, nNodes, nullptr, 0);
    at += nNodes;
  }
}

void printResult(const odbs::importer::FrdResult& result) {
  const odbs::importer::FrdParameters& p = result.parameters;
  std::printf("result %s %.17g type %d number %d step %d increment %d mode %d components",
              result.name.c_str(), result.value, static_cast<int>(result.analysis), result.number,
              p.step, p.increment, p.mode);
  for (const odbs::importer::FrdComponent& component : result.components) {
    if (!component.derived) std::printf(" %s", component.name.c_str());
  }
  std::printf("\n");
  const std::size_t nValues = static_cast<std::size_t>(result.nStored);
  for (std::size_t i = 0; i < result.labels.size(); ++i) {
    printRow(&result.labels[i], 1, result.values.data() + i * nValues, nValues);
  }
}

void dumpFrd(const std::string& path) {
  using Block = odbs::importer::FrdReader::Block;
  odbs::importer::FrdReader reader(path);
  for (Block block = reader.next(); block != Block::end; block = reader.next()) {
    if (block == Block::nodes) {
      const odbs::importer::FrdNodes& nodes = reader.nodes();
      std::printf("nodes %zu\n", nodes.labels.size());
      for (std::size_t i = 0; i < nodes.labels.size(); ++i) {
        printRow(&nodes.labels[i], 1, nodes.coordinates.data() + 3 * i, 3);
      }
    } else if (block == Block::elements) {
      printElements(reader.elements());
    } else {
      printResult(reader.result());
    }
  }
  std::printf("%s\n", reader.complete() ? "complete" : "cut");
}

void dumpDat(const std::string& path) {
  odbs::importer::DatReader reader(path);
  while (reader.next()) {
    const odbs::importer::DatTable& table = reader.table();
    if (table.quantity == odbs::importer::kDatEigenvalues ||
        table.quantity == odbs::importer::kDatBuckling) {
      std::printf("modes\n");
    } else if (table.hasTime && table.nKeys > 0 && table.quantity != odbs::importer::kDatHarmonic) {
      std::printf("table %s set \"%s\" time %.17g\n", table.title.c_str(), table.set.c_str(),
                  table.time);
    } else {
      continue;
    }
    const std::size_t nKeys = static_cast<std::size_t>(table.nKeys);
    for (std::size_t i = 0; i < table.nRows(); ++i) {
      printRow(table.keys.data() + i * nKeys, nKeys, table.values.data() + i * table.columns.size(),
               table.columns.size());
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: dump_results FILE\n");
    return 2;
  }
  const std::string path = argv[1];
  try {
    if (odbs::endsWith(path, ".dat") || odbs::endsWith(path, ".dat.ref")) {
      dumpDat(path);
    } else {
      dumpFrd(path);
    }
  } catch (const std::exception& error) {
    std::printf("error %s\n", error.what());
    return 1;
  }
  return 0;
}
