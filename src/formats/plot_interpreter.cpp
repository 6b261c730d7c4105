#include "formats/plot_interpreter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "formats/plot_math.h"
#include "formats/plot_tables.h"

namespace rv {

using namespace plot;

CRvPlotInterpreter::CRvPlotInterpreter(CRvPlotSink& sink) : m_sink(&sink) {}

// Every field has its initial value in the class definition, so a reset is
// a fresh interpreter on the same sink.
void CRvPlotInterpreter::Reset() { *this = CRvPlotInterpreter(*m_sink); }

// ---------------------------------------------------------------------------
// Dialect detection
// ---------------------------------------------------------------------------

PlotDialect CRvPlotInterpreter::DetectDialect(const uint8_t* bytes, std::size_t count) {
  count = std::min<std::size_t>(count, 15);
  int pending = -1;
  for (std::size_t i = 0; i < count; ++i) {
    const uint8_t b = bytes[i];
    if (b >= '0' && b <= '9') {
      if (pending >= 0) return kDialectSingleLetter;
      continue;
    }
    if (b == 27) return kDialectTwoLetter;
    if (b < 32 || b >= 123) {
      pending = -1;
      continue;
    }
    if (pending >= 0) {
      const uint8_t first = FoldCase(uint8_t(pending)), second = FoldCase(b);
      if (first == '!' && second == 'g') return kDialectTwoLetter;
      return FindTwoLetter(first, second) != nullptr ? kDialectTwoLetter : kDialectSingleLetter;
    }
    pending = b;
  }
  return kDialectSingleLetter;
}

// ---------------------------------------------------------------------------
// The byte loop
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::ProcessByte(uint8_t byte) {
  if (m_dialect == kDialectSingleLetter) {
    ProcessSingleLetter(byte);
  } else {
    ProcessTwoLetter(byte);
  }
}

inline void CRvPlotInterpreter::ProcessTwoLetter(uint8_t byte) {
  const uint8_t cls = byte < 128 ? kTwoLetterClass[byte] : uint8_t(kClassOther);
  // The common case first: another digit of the integer part of a number.
  if (cls == kClassDigit && m_state == kParameters && m_escape == 0 && (m_type == kTypeInt || m_type == kTypeReal) &&
      !m_inFraction && m_intCount < 8) {
    m_inNumber = true;
    m_intValue = m_intValue * 10u + uint8_t(byte - '0');
    ++m_intCount;
    return;
  }
  const bool taken = (m_escape != 0 || byte == 27) && EscapeFilter(byte);
  if (!taken) Handle(byte, cls);
  if (m_execute == 1) RunCommand();
}

inline void CRvPlotInterpreter::ProcessSingleLetter(uint8_t byte) {
  uint8_t cls;
  if (byte == m_term1 || byte == m_term2) {
    cls = kClassTerminator;
  } else {
    cls = byte < 128 ? kSingleLetterClass[byte] : uint8_t(kClassOther);
  }
  do {
    m_redispatch = false;
    Handle(byte, cls);
    if (m_execute == 1) RunCommand();
  } while (m_redispatch);
}

void CRvPlotInterpreter::EmitPendingArc() {
  m_penDown = 1;
  m_arcPending = false;
  m_sink->DrawArc(m_pendingArc);
}

void CRvPlotInterpreter::Feed(const uint8_t* bytes, std::size_t count) {
  if (m_dialect == kDialectSingleLetter) {
    for (std::size_t i = 0; i < count; ++i) {
      ProcessSingleLetter(bytes[i]);
      if (m_arcPending) EmitPendingArc();
    }
  } else {
    for (std::size_t i = 0; i < count; ++i) {
      ProcessTwoLetter(bytes[i]);
      if (m_arcPending) EmitPendingArc();
    }
  }
}

void CRvPlotInterpreter::FeedEnd() {
  const uint8_t end = 255;
  Feed(&end, 1);
}

bool CRvPlotInterpreter::EscapeFilter(uint8_t byte) {
  switch (m_escape) {
    case 0:
      if (byte == 27) {
        m_escape = 1;
        return true;
      }
      return false;
    case 1:
      if (byte == '.') {
        m_escape = 2;
        return true;
      }
      m_escape = 0;
      return false;
    case 2:
      switch (byte) {
        case '(': case ')': case 'A': case 'B': case 'E': case 'J':
        case 'K': case 'L': case 'O': case 'R': case 'Y': case 'Z':
          m_escape = 0;
          return true;
        case '@': case 'H': case 'I': case 'M': case 'N':
        case 'P': case 'Q': case 'S': case 'T':
          m_escape = 3;
          return true;
        default:
          m_escape = 0;
          return false;
      }
    default:
      if (byte == ':') m_escape = 0;
      return true;
  }
}

void CRvPlotInterpreter::Handle(uint8_t byte, uint8_t cls) {
  switch (m_state) {
    case kCommand:
      if (m_dialect == kDialectSingleLetter) {
        HandleCommandSingleLetter(byte, cls);
      } else {
        HandleCommandTwoLetter(byte, cls);
      }
      return;
    case kParameters:
      HandleParameters(byte, cls);
      return;
    case kAwaitEnd:
      if (cls == kClassDigit) {
        m_state = kSkip;  // a further parameter is dropped; the command still runs
        return;
      }
      HandleEnd(byte, cls);
      return;
    case kSkip:
      HandleEnd(byte, cls);
      return;
  }
}

void CRvPlotInterpreter::HandleEnd(uint8_t byte, uint8_t cls) {
  if (cls == kClassLetter) BeginMnemonic(byte);
  if (cls == kClassTerminator || cls == kClassLetter) {
    m_state = kCommand;
    if (m_execute == 2) m_execute = 1;
  }
}

void CRvPlotInterpreter::BeginMnemonic(uint8_t byte) {
  if (byte != '!') {
    m_held = byte;
    m_phase = 3;
    m_redispatch = true;
  } else {
    m_phase = 1;
  }
}

void CRvPlotInterpreter::HandleCommandTwoLetter(uint8_t byte, uint8_t cls) {
  switch (cls) {
    case kClassTerminator:
      m_phase = 0;
      return;
    case kClassSeparator:
    case kClassControl:
      return;
    case kClassLetter:
      break;
    default:
      m_state = kSkip;
      m_phase = 0;
      return;
  }
  if (m_phase == 0) {
    if (byte == '!') {
      m_phase = 1;
    } else {
      m_held = byte;
      m_phase = 3;
    }
    return;
  }
  if (m_phase == 1) {
    m_held = byte;
    m_phase = 2;
    return;
  }
  const bool bang = m_phase == 2;
  m_phase = 0;
  const uint8_t first = FoldCase(m_held), second = FoldCase(byte);
  const CommandEntry* entry = bang ? FindBang(first, second) : FindTwoLetter(first, second);
  if (entry == nullptr) {
    m_state = kSkip;
    return;
  }
  LoadCommand(entry->form, entry->action);
}

void CRvPlotInterpreter::HandleCommandSingleLetter(uint8_t byte, uint8_t cls) {
  if (cls == kClassTerminator || cls == kClassSeparator || cls == kClassControl) return;
  if (cls != kClassLetter) {
    m_state = kSkip;
    return;
  }
  const CommandEntry* entry = FindSingleLetter(byte);
  if (entry == nullptr) {
    m_state = kSkip;
    return;
  }
  LoadCommand(entry->form, entry->action);
}

void CRvPlotInterpreter::LoadCommand(uint8_t form, uint8_t action) {
  m_form = form;
  m_command = action;
  m_type = TypeAt(0);
  m_sign = ' ';
  m_codeDigits = 0;
  m_codeAmp = 0;
  if (kForms[form].count == 0) {
    if (m_dialect != kDialectSingleLetter) m_state = kAwaitEnd;
    m_execute = 1;
  } else {
    m_state = kParameters;
  }
}

uint8_t CRvPlotInterpreter::TypeAt(int index) const {
  const ParamForm& f = kForms[m_form];
  return f.types[std::min(index, 7)];
}

void CRvPlotInterpreter::HandleParameters(uint8_t byte, uint8_t cls) {
  int result;
  switch (m_type) {
    case kTypeInt:
    case kTypeReal:
      result = ScanNumber(byte, cls);
      break;
    case kTypeChar:
      result = cls == kClassTerminator ? 2 : 1;  // a terminator ends the list and is not stored
      break;
    case kTypeText:
      result = byte == m_labelEnd ? 3 : 1;
      break;
    case kTypeCode:
      result = ScanCode(byte, cls);
      break;
    case kTypeEncoded:
      PeByte(byte, cls);
      return;
    default:
      result = 2;
      break;
  }
  if (result & 1) StoreParameter(byte);
  switch (result) {
    case 0:
      return;
    case 1: {
      const ParamForm& f = kForms[m_form];
      if (m_count < f.count) {
        m_type = TypeAt(m_count);
      } else if (f.repeat) {
        m_execute = 1;
        m_type = TypeAt(0);
      } else {
        m_state = kAwaitEnd;
        m_execute = m_dialect == kDialectSingleLetter ? 1 : 2;
      }
      return;
    }
    case 2:
    case 3:
      m_state = kCommand;
      m_execute = 1;
      m_sign = ' ';
      return;
    default:
      ClearNumber();
      m_sign = ' ';
      m_count = 0;
      m_state = kAwaitEnd;
      m_execute = 2;
      return;
  }
}

int CRvPlotInterpreter::ScanNumber(uint8_t byte, uint8_t cls) {
  switch (cls) {
    case kClassTerminator:
      return int(m_inNumber) + 2;
    case kClassSign: {
      const int old = m_inNumber;
      if (m_inNumber) {
        m_nextSign = byte;
      } else {
        m_sign = byte;
      }
      m_inNumber = true;
      return old;
    }
    case kClassDigit: {
      m_inNumber = true;
      const uint8_t digit = uint8_t(byte - '0');
      if (m_inFraction) {
        const uint8_t limit = m_dialect == kDialectSingleLetter ? 1 : 9;
        if (m_fracCount < limit) {
          if (m_fracCount == 0) m_fracFirst = digit;
          m_fracValue = m_fracValue * 10u + digit;
          ++m_fracCount;
        }
        return 0;
      }
      if (m_intCount == 8) return 4;  // the ninth integer digit
      m_intValue = m_intValue * 10u + digit;
      ++m_intCount;
      return 0;
    }
    case kClassPoint:
      m_inNumber = true;
      if (m_inFraction) return 4;
      m_inFraction = true;
      return 0;
    case kClassSeparator:
      return int(m_inNumber);
    case kClassLetter:
      BeginMnemonic(byte);
      return int(m_inNumber) + 2;
    case kClassControl:
      return 0;
    default:
      return 4;
  }
}

int CRvPlotInterpreter::ScanCode(uint8_t byte, uint8_t cls) {
  const bool hexDigit = (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'f') || (byte >= 'A' && byte <= 'F');
  switch (cls) {
    case kClassTerminator:
      if (m_codeAmp != 0 && m_codeDigits == 0) return 4;
      return m_codeDigits ? 3 : 2;
    case kClassDigit:
      if (m_codeAmp == 1) return 4;  // a digit right after '&'
      if (m_codeDigits == (m_codeAmp == 2 ? 4 : 5)) return 4;
      ++m_codeDigits;
      return 0;
    case kClassSeparator:
      if (m_codeDigits) return 1;
      return m_codeAmp ? 4 : 0;
    case kClassLetter:
      if (m_codeAmp == 1 && (byte == 'h' || byte == 'H')) {
        m_codeAmp = 2;
        return 0;
      }
      if (m_codeAmp == 2 && hexDigit) {
        if (m_codeDigits == 4) return 4;
        ++m_codeDigits;
        return 0;
      }
      if (m_codeAmp != 0 && m_codeDigits == 0) return 4;
      BeginMnemonic(byte);
      return m_codeDigits ? 3 : 2;
    case kClassControl:
      return 0;
    case kClassOther:
      if (byte == '&' && m_codeAmp == 0 && m_codeDigits == 0) {
        m_codeAmp = 1;
        return 0;
      }
      return 4;
    default:  // a sign or a point
      return 4;
  }
}

void CRvPlotInterpreter::StoreParameter(uint8_t byte) {
  static constexpr double kPow10[10] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
  double value = 0.0;
  switch (m_type) {
    case kTypeInt:
      value = double(m_intValue) + ((m_fracCount > 0 && m_fracFirst >= 5) ? 1.0 : 0.0);
      if (m_sign == '-') value = -value;
      break;
    case kTypeReal:
      value = double(m_intValue) + double(m_fracValue) / kPow10[m_fracCount];
      if (m_sign == '-') value = -value;
      break;
    case kTypeCode:
      m_codeDigits = 0;
      m_codeAmp = 0;
      break;
    default:  // a character or a text unit
      value = byte;
      break;
  }
  if (m_count < int(std::size(m_args))) {
    m_args[m_count] = value;
    ++m_count;
  }
  if (m_type == kTypeInt || m_type == kTypeReal) {
    const uint8_t next = m_nextSign;  // a sign that ended this number begins the next
    ClearNumber();
    m_sign = next;
  }
}

void CRvPlotInterpreter::ClearNumber() {
  m_inNumber = false;
  m_inFraction = false;
  m_intCount = 0;
  m_intValue = 0;
  m_fracCount = 0;
  m_fracValue = 0;
  m_fracFirst = 0;
  m_nextSign = ' ';
  m_codeDigits = 0;
  m_codeAmp = 0;
}

void CRvPlotInterpreter::RunCommand() {
  RunAction(m_command);
  m_count = 0;
  m_execute = 0;
}

void CRvPlotInterpreter::RunAction(uint8_t action) {
  switch (action) {
    case kActPU:
    case kActPD:
      m_penDown = action == kActPD ? 1 : 0;
      if (m_relative) {
        MovePR();
      } else {
        MovePA();
      }
      return;
    case kActPA:
      MovePA();
      return;
    case kActPR:
      MovePR();
      return;
    case kActVA:
      m_penDown = 1;
      MovePA();
      m_penDown = 0;
      return;
    case kActAA: DoAA(false); return;
    case kActAR: DoAA(true); return;
    case kActAT: DoAT(0); return;
    case kActRT: DoAT(1); return;
    case kActZC: DoAT(2); return;
    case kActCI: DoCI(); return;
    case kActEA: DoEA(false); return;
    case kActER: DoEA(true); return;
    case kActEW: DoEW(); return;
    case kActZE: DoZE(); return;
    case kActZS: DoZS(); return;
    case kActZD: DoZD(); return;
    case kActZW: DoZW(); return;
    case kActCT: DoCT(); return;
    case kActDF: DoDefaults(); return;
    case kActIN: DoInitialize(); return;
    case kActIP: DoIP(); return;
    case kActSC: DoSC(); return;
    case kActRO: DoRO(); return;
    case kActJT: DoJT(); return;
    case kActVT: DoVT(); return;
    case kActM: DoMoveSingle(0, false); return;
    case kActD: DoMoveSingle(1, false); return;
    case kActO: DoMoveSingle(0, true); return;
    case kActE: DoMoveSingle(1, true); return;
    case kActH: DoHome(); return;
    case kActFactor: DoFactor(); return;
    case kActTurn: DoTurn(); return;
    case kActShift: DoShift(); return;
    case kActTerm: DoTerminators(); return;
    case kActW: DoW(); return;
    case kActBracket: DoBracket(); return;
    case kActStar: DoStar(); return;
    default:
      return;  // recognised only: pens, line types, labels, device queries
  }
}

// ---------------------------------------------------------------------------
// Encoded polylines
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::PeByte(uint8_t byte, uint8_t cls) {
  if (cls == kClassTerminator) {
    if (m_peState != 0) m_relative = m_peSavedRelative;  // pseudo-command End
    m_peState = 0;
    m_state = kCommand;
    return;
  }
  constexpr uint8_t kDead = 6;
  const uint8_t c7 = byte & 0x7F;
  if (c7 <= 32 || m_peState == kDead) return;
  if (m_peState == 0) {
    m_peState = 1;
    m_peDigitCount = 0;
    m_peFractionBits = 0;
    m_pePenDown = true;
    m_peRelative = true;
    m_peBase64 = true;
    m_peSavedRelative = m_relative;  // pseudo-command Begin
  }
  if (m_peState == 1) {
    if (c7 < 63) {
      switch (c7) {
        case '7': m_peBase64 = false; break;
        case ':': m_peState = 4; break;
        case '<': m_pePenDown = false; break;
        case '=': m_peRelative = false; break;
        case '>':
          m_peState = 5;
          m_peFractionBits = 0;
          break;
        default: m_peState = kDead; break;
      }
      return;
    }
    m_peState = 2;
  }
  if (c7 < 63) {
    m_peState = kDead;
    return;
  }
  const unsigned threshold = m_peBase64 ? 191u : 95u;
  if (byte >= threshold) {
    m_peDigits[m_peDigitCount++] = uint8_t(byte - threshold);
    const unsigned shift = m_peBase64 ? 6u : 5u;
    uint64_t bits = 0;
    for (int i = m_peDigitCount - 1; i >= 0; --i) bits = (bits << shift) | m_peDigits[i];
    m_peDigitCount = 0;
    const double magnitude = double(bits >> 1);
    const double value = std::ldexp((bits & 1u) ? -magnitude : magnitude, -m_peFractionBits);
    PeNumber(value);
    return;
  }
  m_peDigits[m_peDigitCount++] = uint8_t(byte - 63);
  if (m_peDigitCount == 9) m_peState = kDead;
}

void CRvPlotInterpreter::PeNumber(double value) {
  switch (m_peState) {
    case 2:
      m_peX = value;
      m_peState = 3;
      return;
    case 3: {
      m_penDown = m_pePenDown ? 1 : 0;
      if (m_peRelative) {
        m_relative = true;
        MoveTo(m_peX + m_curX, value + m_curY);
      } else {
        m_relative = false;
        MoveTo(m_peX, value);
      }
      m_pePenDown = true;
      m_peRelative = true;
      m_peState = 1;
      return;
    }
    case 4:
      m_peState = 1;  // a pen number: no pens here
      return;
    case 5:
      m_peFractionBits = int32_t(std::clamp(value, -4096.0, 4096.0));
      m_peState = 1;
      return;
    default:
      return;
  }
}

// ---------------------------------------------------------------------------
// Moves and transforms
// ---------------------------------------------------------------------------

PlotPoint CRvPlotInterpreter::Device(double x, double y) const {
  int64_t X, Y;
  if (m_dialect == kDialectSingleLetter) {
    if (m_turnOn) {
      const double dx = x - m_turnOriginX, dy = y - m_turnOriginY;
      x = m_turnOriginX + m_turnCos * dx - m_turnSin * dy;
      y = m_turnOriginY + m_turnSin * dx + m_turnCos * dy;
    }
    if (m_scaling) {
      x *= m_ratioX;
      y *= m_ratioY;
    }
    X = int64_t(RoundHalfUp(x)) + m_shiftX;
    Y = int64_t(RoundHalfUp(y)) + m_shiftY;
  } else {
    if (m_scaling) {
      x *= m_ratioX;
      y *= m_ratioY;
    }
    const int64_t rx = RoundHalfUp(x), ry = RoundHalfUp(y);
    if (m_rotated) {
      X = -ry - m_offsetX;
      Y = rx + m_offsetY;
    } else {
      X = rx + m_offsetX;
      Y = ry + m_offsetY;
    }
  }
  return {double(SaturateInt32(double(X))), double(SaturateInt32(double(Y)))};
}

void CRvPlotInterpreter::MoveTo(double x, double y) {
  m_lineFrom = Device(m_curX, m_curY);
  m_lineTo = Device(x, y);
  m_curX = x;
  m_curY = y;
  m_sink->DrawLine(m_lineFrom, m_lineTo, m_penDown);
}

void CRvPlotInterpreter::MarkArc() {
  if (m_arcPending) EmitPendingArc();
  m_arcPending = true;
  m_pendingArc.from = Device(m_curX, m_curY);
  m_pendingArc.centre = Device(m_arc.centreX, m_arc.centreY);
  m_pendingArc.to = m_pendingArc.from;
  m_pendingArc.sweep = m_arc.sweep;
  m_pendingArc.direction = int16_t(m_arc.direction);
}

void CRvPlotInterpreter::SetArcTo(double x, double y) { m_pendingArc.to = Device(x, y); }

void CRvPlotInterpreter::PenMove(int16_t pen, double x, double y) {
  const int16_t saved = m_penDown;
  m_penDown = pen;
  MoveTo(x, y);
  m_penDown = saved;
}

void CRvPlotInterpreter::MovePA() {
  m_relative = false;
  if (m_count == 2) MoveTo(m_args[0], m_args[1]);
}

void CRvPlotInterpreter::MovePR() {
  m_relative = true;
  if (m_count == 2) MoveTo(m_args[0] + m_curX, m_args[1] + m_curY);
}

// ---------------------------------------------------------------------------
// Two-letter actions
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::DoCT() {
  if (m_count == 0) {
    m_chordIsDeviation = false;
  } else if (m_args[0] == 0.0 || m_args[0] == 1.0) {
    m_chordIsDeviation = m_args[0] == 1.0;
  }
}

void CRvPlotInterpreter::DoDefaults() {
  m_relative = false;
  // Scaling off as by SC without parameters.
  m_scaleMin = m_p1;
  m_scaleMax = m_p2;
  Recompute();
  m_scaling = false;
  m_chordIsDeviation = false;
  m_curveMode = 0;
  m_curveStep = 0.0;
  m_ellipseMode = 0;
  m_labelEnd = 3;
  m_penDown = 0;
}

void CRvPlotInterpreter::DoInitialize() {
  m_penDown = 0;
  m_relative = false;
  m_count = 0;  // RO and IP without parameters
  DoRO();
  DoIP();
  DoDefaults();
}

void CRvPlotInterpreter::DoIP() {
  const double* a = m_args;
  if (m_count == 2) {
    const double dx = m_p2.x - m_p1.x, dy = m_p2.y - m_p1.y;
    m_p1 = {a[0], a[1]};
    m_p2 = {std::trunc(a[0] + dx), std::trunc(a[1] + dy)};
  } else if (m_count == 4) {
    m_p1 = {a[0], a[1]};
    m_p2 = {a[2], a[3]};
  } else {
    m_p1 = {0.0, 0.0};
    m_p2 = {0.0, 0.0};
  }
  if (m_p1.x == m_p2.x) m_p2.x += 1.0;
  if (m_p1.y == m_p2.y) m_p2.y += 1.0;
  Recompute();
}

void CRvPlotInterpreter::DoSC() {
  const double* a = m_args;
  if (m_count == 0) {
    m_scaleMin = m_p1;
    m_scaleMax = m_p2;
    Recompute();
    m_scaling = false;
    return;
  }
  if (m_count != 4) return;
  const double xmin = a[0], xmax = a[1], ymin = a[2], ymax = a[3];
  if (m_scaling && xmin == m_scaleMin.x && xmax == m_scaleMax.x && ymin == m_scaleMin.y && ymax == m_scaleMax.y) return;
  if (xmin == xmax || ymin == ymax) return;
  m_scaleMin = {xmin, ymin};
  m_scaleMax = {xmax, ymax};
  m_scaling = true;
  Recompute();
}

void CRvPlotInterpreter::Recompute() {
  if (!m_scaling) return;
  const double px = m_curX * m_ratioX + m_baseX;
  const double py = m_curY * m_ratioY + m_baseY;
  m_ratioX = Divide(m_p2.x - m_p1.x, m_scaleMax.x - m_scaleMin.x);
  m_ratioY = Divide(m_p2.y - m_p1.y, m_scaleMax.y - m_scaleMin.y);
  m_baseX = m_p1.x - m_scaleMin.x * m_ratioX;
  m_baseY = m_p1.y - m_scaleMin.y * m_ratioY;
  m_offsetX = RoundHalfUp(m_baseX);
  m_offsetY = RoundHalfUp(m_baseY);
  if (m_rotated) std::swap(m_offsetX, m_offsetY);
  m_curX = Divide(px - m_baseX, m_ratioX);
  m_curY = Divide(py - m_baseY, m_ratioY);
}

void CRvPlotInterpreter::DoRO() {
  const double angle = m_count == 0 ? 0.0 : m_args[0];
  if (angle != 0.0 && angle != 90.0) return;
  const bool to90 = angle == 90.0;
  if (to90 == m_rotated) return;
  double x = m_curX, y = m_curY;
  if (!m_scaling) {
    if (to90) {
      const double t = x;
      x = y;
      y = -t;
    } else {
      const double t = x;
      x = -y;
      y = t;
    }
  } else {
    x *= m_ratioX;
    y *= m_ratioY;
    if (to90) {
      x += m_baseX + m_baseY;
      const double t = x;
      x = y;
      y = -t;
      x += m_baseY - m_baseX;
    } else {
      y += m_baseX + m_baseY;
      const double t = x;
      x = -y;
      y = t;
      y -= m_baseY - m_baseX;
    }
    x = Divide(x, m_ratioX);
    y = Divide(y, m_ratioY);
  }
  m_curX = x;
  m_curY = y;
  std::swap(m_offsetX, m_offsetY);
  m_rotated = to90;
  PenMove(0, m_curX, m_curY);
}

void CRvPlotInterpreter::DoJT() {
  m_sink->DrawLine(m_lineFrom, m_lineTo, m_penDown);
  m_vcutValid = m_count >= 1 && (m_args[0] == 17.0 || m_args[0] == 27.0);
}

void CRvPlotInterpreter::DoVT() {
  if (m_count < 2) return;
  m_vcutElement = int16_t(SaturateInt32(m_args[0]));
  m_vcutValue = int16_t(SaturateInt32(m_args[1]));
}

// ---------------------------------------------------------------------------
// Single-letter actions
// ---------------------------------------------------------------------------

void CRvPlotInterpreter::DoMoveSingle(int16_t pen, bool relative) {
  m_penDown = pen;
  if (m_count != 2) return;
  if (relative) {
    MoveTo(m_curX + m_args[0], m_curY + m_args[1]);
  } else if (m_args[0] != m_curX || m_args[1] != m_curY) {
    MoveTo(m_args[0], m_args[1]);
  }
}

void CRvPlotInterpreter::DoHome() {
  const int16_t pen = m_penDown;
  const bool turn = m_turnOn;
  const int32_t sx = m_shiftX, sy = m_shiftY;
  m_penDown = 0;
  m_turnOn = false;
  m_shiftX = m_shiftY = 0;
  MoveTo(0.0, 0.0);
  m_penDown = pen;
  m_turnOn = turn;
  m_shiftX = sx;
  m_shiftY = sy;
}

void CRvPlotInterpreter::DoFactor() {
  if (m_count < 3) return;
  const double p = m_args[0], q = m_args[1], r = m_args[2];
  m_factor[0] = p;
  m_factor[1] = q;
  m_factor[2] = r;
  if (p == 0.0 || q == 0.0 || r == 0.0) return;
  const double rx = std::fabs(p / r), ry = std::fabs(q / r);
  if (rx < 8.0) m_ratioX = rx;
  if (ry < 8.0) m_ratioY = ry;
  m_scaling = !(p == q && q == r);
  if (m_ratioX == 1.0 && m_ratioY == 1.0) m_scaling = false;
}

void CRvPlotInterpreter::DoTurn() {
  if (m_count < 3) return;
  m_turnOriginX = m_args[0];
  m_turnOriginY = m_args[1];
  const double angle = Normal(m_args[2] / 10.0);
  m_turnOn = angle != 0.0;
  m_turnSin = std::sin(Radians(angle));
  m_turnCos = std::cos(Radians(angle));
}

void CRvPlotInterpreter::DoShift() {
  if (m_count < 2) return;
  m_shiftX = SaturateInt32(std::trunc(m_args[0]));
  m_shiftY = SaturateInt32(std::trunc(m_args[1]));
  PenMove(0, m_curX, m_curY);
}

void CRvPlotInterpreter::DoTerminators() {
  if (m_count < 2) return;
  m_term1 = uint8_t(m_args[0]);
  m_term2 = uint8_t(m_args[1]);
}

}  // namespace rv
