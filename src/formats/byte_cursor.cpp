#include "formats/byte_cursor.h"

#include <sys/stat.h>

#include <cstdio>
#include <memory>

namespace rv {

std::vector<uint8_t> ReadWholeFile(const std::string& path) {
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) Raise(kErrFileOpen);
  struct stat info {};
  if (fstat(fileno(file.get()), &info) != 0 || !S_ISREG(info.st_mode) || info.st_size < 0) Raise(kErrFileOpen);
  std::vector<uint8_t> bytes(std::size_t(info.st_size));
  if (!bytes.empty() && std::fread(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) Raise(kErrFileShort);
  return bytes;
}

}  // namespace rv
