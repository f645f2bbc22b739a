// SPDX-License-Identifier: BSD-3-Clause
// The files of bench/solver_files.h. Format of results: CalculiX GraphiX User's Manual, section
// "Result File Format".
#include "bench/solver_files.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <stdexcept>

#include "base/bytes.h"

namespace odbs::bench {

namespace {

constexpr int kTextFormat = 1, kBinaryFormat = 2;

struct Field {
  const char* name;
  int nComponents;
  bool tensor;
};
constexpr Field kFields[] = {{"DISP", 3, false}, {"STRESS", 6, true}, {"TOSTRAIN", 6, true}};

class Output {
 public:
  explicit Output(const std::string& path) : path_(path), file_(std::fopen(path.c_str(), "wb")) {
    if (file_ == nullptr) throw std::runtime_error("cannot write " + path);
  }
  ~Output() {
    if (file_ != nullptr) std::fclose(file_);
  }
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  template <class... A>
  void print(const char* format, A... arguments) {
    failed_ |= std::fprintf(file_, format, arguments...) < 0;
  }
  void text(const char* line) { failed_ |= std::fputs(line, file_) < 0; }
  void word(std::int32_t value) {
    unsigned char bytes[4];
    putI32(bytes, value);
    failed_ |= std::fwrite(bytes, 1, 4, file_) != 4;
  }
  void number(double value) {
    unsigned char bytes[4];
    putF32(bytes, static_cast<float>(value));
    failed_ |= std::fwrite(bytes, 1, 4, file_) != 4;
  }
  void close() {
    failed_ |= std::fclose(file_) != 0;
    file_ = nullptr;
    if (failed_) throw std::runtime_error("cannot write " + path_);
  }

