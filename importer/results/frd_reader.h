// SPDX-License-Identifier: BSD-3-Clause
// Reads a CalculiX result file (.frd) as a stream: one block in memory at a time, in text of both
// widths (5 and 10 digits for labels) and in binary of both precisions, also mixed in one file.
//
//     FrdReader reader("model.frd");
//     while (true) {
//       switch (reader.next()) {
//         case FrdReader::Block::nodes: use(reader.nodes()); break;
//         ...
//         case FrdReader::Block::end: return;
//       }
//     }
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "importer/results/frd_blocks.h"
#include "importer/results/result_input.h"

namespace odbs::importer {

class FrdReader {
 public:
  enum class Block { nodes, elements, result, end };

  // Opens the file. Throws ResultFileError, as every function here does for a file that breaks the
  // format.
  explicit FrdReader(const std::string& path);

  // Reads the next block and drops the one before. Header records on the way are added to
  // header(); parameter records are attached to the result block that they precede.
  Block next();

  // Passes over the next blocks like next(), but reads of result blocks their headers alone: no
  // labels and no values. A program that needs two blocks at once (real and imaginary part, say)
  // lists the blocks first and reads those that it needs with readAt().
  Block skim();

  // Where the block of the last next() or skim() begins.
  ResultPlace place() const { return place_; }

  // Reads the block at a place that place() gave, as next() does. The parameter records before a
  // result block are not read again.
  Block readAt(const ResultPlace& place);

  // The block that next() has just read; empty for the other kinds. Their memory is reused by
  // next(), so that a caller who wants to keep the arrays moves or copies them.
  FrdNodes& nodes() { return nodes_; }
  FrdElements& elements() { return elements_; }
  FrdResult& result() { return result_; }

  // The C and U records so far.
  const std::vector<FrdRecord>& header() const { return header_; }

  // True when the record 9999 has been read. A file without it was cut at a block border: the
  // solver stopped before its end.
  bool complete() const { return complete_; }

 private:
  enum class Format { shortText = 0, longText = 1, binaryFloat = 2, binaryDouble = 3 };
  struct BlockHeader {
    std::uint64_t count = 0;
    bool hasCount = false;  // the solver leaves it out in some fluid calculations
    Format format = Format::shortText;
  };

  static std::size_t textLabelWidth(Format format);
  BlockHeader blockHeader(std::string_view line, std::size_t countColumn,
                          std::size_t formatColumn) const;
  Block advance();
  bool atText();
  void skipRows(const BlockHeader& header, std::size_t nValues);
  void readParameter(std::string_view text);
  void readNodes(std::string_view line);
  void readElements(std::string_view line);
  void readTextElements(const BlockHeader& header);
  void readBinaryElements();
  void readResult(std::string_view line);
  void readComponents(int nComponents);
  void readTextRows(const BlockHeader& header, std::size_t nValues,
                    std::vector<std::int32_t>& labels, std::vector<double>& values);
  void readBinaryRows(const BlockHeader& header, std::size_t nValues,
                      std::vector<std::int32_t>& labels, std::vector<double>& values);
  void appendFields(std::string_view line, std::size_t start, std::size_t nFields,
                    std::vector<double>& values);
  void checkCount(const BlockHeader& header, std::size_t found) const;
  std::int64_t integer(std::string_view field, const char* what) const;
  std::int32_t label(std::string_view field, const char* what) const;
  double real(std::string_view field, const char* what) const;

  ResultInput input_;
  std::vector<FrdRecord> header_;
  FrdParameters parameters_;
  FrdNodes nodes_;
  FrdElements elements_;
  FrdResult result_;
  ResultPlace place_;
  bool skimming_ = false;
  bool complete_ = false;
};

}  // namespace odbs::importer
