// SPDX-License-Identifier: BSD-3-Clause
// Fields in other coordinate systems.
//
// Each value has axes: those of its local system, or the global ones. Vectors and spatial tensors
// are turned into the target system. Values in a surface keep their normal and are turned within
// it, so that direction 1 is the projection of one of the system's axes.
#include "odb/src/fields/field_data.h"
#include "odb/src/numerics/extrapolation.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace odbs::engine {

namespace {

constexpr double kRadians = 3.14159265358979323846 / 180;

using Vector = std::array<double, 3>;

double dot(const Vector& a, const Vector& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector normalised(const Vector& v) {
  const double n = std::sqrt(dot(v, v));
  return n > 0 ? Vector{v[0] / n, v[1] / n, v[2] / n} : Vector{};
}

Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// A datum system: Cartesian, or with directions that depend on the place.
class System {
 public:
  explicit System(const odb_DatumCsys& csys) : type_(csys.type()) {
    const float* rows[] = {csys.xAxis(), csys.yAxis(), csys.zAxis()};
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t k = 0; k < 3; ++k) axes_[i][k] = static_cast<double>(rows[i][k]);
      origin_[i] = static_cast<double>(csys.origin()[i]);
    }
    if (!orthonormalise(axes_)) failUsage("the axes of the coordinate system do not span space");
  }

  bool dependsOnPlace() const { return type_ != odb_Enum::CARTESIAN; }

  // Directions at a place, as rows. On the axis of a cylindrical system and in the origin of a
  // spherical one radial directions don't exist: there, the system's own. On the axis of a
  // spherical system the circumferential direction is that of the plane of x and z.
  Matrix3 at(const Vector& place) const {
    if (!dependsOnPlace()) return axes_;
    Vector local{};
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t k = 0; k < 3; ++k) local[i] += axes_[i][k] * (place[k] - origin_[k]);
    }
    const bool spherical = type_ == odb_Enum::SPHERICAL;
    const double radius = std::hypot(local[0], local[1]);
    const double length = std::hypot(radius, local[2]);
    const bool onAxis = radius <= 1e-12 * (length + 1e-300);
    if (onAxis && (!spherical || length == 0)) return axes_;
    const double c = onAxis ? 1 : local[0] / radius, s = onAxis ? 0 : local[1] / radius;
    Matrix3 turn = {{{c, s, 0}, {-s, c, 0}, {0, 0, 1}}};
    if (spherical) {
      // Radial, circumferential, meridional.
      const double u = radius / length, w = local[2] / length;
      turn = {{{u * c, u * s, w}, {-s, c, 0}, {-w * c, -w * s, u}}};
    }
    return product(turn, axes_);
  }

 private:
  odb_Enum::odb_DatumCsysTypeEnum type_;
  Matrix3 axes_{};
  Vector origin_{};
};

// Nodal vectors by instance and label.
class NodalVectors {
 public:
  explicit NodalVectors(const odb_FieldOutput* field) {
    if (!field || !field->engineField()) return;
    for (const Block& block : fieldOf(*field)->blocks) {
      if (block->layout->position != odb_Enum::NODAL) continue;
      const int* labels = nodeLabels(*block->layout);
      const auto width = static_cast<std::size_t>(block->width);
      std::vector<double> values(static_cast<std::size_t>(block->layout->nValues) * width);
      readValues(*block, Part::kData, 0, block->layout->nValues, values.data());
      auto& map = vectors_[&block->layout->entity()];
      for (int i = 0; i < block->layout->nValues; ++i) {
        Vector v{};
        for (std::size_t k = 0; k < std::min<std::size_t>(width, 3); ++k) {
          v[k] = values[static_cast<std::size_t>(i) * width + k];
        }
        map[labels[i]] = v;
      }
    }
  }
  Vector at(const EntityData* entity, int label) const {
    const auto map = vectors_.find(entity);
    if (map == vectors_.end()) return {};
    const auto found = map->second.find(label);
    return found == map->second.end() ? Vector{} : found->second;
  }

 private:
  std::unordered_map<const EntityData*, std::unordered_map<int, Vector>> vectors_;
};

// Rotation by a rotation vector, as a matrix that turns column vectors (Rodrigues).
Matrix3 rotationBy(const Vector& v) {
  const double angle = std::sqrt(dot(v, v));
  const double half = angle / 2;
  const double f = angle > 0 ? std::sin(half) / angle : 0;
  return rotationOf({v[0] * f, v[1] * f, v[2] * f, std::cos(half)});
}

