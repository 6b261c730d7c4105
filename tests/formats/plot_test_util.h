// Helpers of the plot tests: an interpreter on a recording sink whose moves
// read as text, and tables of (commands, moves) walked in one test.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drawing_text.h"
#include "formats/plot_interpreter.h"

namespace rvtest {

inline std::string Pt(double x, double y) { return PointText(x, y); }

/// Under the sanitizers every byte costs some ten times more: the tests of
/// huge inputs scale their volume by this.
#if defined(__SANITIZE_ADDRESS__)
constexpr long kHugeScale = 4;
#else
constexpr long kHugeScale = 1;
#endif

/// An interpreter whose moves read as text: "Ux0,y0>x1,y1" pen up,
/// "D..." pen down, or an arc "Afrom>to@centre:sweep" and '+' counter-
/// clockwise, else '-'.
struct Plot : rv::CRvPlotSink {
  rv::CRvPlotInterpreter in{*this};
  std::vector<std::string> moves;
  std::vector<rv::PlotPoint> ends;  // where each move ends

  void DrawLine(const rv::PlotPoint& from, const rv::PlotPoint& to, int16_t penDown) override {
    moves.push_back((penDown ? "D" : "U") + Pt(from.x, from.y) + ">" + Pt(to.x, to.y));
    ends.push_back(to);
  }
  void DrawArc(const rv::PlotArc& a) override {
    moves.push_back("A" + Pt(a.from.x, a.from.y) + ">" + Pt(a.to.x, a.to.y) + "@" + Pt(a.centre.x, a.centre.y) + ":" +
                    Num(a.sweep) + (a.direction == 1 ? "+" : "-"));
    ends.push_back(a.to);
  }
  /// All moves, one space between two.
  std::string Trace() const {
    std::string s;
    for (const std::string& m : moves) s += (s.empty() ? "" : " ") + m;
    return s;
  }
  /// The pen and the position (to 1e-9) after the commands: "pen 1 at x,y".
  std::string State() const {
    const auto near = [](double v) { return std::round(v * 1e9) / 1e9; };
    return "pen " + std::to_string(in.PenDown()) + " at " + Pt(near(in.Position().x), near(in.Position().y));
  }
};

/// Runs `bytes` in the two-letter dialect (or `dialect`), then the end of the stream.
inline std::unique_ptr<Plot> Two(std::string_view bytes, rv::PlotDialect dialect = rv::kDialectTwoLetter) {
  auto p = std::make_unique<Plot>();
  p->in.SetDialect(dialect);
  p->in.Feed(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  p->in.FeedEnd();
  return p;
}

/// Commands, the moves they make and (where given) the state they leave,
/// worked out by hand.
struct TraceRow {
  std::string commands;
  std::string moves;
  std::string state = "";
};

inline void ExpectTraces(const std::vector<TraceRow>& rows, rv::PlotDialect dialect = rv::kDialectTwoLetter) {
  for (const TraceRow& row : rows) {
    SCOPED_TRACE(row.commands);
    const auto p = Two(row.commands, dialect);
    EXPECT_EQ(p->Trace(), row.moves);
    if (!row.state.empty()) {
      EXPECT_EQ(p->State(), row.state);
    }
  }
}

}  // namespace rvtest
