// Micro joints of a milling job: the short stretches of a contour where the
// tool stays above the through-cut depth so that the part stays held in the
// sheet. The milling writer copies each stretch to the layer
// "MicroJointLayer" at the pass where the depth first falls below the joint
// limit; after the job the joint writer cuts those stretches free with the
// passes they missed, and the layer goes again.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/data_access.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

constexpr int16_t kLayerAtEnd = 1;   // layer position: behind all others
/// The property of a joint's path: its flags take bit 2, so that it counts
/// for output.
constexpr int16_t kJointPathProperty = 7;
constexpr int32_t kJointPlotValue = 1;

uint32_t JointWriterThunk(void* context, void* path) {
  return static_cast<CRvRVLFormat*>(context)->JointWriter(ArtOf(path));
}

/// The numbers of a repeat tag: the pass count, then the passes.
std::vector<int32_t> RepeatNumbers(const std::string& text) {
  std::vector<int32_t> numbers;
  std::size_t at = 0;
  while (at <= text.size()) {
    const std::size_t comma = std::min(text.find(',', at), text.size());
    numbers.push_back(int32_t(std::atoi(text.substr(at, comma - at).c_str())));
    at = comma + 1;
  }
  return numbers;
}

/// The value of a repeat tag: "%d,%s", the count and the passes.
std::string RepeatText(int32_t firstPass, int32_t lastPass) {
  std::string list;
  for (int32_t p = firstPass; p <= lastPass; ++p) {
    if (!list.empty()) list += ',';
    list += std::to_string(p);
  }
  return std::to_string(lastPass >= firstPass ? lastPass - firstPass + 1 : 0) + "," + list;
}

}  // namespace

void CRvRVLFormat::BuildJoints(const std::string& key, const CRvBezier& component, const RVRIFMATRIX& matrix,
                               const JointList& joints, int32_t firstPass, int32_t lastPass, bool forward) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvRIFMemoryData& document = store.ActiveDocument();
  CRvLayer* layer = store.GetLayerFromName(kMicroJointLayer);
  if (layer == nullptr) {
    // The layer is the library's own: the host's current layer stays.
    const uint16_t current = document.m_currentLayer;
    layer = store.CreateLayer(kLayerAtEnd, nullptr);
    store.SetLayerName(layer, kMicroJointLayer);
    document.m_currentLayer = current;
  }
  const int32_t n = component.GetPointCount();
  const std::string passes = RepeatText(firstPass, lastPass);
  for (int16_t j = 0; j < joints.count; ++j) {
    const int32_t start = joints.starts[j];
    const int32_t end = joints.ends[j];
    if (start < 0 || start >= n || end < 0 || end >= n) continue;  // a joint the walk never meets
    CRvArt* path = store.CreateArt(kArtPath, kLastChild, layer);
    store.SetPathClosed(path, start == 0 || end == 0 ? 1 : 0);
    store.SetPathProp(path, kJointPathProperty);
    store.SetArtMatrix(path, matrix);
    CRvArt* bezier = store.CreateArt(kArtBezier, kLastChild, path);
    if (forward) {
      for (int32_t i = start;; i = i + 1 >= n ? 0 : i + 1) {
        store.AddBezierPoint(bezier, component.GetPoint(i));
        if (i == end) break;
      }
    } else {
      for (int32_t i = end;; i = i == 0 ? n - 1 : i - 1) {
        RVBEZIERPOINT p = component.GetPoint(i);
        std::swap(p.in, p.out);
        store.AddBezierPoint(bezier, p);
        if (i == start) break;
      }
    }
    store.SetArtTag(bezier, kRepeatTag, passes);
    store.SetPathPlotInfo(path, kJointPlotValue, key);
  }
}

