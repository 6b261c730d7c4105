// The plot command interpreter shared by the PLT and CL imports.
//
// A byte-at-a-time state machine in the manner of a plotter's firmware: it
// classifies each byte, collects the parameters of a command and then runs
// the command's action. Actions keep a current position and a pen; every
// move is handed to a CRvPlotSink as a straight line or an arc, in whole
// plotter units. The interpreter knows nothing of documents or arts.
//
// Two command languages are understood, chosen from the first bytes of the
// file: the two-letter dialect (HP-GL and HP-GL/2 mnemonics with a few
// extensions) and the single-letter dialect (one-character commands ended by
// a terminator byte).
//
// One object serves one import: all state lives in the object, so nothing of
// one import reaches the next.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace rv {

/// A point of the interpreter, in user or plotter units.
struct PlotPoint {
  double x = 0.0;
  double y = 0.0;
};

/// An arc as the interpreter hands it over, in plotter units.
struct PlotArc {
  PlotPoint from;
  PlotPoint centre;
  PlotPoint to;
  double sweep = 0.0;      // degrees; may be negative after a three-point arc
  int16_t direction = 1;   // +1 counter-clockwise, -1 clockwise, 0 for no sweep
};

/// Receives the finished moves of the interpreter.
class CRvPlotSink {
 public:
  virtual ~CRvPlotSink() = default;
  /// One straight move from the old position to the new one. `penDown` is
  /// the interpreter's pen while the move was made.
  virtual void DrawLine(const PlotPoint& from, const PlotPoint& to, int16_t penDown) = 0;
  /// One arc. The pen is down for it (the interpreter puts it down first).
  virtual void DrawArc(const PlotArc& arc) = 0;
};

/// Command languages.
enum PlotDialect : uint8_t {
  kDialectTwoLetter = 0,
  kDialectSingleLetter = 2,
  kDialectUndecided = 3,
};

/// Most moves that one curve command may make. A finer step asked by the
/// file is widened so that the curve fits; this keeps a tiny file from
/// producing an unbounded drawing.
constexpr int32_t kMaxCurveMoves = 16384;

struct SmoothKnots;

class CRvPlotInterpreter {
 public:
  explicit CRvPlotInterpreter(CRvPlotSink& sink);

  /// Every field back to its initial value (dialect undecided).
  void Reset();

  /// The dialect of a stream from its first bytes (at most 15 are looked at).
  static PlotDialect DetectDialect(const uint8_t* bytes, std::size_t count);
  void SetDialect(PlotDialect dialect) { m_dialect = dialect; }
  PlotDialect Dialect() const { return m_dialect; }

  /// One byte through the state machine.
  void ProcessByte(uint8_t byte);
  /// Hands a pending arc to the sink (pen down first).
  void EmitPendingArc();
  /// ProcessByte for each byte, with a pending arc emitted after each byte.
  void Feed(const uint8_t* bytes, std::size_t count);
  /// The end of the stream: the byte value 255 once.
  void FeedEnd();

  // ---- state read by the import drivers and by tests ----
  int16_t PenDown() const { return m_penDown; }
  bool ArcPending() const { return m_arcPending; }
  PlotPoint Position() const { return {m_curX, m_curY}; }
  bool VCutValid() const { return m_vcutValid; }
  int16_t VCutElement() const { return m_vcutElement; }
  int16_t VCutValue() const { return m_vcutValue; }
  bool Scaling() const { return m_scaling; }
  double RatioX() const { return m_ratioX; }
  double RatioY() const { return m_ratioY; }
  bool Rotated() const { return m_rotated; }
  int CurveMode() const { return m_curveMode; }
  double CurveStep() const { return m_curveStep; }
  int EllipseMode() const { return m_ellipseMode; }
  double EllipseValue() const { return m_ellipseValue; }
  double EllipseMinChords() const { return m_ellipseMinChords; }
  bool ChordIsDeviation() const { return m_chordIsDeviation; }
  uint8_t LabelEnd() const { return m_labelEnd; }

  /// Whole plotter units of a user point (rounded, transformed).
  PlotPoint Device(double x, double y) const;

 private:
  enum ParseState : uint8_t { kCommand, kParameters, kAwaitEnd, kSkip };

  // ---- parser ----
  void ProcessTwoLetter(uint8_t byte);
  void ProcessSingleLetter(uint8_t byte);
  bool EscapeFilter(uint8_t byte);
  void Handle(uint8_t byte, uint8_t cls);
  void HandleCommandTwoLetter(uint8_t byte, uint8_t cls);
  void HandleCommandSingleLetter(uint8_t byte, uint8_t cls);
  void HandleEnd(uint8_t byte, uint8_t cls);
  void HandleParameters(uint8_t byte, uint8_t cls);
  void BeginMnemonic(uint8_t byte);
  void LoadCommand(uint8_t form, uint8_t action);
  int ScanNumber(uint8_t byte, uint8_t cls);
  int ScanCode(uint8_t byte, uint8_t cls);
  void StoreParameter(uint8_t byte);
  void ClearNumber();
  uint8_t TypeAt(int index) const;
  void RunCommand();
  void RunAction(uint8_t action);

  // ---- encoded polylines ----
  void PeByte(uint8_t byte, uint8_t cls);
  void PeNumber(double value);

  // ---- moves ----
  void MoveTo(double x, double y);
  void MarkArc();
  void PenMove(int16_t pen, double x, double y);  // move with a pen, pen restored after
  void MovePA();
  void MovePR();

  // ---- two-letter actions ----
  void DoDefaults();
  void DoInitialize();
  void DoIP();
  void DoSC();
  void Recompute();
  void DoRO();
  void DoJT();
  void DoVT();
  void DoCT();

