#include "generate/hatch_log.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include "generate/hatch_rules.h"

namespace rv {

namespace {

struct FileCloser {
  void operator()(std::FILE* f) const { std::fclose(f); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Size of the file at `path`, opened for appending so that it exists
/// afterwards; -1 when it can't be opened.
long AppendSize(const std::string& path) {
  File f(std::fopen(path.c_str(), "a+b"));
  if (!f || std::fseek(f.get(), 0, SEEK_END) != 0) return -1;
  return std::ftell(f.get());
}

void AppendFormat(std::string& out, const char* format, double a, double b = 0, double c = 0, double d = 0) {
  char buffer[512];
  const int n = std::snprintf(buffer, sizeof buffer, format, a, b, c, d);
  if (n > 0) out.append(buffer, std::size_t(n) < sizeof buffer ? std::size_t(n) : sizeof buffer - 1);
}

void AppendRule(std::string& out, int16_t rule, const char* blank) {
  if (const char* name = RuleLogName(rule)) {
    out += name;
    out += blank;
  } else {
    out += std::to_string(rule) + blank;
  }
}

}  // namespace

HatchLogChoice ChooseHatchLog(long a, long b) {
  const long limit = kHatchLogLimit;
  const long half = limit / 2;
  // The last row of the table that applies wins.
  if (a > half && b >= limit) return {1, true};
  if (a >= limit && b > half) return {2, true};
  if (a <= half && b >= limit) return {1, false};
  if (a >= limit && b <= half) return {2, false};
  if (a == 0 && b < limit) return {2, false};
  return {1, false};
}

std::string HatchLogRecord(const HatchWork& work) {
  std::string out = "\n[HatchingSortLogData]========================================";
  out += "\nMaxBoundingBoxSize: ";
  const RVRECT& b = work.lineBounds;
  AppendFormat(out, "B %f, T %f, L %f, R %f ", b.bottom, b.top, b.left, b.right);
  out += "\nSortDataSet: ";
  for (const RVSORTDATA& data : work.sortDataSet) {
    AppendRule(out, data.rule, " ");
    AppendFormat(out, "(%f), ", data.cost);
  }
  out += "\nMinCutOderRule: ";
  if (work.bestRule >= 0 && std::size_t(work.bestRule) < work.sortDataSet.size()) {
    AppendRule(out, work.sortDataSet[std::size_t(work.bestRule)].rule, "");
  }
  return out;
}

void WriteHatchLog(const HatchWork& work) {
  const char* folderText = work.info.logFolder;
  const std::string folder(folderText, strnlen(folderText, sizeof work.info.logFolder));
  if (folder.empty()) return;
  const std::string path1 = folder + kHatchLogSeparator + kHatchLogName1;
  const std::string path2 = folder + kHatchLogSeparator + kHatchLogName2;
  if (path2.size() > kHatchLogPathLimit) return;
  const long a = AppendSize(path1);
  const long b = AppendSize(path2);
  if (a < 0 || b < 0) return;
  const HatchLogChoice choice = ChooseHatchLog(a, b);
  if (choice.deleteOther) std::remove((choice.file == 1 ? path2 : path1).c_str());
  File f(std::fopen((choice.file == 1 ? path1 : path2).c_str(), "ab"));
  if (!f) return;
  const std::string record = HatchLogRecord(work);
  std::fwrite(record.data(), 1, record.size(), f.get());
}

}  // namespace rv
