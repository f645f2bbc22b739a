// SPDX-License-Identifier: BSD-3-Clause
// The database, and the free functions that open, create and upgrade databases.
//
// A database and everything that was got from it belong to one thread at a time; closing it while
// another thread uses it is undefined. Different databases are not independent either: the storage
// library below is single-threaded, so only one thread may call this library at any time. The
// repository of open databases alone may be asked from any thread.
#pragma once

#include <odb_ApiExtension.h>
#include <odb_Assembly.h>
#include <odb_Interaction.h>
#include <odb_JobData.h>
#include <odb_Step.h>
#include <odb_UserData.h>

class odb_Odb {
 public:
  // Text under which openOdb or Odb entered the database in the repository of open databases.
  const odb_String& name() const;
  // Path as given.
  const odb_String& path() const;
  const odb_String& analysisTitle() const;
  const odb_String& description() const;
  bool isReadOnly() const;
  bool isClosed() const;

  odb_Assembly& rootAssembly() const;
  const odb_Assembly& constRootAssembly() const { return rootAssembly(); }
  odb_JobData jobData() const;
  odb_PartRepository& parts() const;
  odb_StepRepository& steps() const;
  odb_SectionCategoryRepository& sectionCategories() const;
  odb_UserData& userData() const;
  odb_InteractionRepository& interactions() const;
  odb_InteractionPropertyRepository& interactionProperties() const;
  odb_ConstraintRepository& constraints() const;
  odb_AmplitudeRepository& amplitudes() const;
  bool hasSectorDefinition() const;
  // Throws odb_Exception when there is none.
  const odb_SectorDefinition& sectorDefinition() const;

  // Fills an odb_SectionApi (odb_Enum::odb_SECTION) or odb_MaterialApi (odb_Enum::odb_MATERIAL).
  // Throws odb_Exception when object and selector do not fit.
  void extendApi(odb_Enum::odb_ApiExtensionEnum which, odb_ApiExtension& extension);

  // The frame at a total time (time domain) or frequency, over all steps. Throws odb_Exception when
  // none matches.
  odb_Frame getFrame(double value, odb_Enum::odb_MatchEnum match = odb_Enum::CLOSEST) const;

  // Writes everything beside the target file, flushes it, and renames it over the target: the
  // old file stays whole until then. Throws odb_Exception when opened read-only or when writing
  // fails; the old file is then untouched.
  void save();
  // Closes without saving and drops the database from the repository of open databases. All
  // handles become invalid; the object itself stays valid, and answers isClosed(), name() and
  // path(), until a database of the same name is opened or the program ends.
  void close();
  // Frees what the frames of all steps have loaded.
  void release() const { steps().release(); }
  // Looks at the file again. Returns true, with the new steps and frames visible, when it has more
  // steps or frames than before; other changes need a fresh open. Handles stay valid. On Windows,
  // arrays of the model that were asked for but not read before the change can no longer be read.
  bool update();

  // ---- Writing. Each throws odb_Exception on a read-only database or a name that is taken. ----

  odb_SectionCategory& SectionCategory(const odb_String& name, const odb_String& description);
  odb_Part& Part(const odb_String& name, odb_Enum::odb_DimensionEnum embeddedSpace,
                 odb_Enum::odb_PartTypeEnum type);
  // Adds a step: at the end, or after the step `previousStepName`, or first for "Initial"; throws
  // odb_Exception when there is no such step. A negative total time means the sum of the steps
  // before.
  odb_Step& Step(const odb_String& name, const odb_String& description,
                 odb_Enum::odb_DomainEnum domain, double timePeriod = 0,
                 const odb_String& previousStepName = "", const odb_String& procedure = "",
                 double totalTime = -1, bool nlgeom = true);

  // For the library itself.
  explicit odb_Odb(std::unique_ptr<odbs::engine::Database> database);
  ~odb_Odb();
  odb_Odb(const odb_Odb&) = delete;
  odb_Odb& operator=(const odb_Odb&) = delete;
  odbs::engine::Database& engineDatabase() const;

 private:
  friend class odb_OdbRepository;
  std::unique_ptr<odbs::engine::Database> database_;
  odb_String name_;
  odb_String path_;
};

// First and last call of a program; both may be repeated, and may be left out. Finalising closes
// all databases.
void odb_initializeAPI();
void odb_finalizeAPI();

// Opens an existing database, under its path text in the first form, under `name` (its path when
// empty) in the second. The reference is valid until the database is closed. Opening a key that is
// open gives the open database. Internal sets, whose names begin with a blank, are always there.
// Throws odb_Exception: no such file, no database, damaged, older release (upgrade it), newer
// release.
odb_Odb& openOdb(const odb_String& path, bool readOnly = false, bool readInternalSets = false);
odb_Odb& openOdb(const odb_String& name, const odb_String& path, bool readOnly = false);
odb_Odb& openOdb(const char* name, const char* path, bool readOnly = false);
odb_Odb& openOdb(const odb_String& name, const char* path, bool readOnly = false);
odb_Odb& openOdb(const odb_String& path, int readOnly);

// The same as odb.close().
void closeOdb(odb_Odb& odb);

// True for a database of an older release; false for anything else, also for a missing file and for
// one that is no database.
bool isUpgradeRequiredForOdb(const odb_String& path);
// Writes an upgraded copy and, beside it, a log whose name is the copy's with its extension
// replaced by ".log". Throws odb_Exception when the database needs no upgrade, or cannot be read or
// written; no copy is left then.
void upgradeOdb(const odb_String& existingPath, const odb_String& upgradedPath);

// Creates a database with an empty root assembly, open for writing under `name`. Its file, which
// save() writes, is `path`, or `name` with ".odb" where that is empty.
odb_Odb& Odb(const odb_String& name, const odb_String& analysisTitle = "",
             const odb_String& description = "", const odb_String& path = "");

// The only open database. Throws odb_Exception when none or several are open.
odb_Odb& getActiveOdb();
