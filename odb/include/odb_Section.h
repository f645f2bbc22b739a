// SPDX-License-Identifier: BSD-3-Clause
// The common base of all sections.
#pragma once

#include <odb_Sequences.h>
#include <odb_Union.h>
#include <odb_engine/repository.h>
#include <odb_engine/typed.h>

namespace odbs {
namespace engine {
struct SectionData;
}
}  // namespace odbs

class odb_Section : public odbs::Handle<odbs::engine::SectionData> {
 public:
  using Handle::Handle;
  ODBS_TYPE_IDENTIFIER(odb_Section)
  const odb_String& name() const;
  // Identifies the section's own class; compare with T::typeIdentifier().
  const odbs::TypeIdentifier& subTypeIdentifier() const;
  std::shared_ptr<void>& engineCastSlot() const;

 protected:
  // A stored constructor argument; the fallback when it was never given.
  const odb_String& text(const char* key) const;
  double number(const char* key, double fallback = 0) const;
  odb_Union value(const char* key) const;
};

class odb_SectionContainer : public odbs::RepositoryOf<odb_Section> {
 public:
  using RepositoryOf::RepositoryOf;
};
class odb_SectionContainerIT : public odbs::RepositoryIterator<odb_Section> {
 public:
  odb_SectionContainerIT(const odbs::RepositoryOf<odb_Section>& container)
      : odbs::RepositoryIterator<odb_Section>(container) {}
};
typedef odb_SectionContainer kseO_SectionContainer;
typedef odb_SectionContainerIT kseO_SectionContainerIT;
