#include "test_support.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <unistd.h>

namespace rvtest {

TempDir::TempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "rvtest-XXXXXX").string();
  char* made = mkdtemp(pattern.data());
  m_path = made ? std::filesystem::path(made) : std::filesystem::temp_directory_path();
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(m_path, ec);
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

bool WriteFile(const std::string& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out.write(bytes.data(), std::streamsize(bytes.size()));
  return bool(out);
}

std::string RealDataDir() {
  const char* folder = std::getenv("RV_REALDATA_DIR");
  return folder != nullptr && *folder != 0 ? std::string(folder) : std::string(RV_SHARED_DIR) + "/realdata";
}

std::string RealData(const std::string& name) { return RealDataDir() + "/" + name; }

}  // namespace rvtest
