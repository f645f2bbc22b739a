// SPDX-License-Identifier: BSD-3-Clause
// Field outputs: one result variable of one frame, their repositories, field arithmetic.
#pragma once

#include <odb_FieldBulkData.h>
#include <odb_FieldLocation.h>
#include <odb_FieldValue.h>
#include <odb_Frame.h>

#include <memory>

namespace odbs {
namespace engine {
struct FieldData;
}
}  // namespace odbs

class odb_Instance;
class odb_Set;
class odb_DatumCsys;

// A handle; copies share the field. Fields of a frame and fields that were computed (subsets,
// arithmetic) look alike. Every method throws odb_Exception on a default-constructed object, and
// when the database is damaged.
class odb_FieldOutput {
 public:
  odb_FieldOutput() = default;

  const odb_String& name() const;
  const odb_String& description() const;
  odb_Enum::odb_DataTypeEnum type() const;
  odb_Enum::odb_DataSubtypeEnum subtype() const;
  // Components of a value or, for matrices, rows; columns of matrices, else 1.
  int dim() const;
  int dim2() const;
  // True when values have conjugate (imaginary) parts.
  bool isComplex() const;
  // True for strain-like tensors, whose shear components are doubled.
  bool isEngineeringTensor() const;
  // True when values are given in local systems.
  bool hasOrientation() const;
  const odb_SequenceInvariant& validInvariants() const;
  // None for scalars.
  const odb_SequenceString& componentLabels() const;
  // The element types that have values, each once.
  const odb_SequenceString& baseElementTypes() const;
  // One per position and section category; values without a section point have a separate one.
  // The subsets of a field at its locations make up the whole of it. Integration points come first.
  const odb_SequenceFieldLocation& locations() const;
  const odb_FieldLocation& locations(int i) const;

  // All values, in the order of the blocks.
  odb_SequenceFieldValue values() const;
  odb_FieldValue values(int i) const;
  // One block per instance, element type and section point; none for a field without data. Asking
  // reads no arrays.
  const odb_SequenceFieldBulkData& bulkDataBlocks() const;
  const odb_FieldBulkData& bulkDataBlocks(int i) const;

  // One invariant, or one component by its label, as a scalar field, of the real part. Throws
  // odb_Exception when the field has no such invariant or component.
  odb_FieldOutput getScalarField(odb_Enum::odb_InvariantEnum invariant) const;
  odb_FieldOutput getScalarField(const odb_String& componentLabel) const;

  // The values in another system. In cylindrical and spherical systems the directions depend on
  // where the value sits, in the deformed shape when a displacement field is given. Values in a
  // surface (planar and surface tensors of shells and membranes) are turned within it: direction 1
  // becomes the projection of the system's axis that follows `axis` (0, 1, 2), or of `axis` itself
  // when that axis is within `tol` degrees of the normal. Throws odb_Exception for scalar fields,
  // matrices, and values at nodes of the assembly itself.
  odb_FieldOutput getTransformedField(const odb_DatumCsys& csys, int axis = 2,
                                      double tol = 0) const;
  odb_FieldOutput getTransformedField(const odb_DatumCsys& csys, const odb_FieldOutput& deformation,
                                      int axis = 2, double tol = 0) const;
  // `rotation` holds nodal rotation vectors; a field that has values turns the directions with the
  // nodes (nodal values only).
  odb_FieldOutput getTransformedField(const odb_DatumCsys& csys, const odb_FieldOutput& deformation,
                                      const odb_FieldOutput& rotation, int axis = 2,
                                      double tol = 0) const;

  // The values that sit at, or belong to, the argument; a field without blocks when there are none.
  //
  // By position: blocks of that position as they are. ELEMENT_NODAL and CENTROID are computed from
  // integration points for elements that have no such values, with the polynomial that the points
  // determine (linear fields come back exact where there are enough points), when a block's arrays
  // are first needed. Computed values are never written to the database, whatever `readOnly` is.
  odb_FieldOutput getSubset(odb_Enum::odb_ResultPositionEnum position, bool readOnly = false) const;
  // A node set selects by node (nodal and element-nodal values), an element set by element (of
  // nodal values those at the elements' nodes), a surface by element and face. Instance: whole
  // blocks. Location: position and section points.
  odb_FieldOutput getSubset(const odb_Set& set) const;
  odb_FieldOutput getSubset(const odb_Instance& instance) const;
  odb_FieldOutput getSubset(const odb_SectionPoint& point) const;
  odb_FieldOutput getSubset(const odb_FieldLocation& location) const;
  odb_FieldOutput getSubset(const odb_Element& element) const;
  odb_FieldOutput getSubset(const odb_Node& node) const;
  odb_FieldOutput getSubset(const odb_String& elementType) const;
  odb_FieldOutput getSubset(const char* elementType) const;
  // The values that are given in this local system: three rows of direction cosines, as passed to
  // addData.
  odb_FieldOutput getSubset(const odb_SequenceSequenceFloat& localCoordSystem) const;

