// SPDX-License-Identifier: BSD-3-Clause
// Blocks at element nodes and centroids, computed from integration points element by element when
// their arrays are first asked for. The source is read in slices, so that a large block is never in
// memory twice.
#include "odb/src/fields/field_data.h"
#include "odb/src/numerics/extrapolation.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace odbs::engine {

namespace {

// Elements whose values are worked on at a time.
constexpr int kSlice = 2048;
constexpr int kLabelSlice = 65536;

// What both the labels and the values of a computed block need.
struct Plan {
  Block source;
  bool centroid = false;
  Shape shape = Shape::Unknown;
  // Per element of the source, in order.
  std::vector<int> labels;
  std::vector<int> starts;  // first value in the source, and one more entry: the number of values
  std::vector<int> nNodes;  // values in the result
};

struct Element {
  const int* connectivity = nullptr;
  int nNodes = 0;
};

Element elementOf(EntityData& entity, int label) {
  const int index = findElement(entity, label);
  if (index < 0) {
    failDamaged(std::string("field values belong to element ") + std::to_string(label) + " of " +
                entity.name.CStr() + ", which does not exist");
  }
  const ElementTable& table = entity.elementTable;
  const ElementBlock& block = table.blocks[table.blockOf[index]];
  return {table.connectivity + block.connectivity +
              static_cast<std::int64_t>(index - block.first) * block.nNodes,
          block.nNodes};
}

std::shared_ptr<Plan> makePlan(const Block& source, bool centroid) {
  auto plan = std::make_shared<Plan>();
  BlockLayout& from = *source->layout;
  EntityData& entity = from.entity();
  loadElements(entity);
  plan->source = source;
  plan->centroid = centroid;
  plan->shape = elementType(from.elementType.CStr()).shape;
  const int nShape = static_cast<int>(shapeNodes(plan->shape).size());
  std::vector<int> labels(kLabelSlice);
  for (int first = 0; first < from.nValues; first += kLabelSlice) {
    const int n = std::min(kLabelSlice, from.nValues - first);
    readLabels(from, &BlockLayout::elementLabels, first, n, labels.data());
    for (int i = 0; i < n; ++i) {
      const int label = labels[static_cast<std::size_t>(i)];
      if (!plan->labels.empty() && label == plan->labels.back()) continue;
      plan->labels.push_back(label);
      plan->starts.push_back(first + i);
      const int nConnected = elementOf(entity, label).nNodes;
      // Nodes beyond the shape's are no corners or edges: a beam's orientation node.
      plan->nNodes.push_back(centroid ? 1 : nShape > 0 ? std::min(nShape, nConnected) : nConnected);
    }
  }
  plan->starts.push_back(from.nValues);
  return plan;
}

void fillLabels(const Plan& plan, BlockLayout& layout) {
  EntityData& entity = layout.entity();
  std::vector<int> elements, nodes;
  elements.reserve(static_cast<std::size_t>(layout.nValues));
  for (std::size_t e = 0; e < plan.labels.size(); ++e) {
    const int n = plan.nNodes[e];
    elements.insert(elements.end(), static_cast<std::size_t>(n), plan.labels[e]);
    if (plan.centroid) continue;
    const Element element = elementOf(entity, plan.labels[e]);
    nodes.insert(nodes.end(), element.connectivity, element.connectivity + n);
  }
  layout.elementLabels = makeInts(elements);
  if (!plan.centroid) layout.nodeLabels = makeInts(nodes);
}

// The place of each numbered point among an element's values; false when the numbers are not 1 to
// the rule's number of points.
bool orderPoints(const int* numbers, int n, std::vector<int>& order) {
  order.assign(static_cast<std::size_t>(n), -1);
  for (int i = 0; i < n; ++i) {
    if (numbers[i] < 1 || numbers[i] > n) return false;
    int& at = order[static_cast<std::size_t>(numbers[i] - 1)];
    if (at >= 0) return false;
    at = i;
  }
  return true;
}

// Coordinates of an element's first n nodes; false when one is unknown.
bool gatherCoordinates(EntityData& entity, const Element& element, int n,
                       std::vector<float>& coordinates) {
  coordinates.resize(3 * static_cast<std::size_t>(n));
  for (int a = 0; a < n; ++a) {
    const int index = findNode(entity, element.connectivity[a]);
    if (index < 0) return false;
    std::copy_n(entity.nodeTable.coordinates + 3 * static_cast<std::ptrdiff_t>(index), 3,
                &coordinates[3 * static_cast<std::size_t>(a)]);
  }
  return true;
}

class Extrapolator {
 public:
  Extrapolator(const Plan& plan, FieldBlock& out)
      : plan_(plan), source_(*plan.source), out_(out), entity_(source_.layout->entity()) {
    loadElements(entity_);
    loadNodes(entity_);
  }

