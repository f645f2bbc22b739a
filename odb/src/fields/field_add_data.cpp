// SPDX-License-Identifier: BSD-3-Clause
// The forms of addData: sequences, sets and other fields, made into plain arrays.
#include "odb/src/fields/field_write.h"
#include "odb/src/fields/result_store.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

namespace {

using odb_embedded::FieldValues;

// Rows of one length, in one array.
template <class Real>
struct FlatRows {
  std::vector<Real> numbers;
  int nRows = 0;
  int width = 0;
};

template <class Real, class Rows>
FlatRows<Real> flatten(const Rows& rows) {
  FlatRows<Real> flat;
  flat.nRows = rows.size();
  flat.width = flat.nRows > 0 ? rows[0].size() : 0;
  flat.numbers.reserve(static_cast<std::size_t>(flat.nRows) * static_cast<std::size_t>(flat.width));
  for (const auto& row : rows.engineItems()) {
    if (row.size() != flat.width) failUsage("rows of values have different lengths");
    flat.numbers.insert(flat.numbers.end(), row.engineItems().begin(), row.engineItems().end());
  }
  return flat;
}

// Direction cosines are stored transposed: contract of the API.
template <class System>
std::array<double, 4> quaternionOfSystem(const System& system) {
  Matrix3 axes{};
  if (system.size() != 3) failUsage("a local system needs three rows of three numbers");
  for (int i = 0; i < 3; ++i) {
    if (system[i].size() != 3) failUsage("a local system needs three rows of three numbers");
    for (int j = 0; j < 3; ++j) {
      axes[static_cast<std::size_t>(j)][static_cast<std::size_t>(i)] =
          static_cast<double>(system[i][j]);
    }
  }
  if (!orthonormalise(axes)) failUsage("the rows of a local system do not span space");
  return quaternionOf(axes);
}

template <class Real>
void append(std::vector<Real>& out, const std::array<double, 4>& quaternion) {
  for (double part : quaternion) out.push_back(static_cast<Real>(part));
}

template <class Real, class Systems>
std::vector<Real> quaternions(const Systems& systems, int nRows) {
  std::vector<Real> result;
  if (systems.size() == 0) return result;
  if (systems.size() != nRows) failUsage("there must be one local system per row of values");
  for (const auto& system : systems.engineItems()) {
    append(result, quaternionOfSystem(system));
  }
  return result;
}

std::vector<float> sameSystem(const odb_SequenceSequenceFloat& system, int nRows) {
  std::vector<float> result;
  if (system.size() == 0) return result;
  const std::array<double, 4> quaternion = quaternionOfSystem(system);
  for (int i = 0; i < nRows; ++i) append(result, quaternion);
  return result;
}

template <class Real>
void addRows(FieldData& field, FieldValues<Real>& request, const FlatRows<Real>& data,
             const FlatRows<Real>& conjugate, const std::vector<Real>& systems) {
  if (conjugate.nRows > 0 && (conjugate.nRows != data.nRows || conjugate.width != data.width)) {
    failUsage("conjugate values need as many rows and components as the values");
  }
  request.data = data.numbers.data();
  request.nRows = data.nRows;
  request.width = data.width;
  request.conjugate = conjugate.nRows > 0 ? conjugate.numbers.data() : nullptr;
  request.quaternions = systems.empty() ? nullptr : systems.data();
  addValues(field, request);
}

template <class Real>
FieldValues<Real> requestFor(odb_Enum::odb_ResultPositionEnum position,
                             const odb_Instance& instance, const std::vector<int>& labels,
                             const odb_SectionPoint& point = odb_SectionPoint()) {
  FieldValues<Real> request;
  request.position = position;
  request.instance = instance;
  request.labels = labels.data();
  request.nLabels = static_cast<int>(labels.size());
  request.sectionPoint = point;
  return request;
}

// The members of a set of one instance.
struct Members {
  odb_Instance instance;
  std::vector<int> labels;
  std::vector<odb_Enum::odb_ElementFaceEnum> faces;
};

Members membersOf(const odb_Set& set, odb_Enum::odb_ResultPositionEnum position) {
  if (set.instanceNames().size() != 1) {
    failUsage(std::string("set ") + set.name().CStr() +
              ": field values are added to sets of one instance");
  }
  Members members;
  EntityData* owner = nullptr;
  if (position == odb_Enum::NODAL) {
    const odb_SequenceNode& nodes = set.nodes();
    for (int i = 0; i < nodes.size(); ++i) {
      const odb_Node node = nodes[i];
      owner = node.engineTable()->owner;
      members.labels.push_back(node.label());
    }
  } else {
    const odb_SequenceElement& elements = set.elements();
    const odb_SequenceElementFace& faces = set.faces();
    for (int i = 0; i < elements.size(); ++i) {
      const odb_Element element = elements[i];
      owner = element.engineTable()->owner;
      members.labels.push_back(element.label());
      if (faces.size() == elements.size()) members.faces.push_back(faces[i]);
    }
  }
  if (!owner) failUsage(std::string("set ") + set.name().CStr() + " has no such members");
  members.instance = odb_Instance(owner);
  return members;
}

bool isFacePosition(odb_Enum::odb_ResultPositionEnum position) {
  return position == odb_Enum::ELEMENT_FACE ||
         position == odb_Enum::ELEMENT_FACE_INTEGRATION_POINT ||
         position == odb_Enum::SURFACE_INTEGRATION_POINT;
}

// A surface's rows: as many per face, so labels and faces are repeated row by row.
void spreadOverRows(Members& members, int nRows) {
  const int n = static_cast<int>(members.labels.size());
  if (nRows % n != 0) failUsage("the number of rows does not fit the surface's faces");
  Members spread;
  for (std::size_t i = 0; i < members.labels.size(); ++i) {
    for (int k = 0; k < nRows / n; ++k) {
      spread.labels.push_back(members.labels[i]);
      if (!members.faces.empty()) spread.faces.push_back(members.faces[i]);
    }
  }
  members.labels.swap(spread.labels);
  members.faces.swap(spread.faces);
}

// The object of the same name in another database.
const odb_Instance& instanceIn(Database& database, const odb_Instance& other) {
  const odb_InstanceRepository& instances = database.model().instances;
  if (!instances.isMember(other.name())) {
    failUsage(std::string("the database has no instance ") + other.name().CStr());
  }
  return instances.get(other.name());
}

// The point of the same number in the category of that name in another database.
odb_SectionPoint pointIn(Database& database, BlockLayout& layout) {
  const int number = layout.sectionPoint().number();
  const odb_String& name =
      layout.database->model().categories[static_cast<std::size_t>(layout.category)].name;
  for (CategoryData& category : database.model().categories) {
    if (!(category.name == name)) continue;
    for (SectionPointData& point : category.points) {
      if (point.number == number) return odb_SectionPoint(&point);
    }
  }
  failUsage("the database has no section point " + std::to_string(number) +
            " in a section category " + name.CStr());
}

template <class Real>
void addBlock(FieldData& field, FieldBlock& block) {
  BlockLayout& layout = *block.layout;
  const int* nodes = nodeLabels(layout);
  const int* elements = elementLabels(layout);
  FieldValues<Real> request;
  request.position = layout.position;
  request.instance = layout.database == field.database
                         ? layout.instance()
                         : instanceIn(*field.database, layout.instance());
  request.labels = layout.position == odb_Enum::NODAL ? nodes : elements;
  request.nLabels = request.labels ? layout.nValues : 0;
  request.data = blockArray<Real>(block, Part::kData);
  request.conjugate = blockArray<Real>(block, Part::kConjugate);
  request.quaternions = blockArray<Real>(block, Part::kOrientation);
  request.nRows = layout.nValues;
  request.width = block.width;
  request.integrationPoints = integrationPoints(layout);
  std::vector<odb_Enum::odb_ElementFaceEnum> faces;
  if (const int* numbers = faceNumbers(layout)) {
    for (int i = 0; i < layout.nValues; ++i) {
      faces.push_back(static_cast<odb_Enum::odb_ElementFaceEnum>(numbers[i]));
    }
    request.faces = faces.data();
  }
  if (layout.category >= 0) {
    request.sectionPoint = layout.database == field.database ? layout.sectionPoint()
                                                             : pointIn(*field.database, layout);
  }
  addValues(field, request);
}

}  // namespace

