// The milling export of CL jobs: CRvCLFormat's export operation.
//
// A CL job is milled as the router's milling writer mills a drawing, with
// the offset paths made here by the CL router instead of by the host: the
// base step turns and merges the job into "CLRouterBaseOffsetLayer", each of
// its arts is milled in the depth passes of the condition key, and at each
// change of the Milling value the art is offset anew (the router's per-art
// offset, with its start, joints and lead). The clearing lines that
// RvExCLCreateHatching made follow, joined without a lift where they lie
// close. Records are written as they stand: no art matrix, no placement and
// no output flip. The condition and depth rows are always those of the
// tool-machine dialect (1).
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "conditions/cut_cdn_mng.h"
#include "formats/cl_import.h"
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "generate/cl_router.h"
#include "model/data_access.h"
#include "model/refmap.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

/// The dialect of the condition rows of a CL job.
constexpr int16_t kCLDialect = 1;
/// The value of writeToolDefaults that asks for the clearing lines.
constexpr int32_t kWriteClearing = -1;
/// Layers of the clearing lines.
constexpr const char* kContourLineLayer = "Rivlen_ContourPathLayer";
constexpr const char* kHatchingLineLayer = "Rivlen_HatchingPathLayer";

/// The paths of a result of the router: a path, a compound's paths, or the
/// paths of a layer (compounds entered).
std::vector<CRvArt*> PathsToMill(CRvArt* art) {
  std::vector<CRvArt*> paths;
  if (art->GetType() == kArtPath) {
    paths.push_back(art);
    return paths;
  }
  CRvDataAccess& store = CRvDataAccess::Instance();
  for (CRvArt* a = store.GetArtFirstChild(art); a != nullptr; a = store.GetArtSibling(a)) {
    if (a->GetType() == kArtPath) paths.push_back(a);
    if (a->GetType() != kArtCompound) continue;
    for (CRvArt* p = store.GetArtFirstChild(a); p != nullptr; p = store.GetArtSibling(p)) {
      if (p->GetType() == kArtPath) paths.push_back(p);
    }
  }
  return paths;
}

/// Cuts a coordinate to two decimals, downward.
double Hundredths(double v) { return std::floor(v * 100.0) / 100.0; }

}  // namespace

/// The milling writer of a CL job over the CL format's open file.
class CRvCLMillingWriter : public CRvRVLFormat {
 public:
  CRvCLMillingWriter(const RVPLOTPARAM& param, std::FILE* file) : CRvRVLFormat(param) {
    m_file = file;
    // Nothing is mapped. The output flip of an empty rectangle is a mirror
    // through the origin or the identity, its own inverse either way: as the
    // placement it undoes the flip exactly (-(-x) is x).
    SetPlacement(OutputFlip(param, RVRECT{}), RVRECT{});
  }
  /// The file belongs to the CL format.
  ~CRvCLMillingWriter() override { m_file = nullptr; }
  CRvCLMillingWriter(const CRvCLMillingWriter&) = delete;
  CRvCLMillingWriter& operator=(const CRvCLMillingWriter&) = delete;

  /// The steps of the export.
  void Run();
  /// Whether a failed write closed the file.
  bool FileClosed() const { return m_file == nullptr; }

 private:
  /// One art in its passes; `clearing` writes its curves with the clearing
  /// path writer.
  uint32_t ArtWriter(CRvArt* art, bool clearing);
  void MillArt(CRvArt* art, bool clearing);
  void WriteBlock(const MillingCondition& condition, int32_t pass, bool& forward, double& lastDepth);
  void WriteClearingPath(const CRvBezier& path, int& needMove);
  void AppendCLRow(std::string& out, int row, std::initializer_list<RowArg> args) const {
    AppendFormatted(out, RvlCell(row, kCLDialect), args);
  }

  std::string m_key;
  RVPOINT m_pen{0.0, 0.0};
  RVPOINT m_clearingLast{0.0, 0.0};
  double m_clearingMilling = 0.0;
  int16_t m_keptTool = 0;
};

