#include "output/tombo_sort.h"

#include <algorithm>
#include <cmath>

#include "frame/error_codes.h"
#include "frame/frame.h"

namespace rv {
namespace {

/// A point with its angle seen from the centre.
struct RoundPoint {
  RVPOINT point;
  double angle;
};

}  // namespace

CRvPointSort& CRvPointSort::Instance() {
  static CRvPointSort sort;
  return sort;
}

void CRvPointSort::SortRound(std::vector<RVPOINT>& points) const {
  if (points.empty()) return;
  const RVPOINT first = points.front();
  double sumX = 0.0, sumY = 0.0;
  for (const RVPOINT& p : points) {
    sumX += p.x;
    sumY += p.y;
  }
  const double n = double(points.size());
  const RVPOINT centre{sumX / n, sumY / n};

  // The angle runs from the centre's side: atan2 of (centre - point), x first.
  std::vector<RoundPoint> work;
  work.reserve(points.size());
  for (const RVPOINT& p : points) work.push_back({p, std::atan2(centre.x - p.x, centre.y - p.y)});

  // An exchange sort: the order of equal angles is the one it leaves.
  for (std::size_t i = 0; i < work.size(); ++i) {
    for (std::size_t j = i + 1; j < work.size(); ++j) {
      if (work[i].angle > work[j].angle) std::swap(work[i], work[j]);
    }
  }

  // The round begins with the first point as given; the first exact match
  // in sorted order takes that place. A point that isn't a number matches
  // nothing, and the round then starts where the sort put it.
  auto start = std::find_if(work.begin(), work.end(), [&](const RoundPoint& r) {
    return r.point.x == first.x && r.point.y == first.y;
  });
  if (start != work.end()) std::rotate(work.begin(), start, work.end());
  for (std::size_t i = 0; i < work.size(); ++i) points[i] = work[i].point;
}

void CRvPointSort::FreeTomboSort(const RVTOMBOPOINTS& input, RVTOMBOPOINTS& output) const {
  if (input.count < 0 || input.count > RV_TOMBO_MAX_POINTS) Raise(kErrTomboPoints);
  std::vector<RVPOINT> points(input.points, input.points + input.count);
  SortRound(points);
  std::copy(points.begin(), points.end(), output.points);
}

}  // namespace rv
