// The cut conditions of a run: loaded from a condition file or a CSV file
// into the library's one condition table, and emptied again at the end.
#pragma once

#include <string>
#include <vector>

namespace rvtool {

class ConditionTable {
 public:
  ConditionTable() = default;
  /// Empties the library's table.
  ~ConditionTable();
  ConditionTable(const ConditionTable&) = delete;
  ConditionTable& operator=(const ConditionTable&) = delete;

  /// Loads a condition file of machine family `machine`. Throws Failure.
  void LoadXml(const std::string& path, int machine);
  /// Loads CSV lines "name,tool,speed,press,offset" for machine family
  /// `machine` (the library writes them as a condition file on the way, into
  /// a temporary folder). Throws Failure.
  void LoadCsv(const std::string& path, int machine);

  /// The media names of the table in order.
  std::vector<std::string> MediaNames() const;
  /// The number of passes of a media, 0 for one that isn't there.
  int Passes(const std::string& media) const;

  /// Throws a Failure unless every name is a media of the table; `source`
  /// names the file the table came from.
  void CheckMedia(const std::vector<std::string>& names, const std::string& source) const;
};

}  // namespace rvtool