std::array<double, 4> quaternionOfRows(const odb_SequenceSequenceFloat& rows) {
  return quaternionOfSystem(rows);
}

}  // namespace odbs::engine

using namespace odbs::engine;

void odb_FieldOutput::addData(odb_Enum::odb_ResultPositionEnum position,
                              const odb_Instance& instance, const odb_SequenceInt& labels,
                              const odb_SequenceSequenceFloat& data,
                              const odb_SectionPoint& sectionPoint,
                              const odb_SequenceSequenceFloat& localCoordSystem,
                              const odb_SequenceSequenceFloat& conjugate) {
  auto request = requestFor<float>(position, instance, labels.engineItems(), sectionPoint);
  addRows(need(), request, flatten<float>(data), flatten<float>(conjugate),
          sameSystem(localCoordSystem, data.size()));
}

void odb_FieldOutput::addData(odb_Enum::odb_ResultPositionEnum position,
                              const odb_Instance& instance, const odb_SequenceInt& labels,
                              const odb_SequenceSequenceFloat& data,
                              const odb_SequenceSequenceFloat& localCoordSystem) {
  addData(position, instance, labels, data, odb_SectionPoint(), localCoordSystem);
}

void odb_FieldOutput::addData(odb_Enum::odb_ResultPositionEnum position,
                              const odb_Instance& instance, const odb_SequenceInt& labels,
                              const odb_SequenceSequenceFloat& data,
                              const odb_SectionPoint& sectionPoint,
                              const odb_SequenceSequenceSequenceFloat& localCoordSystem,
                              const odb_SequenceSequenceFloat& conjugate) {
  auto request = requestFor<float>(position, instance, labels.engineItems(), sectionPoint);
  addRows(need(), request, flatten<float>(data), flatten<float>(conjugate),
          quaternions<float>(localCoordSystem, data.size()));
}

