// Checks that a picture file is well-formed and shows something.
#pragma once

#include <string>

namespace tooltest {

/// What a PNG file holds, as far as the checks need it.
struct PngSummary {
  bool valid = false;  // signature, chunk layout, CRCs, IHDR first, IEND last
  std::string problem;
  int width = 0, height = 0;
  long black = 0, white = 0, red = 0, blue = 0;  // pixels of the picture's colours
};

/// Walks the chunks of a PNG file (CRC of each checked), then decodes it.
PngSummary CheckPng(const std::string& path);

}  // namespace tooltest
