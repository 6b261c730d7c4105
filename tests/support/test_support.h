// Helpers shared by the test programs.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "rvdataaccess.h"

namespace rvtest {

/// A fresh temporary directory, removed with the object.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return m_path; }
  std::string file(const std::string& name) const { return (m_path / name).string(); }

 private:
  std::filesystem::path m_path;
};

/// Reads a whole file as bytes; empty when it can't be read.
std::string ReadFile(const std::string& path);
/// Writes bytes to a file; returns false on failure.
bool WriteFile(const std::string& path, const std::string& bytes);

/// The folder of real files written by other programs: ../shared/realdata
/// beside the project, or $RV_REALDATA_DIR when it is set. Only this
/// workplace's checkouts have it.
std::string RealDataDir();
/// Path of a file of the real-file folder.
std::string RealData(const std::string& name);

/// Skips the running test, with the reason, when the real files aren't there.
#define RV_SKIP_WITHOUT_REAL_DATA()                                                              \
  do {                                                                                           \
    if (!std::filesystem::is_directory(rvtest::RealDataDir()))                                   \
      GTEST_SKIP() << "the real files of " << rvtest::RealDataDir()                              \
                   << " aren't there (a clone without ../shared); nothing of them is checked"; \
  } while (0)

}  // namespace rvtest