  // ---- Writing. Each throws odb_Exception on a read-only database, a computed field, an unknown
  // label, rows of different length, or a number of rows that does not fit. ----

  // Adds values. `labels` are those of nodes (NODAL) or elements; `data` has one row of components
  // per value: per node, per element, or per element and integration point or node of its
  // connectivity, element by element. Elements of several types are sorted into blocks. `conjugate`
  // has as many rows as `data`. `localCoordSystem`, not for scalars, has three rows of direction
  // cosines; it is stored transposed, so that its columns are the axes of what is read back: one
  // system for all values or, in the nested form, one per value.
  void addData(odb_Enum::odb_ResultPositionEnum position, const odb_Instance& instance,
               const odb_SequenceInt& labels, const odb_SequenceSequenceFloat& data,
               const odb_SectionPoint& sectionPoint = odb_SectionPoint(),
               const odb_SequenceSequenceFloat& localCoordSystem = odb_SequenceSequenceFloat(),
               const odb_SequenceSequenceFloat& conjugate = odb_SequenceSequenceFloat());
  void addData(odb_Enum::odb_ResultPositionEnum position, const odb_Instance& instance,
               const odb_SequenceInt& labels, const odb_SequenceSequenceFloat& data,
               const odb_SequenceSequenceFloat& localCoordSystem);
  void addData(odb_Enum::odb_ResultPositionEnum position, const odb_Instance& instance,
               const odb_SequenceInt& labels, const odb_SequenceSequenceFloat& data,
               const odb_SectionPoint& sectionPoint,
               const odb_SequenceSequenceSequenceFloat& localCoordSystem,
               const odb_SequenceSequenceFloat& conjugate = odb_SequenceSequenceFloat());
  void addData(odb_Enum::odb_ResultPositionEnum position, const odb_Instance& instance,
               const odb_SequenceInt& labels, const odb_SequenceSequenceFloat& data,
               const odb_SequenceSequenceSequenceFloat& localCoordSystem,
               const odb_SequenceSequenceFloat& conjugate = odb_SequenceSequenceFloat());
  // In double precision.
  void addData(odb_Enum::odb_ResultPositionEnum position, const odb_Instance& instance,
               const odb_SequenceInt& labels, const odb_SequenceSequenceDouble& data,
               const odb_SequenceSequenceSequenceDouble& localCoordSystem =
                   odb_SequenceSequenceSequenceDouble(),
               const odb_SequenceSequenceDouble& conjugate = odb_SequenceSequenceDouble());
  // For the members of a set of one instance; a surface also at faces.
  void addData(odb_Enum::odb_ResultPositionEnum position, const odb_Set& set,
               const odb_SequenceSequenceFloat& data,
               const odb_SectionPoint& sectionPoint = odb_SectionPoint(),
               const odb_SequenceSequenceFloat& conjugate = odb_SequenceSequenceFloat());
  // The values of another field, which may be a computed one, or of another database: then they go
  // to the instance of the same name and the section point of the same number in the category of
  // the same name. Throws odb_Exception where there is none.
  void addData(const odb_FieldOutput& field);

  // Same field, not same content.
  bool operator==(const odb_FieldOutput& other) const { return data_ == other.data_; }

  // For the library itself.
  explicit odb_FieldOutput(std::shared_ptr<odbs::engine::FieldData> data)
      : data_(std::move(data)) {}
  const std::shared_ptr<odbs::engine::FieldData>& engineField() const { return data_; }

 private:
  odbs::engine::FieldData& need() const;
  std::shared_ptr<odbs::engine::FieldData> data_;
};

class odb_SequenceFieldOutput : public odbs::SequenceOf<odb_FieldOutput> {
 public:
  using SequenceOf::SequenceOf;
};

// The fields of a frame by name. They are read from the database when the repository is first
// asked, and again after the frame was released.
class odb_FieldOutputRepository : public odbs::RepositoryOf<odb_FieldOutput> {
 public:
  odb_FieldOutputRepository() = default;

  odb_FieldOutput& operator[](const odb_String& key) { return loaded()[key]; }
  const odb_FieldOutput& operator[](const odb_String& key) const { return loaded()[key]; }
  odb_FieldOutput& operator[](const char* key) { return loaded()[key]; }
  const odb_FieldOutput& operator[](const char* key) const { return loaded()[key]; }
  odb_FieldOutput& operator[](int i) { return loaded()[i]; }
  const odb_FieldOutput& operator[](int i) const { return loaded()[i]; }
  odb_FieldOutput& get(const odb_String& key) { return loaded().get(key); }
  const odb_FieldOutput& get(const odb_String& key) const { return loaded().get(key); }
  const odb_FieldOutput& constGet(const odb_String& key) const { return loaded().get(key); }
  bool isMember(const odb_String& key) const { return loaded().isMember(key); }
  int size() const { return loaded().size(); }
  // Names of the fields, in the order of iteration.
  odb_SequenceString getFieldOutputNames() const;
  // Frees what the frame's fields have loaded, as release() of a sequence of frames does.
  void release() const;
  // Frees the arrays of one field; they are read again when asked for, and pointers into them
  // become invalid. Throws odb_Exception when there is no such field.
  void release(const odb_String& key) const;

