#include "filing.h"

#include "drawing.h"
#include "failure.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

constexpr int16_t kCountsForBounds = 2;  // attribute flag: the art counts for the job's bounds

}  // namespace

RefMapTables::~RefMapTables() { RvGiDeleteRefMapTable(); }

std::vector<FiledKey> GroupPaths(FileBy by) {
  std::vector<FiledKey> groups;
  std::map<std::string, std::size_t> slot;
  for (void* layer : Layers()) {
    const std::string layerName = by == FileBy::Layer ? LayerName(layer) : std::string();
    ForEachPath(layer, [&](void* path) {
      if (Components(path).empty()) return;  // nothing to cut
      const std::string key = by == FileBy::Layer ? layerName : StrokeColourName(path);
      auto [it, fresh] = slot.emplace(key, groups.size());
      if (fresh) groups.push_back(FiledKey{key, {}});
      groups[it->second].paths.push_back(path);
    });
  }
  return groups;
}

int16_t FileInRefMap(const std::vector<FiledKey>& groups, FileBy by) {
  const std::string operation = "filing the paths in a RefMap table";
  int16_t map = -1;
  Check(RvGiCreateRefMapTable(&map), operation, "");
  for (const FiledKey& group : groups) {
    // A key's arts stand newest first: file backwards to cut in drawing order.
    for (auto it = group.paths.rbegin(); it != group.paths.rend(); ++it) {
      Check(RvGiSetPathProp(*it, kCountsForBounds), operation, "");
      Check(RvGiAddRefMapData(map, group.key.c_str(), kOutputInfo, *it), operation, "");
    }
  }
  RvGiSetRefMapIndex(map);
  if (by == FileBy::Layer) {
    RvGiSetRefMapLayerIndex(map);
  } else {
    RvGiSetRefMapColorIndex(map);
  }
  return map;
}

long AssignMedia(const std::vector<FiledKey>& groups, const std::map<std::string, std::string>& mediaByKey,
                 const std::string& defaultMedia) {
  for (const auto& [key, media] : mediaByKey) {
    bool found = false;
    for (const FiledKey& group : groups) found = found || group.key == key;
    if (!found) {
      std::vector<std::string> keys;
      for (const FiledKey& group : groups) keys.push_back(group.key);
      throw Failure("--media " + key + "=" + media + ": no path is filed under '" + key +
                        "' (the keys are " + QuotedList(keys, "none") + ")",
                    kUsageStatus);
    }
  }
  long assigned = 0;
  for (const FiledKey& group : groups) {
    const auto it = mediaByKey.find(group.key);
    const std::string& media = it != mediaByKey.end() ? it->second : defaultMedia;
    if (media.empty()) continue;
    for (void* path : group.paths) {
      Check(RvGiSetPathPlotInfo(path, 0, media.c_str()), "assigning the media", "");
      ++assigned;
    }
  }
  return assigned;
}

}  // namespace rvtool
