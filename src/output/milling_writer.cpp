// The milling writer of CRvRVLFormat (plotter classes 5 and 12): each art in
// depth passes, one condition block per pass and path, the path that the
// host offsets for the pass, and the tool lifted over micro joints.
//
// A router cuts a closed contour in several passes, each a little deeper;
// the condition of a pass says how deep (Thickness - CuttingDepth) and how
// far beside the drawn outline (Milling). The offset path comes from the
// host (makeOffsetArt); the library never makes or deletes it.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "conditions/cut_cdn_mng.h"
#include "formats/file_frame.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/work_layer.h"
#include "model/data_access.h"
#include "output/rvl_format.h"

namespace rv {

uint32_t ExportMillingJob(const char* path, int16_t documentIndex, const RVPLOTPARAM& param, void* progressContext,
                          void* callbackUser, RvMakeOffsetArtFunc makeOffsetArt) {
  auto format = std::make_unique<CRvRVLFormat>(param);
  format->SetOffsetMaker(callbackUser, makeOffsetArt);
  CRvFile file(std::move(format));
  return file.Export(path, documentIndex, progressContext);
}

MillingCondition ReadMillingCondition(const std::string& key, int32_t pass) {
  CRvCutCdnMng& conditions = CRvCutCdnMng::Instance();
  CondPair pair{nullptr, nullptr};
  Check(conditions.GetConditionAtRepeat(key, pass, pair));
  MillingCondition out;
  if (pair.record != nullptr) out.record = *pair.record;
  const auto media = conditions.m_media.find(key);
  if (pair.extension != nullptr && media != conditions.m_media.end() && pass >= 1 &&
      pass <= media->second->Count() && media->second->FormAt(pass - 1) == ExtensionForm::Milling) {
    out.milling = *static_cast<const MillingExtension*>(pair.extension);
  }
  return out;
}

/// The state of one art through its passes.
struct CRvRVLFormat::MillingPass {
  std::string key;
  bool conditionDue = false;  // a key that names a media: read conditions, write blocks
  int32_t passes = 1;
  MillingCondition condition;  // of the pass at work
  bool forward = true;
  int needMove = 1;
  double lastDepth = 0.0;
  CRvArt* current = nullptr;  // the art that the pass mills
  double offsetNow = 0.0;
  double offsetBase = 0.0;
  JointList joints;
  bool hasJoints = false;
  bool jointsBuilt = false;
};

JointList ParseJointTag(const std::string& text) {
  std::vector<int32_t> numbers;
  std::size_t at = 0;
  while (at <= text.size() && numbers.size() < 1 + 2 * kMaxJoints) {
    const std::size_t comma = std::min(text.find(',', at), text.size());
    numbers.push_back(int32_t(std::atoi(text.substr(at, comma - at).c_str())));
    at = comma + 1;
  }
  JointList out;
  const int32_t pairs = int32_t(numbers.size() - 1) / 2;
  out.count = int16_t(std::clamp(numbers.front(), 0, std::min(pairs, kMaxJoints)));
  for (int16_t j = 0; j < out.count; ++j) {
    out.starts[j] = int16_t(numbers[std::size_t(1 + 2 * j)]);
    out.ends[j] = int16_t(numbers[std::size_t(2 + 2 * j)]);
  }
  return out;
}

uint32_t CRvRVLFormat::MillingWriter(CRvArt* art) {
  const uint32_t code = Guard([&] {
    if ((CRvDataAccess::Instance().GetPathAttrFlag(art) & kAttrExcluded) == 0) MillArt(art);
    AdvanceProgress();
  });
  if (code != 0) ShowMessage(m_millingMessage, kMillingMessageTitle);
  return code;
}

void CRvRVLFormat::MillArt(CRvArt* art) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvCutCdnMng& conditions = CRvCutCdnMng::Instance();
  MillingPass state;
  m_vCut = 0;
  bool haveKey = false;
  if (m_param.conditionSource == 3) {
    state.key.assign(m_param.conditionKey, strnlen(m_param.conditionKey, sizeof m_param.conditionKey));
    haveKey = true;
  } else if (m_param.conditionSource != 0) {
    if (const PlotInfo* info = art->GetPlotInfo()) {
      state.key = info->plotText;
      haveKey = true;
    }
  }
  if (haveKey) {
    const int32_t count = conditions.GetRepeatCount(state.key);
    state.conditionDue = count > 0;
    state.passes = count > 0 ? count : 1;
  }
  // A compound (an outline with its holes) is milled as a closed art.
  const bool closed = art->GetType() != kArtPath || store.GetPathClosed(art) != 0;
  state.current = art;

  for (int32_t k = 1; k <= state.passes; ++k) {
    BeginMillingPass();
    if (state.conditionDue) {
      state.condition = ReadMillingCondition(state.key, k);
      if (state.condition.milling.hasMilling != 0) state.offsetNow = state.condition.milling.Milling;
    }
    if (k == 1) state.offsetBase = state.offsetNow;
    state.current = OffsetArtOfPass(art, k, closed, state);
    if (!closed) state.needMove = 1;
    MillPaths(state.current, k, closed, state);
  }
  m_record.clear();
  AppendRow(m_record, kRowPenUp, {});
  WriteBytes(m_record);
}

