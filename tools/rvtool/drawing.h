// Reading a drawing of the library through the public API: the document that
// a command works on, its layers, and the paths below them in drawing order.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "rvdataaccess.h"

namespace rvtool {

/// Art type numbers of the library.
constexpr int16_t kTypeGroup = 1;
constexpr int16_t kTypeBezier = 2;
constexpr int16_t kTypeCompound = 3;
constexpr int16_t kTypePath = 4;
constexpr int16_t kTypeArc = 5;
constexpr int16_t kTypeSpline = 6;

/// Art position: last child of the reference.
constexpr int16_t kLastChild = 5;
/// RefMap info bit of an entry that goes to the output.
constexpr uint8_t kOutputInfo = 2;
/// The layers of the generators: the one the host fills, and the frames.
constexpr const char* kWorkLayer = "Rivlen_HatchingWorkLayer";
constexpr const char* kFrameLayer = "Rivlen_HatchingFrameLayer";

/// Records that the library's curve functions hand out, freed with them.
struct CurvePointsDeleter {
  void operator()(RVCURVEPOINT* points) const { RvMiFreePoints(points); }
};
using CurvePoints = std::unique_ptr<RVCURVEPOINT, CurvePointsDeleter>;

/// Owns one document of the library's store and deletes it when it goes.
class Document {
 public:
  /// Takes the document at `index` (negative: none).
  explicit Document(int16_t index) : m_index(index) {}
  ~Document();
  Document(Document&& other) noexcept : m_index(other.m_index) { other.m_index = -1; }
  Document& operator=(Document&&) = delete;
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;

  int16_t index() const { return m_index; }
  /// Makes this document the active one.
  void Activate() const;

 private:
  int16_t m_index;
};

/// Imports the drawing `path` (a CMX file, or else a plot file, told by its
/// first bytes) into a new document, which comes back active. `unitScale` is
/// millimetres per plotter unit of a plot file (0.0: the plotter's 0.025). The import stage shows on a progress bar of its own; a Ctrl-C
/// during the import ends `command` with the interrupted status. Throws
/// Failure.
Document ImportAndActivate(const std::string& command, const std::string& path, double unitScale);

/// The layers of the active document in list order.
std::vector<void*> Layers();
/// The name of a layer.
std::string LayerName(void* layer);
/// The name of a path's stroke colour ("None" for a path without one).
std::string StrokeColourName(void* path);
/// Calls `visit` for every path (type 4) below `art`, depth first, in drawing
/// order; groups and compounds are entered, paths are not.
void ForEachPath(void* art, const std::function<void(void*)>& visit);
/// The components (Beziers, arcs, splines) of a path in order.
std::vector<void*> Components(void* path);
/// The type number of an art.
int16_t ArtType(void* art);

/// Throws a Failure for a failed read of the drawing.
void CheckRead(uint32_t code);

}  // namespace rvtool
