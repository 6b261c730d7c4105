#include "progress.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

#include "rvdataaccess.h"

namespace rvtool {
namespace {

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void OnInterrupt(int) {
  if (g_interrupted) {
    // Second Ctrl-C: the user doesn't want to wait for a step boundary.
    std::signal(SIGINT, SIG_DFL);
    std::raise(SIGINT);
    return;
  }
  g_interrupted = 1;
}

constexpr int kBarWidth = 30;

}  // namespace

void InstallInterruptHandler() {
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, nullptr);
}

bool Interrupted() { return g_interrupted != 0; }

void ResetInterrupted() { g_interrupted = 0; }

bool IsTerminal() {
  const char* term = std::getenv("TERM");
  return isatty(STDERR_FILENO) == 1 && !(term != nullptr && std::strcmp(term, "dumb") == 0);
}

ProgressBar::ProgressBar(bool visible) : m_visible(visible) {
  RvGiSetProgressFunction(&ProgressBar::OnStep, &ProgressBar::OnRange, &ProgressBar::OnBegin,
                          &ProgressBar::OnEnd, &ProgressBar::OnMessage);
}

ProgressBar::~ProgressBar() {
  RvGiSetProgressFunction(nullptr, nullptr, nullptr, nullptr, nullptr);
  Clear();
}

void ProgressBar::Stage(const std::string& label, const std::string& subject) {
  m_label = label;
  m_subject = subject;
  m_hasPercent = false;
  m_percent = 0;
  m_drawnPercent = -1;
  Draw();
}

void ProgressBar::Clear() {
  if (m_visible && m_shown) {
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
  }
  m_shown = false;
  m_drawnPercent = -1;
}

void ProgressBar::Draw() {
  if (!m_visible) return;
  std::string line = "\r" + m_label;
  if (line.size() < 9) line.resize(9, ' ');
  if (m_hasPercent) {
    const int percent = std::clamp(m_percent, 0, 100);
    const int filled = percent * kBarWidth / 100;
    line += " [" + std::string(filled, '#') + std::string(kBarWidth - filled, '.') + "] ";
    char figure[8];
    std::snprintf(figure, sizeof figure, "%3d%%", percent);
    line += figure;
  } else {
    line += " ...";
  }
  line += " " + m_subject + "\x1b[K";
  std::fputs(line.c_str(), stderr);
  std::fflush(stderr);
  m_shown = true;
  m_drawnPercent = m_percent;
}

void ProgressBar::OnStep(void* context, int16_t percent, int32_t* cancel) {
  if (cancel != nullptr && Interrupted()) *cancel = 1;
  auto* bar = static_cast<ProgressBar*>(context);
  if (bar == nullptr) return;
  ++bar->m_steps;
  bar->m_hasPercent = true;
  bar->m_percent = percent;
  if (percent != bar->m_drawnPercent) bar->Draw();
}

void ProgressBar::OnRange(void*, int16_t, int16_t) {}

void ProgressBar::OnBegin(void* context) {
  auto* bar = static_cast<ProgressBar*>(context);
  if (bar == nullptr) return;
  bar->m_hasPercent = true;
  bar->m_percent = 0;
  bar->Draw();
}

void ProgressBar::OnEnd(void* context) {
  auto* bar = static_cast<ProgressBar*>(context);
  if (bar != nullptr) bar->Clear();
}

void ProgressBar::OnMessage(void* context, char* text) {
  auto* bar = static_cast<ProgressBar*>(context);
  if (bar == nullptr || text == nullptr) return;
  // The library's texts say what it is doing: sorting, or creating plot data.
  const char* label = std::strncmp(text, "Sort", 4) == 0 ? "sort" : "export";
  if (bar->m_label != label) {
    bar->m_label = label;
    bar->Draw();
  }
}

}  // namespace rvtool
