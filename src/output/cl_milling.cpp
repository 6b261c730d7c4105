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
#include "generate/work_layer.h"
#include "model/data_access.h"
#include "model/refmap.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

/// The dialect of the condition rows of a CL job.
constexpr int16_t kCLDialect = 1;
/// The joints of a CL job are cut free down to 1.5 below the sheet.
constexpr double kCLJointDepthFloor = -1.5;
/// The message of a failing writer of a CL job.
constexpr const char* kCLMillingMessage = "JudgeArtForMilling:Error";
/// The value of writeToolDefaults that asks for the clearing lines.
constexpr int32_t kWriteClearing = -1;
/// Layers of the clearing lines.
constexpr const char* kContourLineLayer = "Rivlen_ContourPathLayer";
constexpr const char* kHatchingLineLayer = "Rivlen_HatchingPathLayer";

/// Cuts a coordinate to two decimals, downward.
double Hundredths(double v) { return std::floor(v * 100.0) / 100.0; }

}  // namespace

/// The milling writer of a CL job over the CL format's open file: the
/// milling writer of the router classes, with the router's offsets, the
/// tool-machine dialect for the condition rows, records as they stand, and
/// a path writer of its own for the clearing lines.
class CRvCLMillingWriter : public CRvRVLFormat {
 public:
  CRvCLMillingWriter(const RVPLOTPARAM& param, std::FILE* file) : CRvRVLFormat(param) {
    m_file = file;
    // Nothing is mapped. The output flip of an empty rectangle is a mirror
    // through the origin or the identity, its own inverse either way: as the
    // placement it undoes the flip exactly (-(-x) is x).
    SetPlacement(OutputFlip(param, RVRECT{}), RVRECT{});
    m_mapArtMatrix = false;
    m_conditionDialect = kCLDialect;
    m_jointDepthFloor = kCLJointDepthFloor;
    m_millingMessage = kCLMillingMessage;
    SetOffsetMaker(this, &RouterOffset);
  }
  /// The file belongs to the CL format.
  ~CRvCLMillingWriter() override { m_file = nullptr; }
  CRvCLMillingWriter(const CRvCLMillingWriter&) = delete;
  CRvCLMillingWriter& operator=(const CRvCLMillingWriter&) = delete;

  /// The steps of the export.
  void Run();
  /// Whether a failed write closed the file.
  bool FileClosed() const { return m_file == nullptr; }

 protected:
  void MillComponent(const CRvBezier& bezier, const RVRIFMATRIX& matrix, bool closed, bool forward,
                     int& needMove) override {
    if (m_clearing) {
      WriteClearingPath(bezier, needMove);
    } else {
      CRvRVLFormat::MillComponent(bezier, matrix, closed, forward, needMove);
    }
  }
  void BeginMillingPass() override { m_clearingLast = RVPOINT{0.0, 0.0}; }

 private:
  /// The offset of one art for a pass, made by the router where the tool
  /// stands.
  static uint32_t RouterOffset(void* user, void* art, double offset, void** result) {
    auto* self = static_cast<CRvCLMillingWriter*>(user);
    return Guard([&] {
      *result = CRvCLRouter::Instance().OffsetOneArt(ArtOf(art), offset, self->m_param, self->m_toolAt);
    });
  }
  /// The path writer of the clearing lines: each curve joined to the one
  /// before without a lift when it starts close enough.
  void WriteClearingPath(const CRvBezier& path, int& needMove);

  bool m_clearing = false;
  RVPOINT m_clearingLast{0.0, 0.0};
  double m_clearingMilling = 0.0;
};

void CRvCLMillingWriter::Run() {
  CRvDataAccess& store = CRvDataAccess::Instance();
  if (m_param.plotterClass == 0) {
    CRvCLRouter::Instance().BaseStep(m_param);
    RefMapStore& maps = RefMapStore::Instance();
    // Progress counts the paths of the base layer, compounds entered.
    ForEachLayerPath(store.GetLayerFromName(kRouterBaseLayer), [&](CRvArt*) { ++m_artTotal; });
    const int16_t first = int16_t(maps.routerOffsetSIndex), last = int16_t(maps.routerOffsetEIndex);
    for (int16_t map = first; map <= last && map >= 0; ++map) {
      maps.Trace(map, 0, true, [&](CRvArt* art, void*) { return MillingWriter(art); });
    }
    if (m_param.writeToolDefaults == kWriteClearing) {
      const char* name = m_param.routerUseContour != 0 ? kContourLineLayer : kHatchingLineLayer;
      if (CRvLayer* layer = store.GetLayerFromName(name)) {
        const std::string key(m_param.conditionKey, strnlen(m_param.conditionKey, sizeof m_param.conditionKey));
        m_clearingMilling = 0.0;
        if (CRvCutCdnMng::Instance().GetRepeatCount(key) > 0) {
          const MillingCondition c = ReadMillingCondition(key, 1);
          if (c.milling.hasMilling != 0) m_clearingMilling = c.milling.Milling;
        }
        // Their curves go through the clearing path writer.
        m_clearing = true;
        for (CRvArt* art = store.GetArtFirstChild(layer); art != nullptr; art = store.GetArtSibling(art)) {
          Check(MillingWriter(art));
        }
        m_clearing = false;
      }
    }
  }
  if (m_param.outputMicroJoints != 0) WriteMicroJoints();
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