  template <class Real>
  void run() {
    BlockArrays<Real>& arrays = out_.arrays<Real>();
    Storage& storage = out_.database->storage;
    const auto n = static_cast<std::size_t>(out_.layout->nValues);
    Buffer<Real> data(n * width()), conjugate(out_.complex ? n * width() : 0);
    Buffer<Real> orientation(out_.oriented ? 4 * n : 0);
    std::size_t at = 0;
    for (std::size_t e = 0; e < plan_.labels.size(); ++e) {
      if (e % kSlice == 0) readSlice(e);
      prepare(e);
      const auto nOut = static_cast<std::size_t>(plan_.nNodes[e]);
      for (std::size_t a = 0; a < nOut; ++a, ++at) {
        value(a, values_, &data[at * width()]);
        if (out_.complex) value(a, conjugates_, &conjugate[at * width()]);
        if (out_.oriented) {
          const double* q = orientationAt(nearest(a));
          std::transform(q, q + 4, &orientation[4 * at],
                         [](double part) { return static_cast<Real>(part); });
        }
      }
    }
    arrays.data.edit(storage).swap(data);
    arrays.conjugate.edit(storage).swap(conjugate);
    arrays.orientation.edit(storage).swap(orientation);
  }

 private:
  std::size_t width() const { return static_cast<std::size_t>(out_.width); }

  void readSlice(std::size_t e) {
    const std::size_t last = std::min(e + kSlice, plan_.labels.size());
    sliceStart_ = plan_.starts[e];
    const int n = plan_.starts[last] - sliceStart_;
    const auto count = static_cast<std::size_t>(n);
    points_.resize(count);
    readLabels(*source_.layout, &BlockLayout::points, sliceStart_, n, points_.data());
    values_.resize(count * width());
    readValues(source_, Part::kData, sliceStart_, n, values_.data());
    if (out_.complex) {
      conjugates_.resize(count * width());
      readValues(source_, Part::kConjugate, sliceStart_, n, conjugates_.data());
    }
    if (out_.oriented) {
      orientations_.resize(4 * count);
      readValues(source_, Part::kOrientation, sliceStart_, n, orientations_.data());
    }
  }

  // Finds the weights of element e.
  void prepare(std::size_t e) {
    first_ = plan_.starts[e] - sliceStart_;
    nPoints_ = plan_.starts[e + 1] - plan_.starts[e];
    const int* numbers = &points_[static_cast<std::size_t>(first_)];
    const Element element = elementOf(entity_, plan_.labels[e]);
    const Shape shape = shapeWithNodes(plan_.shape, element.nNodes);
    const ExtrapolationRule* rule = extrapolationRule(shape, nPoints_);
    weights_ = nullptr;
    if (rule && orderPoints(numbers, nPoints_, order_)) {
      const bool whole = element.nNodes >= rule->nNodes;
      if (rule->exactForShape) {
        weights_ = plan_.centroid ? &rule->toCentre : &rule->toNodes;
      } else if (whole && gatherCoordinates(entity_, element, rule->nNodes, coordinates_)) {
        weights_ = &elementWeights(*rule, coordinates_.data(), plan_.centroid, scratch_);
      } else {
        weights_ = plan_.centroid ? &rule->toCentre : &rule->toNodes;
      }
    }
    uniform_ = true;
    for (int g = 1; out_.oriented && g < nPoints_; ++g) {
      uniform_ =
          uniform_ && std::memcmp(orientationAt(0), orientationAt(g), 4 * sizeof(double)) == 0;
    }
  }

  // Weight of the element's g-th stored value in result a.
  double weight(std::size_t a, int g) const {
    return weights_ ? weights_->at(static_cast<int>(a), g) : 1.0 / nPoints_;
  }
  int placeOf(int g) const { return weights_ ? order_[static_cast<std::size_t>(g)] : g; }