// Where the values of a block sit.
class Places {
 public:
  Places(FieldBlock& block, const NodalVectors& displacements)
      : layout_(*block.layout), entity_(layout_.entity()), displacements_(displacements) {
    loadNodes(entity_);
    loadElements(entity_);
    elements_ = elementLabels(layout_);
    nodes_ = nodeLabels(layout_);
    points_ = integrationPoints(layout_);
    shape_ = elementType(layout_.elementType.CStr()).shape;
  }

  Vector at(int i) {
    if (nodes_) return node(nodes_[i]);
    if (!elements_) return {};
    const int index = findElement(entity_, elements_[i]);
    if (index < 0) failDamaged("field values belong to an element that does not exist");
    const ElementTable& table = entity_.elementTable;
    const ElementBlock& b = table.blocks[table.blockOf[index]];
    const int* connectivity =
        table.connectivity + b.connectivity + static_cast<std::int64_t>(index - b.first) * b.nNodes;
    const std::vector<double> weights = weightsAt(i, b.nNodes);
    Vector place{};
    for (std::size_t a = 0; a < weights.size(); ++a) {
      const Vector x = node(connectivity[a]);
      for (std::size_t k = 0; k < 3; ++k) place[k] += weights[a] * x[k];
    }
    return place;
  }

 private:
  Vector node(int label) const {
    const int index = findNode(entity_, label);
    if (index < 0) failDamaged("field values belong to a node that does not exist");
    const float* x = entity_.nodeTable.coordinates + 3 * static_cast<std::ptrdiff_t>(index);
    const Vector moved = displacements_.at(&entity_, label);
    Vector place{};
    for (std::size_t k = 0; k < 3; ++k) place[k] = static_cast<double>(x[k]) + moved[k];
    return place;
  }

  // Weights of the element's nodes for value i: the shape functions at its integration point, or at
  // the centre.
  std::vector<double> weightsAt(int i, int nConnected) const {
    const Shape shape = shapeWithNodes(shape_, nConnected);
    const int nShape = static_cast<int>(shapeNodes(shape).size());
    if (nShape == 0 || nShape > nConnected) {
      return std::vector<double>(static_cast<std::size_t>(nConnected), 1.0 / nConnected);
    }
    const ExtrapolationRule* rule =
        points_ ? extrapolationRule(shape, layout_.valuesPerElement) : nullptr;
    if (rule && points_[i] >= 1 && points_[i] <= rule->nPoints) {
      return shapeFunctions(shape, rule->points[static_cast<std::size_t>(points_[i] - 1)]);
    }
    return shapeFunctions(shape, shapeCentre(shape));
  }

  BlockLayout& layout_;
  EntityData& entity_;
  const NodalVectors& displacements_;
  const int* elements_ = nullptr;
  const int* nodes_ = nullptr;
  const int* points_ = nullptr;
  Shape shape_ = Shape::Unknown;
};

struct Options {
  int axis = 2;
  double tolerance = 0;  // degrees
};

// Axes of a value in a surface with that normal: 1 along the projection of an axis of the system.
Matrix3 inSurface(const Matrix3& system, const Vector& normal, const Options& options) {
  const auto axis = static_cast<std::size_t>(options.axis);
  Vector along = system[(axis + 1) % 3];
  // Parallel to the normal, the axis has no projection.
  const double limit = std::cos(std::max(options.tolerance, 0.1) * kRadians);
  if (std::fabs(dot(along, normal)) > limit) along = system[axis];
  const double part = dot(along, normal);
  for (std::size_t k = 0; k < 3; ++k) along[k] -= part * normal[k];
  along = normalised(along);
  return {along, cross(normal, along), normal};
}

bool liesInSurface(const FieldBlock& block) {
  // Planar solids have planar tensors too, in the global x-y plane and without section points.
  return isTensor(block.type) && block.width < 6 && (block.oriented || block.layout->category >= 0);
}

void turnValue(const FieldBlock& block, const Matrix3& from, const Matrix3& to, double* v) {
  // Directions of the new axes in the old system.
  const Matrix3 turn = product(to, transposed(from));
  if (isTensor(block.type)) {
    const bool engineering = block.descriptor->engineering;
    tensorComponents(rotated(turn, tensorMatrix(v, block.width, engineering)), block.width,
                     engineering, v);
    return;
  }
  Vector old{};
  const auto width = static_cast<std::size_t>(std::min(block.width, 3));
  std::copy_n(v, width, old.begin());
  for (std::size_t i = 0; i < width; ++i) v[i] = dot(turn[i], old);
}

template <class Real>
void store(StoredArray<Real>& array, Storage& storage, const std::vector<double>& numbers) {
  Buffer<Real>& out = array.edit(storage);
  out.resize(numbers.size());
  std::transform(numbers.begin(), numbers.end(), out.begin(),
                 [](double v) { return static_cast<Real>(v); });
}