CRvArt* CRvRVLFormat::OffsetArtOfPass(CRvArt* art, int32_t pass, bool closed, MillingPass& state) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  if (!closed) {
    if (CRvArt* first = store.GetArtFirstChild(art)) store.SetPathStartSegment(first, 0);
    return art;
  }
  if (pass > 1 && state.offsetNow == state.offsetBase) return state.current;
  const double d = state.offsetNow - state.offsetBase;
  state.needMove = 1;
  state.offsetNow = d;
  if (m_makeOffsetArt == nullptr) return art;
  void* result = nullptr;
  const uint32_t code = m_makeOffsetArt(m_callbackUser, art, d == 0.0 ? 0.0 : d * 0.5, &result);
  if (code != 0) Raise(code);
  if (result == nullptr) Raise(kErrNullArt);
  return ArtOf(result);
}

void CRvRVLFormat::MillPaths(CRvArt* current, int32_t pass, bool closed, MillingPass& state) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  // The paths of a compound one by one; a layer (an offset of several
  // shapes) gives its paths and its compounds' paths.
  std::vector<CRvArt*> paths;
  if (current->GetType() == kArtCompound) {
    const auto& children = static_cast<CRvContainerArt*>(current)->m_children.items();
    paths.assign(children.begin(), children.end());
  } else if (current->GetType() == kArtLayer) {
    ForEachLayerPath(current, [&](CRvArt* path) { paths.push_back(path); });
  } else {
    paths.push_back(current);
  }
  for (CRvArt* path : paths) {
    if (!path->IsContainer()) Raise(kErrPathComponent);
    if (state.conditionDue) WriteMillingBlock(pass, state);
    const RVRIFMATRIX matrix = m_mapArtMatrix ? store.GetArtMatrix(path) : kIdentity;
    const bool pathClosed = path->GetType() != kArtPath || store.GetPathClosed(path) != 0;
    // An open path is walked forward whatever the condition says; its
    // joints go the same way.
    const bool walkForward = !closed || state.forward;
    ForEachBezierComponent(path, [&](const CRvBezier& bezier) {
      if (pass == 1 && bezier.HasTag(kMicroJointTag)) {
        state.joints = ParseJointTag(std::string(bezier.GetTag(kMicroJointTag)));
        state.hasJoints = true;
      }
      if (!state.hasJoints) {
        MillComponent(bezier, matrix, closed, state.forward, state.needMove);
      } else {
        if (state.lastDepth < m_param.jointDepthLimit && !state.jointsBuilt) {
          state.jointsBuilt = true;
          BuildJoints(state.key, bezier, matrix, state.joints, pass, state.passes, walkForward);
        }
        WriteJointPath(bezier, matrix, closed, state.forward, state.needMove, state.joints, state.lastDepth);
      }
      const int32_t n = bezier.GetPointCount();
      if (n > 0) m_toolAt = bezier.GetPoint(pathClosed ? int32_t(bezier.StartSegment()) % n : n - 1).anchor;
    });
    if (state.needMove == 0) state.needMove = 1;
  }
}

int16_t CRvRVLFormat::KeptPen(const char* tool) {
  const int16_t pen = int16_t(ToolToPen(m_param, tool));
  if (pen != 0) m_keptPen = pen;
  return m_keptPen;
}

void CRvRVLFormat::WriteMillingBlock(int32_t pass, MillingPass& state) {
  const CondRecord& cond = state.condition.record;
  const MillingExtension& milling = state.condition.milling;
  char tool[sizeof cond.Tool + 1] = {};
  std::memcpy(tool, cond.Tool, sizeof cond.Tool);
  const int16_t pen = KeptPen(tool);
  // The tool-machine dialect names the tool by its magnitude.
  const int toolNumber = ConditionDialect() == 1 ? std::abs(int(pen)) : int(pen);
  const uint16_t source = m_param.conditionSource;
  std::string block;
  if (source == 2) {
    AppendConditionRow(block, kRowToolDefaults, {});
    AppendConditionRow(block, kRowPen, {toolNumber, int(cond.WDZUnit)});
    WriteBytes(block);
    return;
  }
  if (source != 1 && source != 3) return;
  state.forward = cond.CutDirection == 0;
  AppendConditionRow(block, kRowToolDefaults, {});
  AppendConditionRow(block, kRowPen, {toolNumber, int(cond.WDZUnit)});
  AppendConditionRow(block, kRowThickness, {Tenths(cond.Thickness)});
  if (cond.hasSpeed != 0) AppendConditionRow(block, kRowSpeedDecimal, {cond.SpeedDecimal, toolNumber});
  if (milling.hasRpm != 0) AppendConditionRow(block, kRowRpm, {int(milling.Rpm)});
  if (milling.hasCuttingDepth != 0) {
    const double depth = std::max(0.0, cond.Thickness - milling.CuttingDepth);
    // The tool rises before it goes to another depth.
    if (pass > 1 && depth != state.lastDepth) AppendRow(block, kRowPenUp, {});
    AppendConditionRow(block, kRowDepth, {ConditionDialect() == 1 ? DownwardTenths(depth) : Tenths(depth)});
    state.lastDepth = depth;
  }
  if (milling.hasZSpeed != 0) AppendConditionRow(block, kRowZSpeed, {int(milling.ZSpeed)});
  WriteBytes(block);
}

void CRvRVLFormat::DepthChange(double depth, bool lifting) {
  const double limit = m_param.jointDepthLimit;
  m_record.clear();
  if (ConditionDialect() == 1) {
    if (!lifting) {
      AppendConditionRow(m_record, kRowDepth, {DownwardTenths(depth)});
    } else if (depth > limit) {
      AppendConditionRow(m_record, kRowDepth, {DownwardTenths(limit)});
    }
  } else {
    if (!lifting) {
      AppendConditionRow(m_record, kRowDepth, {Tenths(depth)});
    } else if (limit > depth) {
      AppendConditionRow(m_record, kRowDepth, {Tenths(limit)});
    }
  }
  WriteBytes(m_record);
}

}  // namespace rv
