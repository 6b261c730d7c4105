#include "milling_job.h"

#include <cstdlib>
#include <vector>

namespace rvtool {
namespace {

/// The numbers after the two letters of a word, comma-separated.
std::vector<double> Numbers(const std::string& word) {
  std::vector<double> out;
  const char* at = word.c_str() + 2;
  while (*at != '\0') {
    char* end = nullptr;
    const double v = std::strtod(at, &end);
    if (end == at) break;
    out.push_back(v);
    at = *end == ',' ? end + 1 : end;
  }
  return out;
}

}  // namespace

bool IsMillingJob(const std::string& job) { return job.rfind("JZ", 0) == 0 || job.find(";JZ") != std::string::npos; }

Scene SceneOfMillingJob(const std::string& job, double unit, int& depths) {
  Scene scene;
  std::vector<long> seen;  // depth words in the order of first use
  int shade = 0;
  RVPOINT pen{0, 0};
  Stroke cut;
  auto finish = [&] {
    if (cut.points.size() > 1) scene.strokes.push_back(cut);
    cut = Stroke{};
  };
  std::size_t from = 0;
  while (from < job.size()) {
    std::size_t end = job.find(';', from);
    if (end == std::string::npos) end = job.size();
    std::string word = job.substr(from, end - from);
    from = end + 1;
    const std::size_t first = word.find_first_not_of(" \t\r\n");
    if (first == std::string::npos || word.size() - first < 2) continue;
    word = word.substr(first);
    const std::string command = word.substr(0, 2);
    const std::vector<double> v = Numbers(word);
    if (command == "PU") {
      finish();
      if (v.size() >= 2) pen = RVPOINT{v[v.size() - 2] * unit, v[v.size() - 1] * unit};
    } else if (command == "PD") {
      for (std::size_t i = 0; i + 1 < v.size(); i += 2) {
        if (cut.points.empty()) {
          cut.points.push_back(pen);
          cut.shade = shade;
          scene.bounds.Add(pen);
        }
        pen = RVPOINT{v[i] * unit, v[i + 1] * unit};
        cut.points.push_back(pen);
        scene.bounds.Add(pen);
      }
    } else if (command == "JZ" && !v.empty()) {
      finish();
      const long depth = static_cast<long>(v[0]);
      shade = 0;
      while (shade < static_cast<int>(seen.size()) && seen[static_cast<std::size_t>(shade)] != depth) ++shade;
      if (shade == static_cast<int>(seen.size())) seen.push_back(depth);
    }
  }
  finish();
  depths = static_cast<int>(seen.size());
  return scene;
}

}  // namespace rvtool
