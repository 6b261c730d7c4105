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

/// Path of a file of ../shared/realdata.
std::string RealData(const std::string& name);

}  // namespace rvtest
