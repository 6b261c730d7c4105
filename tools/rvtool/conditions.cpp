#include "conditions.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <stdlib.h>

#include "failure.h"
#include "rvdataaccess.h"

namespace rvtool {
namespace {

constexpr const char* kLoading = "loading the conditions";

int32_t CollectName(void* context, const char* name) {
  static_cast<std::vector<std::string>*>(context)->push_back(name);
  return 0;
}

// A folder of its own under the system's temporary folder, removed with the object.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "rvtool-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
      throw ToolFailure("making a temporary folder", pattern, std::strerror(errno), kOutputStatus);
    m_path = pattern;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& path() const { return m_path; }

 private:
  std::filesystem::path m_path;
};

}  // namespace

ConditionTable::~ConditionTable() { RvDeleteAllCutCondition(); }

void ConditionTable::LoadXml(const std::string& path, int machine) {
  Check(RvLoadCutCondition(static_cast<uint16_t>(machine), path.c_str()), kLoading, path);
}

void ConditionTable::LoadCsv(const std::string& path, int machine) {
  TemporaryFolder folder;
  const std::string xml = (folder.path() / "conditions.xml").string();
  Check(RvLoadFromCSV(static_cast<uint16_t>(machine), path.c_str(), xml.c_str()), kLoading, path);
}

std::vector<std::string> ConditionTable::MediaNames() const {
  std::vector<std::string> names;
  Check(RvGetMediaNameTrace(&names, &CollectName), "reading the conditions", "");
  return names;
}

int ConditionTable::Passes(const std::string& media) const { return RvGetRepeatCount(media.c_str()); }

void ConditionTable::CheckMedia(const std::vector<std::string>& names, const std::string& source) const {
  for (const std::string& name : names) {
    if (Passes(name) > 0) continue;
    throw Failure("media '" + name + "' isn't in the conditions of '" + source + "' (they hold " +
                      QuotedList(MediaNames(), "no media") + ")",
                  kUsageStatus);
  }
}

}  // namespace rvtool
