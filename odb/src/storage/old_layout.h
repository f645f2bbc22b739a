// SPDX-License-Identifier: BSD-3-Clause
// The layout of release 1, which differs from the current one so:
//   /format              int64[4], as now, release 1
//   /texts               uint8[texts][longest]: one row a text, filled with zeros
//   /columns/NAME.iK     int64[rows]: integer column K of a table
//   /columns/NAME.rK     float64[rows]: real column K
//   /blocks/TYPE.K       one dataset an array; tables refer to them by K and count
// Written for tests alone; read by the upgrade alone.
#pragma once

#include "odb/src/storage/storage.h"

namespace odbs::engine {

class OldWriter : public SaveTarget {
 public:
  explicit OldWriter(const std::string& path);
  std::int64_t putArray(layout::Kind kind, const void* data, std::int64_t count) override;
  void putTable(const layout::TableSpec& shape, const Table& table) override;
  void putTexts(const std::vector<std::string>& texts) override;
  void finish() override;

 private:
  std::unique_ptr<Hdf5File> file_;
  std::int64_t nArrays_[layout::kNKinds] = {0, 0, 0};
};

// Writes the upgraded copy and its log. Throws odb_Exception; no copy is left then.
void upgradeOldLayout(const std::string& from, const std::string& to);

}  // namespace odbs::engine