void odb_FieldOutput::addData(odb_Enum::odb_ResultPositionEnum position,
                              const odb_Instance& instance, const odb_SequenceInt& labels,
                              const odb_SequenceSequenceFloat& data,
                              const odb_SequenceSequenceSequenceFloat& localCoordSystem,
                              const odb_SequenceSequenceFloat& conjugate) {
  addData(position, instance, labels, data, odb_SectionPoint(), localCoordSystem, conjugate);
}

void odb_FieldOutput::addData(odb_Enum::odb_ResultPositionEnum position,
                              const odb_Instance& instance, const odb_SequenceInt& labels,
                              const odb_SequenceSequenceDouble& data,
                              const odb_SequenceSequenceSequenceDouble& localCoordSystem,
                              const odb_SequenceSequenceDouble& conjugate) {
  auto request = requestFor<double>(position, instance, labels.engineItems());
  addRows(need(), request, flatten<double>(data), flatten<double>(conjugate),
          quaternions<double>(localCoordSystem, data.size()));
}

void odb_FieldOutput::addData(odb_Enum::odb_ResultPositionEnum position, const odb_Set& set,
                              const odb_SequenceSequenceFloat& data,
                              const odb_SectionPoint& sectionPoint,
                              const odb_SequenceSequenceFloat& conjugate) {
  Members members = membersOf(set, position);
  if (isFacePosition(position) && !members.faces.empty()) spreadOverRows(members, data.size());
  auto request = requestFor<float>(position, members.instance, members.labels, sectionPoint);
  if (position == odb_Enum::ELEMENT_FACE && !members.faces.empty()) {
    request.faces = members.faces.data();
  }
  addRows(need(), request, flatten<float>(data), flatten<float>(conjugate), {});
}

void odb_FieldOutput::addData(const odb_FieldOutput& field) {
  FieldData& own = need();
  const Field source = fieldOf(field);
  if (source.get() == &own) failUsage("a field cannot take its own values");
  for (const Block& block : source->blocks) {
    if (block->precision == odb_Enum::DOUBLE_PRECISION) {
      addBlock<double>(own, *block);
    } else {
      addBlock<float>(own, *block);
    }
  }
}

void odb_embedded::addData(odb_FieldOutput& field, const FieldValues<float>& values) {
  addValues(*fieldOf(field), values);
}
void odb_embedded::addData(odb_FieldOutput& field, const FieldValues<double>& values) {
  addValues(*fieldOf(field), values);
}
void odb_embedded::releaseArrays(const odb_FieldBulkData& block) {
  if (block.engineBlock()) dropArrays(*block.engineBlock());
}
