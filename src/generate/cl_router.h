// CRvCLRouter: the router route of a CL job. It offsets the numbered layers
// of a CL import by the tool's radius through the clipper adaptor, turns
// outer shapes and holes in opposite senses, merges the results, and gives
// each offset path its start, its automatic micro joints and its lead. It
// also clears the job's area with hatching or contour lines
// (RvExCLCreateHatching).
//
// A numbered layer is one named by a prefix and a decimal number, from 1 up
// without a gap. The router works on the active document through the
// store's commands; the layers it makes stay in the document. Callers are
// the CL milling export (output/cl_milling.cpp) and the export of this file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/art.h"
#include "rvdataaccess.h"

namespace rv {

/// Names of the CL route.
inline constexpr const char* kRouterHatchSourceLayer = "CLTempFileLayer";
inline constexpr const char* kRouterSourcePrefix = "CLPlotFileLayer";
inline constexpr const char* kRouterWorkLayer = "Rivlen_HatchingWorkLayer";
inline constexpr const char* kRouterBaseLayer = "CLRouterBaseOffsetLayer";
inline constexpr const char* kRouterOffsetLayerA = "CLRouterOffsetLayerA";
inline constexpr const char* kRouterCutCondition = "CLRouterCutCondition";
inline constexpr const char* kRouterOffsetKey = "CLRouterOffsetPath";

class CRvCLRouter {
 public:
  /// Attribute flag of the paths that take part in the route.
  static constexpr uint8_t kFlagRouted = 2;
  /// Distance of a lead point from the start, and the step of its search.
  static constexpr double kLeadLength = 2.0;
  static constexpr double kLeadProbe = 0.1;
  /// Length added to each joint when a path is judged too short for them.
  static constexpr double kJointSlack = 10.0;
  /// Distance from the pen beyond any drawing, where the start search begins.
  static constexpr double kFarDistance = 170000.0;

  /// The process-wide instance, made at first use.
  static CRvCLRouter& Instance();
  virtual ~CRvCLRouter() = default;
  CRvCLRouter(const CRvCLRouter&) = delete;
  CRvCLRouter& operator=(const CRvCLRouter&) = delete;

  // ---- the four operations ----
  /// Offsets each numbered layer `sourcePrefix` n into `targetPrefix` n (its
  /// open paths copied as they are), then merges the targets into the layer
  /// `targetPrefix`. Layers whose name begins with `targetPrefix` are deleted
  /// first. With `inside` a positive distance goes inward.
  void OffsetLayers(double distance, bool inside, const std::string& sourcePrefix, const std::string& targetPrefix,
                    const std::string& plotInfoText, const std::string& refMapKey);
  /// The same for one art (a path, or the paths of a compound) into the layer
  /// `targetName`, without deleting, turning or merging.
  void OffsetArt(double distance, bool inside, CRvArt* art, const std::string& targetName,
                 const std::string& plotInfoText, const std::string& refMapKey);
  /// Copies the shapes of every numbered layer `prefix` n, turned, into a new
  /// layer named `prefix`.
  void MergeLayers(const std::string& prefix, bool inside);
  /// Turns the closed paths of `layer` (attribute flag 2) so that outer
  /// shapes and holes run in opposite senses.
  void OrientPaths(CRvArt* layer, bool inside);

  // ---- the steps of the CL milling export ----
  /// Turns and merges the job into "CLRouterBaseOffsetLayer" and registers
  /// its arts in a new table, made the router start, end and plot table.
  void BaseStep(const RVPLOTPARAM& param);
  /// One art offset by `distance` for a pass: the layer
  /// "CLRouterOffsetLayerA" (made anew), or the art itself when it is open.
  CRvArt* OffsetOneArt(CRvArt* art, double distance, const RVPLOTPARAM& param, const RVPOINT& pen);
  /// Clears the job: the work layer from "CLTempFileLayer", then hatching or
  /// contour lines by the condition of param's key.
  void CreateHatching(int16_t documentIndex, const RVPLOTPARAM& param);

  // ---- the parts of a pass ----
  /// Gives a closed path the start segment nearest to `pen`.
  void ChooseStart(CRvArt* path, const RVPOINT& pen);
  /// Tags `bezier` with `count` joints of `length` at even spacing from
  /// `start`, splitting curves where joints begin and end.
  void AutomaticJoints(CRvArt* bezier, int32_t start, bool closed, double length, int32_t count);
  /// Gives a closed path a lead: three records behind its last point that
  /// leave a point 2.0 from the start on the corner's bisector and come back
  /// to it; the start segment moves onto the first of them.
  void Lead(CRvArt* path, int32_t start, bool inside);

 private:
  CRvCLRouter() = default;

  /// A shape of a merge: an outer path, its compound or null, its holes.
  struct Shape {
    CRvArt* outer = nullptr;
    CRvArt* compound = nullptr;
    std::vector<CRvArt*> inners;
  };
  std::vector<Shape> CollectShapes(CRvArt* layer);
  /// Adds the closed Bezier paths of `art` (a path, or a compound's paths)
  /// to the clipper's offset; true when any went in.
  bool AddOffsetPaths(CRvArt* art);
  /// Offsets what was added into `target`, in a new router plot table.
  void OffsetInto(double distance, const std::string& target, const std::string& plotInfoText,
                  const std::string& refMapKey);
  /// Copies the open paths of `art` (or of a layer's arts) into `target`.
  void CopyOpenPaths(CRvArt* art, const std::string& target);
  /// The start, closed flag, joints and lead of each path of a result.
  void FinishPaths(CRvArt* result, const RVPLOTPARAM& param, const RVPOINT& pen, int32_t reverseIf, bool lead);
  RVPOINT LeadPoint(CRvArt* path, CRvArt* bezier, int32_t start, bool inside);
};

/// Whether the name of a layer is `prefix` followed by anything.
bool StartsWith(const std::string& name, const std::string& prefix);

}  // namespace rv