  // For the library itself.
  explicit odb_FieldOutputRepository(odbs::engine::FrameData* frame) : frame_(frame) {}
  odbs::RepositoryOf<odb_FieldOutput>& loaded() const;
  odbs::RepositoryOf<odb_FieldOutput>& engineBase() const {
    return const_cast<odb_FieldOutputRepository&>(*this);
  }

 private:
  odbs::engine::FrameData* frame_ = nullptr;
};

// Walks the fields of a frame by name. Keeps what it walks over, also when the frame is released.
class odb_FieldOutputRepositoryIT : public odbs::RepositoryIterator<odb_FieldOutput> {
 public:
  odb_FieldOutputRepositoryIT(const odb_FieldOutputRepository& repository)
      : odbs::RepositoryIterator<odb_FieldOutput>(repository.loaded()) {}
};

// ---- Arithmetic, component by component ----
//
// Operands need the same blocks: the same field names, or the same subsets of them; odb_Exception
// otherwise. A scalar field combines with any other. Results are new fields with the name and type
// of the first operand; they are in double precision when an operand is. Complex fields are added,
// subtracted, multiplied and divided as complex numbers; other functions act on the real part and
// give a real field. A value outside a function's domain gives what the C library gives (NaN).

odb_FieldOutput operator-(const odb_FieldOutput& field);
odb_FieldOutput operator+(const odb_FieldOutput& a, const odb_FieldOutput& b);
odb_FieldOutput operator-(const odb_FieldOutput& a, const odb_FieldOutput& b);
odb_FieldOutput operator*(const odb_FieldOutput& a, const odb_FieldOutput& b);
odb_FieldOutput operator/(const odb_FieldOutput& a, const odb_FieldOutput& b);
odb_FieldOutput operator+(const odb_FieldOutput& a, double b);
odb_FieldOutput operator-(const odb_FieldOutput& a, double b);
odb_FieldOutput operator*(const odb_FieldOutput& a, double b);
odb_FieldOutput operator/(const odb_FieldOutput& a, double b);
odb_FieldOutput operator+(double a, const odb_FieldOutput& b);
odb_FieldOutput operator-(double a, const odb_FieldOutput& b);
odb_FieldOutput operator*(double a, const odb_FieldOutput& b);
odb_FieldOutput operator/(double a, const odb_FieldOutput& b);

odb_FieldOutput abs(const odb_FieldOutput& field);
odb_FieldOutput sqrt(const odb_FieldOutput& field);
odb_FieldOutput sin(const odb_FieldOutput& field);
odb_FieldOutput cos(const odb_FieldOutput& field);
odb_FieldOutput tan(const odb_FieldOutput& field);
odb_FieldOutput asin(const odb_FieldOutput& field);
odb_FieldOutput acos(const odb_FieldOutput& field);
odb_FieldOutput atan(const odb_FieldOutput& field);
odb_FieldOutput exp(const odb_FieldOutput& field);
odb_FieldOutput exp10(const odb_FieldOutput& field);
odb_FieldOutput log(const odb_FieldOutput& field);
odb_FieldOutput log10(const odb_FieldOutput& field);
odb_FieldOutput power(const odb_FieldOutput& field, float exponent);
odb_FieldOutput degreeToRadian(const odb_FieldOutput& field);
odb_FieldOutput radianToDegree(const odb_FieldOutput& field);
// Of each component as a complex number; the phase in radians. Real fields count as complex ones
// with imaginary part 0.
odb_FieldOutput complexMagnitude(const odb_FieldOutput& field);
odb_FieldOutput complexPhase(const odb_FieldOutput& field);
odb_FieldOutput complexReal(const odb_FieldOutput& field);
odb_FieldOutput complexImag(const odb_FieldOutput& field);

// Envelopes over fields with the same blocks. [0] holds, value by value, the components of the
// field that has the greatest (least) value, [1] the index of that field in `fields`, counted from
// 0. Fields are compared by an invariant, a component, or in the plain form by their only component
// or their first valid invariant. Throw odb_Exception for an empty list and where that does not
// exist.
odb_SequenceFieldOutput maxEnvelope(const odb_SequenceFieldOutput& fields);
odb_SequenceFieldOutput maxEnvelope(const odb_SequenceFieldOutput& fields,
                                    odb_Enum::odb_InvariantEnum invariant);
odb_SequenceFieldOutput maxEnvelope(const odb_SequenceFieldOutput& fields,
                                    const odb_String& componentLabel);
odb_SequenceFieldOutput minEnvelope(const odb_SequenceFieldOutput& fields);
odb_SequenceFieldOutput minEnvelope(const odb_SequenceFieldOutput& fields,
                                    odb_Enum::odb_InvariantEnum invariant);
odb_SequenceFieldOutput minEnvelope(const odb_SequenceFieldOutput& fields,
                                    const odb_String& componentLabel);
