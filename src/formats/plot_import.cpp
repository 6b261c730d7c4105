#include <algorithm>
#include "formats/plot_import.h"

#include <cstdio>
#include <vector>

#include "formats/file_frame.h"
#include "frame/frame.h"

namespace rv {

CRvPlotImportDriver::CRvPlotImportDriver(std::unique_ptr<CRvPlotBuilder> builder)
    : m_builder(std::move(builder)), m_interpreter(*this) {}

void CRvPlotImportDriver::Begin(double scale, const uint8_t* head, std::size_t count) {
  m_interpreter.Reset();
  m_scale = scale;
  m_lastPen = 0;
  m_lastKind = kMoveLine;
  m_interpreter.SetDialect(CRvPlotInterpreter::DetectDialect(head, count));
}

void CRvPlotImportDriver::End() {
  m_interpreter.FeedEnd();
  m_builder->FinishPath(m_lastKind, Values(), true);
}

void CRvPlotImportDriver::Import(CRvFormatStrategy& format, double scale) {
  SettledRun([&] {
    std::FILE* file = format.File();
    uint8_t head[15];
    const std::size_t got = file != nullptr ? std::fread(head, 1, sizeof head, file) : 0;
    Begin(scale, head, got);
    Check(format.SeekFromStart(0));
    file = format.File();
    // One buffer per import; the bytes go through the interpreter one by one.
    std::vector<uint8_t> buffer(std::size_t(1) << 16);
    for (;;) {
      const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), file);
      if (n == 0) break;
      m_interpreter.Feed(buffer.data(), n);
    }
    End();
  });
}

void CRvPlotImportDriver::ImportBytes(const uint8_t* bytes, std::size_t count, double scale) {
  SettledRun([&] {
    Begin(scale, bytes, std::min<std::size_t>(count, 15));
    if (count != 0) m_interpreter.Feed(bytes, count);
    End();
  });
}

template <class Run>
void CRvPlotImportDriver::SettledRun(Run&& run) {
  try {
    run();
  } catch (...) {
    // The failure is what the caller hears of; points that can't be kept
    // any more are dropped.
    try {
      m_builder->Settle();
    } catch (...) {
    }
    throw;
  }
}

PlotPathValues CRvPlotImportDriver::Values() const {
  return {m_interpreter.VCutValid(), m_interpreter.VCutElement(), m_interpreter.VCutValue()};
}

void CRvPlotImportDriver::DrawLine(const PlotPoint& from, const PlotPoint& to, int16_t penDown) {
  const RVPOINT f{ToDocumentUnit(from.x), ToDocumentUnit(from.y)};
  const RVPOINT t{ToDocumentUnit(to.x), ToDocumentUnit(to.y)};
  m_builder->AddLine(f, t, m_lastPen, penDown, m_lastKind, Values());
  m_lastPen = penDown;
  m_lastKind = kMoveLine;
}

void CRvPlotImportDriver::DrawArc(const PlotArc& arc) {
  RVARCPOINT p{};
  p.from = {ToDocumentUnit(arc.from.x), ToDocumentUnit(arc.from.y)};
  p.to = {ToDocumentUnit(arc.to.x), ToDocumentUnit(arc.to.y)};
  p.centre = {ToDocumentUnit(arc.centre.x), ToDocumentUnit(arc.centre.y)};
  p.sweep = arc.sweep;
  p.direction = arc.direction;
  m_builder->AddArc(p, m_lastPen, m_lastKind);
  m_lastPen = m_interpreter.PenDown();
  m_lastKind = kMoveArc;
}

}  // namespace rv