  const double* orientationAt(int place) const {
    return &orientations_[4 * static_cast<std::size_t>(first_ + place)];
  }

  // The point that counts most in result a: its local system is the result's.
  int nearest(std::size_t a) const {
    int best = 0;
    for (int g = 1; g < nPoints_; ++g) {
      if (weight(a, g) > weight(a, best)) best = g;
    }
    return placeOf(best);
  }

  template <class Real>
  void value(std::size_t a, const std::vector<double>& from, Real* to) {
    sums_.assign(width(), 0.0);
    if (!uniform_ && isTensor(out_.type)) {
      turnedSum(a, from);
    } else {
      for (int g = 0; g < nPoints_; ++g) {
        const double w = weight(a, g);
        const double* v = &from[static_cast<std::size_t>(first_ + placeOf(g)) * width()];
        for (std::size_t k = 0; k < width(); ++k) sums_[k] += w * v[k];
      }
    }
    for (std::size_t k = 0; k < width(); ++k) to[k] = static_cast<Real>(sums_[k]);
  }

  static Matrix3 axes(const double* q) { return rotationOf({q[0], q[1], q[2], q[3]}); }

  // Points with different local systems meet in the global one.
  void turnedSum(std::size_t a, const std::vector<double>& from) {
    const bool engineering = out_.descriptor->engineering;
    Matrix3 sum{};
    for (int g = 0; g < nPoints_; ++g) {
      const int place = placeOf(g);
      const double* v = &from[static_cast<std::size_t>(first_ + place) * width()];
      const Matrix3 global =
          rotated(transposed(axes(orientationAt(place))), tensorMatrix(v, out_.width, engineering));
      for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) sum[i][j] += weight(a, g) * global[i][j];
      }
    }
    tensorComponents(rotated(axes(orientationAt(nearest(a))), sum), out_.width, engineering,
                     sums_.data());
  }

  const Plan& plan_;
  FieldBlock& source_;
  FieldBlock& out_;
  EntityData& entity_;
  std::vector<double> values_, conjugates_, orientations_;  // of the slice
  std::vector<int> points_;
  int sliceStart_ = 0;
  // Of the element.
  int first_ = 0;
  int nPoints_ = 0;
  bool uniform_ = true;
  const Matrix* weights_ = nullptr;  // null: the mean
  Matrix scratch_;
  std::vector<int> order_;
  std::vector<float> coordinates_;
  std::vector<double> sums_;
};

}  // namespace

Block extrapolatedBlock(const Block& source, bool centroid) {
  const std::shared_ptr<Plan> plan = makePlan(source, centroid);
  const BlockLayout& from = *source->layout;
  auto layout = std::make_shared<BlockLayout>();
  layout->database = from.database;
  layout->entityRow = from.entityRow;
  layout->position = centroid ? odb_Enum::CENTROID : odb_Enum::ELEMENT_NODAL;
  layout->elementType = from.elementType;
  layout->category = from.category;
  layout->point = from.point;
  layout->nElements = static_cast<int>(plan->labels.size());
  long long nValues = 0;
  bool even = true;
  for (int n : plan->nNodes) {
    nValues += n;
    even = even && n == plan->nNodes.front();
  }
  if (nValues > std::numeric_limits<int>::max()) failUsage("too many values for one block");
  layout->nValues = static_cast<int>(nValues);
  layout->valuesPerElement = even && !plan->nNodes.empty() ? plan->nNodes.front() : 0;
  layout->nNodes = centroid ? 0 : -1;
  layout->interned = true;
  // Only that there are such labels is known before they are asked for.
  layout->elementLabels = std::make_shared<SharedInts>();
  if (!centroid) layout->nodeLabels = std::make_shared<SharedInts>();
  layout->compute = [plan](BlockLayout& out) { fillLabels(*plan, out); };

  Block block = sameLayout(*source, source->descriptor, source->type, source->width);
  block->layout = std::move(layout);
  block->complex = source->complex;
  block->oriented = source->oriented;
  block->compute = [plan](FieldBlock& out) {
    Extrapolator work(*plan, out);
    if (out.precision == odb_Enum::DOUBLE_PRECISION) {
      work.run<double>();
    } else {
      work.run<float>();
    }
  };
  return block;
}

}  // namespace odbs::engine
