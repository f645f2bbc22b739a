// SPDX-License-Identifier: BSD-3-Clause
// Steps of the analysis.
#pragma once

#include <odb_Frame.h>
#include <odb_Set.h>

namespace odbs {
namespace engine {
struct StepData;
}
}  // namespace odbs

class odb_HistoryPoint;
class odb_HistoryRegion;
class odb_HistoryRegionRepository;

// Degrees of freedom that were eliminated at a node.
class odb_NodalDofs {
 public:
  odb_NodalDofs() = default;
  odb_NodalDofs(const odb_Node& node, const odb_SequenceInt& dofs) : node_(node), dofs_(dofs) {}
  const odb_Node& node() const { return node_; }
  // Degrees of freedom, counted from 1.
  const odb_SequenceInt& dofs() const { return dofs_; }
  bool operator==(const odb_NodalDofs& other) const {
    return node_ == other.node_ && dofs_.engineItems() == other.dofs_.engineItems();
  }

 private:
  odb_Node node_;
  odb_SequenceInt dofs_;
};

ODBS_OBJECT_SEQUENCE(odb_SequenceNodalDofs, odb_NodalDofs);

class odb_Step : public odbs::Handle<odbs::engine::StepData> {
 public:
  using Handle::Handle;

  const odb_String& name() const;
  const odb_String& description() const;
  // Keyword text such as "*STATIC" or "*FREQUENCY".
  const odb_String& procedure() const;
  // "Initial" for the first step.
  const odb_String& previousStepName() const;
  odb_Enum::odb_DomainEnum domain() const;
  float timePeriod() const;
  // Time that the steps before this one took.
  float totalTime() const;
  // Index in the analysis, counted from 1.
  int number() const;
  bool nlgeom() const;

  odb_SequenceFrame& frames() const;
  odb_Frame& frames(int i) const;
  odb_LoadCaseRepository& loadCases() const;

  // The frame at a time, frequency or arc length. EXACT, BEFORE and AFTER throw odb_Exception when
  // no frame matches; every form does in a step without frames.
  odb_Frame getFrame(double frameValue, odb_Enum::odb_MatchEnum match = odb_Enum::CLOSEST) const;
  odb_Frame getFrame(const odb_LoadCase& loadCase) const;
  odb_Frame getFrame(const odb_LoadCase& loadCase, double frameValue,
                     odb_Enum::odb_MatchEnum match = odb_Enum::CLOSEST) const;

  // Mass data of the model in this step; 0 and empty where they were not computed. Centres have 3
  // numbers, inertias 6 (11, 22, 33, 12, 13, 23).
  double mass() const;
  double acousticMass() const;
  const odb_SequenceDouble& massCenter() const;
  const odb_SequenceDouble& inertiaAboutCenter() const;
  const odb_SequenceDouble& inertiaAboutOrigin() const;
  const odb_SequenceDouble& acousticMassCenter() const;
  // Always empty: this library stores none.
  const odb_SequenceNodalDofs& eliminatedNodalDofs() const;

  odb_HistoryRegionRepository& historyRegions() const;
  // Throw odb_Exception when no region has that point (and load case).
  odb_HistoryRegion& getHistoryRegion(const odb_HistoryPoint& point) const;
  odb_HistoryRegion& getHistoryRegion(const odb_HistoryPoint& point,
                                      const odb_LoadCase& loadCase) const;

  // ---- Writing. Each throws odb_Exception on a read-only database. ----

  // Adds a frame at the end. In modal steps `incrementNumber` is the mode; in modal and frequency
  // steps `frameValue` is the frequency.
  odb_Frame Frame(int incrementNumber, float frameValue, const odb_String& description = "");
  odb_Frame Frame(const odb_LoadCase& loadCase, const odb_String& description = "",
                  float frequency = 0);
  odb_LoadCase& LoadCase(const odb_String& name);

  odb_HistoryRegion& HistoryRegion(const odb_String& name, const odb_String& description,
                                   const odb_HistoryPoint& point);
  odb_HistoryRegion& HistoryRegion(const odb_String& name, const odb_String& description,
                                   const odb_HistoryPoint& point, const odb_LoadCase& loadCase);

  // The fields that a viewer shows first.
  void setDefaultField(const odb_FieldOutput& field);
  void setDefaultDeformedField(const odb_FieldOutput& field);
};

// The steps by index.
class odb_StepList {
 public:
  explicit odb_StepList(const odbs::RepositoryOf<odb_Step>& steps) : items_(steps.engineShared()) {}
  int size() const { return items_->size(); }
  int Size() const { return items_->size(); }
  // Step `i` of the analysis, counted from 0. Throws odb_Exception outside.
  odb_Step& Get(int i) const { return items_->at(i).value; }
  odb_Step& operator[](int i) const { return items_->at(i).value; }
  const odb_Step& ConstGet(int i) const { return items_->at(i).value; }
  // The last step. Throws odb_Exception when there is none.
  odb_Step& Last() const { return items_->at(items_->size() - 1).value; }

 private:
  std::shared_ptr<odbs::RepositoryItems<odb_Step>> items_;
};

// Iterates in the order of the analysis.
class odb_StepRepository : public odbs::RepositoryOf<odb_Step> {
 public:
  using RepositoryOf::RepositoryOf;
  odb_StepList stepList() const { return odb_StepList(*this); }
  // Frees what the frames of all steps, or of one, have loaded, as release() of a sequence of
  // frames does. Throws odb_Exception when there is no such step.
  void release() const;
  void release(const odb_String& key) const;
};

class odb_StepRepositoryIT : public odbs::RepositoryIterator<odb_Step> {
 public:
  odb_StepRepositoryIT(const odbs::RepositoryOf<odb_Step>& repository)
      : odbs::RepositoryIterator<odb_Step>(repository) {}
};