void CRvCLMillingWriter::Run() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  if (m_param.conditionSource == 3) {
    m_key.assign(m_param.conditionKey, strnlen(m_param.conditionKey, sizeof m_param.conditionKey));
  }
  if (m_param.plotterClass == 0) {
    CRvCLRouter::Instance().BaseStep(m_param);
    RefMapStore& maps = RefMapStore::Instance();
    if (CRvLayer* base = store.GetLayerFromName(kRouterBaseLayer)) m_artTotal = int32_t(PathsToMill(base).size());
    const int16_t first = int16_t(maps.routerOffsetSIndex), last = int16_t(maps.routerOffsetEIndex);
    for (int16_t map = first; map <= last && map >= 0; ++map) {
      maps.Trace(map, 0, true, [&](CRvArt* art, void*) { return ArtWriter(art, false); });
    }
    if (m_param.writeToolDefaults == kWriteClearing) {
      const char* name = m_param.routerUseContour != 0 ? kContourLineLayer : kHatchingLineLayer;
      if (CRvLayer* layer = store.GetLayerFromName(name)) {
        m_clearingMilling = 0.0;
        if (CRvCutCdnMng::Instance().GetRepeatCount(m_key) > 0) {
          const MillingCondition c = ReadMillingCondition(m_key, 1);
          if (c.milling.hasMilling != 0) m_clearingMilling = c.milling.Milling;
        }
        for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
          Check(ArtWriter(art, true));
        }
      }
    }
  }
  if (m_param.outputMicroJoints != 0) WriteMicroJoints();
}

uint32_t CRvCLMillingWriter::ArtWriter(CRvArt* art, bool clearing) {
  const uint32_t code = Guard([&] {
    if ((CRvDataAccess::Instance().GetPathAttrFlag(art) & kAttrExcluded) == 0) MillArt(art, clearing);
    AdvanceProgress();
  });
  if (code != 0) ShowMessage("JudgeArtForMilling:Error", kMillingMessageTitle);
  return code;
}

void CRvCLMillingWriter::MillArt(CRvArt* art, bool clearing) {
  CRvDataAccess& store = CRvDataAccess::Instance();
  CRvCutCdnMng& conditions = CRvCutCdnMng::Instance();
  std::string key = m_key;
  bool haveKey = m_param.conditionSource == 3;
  if (m_param.conditionSource == 1 || m_param.conditionSource == 2) {
    if (const PlotInfo* info = art->GetPlotInfo()) {
      key = info->plotText;
      haveKey = true;
    }
  }
  const int32_t count = haveKey ? conditions.GetRepeatCount(key) : 0;
  const bool due = count > 0;
  const int32_t passes = due ? count : 1;
  const bool closed = art->GetType() != kArtPath || store.GetPathClosed(art) != 0;
  bool forward = true;
  int needMove = 1;
  double lastDepth = 0.0, offsetNow = 0.0, offsetBase = 0.0;
  CRvArt* current = art;
  for (int32_t k = 1; k <= passes; ++k) {
    MillingCondition condition;
    if (due) {
      condition = ReadMillingCondition(key, k);
      if (condition.milling.hasMilling != 0) offsetNow = condition.milling.Milling;
    }
    if (k == 1) offsetBase = offsetNow;
    if (!closed) {
      current = art;
      needMove = 1;
    } else if (k == 1 || offsetNow != offsetBase) {
      const double d = offsetNow - offsetBase;
      current = CRvCLRouter::Instance().OffsetOneArt(art, d == 0.0 ? 0.0 : d * 0.5, m_param, m_pen);
      needMove = 1;
      offsetNow = d;
    }
    m_clearingLast = RVPOINT{0.0, 0.0};
    for (CRvArt* path : PathsToMill(current)) {
      if (due) WriteBlock(condition, k, forward, lastDepth);
      const bool pathClosed = store.GetPathClosed(path) != 0;
      for (CRvArt* component = store.GetArtFirstChild(path); component != nullptr;
           component = store.GetArtSibling(component)) {
        if (component->GetType() != kArtBezier) continue;
        const auto& bezier = *static_cast<const CRvBezier*>(component);
        if (clearing) {
          WriteClearingPath(bezier, needMove);
        } else if (bezier.HasTag(kMicroJointTag)) {
          WriteJointPath(bezier, kIdentity, pathClosed, forward, needMove,
                         ParseJointTag(bezier.GetTag(kMicroJointTag)), lastDepth);
        } else {
          WritePath(bezier, kIdentity, pathClosed, forward, needMove);
        }
        // The tool stands at the start of a closed path after it, at the end
        // of an open one.
        const int32_t n = bezier.GetPointCount();
        if (n > 0) m_pen = bezier.GetPoint(pathClosed ? int32_t(bezier.StartSegment()) % n : n - 1).anchor;
      }
      if (needMove == 0 && !clearing) needMove = 1;
    }
  }
  std::string up;
  AppendRow(up, kRowPenUp, {});
  WriteBytes(up);
}

