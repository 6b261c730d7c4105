// Throughput of the plot file import: 10 MB generated HP-GL files, one of
// short pen-down moves, one of arcs. Reported as bytes per second and
// moves (lines and arcs handed over) per second, for the whole import
// (file to document) and for the interpreter alone.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "formats/plot_interpreter.h"
#include "model/art.h"
#include "model/drawing_memory.h"
#include "rvdataaccess.h"

namespace {

constexpr std::size_t kFileSize = 10u << 20;

/// Strokes of 50 short moves wandering over a sheet: a pen-up move, then a
/// PD list of 50 pairs, as plotter drivers write outlines.
std::string ShortMoves() {
  std::string s = "IN;SP1;";
  s.reserve(kFileSize + 256);
  uint32_t x = 1000, y = 1000, seed = 12345;
  while (s.size() < kFileSize) {
    s += "PU" + std::to_string(x) + "," + std::to_string(y) + ";PD";
    for (int i = 0; i < 50; ++i) {
      seed = seed * 1103515245u + 12345u;
      x = 1000 + (x + (seed >> 16) % 41 - 20) % 30000;
      y = 1000 + (y + (seed >> 8) % 41 - 20) % 20000;
      if (i) s += ',';
      s += std::to_string(x);
      s += ',';
      s += std::to_string(y);
    }
    s += ";\n";
  }
  return s;
}

/// Curved outlines: a pen-up move, then a pen-down stroke of 20 quarter
/// arcs (AR) winding along, each continuing the last.
std::string Arcs() {
  std::string s = "IN;SP1;";
  s.reserve(kFileSize + 256);
  uint32_t i = 0;
  while (s.size() < kFileSize) {
    const uint32_t x = 1000 + (i * 37) % 30000, y = 1000 + (i * 91) % 20000;
    s += "PU" + std::to_string(x) + "," + std::to_string(y) + ";PD;";
    for (int k = 0; k < 20; ++k) s += k % 2 ? "AR0,150,-90;" : "AR150,0,90;";
    s += "\n";
    ++i;
  }
  return s;
}

/// Many small paths of arcs: a pen-up move, an arc about a centre and an arc
/// through three points, one path each.
std::string ArcPaths() {
  std::string s = "IN;SP1;";
  s.reserve(kFileSize + 256);
  uint32_t i = 0;
  while (s.size() < kFileSize) {
    const uint32_t x = 1000 + (i * 37) % 30000, y = 1000 + (i * 91) % 20000;
    s += "PU" + std::to_string(x + 200) + "," + std::to_string(y) + ";";
    s += "AA" + std::to_string(x) + "," + std::to_string(y) + ",90;";
    s += "AT" + std::to_string(x - 200) + "," + std::to_string(y) + "," + std::to_string(x) + "," +
         std::to_string(y - 200) + ";\n";
    ++i;
  }
  return s;
}

struct CountingSink : rv::CRvPlotSink {
  int64_t moves = 0;
  void DrawLine(const rv::PlotPoint&, const rv::PlotPoint&, int16_t) override { ++moves; }
  void DrawArc(const rv::PlotArc&) override { ++moves; }
};

/// Moves the interpreter hands over for `data`.
int64_t CountMoves(const std::string& data) {
  CountingSink sink;
  rv::CRvPlotInterpreter in(sink);
  const auto* bytes = reinterpret_cast<const uint8_t*>(data.data());
  in.SetDialect(rv::CRvPlotInterpreter::DetectDialect(bytes, data.size()));
  in.Feed(bytes, data.size());
  in.FeedEnd();
  return sink.moves;
}

/// The interpreter alone.
void BM_Interpret(benchmark::State& state, const std::string& (*input)()) {
  const std::string& data = input();
  int64_t moves = 0;
  for (auto _ : state) {
    const int64_t n = CountMoves(data);
    moves += n;
    benchmark::DoNotOptimize(n);
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(data.size()));
  state.counters["moves/s"] = benchmark::Counter(double(moves), benchmark::Counter::kIsRate);
}

/// Points of all components of the paths of layer 0 of the active document.
int64_t PointsOfLayer0() {
  void* layer = nullptr;
  void* art = nullptr;
  int64_t points = 0;
  if (RvGiGetLayer(&layer, 0) != 0 || RvGiGetArtFirstChild(layer, &art) != 0) return 1;
  while (art != nullptr) {
    if (rv::ArtOf(art)->GetType() == rv::kArtPath) points += static_cast<rv::CRvPath*>(rv::ArtOf(art))->GetPointTotal();
    if (RvGiGetArtSibling(art, &art) != 0) break;
  }
  return points > 0 ? points : 1;
}

/// The whole import: file, interpreter, paths in a new document. Also the
/// drawing's bytes (drawing_memory.h) per point of the imported paths.
void BM_Import(benchmark::State& state, const std::string& (*input)()) {
  const std::string& data = input();
  char name[] = "/tmp/bench_plt_import_XXXXXX";
  const int fd = mkstemp(name);
  if (fd < 0 || write(fd, data.data(), data.size()) != ssize_t(data.size())) {
    state.SkipWithError("cannot write the input file");
    return;
  }
  close(fd);
  const int64_t moves = CountMoves(data);
  double bytesPerPoint = 0.0, storagePerPoint = 0.0;
  for (auto _ : state) {
    int16_t index = -1;
    const double scale = 0.0;
    const std::size_t before = rv::DrawingBytes(), storageBefore = rv::DrawingStorageBytes();
    const uint32_t code = RvImPLTToRIF(name, 0, &index, &scale);
    if (code != 0) state.SkipWithError("import failed");
    state.PauseTiming();
    bytesPerPoint = double(rv::DrawingBytes() - before) / double(PointsOfLayer0());
    storagePerPoint = double(rv::DrawingStorageBytes() - storageBefore) / double(PointsOfLayer0());
    RvGiDeleteActiveDocument();
    state.ResumeTiming();
  }
  state.counters["bytes/point"] = bytesPerPoint;           // asked for by arts and arrays
  state.counters["storage/point"] = storagePerPoint;       // chunks and heap blocks that hold them
  std::remove(name);
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(data.size()));
  state.counters["moves/s"] = benchmark::Counter(double(moves) * double(state.iterations()), benchmark::Counter::kIsRate);
}

/// Each input is made once, on its first use.
template <std::string (*Make)()>
const std::string& Input() {
  static const std::string data = Make();
  return data;
}

BENCHMARK_CAPTURE(BM_Import, ShortMoves, Input<ShortMoves>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Import, Arcs, Input<Arcs>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Import, ArcPaths, Input<ArcPaths>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Interpret, ShortMoves, Input<ShortMoves>)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Interpret, Arcs, Input<Arcs>)->Unit(benchmark::kMillisecond);

}  // namespace
