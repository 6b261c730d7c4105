// Line steps of the order rules: shifts, extensions, joins and the corner
// order with its sorts.
#include <algorithm>
#include <cstddef>
#include <utility>

#include "generate/hatch_mesh.h"
#include "generate/hatch_rules.h"

namespace rv {

namespace {

bool RunsRight(const RVHATCHLINE& line) { return line.x2 > line.x1; }

void SwapEnds(RVHATCHLINE& line) {
  std::swap(line.x1, line.x2);
  std::swap(line.y1, line.y2);
}

void MakeEmpty(RVHATCHLINE& line) { line.x1 = line.y1 = line.x2 = line.y2 = 0.0; }

// The four orders of the sorts; every sort is stable.
bool ByX1Ascending(const RVHATCHLINE& a, const RVHATCHLINE& b) { return a.x1 < b.x1; }
bool ByX1Descending(const RVHATCHLINE& a, const RVHATCHLINE& b) { return a.x1 > b.x1; }
bool ByY1Ascending(const RVHATCHLINE& a, const RVHATCHLINE& b) { return a.y1 < b.y1; }
bool ByY1Descending(const RVHATCHLINE& a, const RVHATCHLINE& b) { return a.y1 > b.y1; }

using LineIt = std::vector<RVHATCHLINE>::iterator;

/// Calls `row(begin, end)` for each run of lines with exactly equal y1.
template <class Row>
void ForEachRow(std::vector<RVHATCHLINE>& lines, Row&& row) {
  for (auto begin = lines.begin(); begin != lines.end();) {
    auto end = begin + 1;
    while (end != lines.end() && end->y1 == begin->y1) ++end;
    row(begin, end);
    begin = end;
  }
}

/// The join of line i with line j on the same y, as the gap test allows.
void JoinPair(RVHATCHLINE& i, RVHATCHLINE& j, double limit) {
  double lo, hi;
  const bool leftward = i.x2 <= i.x1;
  if (leftward) {
    if (j.x1 > i.x1) {
      hi = i.x1 + limit;
      lo = i.x2;
    } else {
      hi = i.x1;
      lo = i.x2 - limit;
    }
  } else if (j.x1 > i.x1) {
    lo = i.x1;
    hi = i.x2 + limit;
  } else {
    lo = i.x1 - limit;
    hi = i.x2;
  }
  if (!((lo < j.x1 && j.x1 < hi) || (lo < j.x2 && j.x2 < hi))) return;
  if (leftward) {
    i.x1 = std::max(i.x1, j.x1);
    i.x2 = std::min(i.x2, j.x2);
  } else {
    i.x1 = std::min(i.x1, j.x1);
    i.x2 = std::max(i.x2, j.x2);
  }
  MakeEmpty(j);
  j.firstMark = j.secondMark = kMarkRemoved;
}

/// Joins the lines at `group` (indexes in array order) among themselves.
void JoinGroup(std::vector<RVHATCHLINE>& lines, const std::vector<std::size_t>& group, double limit) {
  for (std::size_t i : group) {
    if (IsEmptyLine(lines[i])) continue;
    for (std::size_t j : group) {
      if (j == i || IsEmptyLine(lines[j]) || lines[j].y1 != lines[i].y1) continue;
      JoinPair(lines[i], lines[j], limit);
      if (IsEmptyLine(lines[i])) break;
    }
  }
}

void EraseEmpty(std::vector<RVHATCHLINE>& lines) {
  lines.erase(std::remove_if(lines.begin(), lines.end(), IsEmptyLine), lines.end());
}

}  // namespace

// ---- shifts and extensions ----

void ShiftLines(std::vector<RVHATCHLINE>& lines, double start, double end) {
  for (RVHATCHLINE& line : lines) {
    if (IsEmptyLine(line)) continue;
    const bool right = RunsRight(line);
    if (right) {
      line.x1 -= start;
      line.x2 -= end;
    } else {
      line.x1 += start;
      line.x2 += end;
    }
    if (right ? !(line.x2 > line.x1) : !(line.x2 < line.x1)) MakeEmpty(line);
  }
}

void UnshiftLines(std::vector<RVHATCHLINE>& lines, double start, double end) {
  for (RVHATCHLINE& line : lines) {
    if (IsEmptyLine(line)) continue;
    if (RunsRight(line)) {
      line.x1 += start;
      line.x2 += end;
    } else {
      line.x1 -= start;
      line.x2 -= end;
    }
  }
}

void ExtendLines(std::vector<RVHATCHLINE>& lines, double start, double end) {
  for (RVHATCHLINE& line : lines) {
    if (IsEmptyLine(line)) continue;
    if (RunsRight(line)) {
      line.x1 -= start;
      line.x2 += end;
    } else {
      line.x1 += start;
      line.x2 -= end;
    }
  }
}

void UnextendLines(std::vector<RVHATCHLINE>& lines, double start, double end) {
  for (RVHATCHLINE& line : lines) {
    if (RunsRight(line)) {
      line.x1 += start;
      line.x2 -= end;
    } else {
      line.x1 -= start;
      line.x2 += end;
    }
  }
}

// ---- joins ----

void JoinLines(std::vector<RVHATCHLINE>& lines, double limit) {
  // Lines join only on exactly the same y1, so each y is a group of its
  // own, worked in array order as the plain form does.
  std::vector<std::size_t> order(lines.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return lines[a].y1 < lines[b].y1; });
  std::vector<std::size_t> group;
  for (std::size_t k = 0; k < order.size();) {
    group.clear();
    const double y = lines[order[k]].y1;
    while (k < order.size() && lines[order[k]].y1 == y) group.push_back(order[k++]);
    if (group.size() > 1) JoinGroup(lines, group, limit);
  }
  EraseEmpty(lines);
}

