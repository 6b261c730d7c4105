// Fuzz target: arbitrary bytes through the plot interpreter.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "formats/plot_interpreter.h"

namespace {

// Every move must arrive in whole, finite plotter units.
class CheckingSink : public rv::CRvPlotSink {
 public:
  void DrawLine(const rv::PlotPoint& from, const rv::PlotPoint& to, int16_t) override {
    Check(from);
    Check(to);
  }
  void DrawArc(const rv::PlotArc& arc) override {
    Check(arc.from);
    Check(arc.to);
    Check(arc.centre);
  }

 private:
  static void Check(const rv::PlotPoint& p) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y) || p.x != std::floor(p.x) || p.y != std::floor(p.y)) std::abort();
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CheckingSink sink;
  rv::CRvPlotInterpreter interpreter(sink);
  interpreter.SetDialect(rv::CRvPlotInterpreter::DetectDialect(data, size));
  interpreter.Feed(data, size);
  interpreter.FeedEnd();
  return 0;
}
