// The plot interpreter's byte machine: dialect detection, the parser states,
// parameter forms and number scanning, escapes, encoded polylines, and the
// transforms of both dialects. Expected moves are worked out by hand from
// the commands, in whole plotter units.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "plot_test_util.h"

namespace {

using rv::CRvPlotInterpreter;
using rv::kDialectSingleLetter;
using rv::kDialectTwoLetter;
using rvtest::Two;
using rvtest::Single;

rv::PlotDialect Detect(const std::string& s) {
  return CRvPlotInterpreter::DetectDialect(reinterpret_cast<const uint8_t*>(s.data()), s.size());
}

TEST(PlotDialect, DetectedFromTheFirstBytes) {
  EXPECT_EQ(Detect("IN;PA10,10;"), kDialectTwoLetter);
  EXPECT_EQ(Detect("in;pa10,10;"), kDialectTwoLetter);
  EXPECT_EQ(Detect("M100,100"), kDialectSingleLetter);     // a digit behind a first letter
  EXPECT_EQ(Detect("\x1b.(;IN;"), kDialectTwoLetter);      // ESC decides at once
  EXPECT_EQ(Detect(std::string(15, ' ')), kDialectSingleLetter);
  EXPECT_EQ(Detect("ABPA1,1;"), kDialectSingleLetter);     // AB is no mnemonic
  EXPECT_EQ(Detect(""), kDialectSingleLetter);             // nothing decides
  EXPECT_EQ(Detect("\r\nIN;"), kDialectTwoLetter);         // controls drop nothing held yet
  EXPECT_EQ(Detect("123IN;"), kDialectTwoLetter);          // digits with nothing held go on
  EXPECT_EQ(Detect("P{A1"), kDialectSingleLetter);         // '{' drops the P, then A1
  EXPECT_EQ(Detect("!g"), kDialectTwoLetter);
  EXPECT_EQ(Detect(" IN;"), kDialectSingleLetter);         // blank and I form a pair
  // Only 15 bytes are looked at: a mnemonic in bytes 16 and 17 is not seen.
  EXPECT_EQ(Detect(std::string(14, '\n') + "\x01IN;"), kDialectSingleLetter);
}

TEST(PlotParser, RepeatingPairsAndLeftOverParameters) {
  // PA10,20,30; runs PA with (10,20), then with (30) alone, which moves nothing.
  auto p = Two("PD;PA10,20,30;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 10, 20, 1);

  // No terminator is needed between commands: the P ends the list.
  p = Two("PA10,20PD30,40;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 10, 20, 0);
  EXPECT_LINE(p->moves[1], 10, 20, 30, 40, 1);

  // Lower case equals upper case.
  p = Two("pa1,2;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 1, 2, 0);

  // A list of pairs is one move per pair.
  p = Two("PD0,0,10,0,10,10;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[2], 10, 0, 10, 10, 1);
}

TEST(PlotParser, NumberScanning) {
  // A sign inside a number starts the next one: 10-20 is two numbers.
  auto p = Two("PA10-20;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 10, -20, 0);

  // Reals round to whole plotter units, halves upward.
  p = Two("PA1.5,2.49;PA-1.5,-2.5;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 2, 2, 0);
  EXPECT_LINE(p->moves[1], 2, 2, -1, -2, 0);

  // A bare sign or point followed by a separator is 0; a run of separators adds nothing.
  p = Two("PA10,10;PA-,.;PA,,7 , ,8;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[1], 10, 10, 0, 0, 0);
  EXPECT_LINE(p->moves[2], 0, 0, 7, 8, 0);

  // The ninth integer digit is a fault: the command runs without parameters
  // and the rest up to the terminator is dropped.
  p = Two("PD;PA123456789,0;PA5,5;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 5, 5, 1);
  p = Two("PA12345678,0;");  // eight digits are fine
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_EQ(p->moves[0].to.x, 12345678);

  // A second point is a fault too; fraction digits beyond nine are dropped.
  p = Two("PA1.5.5,0;PA0.1234567891234,3;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 0, 3, 0);

  // A byte of class "other" is a fault.
  p = Two("PA1\"2,3;PA4,4;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 4, 4, 0);

  // Control bytes inside a number are skipped: "1\n0" is 10.
  p = Two("PA1\n0,5;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 10, 5, 0);
}

TEST(PlotParser, IntegerParametersRoundByTheirFirstFractionDigit) {
  // IP takes integers: 0.5 becomes 1, 999.4 becomes 999, -1.5 becomes -2.
  // With P1 (1,0), P2 (999,1000) and SC0,1,0,1 a user point (1,1) lands on P2.
  auto p = Two("IP0.5,0.4,999.4,999.5;SC0,1,0,1;PA1,1;PA0,0;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_EQ(p->moves[0].to.x, 999);
  EXPECT_EQ(p->moves[0].to.y, 1000);
  EXPECT_EQ(p->moves[1].to.x, 1);
  EXPECT_EQ(p->moves[1].to.y, 0);
}

TEST(PlotParser, EndOfStreamAndUnknownCommands) {
  // A list still open at the end never runs: the end byte is a fault.
  EXPECT_TRUE(Two("PU100,200")->moves.empty());
  // A terminator, or a separator that completes the pair, makes it count.
  EXPECT_EQ(Two("PU100,200;")->moves.size(), 1u);
  EXPECT_EQ(Two("PU100,200,")->moves.size(), 1u);

  // An unknown mnemonic is skipped up to the next terminator or letter.
  auto p = Two("XX1,2;AB3,4PA5,6;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 5, 6, 0);

  // A digit where a mnemonic should be skips up to the next letter.
  p = Two("12,3PA1,1;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 1, 1, 0);

  // The '!' table is recognised and its parameters skipped.
  p = Two("!PG1.5;!ST3;PA1,1;");
  ASSERT_EQ(p->moves.size(), 1u);

  // Extra parameters of a fixed form are dropped; the command still runs.
  p = Two("PA10,0;PD;CI10,5,3;PU;PA99,99;");
  ASSERT_FALSE(p->moves.empty());
  EXPECT_LINE(p->moves.back(), 10, 0, 99, 99, 0);
}

TEST(PlotParser, EscapeSequencesAreFiltered) {
  // ESC . ( is a complete device command; ESC . @ runs up to ':'.
  auto p = Two("\x1b.(PA1,1;\x1b.@1;2;3:PA2,2;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 1, 1, 2, 2, 0);
  // ESC followed by anything but '.' gives the byte back to the parser: ESC E
  // leaves an E, which pairs with the P into the command EP.
  p = Two("\x1b" "EPA1,1;PA3,3;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 3, 3, 0);
}

TEST(PlotParser, LabelsRunToTheirEndByte) {
  // Without IN or DF the label ends at a zero byte: the PA inside is text.
  auto p = Two(std::string("LBabc;PA1,1;\0PA2,2;", 20));
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 2, 2, 0);
  // After DF the end byte is 3.
  p = Two("DF;LBabc;PA1,1;\x03PA2,2;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 2, 2, 0);
  EXPECT_EQ(p->in.LabelEnd(), 3);
  // A label longer than 151 units is read in groups and still ends at its byte.
  p = Two("IN;LB" + std::string(1000, 'x') + "\x03PA7,7;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 7, 7, 0);
}

TEST(PlotParser, CodesOfKeyCommands) {
  auto p = Two("KL12,&h1F,65535;PA1,1;");
  ASSERT_EQ(p->moves.size(), 1u);
  // A digit right after '&', or a sixth digit, is a fault; the next command still runs.
  EXPECT_EQ(Two("KL&12;PA1,1;")->moves.size(), 1u);
  EXPECT_EQ(Two("JK123456;PA1,1;")->moves.size(), 1u);
}

TEST(PlotParser, EncodedPolylines) {
  // Base 64: value v = 2|n| + sign; last digit 191 + d, others 63 + d.
  // 10 -> 20 -> byte 211; -5 -> 11 -> byte 202; 100 -> 200 = 8 + 3*64 -> 'G', 194.
  auto p = Two("PA1,1;PE\xd3\xca" "G\xc2\xd3;PA0,0;");
  ASSERT_EQ(p->moves.size(), 4u);
  EXPECT_LINE(p->moves[1], 1, 1, 11, -4, 1);  // relative, pen down
  EXPECT_LINE(p->moves[2], 11, -4, 111, 6, 1);
  EXPECT_LINE(p->moves[3], 111, 6, 0, 0, 1);  // the pen stays down after PE

  // '<' lifts the pen for one pair, '=' makes one pair absolute (9 -> 18 ->
  // byte 209). The end of PE gives back the relative mode of before.
  p = Two("PR;PE<\xd3\xd3=\xd1\xd1;PU1,1;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[0], 0, 0, 10, 10, 0);
  EXPECT_LINE(p->moves[1], 10, 10, 9, 9, 1);
  EXPECT_LINE(p->moves[2], 9, 9, 10, 10, 0);

  // Base 32 after '7': last digit 95 + d. 10 -> 20 -> 's'; 100 -> 200 = 8 + 6*32 -> 'G', 'e'.
  // Blanks and line ends inside the data are ignored.
  p = Two("PE7s \nGe;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 10, 100, 1);

  // '>' sets fraction bits (1 -> byte 193): 10 becomes 5. ':' skips a pen number.
  p = Two("PE>\xc1\xd3\xd3:\xc1\xd3\xd3;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 5, 5, 1);
  EXPECT_LINE(p->moves[1], 5, 5, 10, 10, 1);

  // Nine digits without an end digit kill the decoding up to the terminator;
  // so does an unknown flag byte.
  p = Two("PE?????????\xd3\xd3;PA1,1;PE!\xd3\xd3;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 1, 1, 0);

  // A nine-digit number is 54 bits: far beyond the plotter's range, the
  // move saturates at the 32-bit limits.
  p = Two("PE~~~~~~~~\xfe\xd3;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_EQ(p->moves[0].to.x, -2147483648.0);
  EXPECT_EQ(p->moves[0].to.y, 10);
}

TEST(PlotTransform, ScalingPointsAndUserWindow) {
  // P1 (100,200), P2 (1100,1200), window 0..10: ratio 100, offset (100,200).
  auto p = Two("IP100,200,1100,1200;SC0,10,0,10;PA0,0;PA10,10;PA5,2.5;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[0], 0, 0, 100, 200, 0);
  EXPECT_LINE(p->moves[1], 100, 200, 1100, 1200, 0);
  EXPECT_LINE(p->moves[2], 1100, 1200, 600, 450, 0);
  EXPECT_TRUE(p->in.Scaling());
  EXPECT_DOUBLE_EQ(p->in.RatioX(), 100.0);

  // SC; turns scaling off and keeps the pen where it was in plotter units.
  p = Two("IP100,200,1100,1200;SC0,10,0,10;PA10,10;SC;PA0,0;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 1100, 1200, 0, 0, 0);
  EXPECT_FALSE(p->in.Scaling());

  // IP with two parameters moves P1 and keeps the size of P1..P2. The pen
  // stays at plotter (0,0) when scaling starts.
  p = Two("IP0,0,100,100;IP50,50;SC0,1,0,1;PA1,1;PA0,0;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 150, 150, 0);
  EXPECT_LINE(p->moves[1], 150, 150, 50, 50, 0);

  // A window of no width changes nothing; IN brings P1 (0,0), P2 (1,1).
  p = Two("SC0,0,0,10;PA5,5;IN;SC0,1,0,1;PA1,1;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 5, 5, 0);
  EXPECT_LINE(p->moves[1], 5, 5, 1, 1, 0);
}

TEST(PlotTransform, RotationKeepsThePenWhereItIs) {
  // RO90 turns user space: (10,20) lands on (-20,10). The rotation itself is
  // a pen-up move to the (unchanged) plotter position.
  auto p = Two("PD;PA3,4;RO90;PA10,20;RO180;RO90;");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[1], 3, 4, 3, 4, 0);
  EXPECT_LINE(p->moves[2], 3, 4, -20, 10, 1);
  EXPECT_TRUE(p->in.Rotated());

  // Under scaling with an offset: P1 (100,200), ratio 100. (3,4) is at
  // (400,600) and stays there through RO90; then (0,0) is at
  // (-0 - 200, 0 + 100) = (-200, 100); RO0 keeps that plotter position and
  // (0,0) is at the offset (100,200) again.
  p = Two("IP100,200,1100,1200;SC0,10,0,10;PA3,4;RO90;PA0,0;RO;PA0,0;");
  ASSERT_EQ(p->moves.size(), 5u);
  EXPECT_LINE(p->moves[1], 400, 600, 400, 600, 0);
  EXPECT_LINE(p->moves[2], 400, 600, -200, 100, 0);
  EXPECT_LINE(p->moves[3], -200, 100, -200, 100, 0);
  EXPECT_LINE(p->moves[4], -200, 100, 100, 200, 0);
}

TEST(PlotActions, PenCommandsAndDefaults) {
  // PD;PA0,0;PU;PD;PA10,0: the bare PU moves nothing.
  auto p = Two("PD;PA0,0;PU;PD;PA10,0;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 0, 0, 10, 0, 1);
  // PR makes PU and PD relative until PA.
  p = Two("PR;PD5,5,5,0;PA1,1;PU2,2;");
  ASSERT_EQ(p->moves.size(), 4u);
  EXPECT_LINE(p->moves[1], 5, 5, 10, 5, 1);
  EXPECT_LINE(p->moves[3], 1, 1, 2, 2, 0);
  // VA draws and lifts the pen after.
  p = Two("VA4,4;PA5,5;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_EQ(p->moves[0].pen, 1);
  EXPECT_EQ(p->moves[1].pen, 0);
  // IN lifts the pen, keeps the position and ends relative mode.
  p = Two("PR;PD5,5;IN;PU1,1;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 5, 5, 1, 1, 0);
}

TEST(PlotActions, PathValuesAndChordMode) {
  // JT repeats the last move, VT sets the path element values (16 bits).
  auto p = Two("VT5,70000;PD;PA10,0;JT17;");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 0, 0, 10, 0, 1);
  EXPECT_TRUE(p->in.VCutValid());
  EXPECT_EQ(p->in.VCutElement(), 5);
  EXPECT_EQ(p->in.VCutValue(), 70000 - 65536);
  EXPECT_TRUE(Two("JT27;")->in.VCutValid());
  EXPECT_FALSE(Two("JT17;JT3;")->in.VCutValid());
  EXPECT_FALSE(Two("JT;")->in.VCutValid());

  EXPECT_TRUE(Two("CT1;")->in.ChordIsDeviation());
  EXPECT_TRUE(Two("CT1;CT2;")->in.ChordIsDeviation());  // other values change nothing
  EXPECT_FALSE(Two("CT1;CT;")->in.ChordIsDeviation());
  EXPECT_FALSE(Two("CT1;DF;")->in.ChordIsDeviation());
}

TEST(PlotSingleLetter, MovesAndTerminators) {
  // D100,100E5,5 and a terminator draws twice.
  auto p = Single("D100,100E5,5\x03");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[0], 0, 0, 100, 100, 1);
  EXPECT_LINE(p->moves[1], 100, 100, 105, 105, 1);
  // M at the current position makes no move at all (an open path goes on).
  p = Single("D10,10\x03M10,10\x03" "D20,10\x03");
  ASSERT_EQ(p->moves.size(), 2u);
  EXPECT_LINE(p->moves[1], 10, 10, 20, 10, 1);
  // O moves relative with the pen up; line ends separate numbers.
  p = Single("O5\r\n6\x03");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 5, 6, 0);
  // '=' sets new terminators; ';' is then a terminator, 3 a control byte.
  p = Single("=;;\x03M7,7;");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 7, 7, 0);
  // One fraction digit only: 1.26 is 1.2, which rounds to 1.
  p = Single("M1.26,2.55\x03");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 1, 3, 0);
  // Lower case is "other": the command is skipped to the terminator.
  p = Single("m5,5\x03M6,6\x03");
  ASSERT_EQ(p->moves.size(), 1u);
}

TEST(PlotSingleLetter, FactorTurnShiftAndHome) {
  // &2,3,1: ratios 2 and 3.
  auto p = Single("&2,3,1\x03M10,10\x03");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 20, 30, 0);
  EXPECT_TRUE(p->in.Scaling());
  // A ratio of 8 or more keeps the old value; equal factors switch scaling off.
  p = Single("&16,2,2\x03M10,10\x03");
  EXPECT_LINE(p->moves[0], 0, 0, 10, 10, 0);
  EXPECT_FALSE(Single("&2,3,1\x03&1,1,1\x03")->in.Scaling());  // both ratios 1

  // /0,0,900 turns by 90 degrees about the origin.
  p = Single("/0,0,900\x03M10,0\x03");
  ASSERT_EQ(p->moves.size(), 1u);
  EXPECT_LINE(p->moves[0], 0, 0, 0, 10, 0);

  // ^5,6 shifts: a pen-up move to the same user point, now shifted.
  p = Single("D10,10\x03^5,6\x03M0,0\x03");
  ASSERT_EQ(p->moves.size(), 3u);
  EXPECT_LINE(p->moves[1], 15, 16, 15, 16, 0);
  EXPECT_LINE(p->moves[2], 15, 16, 5, 6, 0);

  // H goes home without turn and shift; both are back after it.
  p = Single("^5,6\x03" "D10,10\x03H\x03" "D1,1\x03");
  ASSERT_EQ(p->moves.size(), 4u);
  EXPECT_LINE(p->moves[2], 10, 10, 0, 0, 0);
  EXPECT_LINE(p->moves[3], 5, 6, 6, 7, 1);
}

TEST(PlotBounds, HugeInputsStayBounded) {
  // 16 MB of pairs with no terminator and no line end: the interpreter's
  // memory does not grow and every pair is one move. (The 100 MB line goes
  // through the whole import in the PLT import tests.)
  struct Counter : rv::CRvPlotSink {
    long lines = 0;
    double lastX = 0;
    void DrawLine(const rv::PlotPoint&, const rv::PlotPoint& to, int16_t) override {
      ++lines;
      lastX = to.x;
    }
    void DrawArc(const rv::PlotArc&) override {}
  } counter;
  CRvPlotInterpreter in(counter);
  in.SetDialect(kDialectTwoLetter);
  const std::string head = "PD";
  in.Feed(reinterpret_cast<const uint8_t*>(head.data()), head.size());
  std::string chunk;
  while (chunk.size() < (1u << 20)) chunk += "1000,2000,3000,4000,";  // 20 bytes, 2 moves
  const long chunks = 16 / rvtest::kHugeScale;
  for (long i = 0; i < chunks; ++i) in.Feed(reinterpret_cast<const uint8_t*>(chunk.data()), chunk.size());
  in.FeedEnd();
  EXPECT_EQ(counter.lines, chunks * long(chunk.size() / 20) * 2);
  EXPECT_EQ(counter.lastX, 3000);

  // 16 MB of digits: one number far too long, skipped without a move.
  Counter digits;
  CRvPlotInterpreter in2(digits);
  in2.SetDialect(kDialectTwoLetter);
  in2.Feed(reinterpret_cast<const uint8_t*>("PA"), 2);
  const std::string nines(1u << 20, '9');
  for (long i = 0; i < chunks; ++i) in2.Feed(reinterpret_cast<const uint8_t*>(nines.data()), nines.size());
  in2.Feed(reinterpret_cast<const uint8_t*>(";PA1,1;"), 7);
  EXPECT_EQ(digits.lines, 1);
}

}  // namespace