void JoinLinesPlain(std::vector<RVHATCHLINE>& lines, double limit) {
  std::vector<std::size_t> all(lines.size());
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
  JoinGroup(lines, all, limit);
  EraseEmpty(lines);
}

// ---- corner order ----

void SortByCorner(std::vector<RVHATCHLINE>& lines, int corner) {
  const bool upward = corner == 0 || corner == 1;
  const bool rightward = corner == 0 || corner == 2;
  std::stable_sort(lines.begin(), lines.end(), upward ? ByY1Ascending : ByY1Descending);
  bool firstRow = true;
  ForEachRow(lines, [&](LineIt begin, LineIt end) {
    // A later row's first line keeps its direction.
    for (auto it = firstRow ? begin : begin + 1; it != end; ++it) {
      if (rightward ? it->x1 > it->x2 : it->x2 > it->x1) SwapEnds(*it);
    }
    firstRow = false;
    std::stable_sort(begin, end, rightward ? ByX1Ascending : ByX1Descending);
  });
}

void SerpentineDirections(std::vector<RVHATCHLINE>& lines, const RVPOINT& head) {
  if (lines.empty()) return;
  RVHATCHLINE& first = lines.front();
  if (HeadDistance(head, first.x1, first.y1) > HeadDistance(head, first.x2, first.y2)) SwapEnds(first);
  bool right = first.x2 > first.x1;
  for (std::size_t i = 1; i < lines.size(); ++i) {
    RVHATCHLINE& line = lines[i];
    const bool newRow = line.y1 != lines[i - 1].y1;
    if (newRow) right = !right;
    // After a row change `right` already names the new row's way.
    if (line.x1 != line.x2 && RunsRight(line) != right) SwapEnds(line);
  }
}

void CornerOrder(const HatchWork& work, std::vector<RVHATCHLINE>& lines, const RVPOINT& head) {
  if (lines.empty()) return;
  SortByCorner(lines, 0);
  const RVHATCHLINE& first = lines.front();
  const RVHATCHLINE& last = lines.back();
  const RVHATCHLINE* lowestX = nullptr;   // on the last line's row
  const RVHATCHLINE* highestX = nullptr;  // on the first line's row
  for (const RVHATCHLINE& line : lines) {
    if (line.y1 == last.y1 && (lowestX == nullptr || line.x1 < lowestX->x1)) lowestX = &line;
    if (line.y2 == first.y2 && (highestX == nullptr || line.x2 > highestX->x2)) highestX = &line;
  }
  // Candidates in the order of their tie: corners 0, 3, 2, 1.
  const std::pair<int, RVPOINT> candidates[] = {
      {0, RVPOINT{first.x1, first.y1}},
      {3, RVPOINT{last.x2, last.y2}},
      {2, RVPOINT{lowestX->x1, lowestX->y1}},
      {1, RVPOINT{highestX->x2, highestX->y2}},
  };
  int winner = 0;
  double best = HeadDistance(head, candidates[0].second.x, candidates[0].second.y);
  for (const auto& [corner, point] : candidates) {
    const double d = HeadDistance(head, point.x, point.y);
    if (d < best) {
      best = d;
      winner = corner;
    }
  }
  if (winner != 0) SortByCorner(lines, winner);
  SerpentineDirections(lines, head);
  if (work.info.keepShift != 0) ShiftLines(lines, work.info.startShift, work.info.endShift);
  ForEachRow(lines, [](LineIt begin, LineIt end) {
    std::stable_sort(begin, end, begin->x2 <= begin->x1 ? ByX1Descending : ByX1Ascending);
  });
}

}  // namespace rv
