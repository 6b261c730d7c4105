// CL import: the format strategy of CL jobs, its import driver and the
// drawing builder of its working layer.
//
// A CL file speaks the languages of a PLT file and goes through the same
// interpreter and the same builder (plt_import.h). Its paths are built in the
// working layer "CLTempFileLayer", which stays in the document for the
// router, and then copied into the result layer, where every path has one
// Bezier component: arcs arrive there as Bezier points. The milling export
// of CL jobs is the second half of this strategy (output/cl_milling.cpp).
#pragma once

#include <cstdint>
#include <string>

#include "formats/file_frame.h"
#include "formats/plt_import.h"
#include "rvdataaccess.h"

namespace rv {

/// Name of the layer in which a CL import builds its paths.
inline constexpr const char* kCLWorkLayerName = "CLTempFileLayer";
/// Name of the result layer when the host names none.
inline constexpr const char* kCLResultLayerName = "CLPlotFileLayer";

/// The PLT builder with one difference: the path element values (VT, JT)
/// are set when a pen-up move ends a path, not when the end of the file does.
class CRvCLImportData : public CRvPLTImportData {
 protected:
  bool SetsValuesAt(bool endOfFile) const override { return !endOfFile; }
};

/// The import driver of CL files: the interpreter with a CRvCLImportData.
class CRvCLAccessFirmSource : public CRvPlotImportDriver {
 public:
  CRvCLAccessFirmSource();
};

/// The CL format strategy: the import below, and the milling export of a CL
/// job (defined with the milling writers).
class CRvCLFormat : public CRvFormatStrategy {
 public:
  /// `unitScale` as for CRvPLTFormat; `layerName` null selects
  /// "CLPlotFileLayer", any other text (the empty one too) is the name.
  CRvCLFormat(const double* unitScale, const char* layerName);
  /// The export form: a copy of the plot parameters.
  explicit CRvCLFormat(const RVPLOTPARAM& param);

  /// Builds the working layer, then the result layer in front of it.
  uint32_t ImportToRIF() override;
  /// The milling output of the CL job in the active document.
  uint32_t ExportFromRIF(void* context) override;

  double UnitScale() const { return m_unitScale; }
  const std::string& LayerName() const { return m_layerName; }

 private:
  /// Copies each path of the working layer into a new result layer, every
  /// path with one Bezier component.
  void Convert();

  double m_unitScale = 0.025;
  std::string m_layerName = kCLResultLayerName;
  RVPLOTPARAM m_param{};
};

}  // namespace rv