void CRvRVLFormat::WriteMicroJoints() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvLayer* layer = store.GetLayerFromName(kMicroJointLayer);
  if (layer == nullptr) return;
  if (m_param.parkBeforeJoints != 0) {
    // Clear of the job by 100 millimetres along the second axis.
    const RVPLOTPARAM& p = m_param;
    const double height = m_placementRect.top - m_placementRect.bottom;
    const double park = p.deviceMinY + p.originY + height * p.scaleY / 100.0 + 100.0;
    m_record.clear();
    AppendRow(m_record, kRowMove, {park / p.deviceUnit, 0.0});
    WriteBytes(m_record);
    m_record.clear();
    AppendRow(m_record, kRowPark, {});
    WriteBytes(m_record);
  }
  store.TracePath(layer, kAttrCounted, this, JointWriterThunk);
  store.DeleteLayer(layer);
}

uint32_t CRvRVLFormat::JointWriter(CRvArt* path) {
  const uint32_t code = Guard([&] {
    CRvDataAccess& store = CRvDataAccess::Instance();
    if ((store.GetPathAttrFlag(path) & kAttrExcluded) != 0) return;
    m_vCut = 0;
    const uint16_t source = m_param.conditionSource;
    std::string key;
    if (source == 3) {
      key.assign(m_param.conditionKey, strnlen(m_param.conditionKey, sizeof m_param.conditionKey));
    } else if (const PlotInfo* info = path->GetPlotInfo()) {
      key = info->plotText;
    }
    CRvArt* first = store.GetArtFirstChild(path);
    std::vector<int32_t> numbers{1, 1};
    if (first != nullptr && first->HasTag(kRepeatTag)) numbers = RepeatNumbers(std::string(first->GetTag(kRepeatTag)));
    // The count holds to the passes that the tag names.
    const int32_t count = std::clamp(numbers.front(), 0, int32_t(numbers.size()) - 1);
    const RVRIFMATRIX matrix = m_mapArtMatrix ? store.GetArtMatrix(path) : kIdentity;
    const bool closed = store.GetPathClosed(path) != 0;
    for (int32_t q = 1; q <= count; ++q) {
      if (source != 0) WriteJointBlock(key, numbers[std::size_t(q)]);
      int needMove = 1;
      ForEachBezierComponent(path, [&](const CRvBezier& bezier) { WritePath(bezier, matrix, closed, true, needMove); });
      m_record.clear();
      AppendRow(m_record, kRowPenUp, {});
      WriteBytes(m_record);
    }
    AdvanceProgress();
  });
  if (code != 0) ShowMessage(m_millingMessage, kMillingMessageTitle);
  return code;
}

void CRvRVLFormat::WriteJointBlock(const std::string& key, int32_t pass) {
  const MillingCondition condition = ReadMillingCondition(key, pass);
  const CondRecord& cond = condition.record;
  const MillingExtension& milling = condition.milling;
  char tool[sizeof cond.Tool + 1] = {};
  std::memcpy(tool, cond.Tool, sizeof cond.Tool);
  const int16_t pen = KeptPen(tool);
  const bool downward = ConditionDialect() == 1;
  const int toolNumber = downward ? std::abs(int(pen)) : int(pen);
  std::string block;
  AppendConditionRow(block, kRowToolDefaults, {});
  AppendConditionRow(block, kRowPen, {toolNumber, int(cond.WDZUnit)});
  AppendConditionRow(block, kRowThickness, {Tenths(cond.Thickness)});
  if (cond.hasSpeed != 0) AppendConditionRow(block, kRowSpeedDecimal, {cond.SpeedDecimal, toolNumber});
  if (milling.hasRpm != 0) AppendConditionRow(block, kRowRpm, {int(milling.Rpm)});
  if (milling.hasCuttingDepth != 0) {
    const double depth = cond.Thickness - milling.CuttingDepth;
    int32_t word = 0;
    if (m_jointDepthFloor) {
      // Cut free a little below the sheet, but never deeper than the floor.
      const double held = std::max(*m_jointDepthFloor, depth);
      word = downward ? DownwardTenths(held) : Tenths(held);
    } else {
      // The joint is cut at the full depth of its pass, not held at 0.
      word = downward ? DownwardTenths(milling.CuttingDepth) : Tenths(depth);
    }
    AppendConditionRow(block, kRowDepth, {word});
  }
  if (milling.hasZSpeed != 0) AppendConditionRow(block, kRowZSpeed, {int(milling.ZSpeed)});
  WriteBytes(block);
}

}  // namespace rv