 private:
  std::string path_;
  std::FILE* file_;
  bool failed_ = false;
};

std::array<int, 3> placeOf(std::int64_t node, int nPerEdge) {
  const int i = static_cast<int>(node);
  return {i % nPerEdge, i / nPerEdge % nPerEdge, i / nPerEdge / nPerEdge};
}

// Calls take(label, eight nodes) for each element.
template <class Take>
void forElements(const CubeFiles& cube, Take take) {
  const int n = cube.nElementsPerEdge + 1;
  const int corners[8] = {0, 1, n + 1, n, n * n, n * n + 1, n * n + n + 1, n * n + n};
  int label = 0;
  for (int z = 0; z + 1 < n; ++z) {
    for (int y = 0; y + 1 < n; ++y) {
      for (int x = 0; x + 1 < n; ++x) {
        std::array<int, 8> nodes{};
        for (std::size_t i = 0; i < 8; ++i) nodes[i] = 1 + x + n * y + n * n * z + corners[i];
        take(++label, nodes);
      }
    }
  }
}

void writeMesh(Output& out, const CubeFiles& cube) {
  const int format = cube.binary ? kBinaryFormat : kTextFormat;
  const auto nNodes = static_cast<int>(cube.nNodes());
  out.print("    2C%18s%12d%37s%1d\n", "", nNodes, "", format);
  for (int i = 0; i < nNodes; ++i) {
    const auto place = placeOf(i, cube.nElementsPerEdge + 1);
    if (cube.binary) {
      out.word(i + 1);
      for (const int x : place) out.number(x);
    } else {
      out.print(" -1%10d%12.5E%12.5E%12.5E\n", i + 1, 1. * place[0], 1. * place[1], 1. * place[2]);
    }
  }
  if (!cube.binary) out.text(" -3\n");
  out.print("    3C%18s%12d%37s%1d\n", "", static_cast<int>(cube.nElements()), "", format);
  forElements(cube, [&](int label, const std::array<int, 8>& nodes) {
    if (cube.binary) {
      for (const int word : {label, 1, 0, 1}) out.word(word);
      for (const int node : nodes) out.word(node);
      return;
    }
    out.print(" -1%10d    1    0    1\n -2", label);
    for (const int node : nodes) out.print("%10d", node);
    out.text("\n");
  });
  if (!cube.binary) out.text(" -3\n");
}

void writeField(Output& out, const CubeFiles& cube, const Field& field, int frame) {
  constexpr int kTensorRows[6][2] = {{1, 1}, {2, 2}, {3, 3}, {1, 2}, {2, 3}, {3, 1}};
  const auto nNodes = static_cast<int>(cube.nNodes());
  out.print("    1PSTEP%26d%12d%12d\n", frame, frame, 1);
  out.print("  100CL%5d%12.5E%12d%20s%2d%5d%10s%2d\n", 100 + frame, 1. * frame / cube.nFrames,
            nNodes, "", 0, frame, "", cube.binary ? kBinaryFormat : kTextFormat);
  out.print(" -4  %-8s%5d%5d\n", field.name, field.nComponents, 1);
  for (int k = 0; k < field.nComponents; ++k) {
    const int row = field.tensor ? kTensorRows[k][0] : k + 1;
    const int column = field.tensor ? kTensorRows[k][1] : 0;
    out.print(" -5  C%-7d%5d%5d%5d%5d%5d\n", k + 1, 1, field.tensor ? 4 : 2, row, column, 0);
  }
  for (int i = 0; i < nNodes; ++i) {
    const auto place = placeOf(i, cube.nElementsPerEdge + 1);
    cube.binary ? out.word(i + 1) : out.print(" -1%10d", i + 1);
    for (int k = 0; k < field.nComponents; ++k) {
      const double value = frame * (k + 1) + 0.01 * place[static_cast<std::size_t>(k % 3)];
      cube.binary ? out.number(value) : out.print("%12.5E", value);
    }
    if (!cube.binary) out.text("\n");
  }
  if (!cube.binary) out.text(" -3\n");
}

}  // namespace

std::int64_t CubeFiles::nNodes() const {
  const std::int64_t n = nElementsPerEdge + 1;
  return n * n * n;
}

std::int64_t CubeFiles::nElements() const {
  const std::int64_t n = nElementsPerEdge;
  return n * n * n;
}

void writeCubeDeck(const std::string& path, const CubeFiles& cube) {
  Output out(path);
  out.text("*HEADING\nCube of hexahedra\n*NODE\n");
  for (int i = 0; i < static_cast<int>(cube.nNodes()); ++i) {
    const auto place = placeOf(i, cube.nElementsPerEdge + 1);
    out.print("%d,%d.,%d.,%d.\n", i + 1, place[0], place[1], place[2]);
  }
  out.text("*ELEMENT,TYPE=C3D8,ELSET=ALL\n");
  forElements(cube, [&](int label, const std::array<int, 8>& nodes) {
    out.print("%d", label);
    for (const int node : nodes) out.print(",%d", node);
    out.text("\n");
  });
  out.text(
      "*MATERIAL,NAME=STEEL\n*ELASTIC\n210000.,0.3\n*SOLID SECTION,ELSET=ALL,MATERIAL=STEEL\n");
  out.text("*STEP\n*STATIC\n1.,1.\n*END STEP\n");
  out.close();
}

void writeCubeResults(const std::string& path, const CubeFiles& cube) {
  Output out(path);
  out.text("    1C\n");
  writeMesh(out, cube);
  for (int frame = 1; frame <= cube.nFrames; ++frame) {
    for (const Field& field : kFields) writeField(out, cube, field, frame);
  }
  out.text(" 9999\n");
  out.close();
}

std::int64_t largestFileBlock(const CubeFiles& cube) {
  // Two lines an element against one line a node; in binary the words of either.
  const std::int64_t elements = cube.nElements() * (cube.binary ? 4 * 12 : 29 + 84);
  const std::int64_t tensor = cube.nNodes() * (cube.binary ? 4 * 7 : 14 + 6 * 12);
  return std::max(elements, tensor);
}

std::int64_t largestValueBlock(const CubeFiles& cube) {
  return cube.nElements() * 8 * 6 * 4;
}

}  // namespace odbs::bench
