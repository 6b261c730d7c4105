// rvtool plot: a plot file in, a plot job out.
#include <cstring>
#include <filesystem>
#include <system_error>

#include "conditions.h"
#include "cutting.h"
#include "drawing.h"
#include "failure.h"
#include "filing.h"
#include "plot_options.h"
#include "progress.h"
#include "router.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

RVPLOTPARAM ParamOf(const PlotOptions& o, bool withMedia) {
  RVPLOTPARAM param;
  std::memset(&param, 0, sizeof param);
  param.curveOutput = static_cast<uint16_t>(o.curves);
  param.plotterClass = static_cast<uint16_t>(o.plotterClass);
  param.dialect = static_cast<int16_t>(o.dialect);
  param.mirror = o.mirror;
  param.drawFrame = o.frame;
  param.rotation = RotationOf(o.rotate);
  param.frameMarginX = o.frameMarginX;
  param.frameMarginY = o.frameMarginY;
  param.scaleX = o.scaleX;
  param.scaleY = o.scaleY;
  param.originX = o.originX;
  param.originY = o.originY;
  param.deviceMaxX = o.areaWidth;
  param.deviceMaxY = o.areaHeight;
  param.deviceUnit = o.unit;
  param.sortArts = o.sort;
  param.sortPerCutOrder = o.sortPerOrder;
  param.optimizeStartPoints = o.optimizeStart;
  param.forceCounterClockwise = o.counterClockwise ? 1 : 0;
  param.curveMaxLength = kMaxChord;
  param.curveTolerance = o.flatness;
  param.conditionSource = withMedia ? 1 : 0;
  param.defaultPen = static_cast<int16_t>(o.pen);
  param.defaultSpeed = static_cast<int16_t>(o.speed);
  param.defaultSpeedExact = o.speed;
  param.defaultPress = static_cast<int16_t>(o.press);
  param.defaultOffset = o.offset;
  param.machineType = static_cast<uint16_t>(o.machine);
  param.tileGap = o.tileGap;
  for (std::size_t i = 0; i < o.toolPens.size(); ++i) {
    const std::string& item = o.toolPens[i];
    const auto eq = item.find('=');
    std::strncpy(param.toolPens[i].name, item.substr(0, eq).c_str(), sizeof param.toolPens[i].name - 1);
    param.toolPens[i].pen = static_cast<uint16_t>(std::stoi(item.substr(eq + 1)));
  }
  return param;
}

std::vector<std::string> MediaOf(const PlotOptions& o) {
  std::vector<std::string> names;
  if (!o.defaultMedia.empty()) names.push_back(o.defaultMedia);
  for (const auto& [key, name] : o.mediaByKey) names.push_back(name);
  return names;
}

}  // namespace

int RunPlot(const PlotOptions& o, std::ostream& out) {
  ConditionTable conditions;
  if (!o.conditions.empty()) conditions.LoadXml(o.conditions, o.machine);
  if (!o.csv.empty()) conditions.LoadCsv(o.csv, o.machine);
  const std::vector<std::string> media = MediaOf(o);
  conditions.CheckMedia(media, o.conditions.empty() ? o.csv : o.conditions);

  const Document document = ImportAndActivate("plot", o.file, o.inputUnit);
  // The export's bar: made after the import's, whose end unsets the callbacks.
  ProgressBar progress(IsTerminal());
  PrepareAllForCutting();

  // The tables point into the document: they go first.
  RefMapTables tables;
  const FileBy by = o.byColour ? FileBy::Colour : FileBy::Layer;
  const std::vector<FiledKey> groups = GroupPaths(by);
  const int16_t main = FileInRefMap(groups, by);
  const long withMedia = AssignMedia(groups, o.mediaByKey, o.defaultMedia);

  RVPLOTPARAM param = ParamOf(o, withMedia > 0);
  if (o.mill) {
    // The router writes the router tables: here the main table alone.
    RvGiSetRefMapRouterOffsetSIndex(main);
    RvGiSetRefMapRouterOffsetEIndex(main);
  }
  std::vector<RVTILE> tiles;
  if (o.tiles > 0) tiles = FileTiles(groups, main, o.tiles);
  progress.Stage("export", o.output);
  uint32_t code = 0;
  if (o.tiles > 0) {
    RVTILEPARAM tileParam{};
    std::strncpy(tileParam.prefix, kTilePrefix, sizeof tileParam.prefix - 1);
    tileParam.tiles = tiles.data();
    tileParam.tileCount = static_cast<int32_t>(tiles.size());
    code = RvExRIFTileToRVL(o.output.c_str(), document.index(), &param, &tileParam, progress.context());
  } else if (o.mill) {
    OffsetMaker offsets(document.index());
    code = RvExRIFMillingToRVL(o.output.c_str(), document.index(), &param, progress.context(), &offsets,
                               OffsetMaker::Make);
  } else {
    code = RvExRIFToRVL(o.output.c_str(), document.index(), &param, progress.context());
  }
  progress.Clear();
  if (code != 0) {
    // A job cut short must not reach a machine.
    std::error_code ignored;
    std::filesystem::remove(o.output, ignored);
    throw LibraryFailure(code, "export", o.output);
  }

  long paths = 0;
  for (const FiledKey& group : groups) paths += static_cast<long>(group.paths.size());
  std::error_code sizeError;
  const auto bytes = std::filesystem::file_size(o.output, sizeError);
  out << "job: " << o.output << " (" << paths << (paths == 1 ? " path" : " paths") << " under "
      << groups.size() << (groups.size() == 1 ? " key" : " keys") << ", dialect " << DialectName(o.dialect)
      << ", " << (sizeError ? 0 : bytes) << " bytes)\n";
  if (o.tiles > 0) out << "tiles: " << o.tiles << ", the next job may start at y " << param.originY << " mm\n";
  return 0;
}

}  // namespace rvtool