  // ---- single-letter actions ----
  void DoMoveSingle(int16_t pen, bool relative);
  void DoHome();
  void DoFactor();
  void DoTurn();
  void DoShift();
  void DoTerminators();

  // ---- curves ----
  struct ArcWork;
  /// A fresh arc in hand; a chord angle other than 0 in parameter
  /// `chordArg` (when given) makes it a flattened one.
  ArcWork& NewArcWork(int chordArg = -1);
  void DoAA(bool relative);
  void DoCI();
  void DoAT(int kind);  // 0 AT, 1 RT, 2 ZC
  /// The arc from P0 through P1 to P2 into `w`; false when the circle lies
  /// beyond the plotter's range or has no radius.
  static bool ArcThroughThreePoints(ArcWork& w, const PlotPoint& p0, const PlotPoint& p1, const PlotPoint& p2);
  void DoEA(bool relative);
  void DoEW();
  void DoZE();
  void DoZS();
  /// The steps along the spans of a smooth curve; true for a fine curve (many
  /// short spans).
  bool SmoothSteps(const SmoothKnots& knots, std::array<double, 132>& step) const;
  /// Draws the natural spline through the knots of a smooth curve.
  void DrawSmoothKnots(const SmoothKnots& knots);
  void DoZD();
  void DoZW();
  void DoW();
  void DoBracket();
  void DoStar();
  /// Centre and radii of the arc under work, in the units it is drawn in.
  struct ArcFrame {
    double cx, cy, rx, ry;
  };
  void Flatten();
  /// The angle of one chord, in degrees; sets `bands` when an ellipse is
  /// drawn in bands.
  double ChordAngle(const ArcFrame& frame, bool& bands) const;
  /// The chords of the arc under work, from its start to its end.
  void EmitChords(ArcFrame frame, double chord);
  bool FlattenEllipseBands(double chord);
  PlotPoint EllipsePoint(double tDegrees) const;
  void SetArcTo(double x, double y);

  CRvPlotSink* m_sink;
  PlotDialect m_dialect = kDialectUndecided;

  // ---- parse state ----
  ParseState m_state = kCommand;
  uint8_t m_phase = 0;
  uint8_t m_held = 0;
  bool m_redispatch = false;
  uint8_t m_execute = 0;
  uint8_t m_form = 0;
  uint8_t m_type = 0;
  uint8_t m_command = 0;
  int m_count = 0;
  double m_args[256] = {};
  bool m_inNumber = false;
  bool m_inFraction = false;
  uint8_t m_intCount = 0;
  uint32_t m_intValue = 0;
  uint8_t m_fracCount = 0;
  uint32_t m_fracValue = 0;
  uint8_t m_fracFirst = 0;
  uint8_t m_sign = ' ';
  uint8_t m_nextSign = ' ';
  uint8_t m_codeDigits = 0;
  uint8_t m_codeAmp = 0;  // 0 none, 1 '&' seen, 2 '&h' seen
  uint8_t m_escape = 0;

  // ---- encoded polyline (PE) ----
  uint8_t m_peState = 0;  // 0 idle, 1 ready, 2 x, 3 y, 4 pen, 5 fraction bits, 6 dead
  bool m_peBase64 = true;
  bool m_pePenDown = true;
  bool m_peRelative = true;
  int32_t m_peFractionBits = 0;
  uint8_t m_peDigitCount = 0;
  uint8_t m_peDigits[9] = {};
  double m_peX = 0.0;
  bool m_peSavedRelative = false;

  // ---- drawing state ----
  int16_t m_penDown = 0;
  double m_curX = 0.0, m_curY = 0.0;
  bool m_relative = false;
  bool m_scaling = false;
  double m_ratioX = 1.0, m_ratioY = 1.0;
  double m_baseX = 0.0, m_baseY = 0.0;
  int32_t m_offsetX = 0, m_offsetY = 0;
  PlotPoint m_p1, m_p2;
  PlotPoint m_scaleMin, m_scaleMax;
  bool m_rotated = false;
  bool m_turnOn = false;
  double m_turnOriginX = 0.0, m_turnOriginY = 0.0, m_turnSin = 0.0, m_turnCos = 1.0;
  double m_factor[3] = {0.0, 0.0, 0.0};
  int32_t m_shiftX = 0, m_shiftY = 0;
  uint8_t m_term1 = 3, m_term2 = 3;
  uint8_t m_labelEnd = 0;
  bool m_chordIsDeviation = false;
  bool m_vcutValid = false;
  int16_t m_vcutElement = -1;
  int16_t m_vcutValue = 0;

  // ---- the move being handed over ----
  PlotPoint m_lineFrom, m_lineTo;
  bool m_arcPending = false;
  PlotArc m_pendingArc;

  // ---- curve settings ----
  int m_curveMode = 0;
  double m_curveStep = 0.0;
  int m_ellipseMode = 0;
  double m_ellipseValue = 0.0;
  double m_ellipseMinChords = 0.0;

  // ---- the arc in hand ----
  struct ArcWork {
    double centreX = 0.0, centreY = 0.0;
    double radiusX = 0.0, radiusY = 0.0;
    double endRadius = 0.0;
    double startSin = 0.0, startCos = 1.0;
    double endSin = 0.0, endCos = 1.0;
    double sweep = 0.0;
    int32_t direction = 1;
    bool trueArc = true;
    double chord = 0.0;
    int32_t chordCount = 0;
    bool spiral = false;
    bool ellipse = false;
    double rotation = 0.0;  // ellipse: degrees
  } m_arc;
};

}  // namespace rv
