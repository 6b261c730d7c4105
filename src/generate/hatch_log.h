// The order log of the hatching: one record per ordering, naming the box of
// the lines, the rules tried with their costs and the rule applied.
//
// Two files in the host's log folder take turns, so that the log never
// holds much more than two files' worth: "HatchingLogFile.txt" and
// "HatchingLogFile2.txt", each joined to the folder with "/". Nothing is
// written when the folder is empty, and a folder that can't be written is
// passed over in silence: the log never changes the hatching.
#pragma once

#include <cstdint>
#include <string>

#include "generate/hatch_work.h"

namespace rv {

/// Size in bytes at which a log file counts as full.
constexpr long kHatchLogLimit = 100000;
/// The names of the two log files and the separator that joins them to the
/// folder.
inline constexpr const char* kHatchLogName1 = "HatchingLogFile.txt";
inline constexpr const char* kHatchLogName2 = "HatchingLogFile2.txt";
inline constexpr const char* kHatchLogSeparator = "/";
/// Longest folder and file name together, in characters.
constexpr std::size_t kHatchLogPathLimit = 1023;

/// Which file gets the next record, and whether the other one is deleted
/// first.
struct HatchLogChoice {
  int file = 1;             ///< 1 or 2
  bool deleteOther = false;
};

/// The choice from the sizes of file 1 (`a`) and file 2 (`b`).
HatchLogChoice ChooseHatchLog(long a, long b);

/// The record of one ordering, as it is appended.
std::string HatchLogRecord(const HatchWork& work);

/// Appends the record to the log when work.info.logFolder isn't empty.
void WriteHatchLog(const HatchWork& work);

}  // namespace rv
