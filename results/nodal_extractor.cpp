// SPDX-License-Identifier: BSD-3-Clause
// The walk over nodal blocks, and what goes along with displacements.
#include "results/nodal_extractor.h"

#include <algorithm>
#include <map>

#include "results/block_writer.h"
#include "results/failure_times.h"
#include "results/selected_field.h"
#include "server/core/channel.h"
#include "server/core/entity_records.h"
#include "server/core/label_set.h"
#include "server/core/result_codes.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

// Tags of the values at nodes: of real and of complex fields.
struct TagPair {
  unsigned char real;
  unsigned char complex;
};
constexpr TagPair kNodalTags = {0x11, 0x12};

// Contract: 19 k and 20 k.
constexpr struct {
  const char* field;
  TagPair tags;
} kRotations[] = {{"UR", {19, 20}}, {"UR1", {38, 40}}, {"UR2", {57, 60}}, {"UR3", {76, 80}}};

constexpr unsigned char kFailedElementTag = '"';
constexpr int kMostNumbers = static_cast<int>((kMaxPayload - 5) / 4);

constexpr std::string_view kContactNames[] = {"COPEN", "CPRESS", "CDPRESS", "CSHEAR",  "CDSHEAR",
                                              "CSLIP", "CNORMF", "CNAREA",  "CSTATUS", "FSLIP"};

bool startsWith(std::string_view text, std::string_view head) {
  return text.substr(0, head.size()) == head;
}

std::string withSingleBlanks(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ' || result.empty() || result.back() != ' ') result += c;
  }
  return result;
}

std::string_view firstWordOf(std::string_view text) {
  return text.substr(0, text.find(' '));
}

std::vector<std::string> keysOf(const odb_FieldOutputRepository& fields) {
  std::vector<std::string> keys;
  odb_FieldOutputRepositoryIT it(fields);
  for (it.first(); !it.isDone(); it.next()) keys.emplace_back(it.currentKey().CStr());
  return keys;
}

// The key of the selected variable; empty when the frame lacks it.
std::string keyOf(const odb_FieldOutputRepository& fields, const std::string& name) {
  if (fields.isMember(name.c_str())) return name;
  if (!isContactVariable(name)) return {};
  const std::vector<std::string> keys = keysOf(fields);
  const std::string* const key = findContactKey(keys, name);
  return key ? *key : std::string();
}

class NodalWalk {
 public:
  NodalWalk(odb_Odb& odb, int outputFd, const LabelList& labels)
      : outputFd_(outputFd), severalInstances_(odb.rootAssembly().instances().size() > 1) {
    for (int i = 0; i < labels.count; ++i) restriction_.add(labels.items[i]);
  }

  void sendField(const odb_FieldOutput& field, TagPair tags) {
    const bool complex = field.isComplex();
    forEachBlock(field, [&](const odb_FieldBulkData& block) {
      // Dropped: values at integration points, elements or faces belong to no node.
      if (block.position() != odb_Enum::NODAL && block.position() != odb_Enum::ELEMENT_NODAL) {
        return;
      }
      announce(block.instance().name().CStr());
      if (block.precision() == odb_Enum::DOUBLE_PRECISION) {
        sendValues<double>(block, tags, complex);
      } else {
        sendValues<float>(block, tags, complex);
      }
    });
  }

  void sendStatus(const odb_FieldOutput& status) {
    std::map<std::string, LabelSet> sent;  // layered elements have a status at each section point
    forEachBlock(status, [&](const odb_FieldBulkData& block) {
      const std::string instance = block.instance().name().CStr();
      LabelSet& known = sent[instance];
      for (const int label : failedLabels(block)) {
        if (known.add(label)) sendFailed(instance, label);
      }
    });
  }

  void sendFailedUntil(const std::vector<FailedElement>& elements, double time) {
    for (const FailedElement& element : elements) {
      if (element.time <= time) sendFailed(element.instance, element.label);
    }
  }

 private:
  void announce(const std::string& instance) {
    if (!severalInstances_ || instance == instance_) return;
    instance_ = instance;
    sendNameRecord(outputFd_, instance);
  }

