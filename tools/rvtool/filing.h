// Filing the paths of a drawing into a RefMap table: the table says what the
// export writes and in which order.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace rvtool {

/// Owns the RefMap tables of the run: destroys all of them when it goes,
/// before the documents whose arts they point to.
class RefMapTables {
 public:
  RefMapTables() = default;
  ~RefMapTables();
  RefMapTables(const RefMapTables&) = delete;
  RefMapTables& operator=(const RefMapTables&) = delete;
};

enum class FileBy { Layer, Colour };

/// The paths filed under one key, in drawing order.
struct FiledKey {
  std::string key;
  std::vector<void*> paths;
};

/// The paths of the active document grouped by key - the layer's name, or
/// the name of the path's stroke colour ("None" for a path without one) -
/// keys in order of their first path, paths in drawing order. Paths without
/// components have nothing to cut and stay out.
std::vector<FiledKey> GroupPaths(FileBy by);

/// Makes a RefMap table, files every group's paths under its key marked for
/// output (info 2) so that a trace gives them in drawing order, key by key,
/// and makes it the main table (and the layer or colour table). Each path
/// gets attribute flag 2, so that it counts for the bounds of the job.
/// Returns the table's index. Throws Failure.
int16_t FileInRefMap(const std::vector<FiledKey>& groups, FileBy by);

/// Gives every path the plot info text `media`: the key of its conditions.
/// `mediaByKey` names the media of some keys, `defaultMedia` (may be empty:
/// none) that of the others. Returns the number of paths that got one.
/// Throws Failure for a key of `mediaByKey` that isn't among the groups.
long AssignMedia(const std::vector<FiledKey>& groups, const std::map<std::string, std::string>& mediaByKey,
                 const std::string& defaultMedia);

}  // namespace rvtool
