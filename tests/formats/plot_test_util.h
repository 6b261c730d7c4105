// A recording sink for the plot interpreter: every move it is handed, in
// order, in plotter units.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/plot_interpreter.h"

namespace rvtest {

/// Under the sanitizers every byte costs some ten times more: the tests of
/// huge inputs scale their volume by this.
#if defined(__SANITIZE_ADDRESS__)
constexpr long kHugeScale = 4;
#else
constexpr long kHugeScale = 1;
#endif

struct Move {
  bool arc = false;
  rv::PlotPoint from, to, centre;
  int pen = 0;
  double sweep = 0.0;
  int direction = 0;
};

class RecordingSink : public rv::CRvPlotSink {
 public:
  void DrawLine(const rv::PlotPoint& from, const rv::PlotPoint& to, int16_t penDown) override {
    Move m;
    m.from = from;
    m.to = to;
    m.pen = penDown;
    moves.push_back(m);
  }
  void DrawArc(const rv::PlotArc& arc) override {
    Move m;
    m.arc = true;
    m.from = arc.from;
    m.to = arc.to;
    m.centre = arc.centre;
    m.pen = 1;
    m.sweep = arc.sweep;
    m.direction = arc.direction;
    moves.push_back(m);
  }
  std::vector<Move> moves;
};

/// An interpreter on a recording sink.
struct Plot {
  RecordingSink sink;
  rv::CRvPlotInterpreter in{sink};
  std::vector<Move>& moves = sink.moves;

  Plot& Feed(std::string_view bytes) {
    in.Feed(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    return *this;
  }
};

/// Runs `bytes` in the two-letter dialect (or `dialect`), then the end of the
/// stream unless `end` is false.
inline std::unique_ptr<Plot> Two(std::string_view bytes, rv::PlotDialect dialect = rv::kDialectTwoLetter,
                                 bool end = true) {
  auto p = std::make_unique<Plot>();
  p->in.SetDialect(dialect);
  p->Feed(bytes);
  if (end) p->in.FeedEnd();
  return p;
}

inline std::unique_ptr<Plot> Single(std::string_view bytes, bool end = true) {
  return Two(bytes, rv::kDialectSingleLetter, end);
}

#define EXPECT_LINE(m, x0, y0, x1, y1, p)                                         \
  do {                                                                             \
    const ::rvtest::Move& mv_ = (m);                                               \
    EXPECT_FALSE(mv_.arc);                                                         \
    EXPECT_EQ(mv_.from.x, (x0));                                                   \
    EXPECT_EQ(mv_.from.y, (y0));                                                   \
    EXPECT_EQ(mv_.to.x, (x1));                                                     \
    EXPECT_EQ(mv_.to.y, (y1));                                                     \
    EXPECT_EQ(mv_.pen, (p));                                                       \
  } while (0)

#define EXPECT_ARC(m, x0, y0, cx, cy, x1, y1, sw, dir)                             \
  do {                                                                             \
    const ::rvtest::Move& mv_ = (m);                                               \
    EXPECT_TRUE(mv_.arc);                                                          \
    EXPECT_EQ(mv_.from.x, (x0));                                                   \
    EXPECT_EQ(mv_.from.y, (y0));                                                   \
    EXPECT_EQ(mv_.centre.x, (cx));                                                 \
    EXPECT_EQ(mv_.centre.y, (cy));                                                 \
    EXPECT_EQ(mv_.to.x, (x1));                                                     \
    EXPECT_EQ(mv_.to.y, (y1));                                                     \
    EXPECT_NEAR(mv_.sweep, (sw), 1e-9);                                            \
    EXPECT_EQ(mv_.direction, (dir));                                               \
  } while (0)

}  // namespace rvtest