  // Nodal value record, buffered.
  //   offset  size  content
  //   0       1     the tag for real or for complex values
  //   1       4     node label
  //   5       4*n   components, singles; then conjugate components of a complex field
  template <typename Real>
  void sendValues(const odb_FieldBulkData& block, TagPair tags, bool complex) {
    const int width = block.width();
    sdk::forEachValueSlice<Real>(block, complex, [&](const sdk::ValueSlice<Real>& slice) {
      if (!slice.nodeLabels) return;
      const Conjugates<Real> conjugates(complex, slice, width);
      const int kept = std::min(width, complex ? kMostNumbers / 2 : kMostNumbers);
      const auto nBytes = static_cast<std::uint32_t>(5 + 4 * (complex ? 2 * kept : kept));
      RecordCursor cursor(outputFd_);
      for (int i = 0; i < slice.n; ++i) {
        const std::ptrdiff_t at = std::ptrdiff_t{i} * width;
        unsigned char* p = cursor.reserveRecord(nBytes);
        *p = complex ? tags.complex : tags.real;
        putI32(p + 1, slice.nodeLabels[i]);
        p = putReals(p + 5, slice.data + at, kept);
        if (complex) putReals(p, conjugates.of(i), kept);
      }
    });
  }

  template <typename Real>
  static unsigned char* putReals(unsigned char* p, const Real* values, int n) {
    for (int k = 0; k < n; ++k, p += 4) putF32(p, static_cast<float>(values[k]));
    return p;
  }

  // Failed element record, buffered.
  //   offset  size  content
  //   0       1     '"'
  //   1       4     element label
  //   5       4     0
  void sendFailed(const std::string& instance, int label) {
    if (!restriction_.empty() && !restriction_.has(label)) return;
    announce(instance);
    unsigned char* p = reserveRecord(outputFd_, 9);
    *p = kFailedElementTag;
    putI32(p + 1, label);
    putI32(p + 5, 0);
  }

  int outputFd_;
  bool severalInstances_;
  LabelSet restriction_;  // of failed elements; empty: all are sent
  std::string instance_;  // the last one announced
};

void sendRotations(NodalWalk& walk, const odb_FieldOutputRepository& fields) {
  const auto [field, tags] = kRotations[0];
  if (fields.isMember(field)) return walk.sendField(fields.get(field), tags);
  const auto* const begin = std::begin(kRotations) + 1;
  const auto* const end = std::end(kRotations);
  // Contract: the three components come together or not at all.
  if (!std::all_of(begin, end, [&](const auto& part) { return fields.isMember(part.field); })) {
    return;
  }
  std::for_each(begin, end,
                [&](const auto& part) { walk.sendField(fields.get(part.field), part.tags); });
}

}  // namespace

bool isContactVariable(std::string_view name) {
  return std::any_of(std::begin(kContactNames), std::end(kContactNames),
                     [name](std::string_view head) { return startsWith(name, head); });
}

const std::string* findContactKey(const std::vector<std::string>& keys, std::string_view name) {
  const auto firstWhere = [&keys](auto matches) {
    const auto at = std::find_if(keys.begin(), keys.end(), matches);
    return at == keys.end() ? nullptr : &*at;
  };
  if (const auto* key = firstWhere([&](const std::string& k) { return k == name; })) return key;
  const std::string single = withSingleBlanks(name);
  if (const auto* key =
          firstWhere([&](const std::string& k) { return withSingleBlanks(k) == single; })) {
    return key;
  }
  const std::string_view word = firstWordOf(name);
  return firstWhere([&](const std::string& k) { return firstWordOf(k) == word; });
}

void extractNodal(odb_Odb& odb, int outputFd, const Selection& selection, const LabelList& labels) {
  sendTitleAndKind(outputFd, odb);
  if (selection.stepNumber < 1) return;
  const int stepIndex = selection.stepNumber - 1;
  const odb_Step& step = stepAt(odb, stepIndex);
  const odb_Frame frame = frameAt(odb, stepIndex, selection.frameIndex);
  const odb_FieldOutputRepository& fields = frame.fieldOutputs();
  const std::string key = keyOf(fields, selection.variableName);
  if (key.empty()) return;

  NodalWalk walk(odb, outputFd, labels);
  walk.sendField(fields.get(key.c_str()), kNodalTags);
  if (selection.variableName == "U" || selection.variableName == "UT") {
    if (fields.isMember("STATUS")) walk.sendStatus(fields.get("STATUS"));
    if (!fields.isMember("CFAILST") && selection.position == position::kCentroid) {
      const double now =
          static_cast<double>(frame.frameValue()) + static_cast<double>(step.totalTime());
      walk.sendFailedUntil(failedElementsOf(odb, stepIndex), now);
    }
    sendRotations(walk, fields);
  }
  flushOutput(outputFd);
}

}  // namespace odbs
