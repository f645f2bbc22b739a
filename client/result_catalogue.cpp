// SPDX-License-Identifier: BSD-3-Clause
// Decoders for the records of a catalogue, and the builder that stores repeats once.
#include "client/result_catalogue.h"

#include "client/records/cursor.h"

namespace odbs::client {

namespace {

bool sameStep(const CatalogueStep& a, const CatalogueStep& b) {
  return a.number == b.number && a.totalTime == b.totalTime && a.name == b.name &&
         a.description == b.description && a.procedure == b.procedure;
}

bool sameField(const CatalogueField& a, const CatalogueField& b) {
  return a.name == b.name && a.description == b.description && a.components == b.components;
}

// The position of `item`, which is added when it is new. Entries come in runs, so the search begins
// where the last one ended.
template <typename Item, typename Same>
std::size_t placeOf(std::vector<Item>& items, const Item& item, std::size_t hint, Same same) {
  for (std::size_t i = 0; i < items.size(); ++i) {
    const std::size_t at = (hint + i) % items.size();
    if (same(items[at], item)) return at;
  }
  items.push_back(item);
  return items.size() - 1;
}

bool flag(Cursor& cursor) {
  const std::int32_t value = cursor.i32();
  if (value != 0 && value != 1) cursor.fail("the flag " + std::to_string(value));
  return value == 1;
}

}  // namespace

CatalogueStep decodeStep(const Record& record) {
  Cursor cursor(record, "step record");
  CatalogueStep step;
  step.number = cursor.i32();
  step.totalTime = cursor.f64();
  const std::string_view text = cursor.text();
  cursor.expectEnd();
  const std::size_t separator = text.find('\x01');
  if (separator == std::string_view::npos) cursor.fail("name and description are not separated");
  step.name = text.substr(0, separator);
  step.description = text.substr(separator + 1);
  return step;
}

std::string decodeProcedure(const Record& record) {
  Cursor cursor(record, "procedure record");
  std::string procedure(cursor.text());
  cursor.expectEnd();
  return procedure;
}

CatalogueField decodeField(const Record& record) {
  Cursor cursor(record, "field record");
  CatalogueField field;
  field.name = cursor.text();
  field.description = cursor.text();
  cursor.expectEnd();
  return field;
}

std::vector<std::string> decodeComponents(const Record& record) {
  Cursor cursor(record, "components record");
  std::vector<std::string> components;
  while (cursor.left() > 0) components.emplace_back(cursor.text());
  if (components.empty()) cursor.fail("no components");
  return components;
}

CatalogueEntry decodeFrame(const Record& record, bool isNodal) {
  Cursor cursor(record, "frame record");
  CatalogueEntry entry;
  entry.frameIndex = cursor.i32();
  entry.domain = cursor.i32();
  entry.mode = cursor.i32();
  entry.frameValue = cursor.f64();
  entry.frequency = cursor.f64();
  entry.isComplex = flag(cursor);
  if (isNodal) {
    entry.isScalar = flag(cursor);
  } else {
    entry.positions = cursor.i32();
    entry.invariants = cursor.i32();
    entry.tensorKinds = cursor.i32();
    entry.hasSectionPoints = flag(cursor);
  }
  entry.frameDescription = cursor.text();
  cursor.expectEnd();
  return entry;
}

void CatalogueBuilder::add(const Record& record) {
  switch (record.tag) {
    case kStepTag:
      step_ = decodeStep(record);
      hasStep_ = true;
      return;
    case kProcedureTag:
      step_.procedure = decodeProcedure(record);
      return;
    case kFieldTag:
      field_ = decodeField(record);
      hasField_ = true;
      return;
    case kComponentsTag:
      field_.components = decodeComponents(record);
      return;
    case kFrameTag:
      return addFrame(record);
    default:
      if (!takeHead(record, catalogue_)) failUnexpected(record, "in a catalogue");
  }
}

void CatalogueBuilder::addFrame(const Record& record) {
  if (!hasStep_ || !hasField_) {
    throw MalformedRecord(record.offset, "a frame record without step or field");
  }
  CatalogueEntry entry = decodeFrame(record, isNodal_);
  std::vector<CatalogueEntry>& entries = catalogue_.entries;
  const std::size_t lastStep = entries.empty() ? 0 : entries.back().step;
  const std::size_t nextField = entries.empty() ? 0 : entries.back().field + 1;
  entry.step = placeOf(catalogue_.steps, step_, lastStep, sameStep);
  entry.field = placeOf(catalogue_.fields, field_, nextField, sameField);
  entries.push_back(std::move(entry));
  hasStep_ = hasField_ = false;
}

Catalogue CatalogueBuilder::finish() {
  Catalogue catalogue = std::move(catalogue_);
  *this = CatalogueBuilder(isNodal_);
  return catalogue;
}

Catalogue readCatalogue(Connection& server, const std::string& path,
                        const CatalogueRequest& request) {
  static constexpr char kLetters[][3] = {"dD", "sS", "vV"};
  const char letter = kLetters[static_cast<int>(request.listing)][request.everyFrame ? 1 : 0];
  if (!request.cachePath.empty()) server.command("T " + request.cachePath);
  server.send(std::string("f") + letter + " " + path);
  const CatalogueBuilder builder(request.listing == Listing::kNodal);
  return requireOpened(path, readReply(server, builder));
}

}  // namespace odbs::client
