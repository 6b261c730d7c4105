// The plot interpreter's byte machine: dialect detection, the parser states,
// parameter forms and number scanning, escapes, encoded polylines, and the
// transforms of both dialects. Expected moves are worked out by hand from
// the commands, in whole plotter units.
#include <gtest/gtest.h>

#include <string>

#include "plot_test_util.h"

namespace {

using namespace std::string_literals;
using rv::CRvPlotInterpreter;
using rv::kDialectSingleLetter;
using rv::kDialectTwoLetter;
using rvtest::ExpectTraces;
using rvtest::Two;

TEST(PlotDialect, DetectedFromTheFirstBytes) {
  const std::pair<std::string, rv::PlotDialect> rows[] = {
      {"IN;PA10,10;", kDialectTwoLetter},
      {"in;pa10,10;", kDialectTwoLetter},
      {"M100,100", kDialectSingleLetter},  // a digit behind a first letter
      {"\x1b.(;IN;", kDialectTwoLetter},   // ESC decides at once
      {std::string(15, ' '), kDialectSingleLetter},
      {"ABPA1,1;", kDialectSingleLetter},  // AB is no mnemonic
      {"", kDialectSingleLetter},          // nothing decides
      {"\r\nIN;", kDialectTwoLetter},      // controls drop nothing held yet
      {"123IN;", kDialectTwoLetter},       // digits with nothing held go on
      {"P{A1", kDialectSingleLetter},      // '{' drops the P, then A1
      {"!g", kDialectTwoLetter},
      {" IN;", kDialectSingleLetter},  // blank and I form a pair
      // Only 15 bytes are looked at: a mnemonic in bytes 14 and 15 is seen,
      // one in bytes 15 and 16 is not.
      {std::string(13, '\n') + "IN;", kDialectTwoLetter},
      {std::string(14, '\n') + "IN;", kDialectSingleLetter},
  };
  for (const auto& [bytes, dialect] : rows) {
    SCOPED_TRACE(bytes);
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    EXPECT_EQ(CRvPlotInterpreter::DetectDialect(data, bytes.size()), dialect);
  }
}

TEST(PlotParser, ParameterListsAndNumberScanning) {
  ExpectTraces({
      // PA10,20,30 runs PA with (10,20), then with (30) alone, which moves nothing.
      {"PD;PA10,20,30;", "D0,0>10,20"},
      // No terminator is needed between commands; lower case equals upper case.
      {"PA10,20PD30,40;", "U0,0>10,20 D10,20>30,40"},
      {"pa1,2;", "U0,0>1,2"},
      // A sign inside a number starts the next one.
      {"PA10-20;", "U0,0>10,-20"},
      // Reals round to whole plotter units, halves upward.
      {"PA1.5,2.49;PA-1.5,-2.5;", "U0,0>2,2 U2,2>-1,-2"},
      // A bare sign or point before a separator is 0; a run of separators adds nothing.
      {"PA10,10;PA-,.;PA,,7 , ,8;", "U0,0>10,10 U10,10>0,0 U0,0>7,8"},
      // The ninth integer digit is a fault: the command runs without
      // parameters and the rest up to the terminator is dropped.
      {"PD;PA123456789,0;PA5,5;", "D0,0>5,5"},
      {"PA12345678,0;", "U0,0>12345678,0"},
      // A second point is a fault too; fraction digits beyond nine are dropped.
      {"PA1.5.5,0;PA0.1234567891234,3;", "U0,0>0,3"},
      // A byte of class "other" is a fault; control bytes inside a number are skipped.
      {"PA1\"2,3;PA4,4;", "U0,0>4,4"},
      {"PA1\n0,5;", "U0,0>10,5"},
      // IP takes integers, rounded by their first fraction digit: P1 (1,0),
      // P2 (999,1000), so with SC0,1,0,1 the user point (1,1) lands on P2.
      {"IP0.5,0.4,999.4,999.5;SC0,1,0,1;PA1,1;PA0,0;", "U0,0>999,1000 U999,1000>1,0"},
      // Codes of key commands; a digit right after '&', or a sixth digit, is a fault.
      {"KL12,&h1F,65535;KL&12;JK123456;PA1,1;", "U0,0>1,1"},
  });
}

TEST(PlotParser, EndOfStreamUnknownCommandsEscapesAndLabels) {
  ExpectTraces({
      // A list still open at the end never runs: the end byte is a fault. A
      // terminator, or a separator that completes the pair, makes it count.
      {"PU100,200", ""},
      {"PU100,200;", "U0,0>100,200"},
      {"PU100,200,", "U0,0>100,200"},
      // An unknown mnemonic is skipped up to the next terminator or letter; a
      // digit where a mnemonic should be up to the next letter.
      {"XX1,2;AB3,4PA5,6;", "U0,0>5,6"},
      {"12,3PA1,1;", "U0,0>1,1"},
      // The '!' table is recognised and its parameters skipped.
      {"!PG1.5;!ST3;PA1,1;", "U0,0>1,1"},
      // Extra parameters of a fixed form are dropped; the command still runs
      // (and its arc leaves the pen down).
      {"PA10,0;CI10,0,3;PA99,99;", "U0,0>10,0 U10,0>20,0 A20,0>20,0@10,0:360+ D10,0>99,99"},
      // ESC . ( is a complete device command; ESC . @ runs up to ':'.
      {"\x1b.(PA1,1;\x1b.@1;2;3:PA2,2;", "U0,0>1,1 U1,1>2,2"},
      // ESC and anything but '.' gives the byte back: the E pairs with the P into EP.
      {"\x1b" "EPA1,1;PA3,3;", "U0,0>3,3"},
      // Without IN or DF a label ends at a zero byte, after DF at 3; a label
      // longer than 151 units is read in groups and still ends at its byte.
      {"LBabc;PA1,1;\0PA2,2;"s, "U0,0>2,2"},
      {"DF;LBabc;PA1,1;\x03PA2,2;", "U0,0>2,2"},
      {"IN;LB" + std::string(1000, 'x') + "\x03PA7,7;", "U0,0>7,7"},
  });
}

TEST(PlotParser, EncodedPolylines) {
  ExpectTraces({
      // Base 64: value v = 2|n| + sign; last digit 191 + d, others 63 + d.
      // 10 -> 20 -> byte 211; -5 -> 11 -> 202; 100 -> 200 = 8 + 3*64 -> 'G', 194.
      // Relative, pen down, and the pen stays down after PE.
      {"PA1,1;PE\xd3\xca" "G\xc2\xd3;PA0,0;", "U0,0>1,1 D1,1>11,-4 D11,-4>111,6 D111,6>0,0"},
      // '<' lifts the pen for one pair, '=' makes one pair absolute (9 -> 18
      // -> 209). The end of PE gives back the relative mode of before.
      {"PR;PE<\xd3\xd3=\xd1\xd1;PU1,1;", "U0,0>10,10 D10,10>9,9 U9,9>10,10"},
      // Base 32 after '7': last digit 95 + d. 10 -> 's'; 100 -> 200 = 8 + 6*32
      // -> 'G', 'e'. Blanks and line ends inside the data are ignored.
      {"PE7s \nGe;", "D0,0>10,100"},
      // '>' sets fraction bits (1 -> byte 193): 10 becomes 5. ':' skips a pen number.
      {"PE>\xc1\xd3\xd3:\xc1\xd3\xd3;", "D0,0>5,5 D5,5>10,10"},
      // Nine digits without an end digit kill the decoding up to the
      // terminator; so does an unknown flag byte.
      {"PE?????????\xd3\xd3;PA1,1;PE!\xd3\xd3;", "U0,0>1,1"},
      // A nine-digit number is 54 bits: the move saturates at the 32-bit limits.
      {"PE~~~~~~~~\xfe\xd3;", "D0,0>-2147483648,10"},
  });
}

TEST(PlotTransform, ScalingAndRotation) {
  ExpectTraces({
      // P1 (100,200), P2 (1100,1200), window 0..10: ratio 100, offset (100,200).
      {"IP100,200,1100,1200;SC0,10,0,10;PA0,0;PA10,10;PA5,2.5;",
       "U0,0>100,200 U100,200>1100,1200 U1100,1200>600,450"},
      // SC; turns scaling off and keeps the pen where it was in plotter units.
      {"IP100,200,1100,1200;SC0,10,0,10;PA10,10;SC;PA0,0;", "U0,0>1100,1200 U1100,1200>0,0"},
      // IP with two parameters moves P1 and keeps the size of P1..P2; the pen
      // stays at plotter (0,0) when scaling starts.
      {"IP0,0,100,100;IP50,50;SC0,1,0,1;PA1,1;PA0,0;", "U0,0>150,150 U150,150>50,50"},
      // A window of no width changes nothing; IN brings P1 (0,0), P2 (1,1).
      {"SC0,0,0,10;PA5,5;IN;SC0,1,0,1;PA1,1;", "U0,0>5,5 U5,5>1,1"},
      // RO90 turns user space: (10,20) lands on (-20,10). The turn is a pen-up
      // move to the unchanged plotter position; only 0 and 90 are turns.
      {"PD;PA3,4;RO90;PA10,20;RO180;RO90;", "D0,0>3,4 U3,4>3,4 D3,4>-20,10"},
      // Under scaling with an offset: (3,4) is at (400,600) and stays there
      // through RO90; then (0,0) is at (-0 - 200, 0 + 100); RO0 keeps that
      // plotter position and (0,0) is at the offset (100,200) again.
      {"IP100,200,1100,1200;SC0,10,0,10;PA3,4;RO90;PA0,0;RO;PA0,0;",
       "U0,0>400,600 U400,600>400,600 U400,600>-200,100 U-200,100>-200,100 U-200,100>100,200"},
  });
}

TEST(PlotActions, PensRepeatsAndChordMode) {
  ExpectTraces({
      // PR makes PU and PD relative until PA.
      {"PR;PD5,5,5,0;PA1,1;PU2,2;", "D0,0>5,5 D5,5>10,5 D10,5>1,1 U1,1>2,2"},
      // VA draws and lifts the pen after; IN lifts it, keeps the position and ends PR.
      {"VA4,4;PA5,5;", "D0,0>4,4 U4,4>5,5"},
      {"PR;PD5,5;IN;PU1,1;", "D0,0>5,5 U5,5>1,1"},
      // JT repeats the last move.
      {"PD;PA10,0;JT17;", "D0,0>10,0 D0,0>10,0"},
  });
  EXPECT_TRUE(Two("CT1;")->in.ChordIsDeviation());
  EXPECT_TRUE(Two("CT1;CT2;")->in.ChordIsDeviation());  // other values change nothing
  EXPECT_FALSE(Two("CT1;CT;")->in.ChordIsDeviation());
  EXPECT_FALSE(Two("CT1;DF;")->in.ChordIsDeviation());
}

TEST(PlotSingleLetter, MovesTerminatorsFactorTurnShiftAndHome) {
  ExpectTraces(
      {
          {"D100,100E5,5\x03", "D0,0>100,100 D100,100>105,105"},
          // M at the current position makes no move at all (an open path goes on).
          {"D10,10\x03M10,10\x03" "D20,10\x03", "D0,0>10,10 D10,10>20,10"},
          // O moves relative with the pen up; line ends separate numbers.
          {"O5\r\n6\x03", "U0,0>5,6"},
          // '=' sets new terminators; ';' is then a terminator, 3 a control byte.
          {"=;;\x03M7,7;", "U0,0>7,7"},
          // One fraction digit only: 1.26 is 1.2, which rounds to 1.
          {"M1.26,2.55\x03", "U0,0>1,3"},
          // Lower case is "other": the command is skipped to the terminator.
          {"m5,5\x03M6,6\x03", "U0,0>6,6"},
          // &2,3,1: ratios 2 and 3; a ratio of 8 or more keeps the old value.
          {"&2,3,1\x03M10,10\x03", "U0,0>20,30"},
          {"&16,2,2\x03M10,10\x03", "U0,0>10,10"},
          // /0,0,900 turns by 90 degrees about the origin.
          {"/0,0,900\x03M10,0\x03", "U0,0>0,10"},
          // ^5,6 shifts: a pen-up move to the same user point, now shifted.
          {"D10,10\x03^5,6\x03M0,0\x03", "D0,0>10,10 U15,16>15,16 U15,16>5,6"},
          // H goes home without turn and shift; both are back after it.
          {"^5,6\x03" "D10,10\x03H\x03" "D1,1\x03", "U5,6>5,6 D5,6>15,16 U10,10>0,0 D5,6>6,7"},
      },
      kDialectSingleLetter);
  EXPECT_FALSE(Two("&2,3,1\x03&1,1,1\x03", rv::kDialectSingleLetter)->in.Scaling());  // equal factors switch it off
}

}  // namespace