template <class Real>
void storeAll(FieldBlock& block, const std::vector<double>& data,
              const std::vector<double>& conjugate, const std::vector<double>& orientation) {
  Storage& storage = block.database->storage;
  BlockArrays<Real>& arrays = block.arrays<Real>();
  store(arrays.data, storage, data);
  store(arrays.conjugate, storage, conjugate);
  store(arrays.orientation, storage, orientation);
}

Block transformed(FieldBlock& from, const System& system, const NodalVectors& displacements,
                  const NodalVectors& rotations, const Options& options) {
  const auto n = static_cast<std::size_t>(from.layout->nValues);
  const auto width = static_cast<std::size_t>(from.width);
  std::vector<double> data(n * width), conjugate(from.complex ? n * width : 0);
  std::vector<double> orientation(4 * n, 0.0);
  readValues(from, Part::kData, 0, from.layout->nValues, data.data());
  if (from.complex) readValues(from, Part::kConjugate, 0, from.layout->nValues, conjugate.data());
  if (from.oriented) {
    readValues(from, Part::kOrientation, 0, from.layout->nValues, orientation.data());
  }
  Places places(from, displacements);
  const EntityData* entity = &from.layout->entity();
  const int* nodes = nodeLabels(*from.layout);
  const bool nodal = from.layout->position == odb_Enum::NODAL;
  const bool surface = liesInSurface(from);
  for (std::size_t i = 0; i < n; ++i) {
    const int at = static_cast<int>(i);
    const double* q = &orientation[4 * i];
    const Matrix3 old = rotationOf({q[0], q[1], q[2], q[3]});
    Matrix3 target = system.at(system.dependsOnPlace() ? places.at(at) : Vector{});
    if (nodal) {
      const Vector turn = rotations.at(entity, nodes[i]);
      target = product(target, transposed(rotationBy(turn)));
    }
    if (surface) target = inSurface(target, old[2], options);
    turnValue(from, old, target, &data[i * width]);
    if (from.complex) turnValue(from, old, target, &conjugate[i * width]);
    const std::array<double, 4> quaternion = quaternionOf(target);
    std::copy(quaternion.begin(), quaternion.end(), &orientation[4 * i]);
  }
  Block to = sameLayout(from, from.descriptor, from.type, from.width);
  to->complex = from.complex;
  to->oriented = isTensor(from.type);
  if (!to->oriented) orientation.clear();
  if (from.precision == odb_Enum::DOUBLE_PRECISION) {
    storeAll<double>(*to, data, conjugate, orientation);
  } else {
    storeAll<float>(*to, data, conjugate, orientation);
  }
  return to;
}

void checkTransform(const FieldData& field, const Options& options) {
  const std::string what = std::string("field output ") + field.descriptor->name.CStr();
  const auto type = field.descriptor->type;
  if (type != odb_Enum::VECTOR && !isTensor(type)) {
    failUsage(what + ": scalars and matrices have no components to transform");
  }
  if (options.axis < 0 || options.axis > 2) failUsage("the axis must be 0, 1 or 2");
  for (const Block& block : field.blocks) {
    if (block->layout->entity().kind == EntityKind::kAssembly) {
      failUsage(what + " has values at the assembly's own nodes");
    }
  }
}

odb_FieldOutput transformedField(const odb_FieldOutput& field, const odb_DatumCsys& csys,
                                 const odb_FieldOutput* deformation,
                                 const odb_FieldOutput* rotation, const Options& options) {
  field.bulkDataBlocks();
  const FieldData& source = *fieldOf(field);
  checkTransform(source, options);
  const System system(csys);
  const NodalVectors displacements(deformation), rotations(rotation);
  Field result = derivedField(source);
  for (const Block& block : source.blocks) {
    result->blocks.push_back(transformed(*block, system, displacements, rotations, options));
  }
  return handleOf(result);
}

}  // namespace
}  // namespace odbs::engine

using namespace odbs::engine;

odb_FieldOutput odb_FieldOutput::getTransformedField(const odb_DatumCsys& csys, int axis,
                                                     double tol) const {
  return transformedField(*this, csys, nullptr, nullptr, Options{axis, tol});
}
odb_FieldOutput odb_FieldOutput::getTransformedField(const odb_DatumCsys& csys,
                                                     const odb_FieldOutput& deformation, int axis,
                                                     double tol) const {
  return transformedField(*this, csys, &deformation, nullptr, Options{axis, tol});
}
odb_FieldOutput odb_FieldOutput::getTransformedField(const odb_DatumCsys& csys,
                                                     const odb_FieldOutput& deformation,
                                                     const odb_FieldOutput& rotation, int axis,
                                                     double tol) const {
  return transformedField(*this, csys, &deformation, &rotation, Options{axis, tol});
}