void CRvCLMillingWriter::WriteBlock(const MillingCondition& condition, int32_t pass, bool& forward,
                                    double& lastDepth) {
  const CondRecord& cond = condition.record;
  const MillingExtension& milling = condition.milling;
  const uint16_t source = m_param.conditionSource;
  if (source != 1 && source != 3) return;
  char tool[sizeof cond.Tool + 1] = {};
  std::memcpy(tool, cond.Tool, sizeof cond.Tool);
  const int16_t pen = int16_t(ToolToPen(m_param, tool));
  if (pen != 0) m_keptTool = pen;
  const int toolNumber = std::abs(int(m_keptTool));
  forward = cond.CutDirection == 0;
  std::string block;
  AppendCLRow(block, kRowToolDefaults, {});
  AppendCLRow(block, kRowPen, {toolNumber, int(cond.WDZUnit)});
  AppendCLRow(block, kRowThickness, {Tenths(cond.Thickness)});
  if (cond.hasSpeed != 0) AppendCLRow(block, kRowSpeedDecimal, {cond.SpeedDecimal, toolNumber});
  if (milling.hasRpm != 0) AppendCLRow(block, kRowRpm, {int(milling.Rpm)});
  if (milling.hasCuttingDepth != 0) {
    const double depth = std::max(0.0, cond.Thickness - milling.CuttingDepth);
    if (pass > 1 && depth != lastDepth) AppendRow(block, kRowPenUp, {});
    AppendCLRow(block, kRowDepth, {DownwardTenths(depth)});
    lastDepth = depth;
  }
  if (milling.hasZSpeed != 0) AppendCLRow(block, kRowZSpeed, {int(milling.ZSpeed)});
  WriteBytes(block);
}

void CRvCLMillingWriter::WriteClearingPath(const CRvBezier& path, int& needMove) {
  const int32_t n = path.GetPointCount();
  for (int32_t i = 0; i + 1 < n; ++i) {
    const RVBEZIERPOINT& a = path.GetPoint(i);
    const RVBEZIERPOINT& b = path.GetPoint(i + 1);
    const RVPOINT q = a.in;
    const double d = Distance(m_clearingLast, q);
    if (Hundredths(m_clearingLast.x) == Hundredths(q.x) && m_param.routerUseContour == 0) {
      needMove = 1;  // two lines of one column always lift
    } else {
      needMove = 2.0 * m_clearingMilling > d ? 0 : 1;
    }
    CRvBezier curve;
    curve.AddPoint(a);
    curve.AddPoint(b);
    WritePath(curve, kIdentity, false, true, needMove);
    m_clearingLast = b.out;
  }
}

uint32_t CRvCLFormat::ExportFromRIF(void* context) {
  CRvCLMillingWriter writer(m_param, m_file);
  writer.m_progressContext = context;
  const uint32_t code = Guard([&] { writer.Run(); });
  // A failed write has closed the file already.
  if (writer.FileClosed()) m_file = nullptr;
  return code;
}

}  // namespace rv
