#include "generate/hatch_order.h"

#include <cstddef>

#include "frame/frame.h"
#include "generate/hatch_log.h"
#include "generate/hatch_mesh.h"
#include "generate/hatch_rules.h"

namespace rv {

namespace {

/// The rules that OrderLines tries, in the order of their trial; a tie in
/// cost keeps the earlier.
constexpr int16_t kTrialRules[] = {kRuleMeshAndBoundingBox, kRuleBoundingBox, kRuleTangentAndBoundingBox};

/// Lines bucketed by a mark below `count`, each bucket in array order.
std::vector<std::vector<RVHATCHLINE>> Bucket(const std::vector<RVHATCHLINE>& lines, std::size_t count,
                                             uint16_t RVHATCHLINE::*mark) {
  std::vector<std::vector<RVHATCHLINE>> buckets(count);
  for (const RVHATCHLINE& line : lines) {
    if (line.*mark < count) buckets[line.*mark].push_back(line);
  }
  return buckets;
}

/// Runs `rule` on a copy of work.lines: the final run puts the copy in
/// place, a trial appends its cost. A failure ends the run and leaves the
/// lines and the costs as they were.
void RunRule(HatchWork& work, int16_t rule, bool final) {
  Guard([&] {
    std::vector<RVHATCHLINE> w = work.lines;
    ApplyRule(work, w, rule);
    if (final) {
      work.lines = std::move(w);
    } else {
      const int16_t counted = rule >= kRuleHeadMoveShortest && rule <= kRuleTangentAndBoundingBox ? rule : int16_t(kRuleNoSort);
      work.sortDataSet.push_back(RVSORTDATA{MeasureTravel(work, w), counted});
    }
  });
}

/// Index of the cheapest element of sortDataSet: costs of -1.0 never win,
/// but a first element of -1.0 gives way to any other; a tie keeps the
/// earlier.
int32_t Cheapest(const std::vector<RVSORTDATA>& set) {
  int32_t best = 0;
  for (std::size_t i = 1; i < set.size(); ++i) {
    if (set[i].cost == -1.0) continue;
    if (set[std::size_t(best)].cost > set[i].cost || set[std::size_t(best)].cost == -1.0) best = int32_t(i);
  }
  return best;
}

}  // namespace

RVPOINT HeadStart(HatchWork& work) {
  const RVRECT& b = work.lineBounds;
  const bool turned = work.info.angle != 0.0;
  if (work.info.headFromRight == 0) {
    work.headStart = turned ? RVPOINT{b.right, b.bottom} : RVPOINT{b.left, b.bottom};
  } else {
    work.headStart = turned ? RVPOINT{b.right, b.top} : RVPOINT{b.right, b.bottom};
  }
  return work.headStart;
}

void MeshOrder(HatchWork& work, std::vector<RVHATCHLINE>& lines, const RVRECT& box, const RVPOINT& head,
               int16_t rule) {
  JoinLines(lines, work.info.joinLimit);
  BuildMesh(work, box, head, rule);
  AssignMesh(work, lines);
  RVPOINT pos = head;
  auto cells = Bucket(lines, work.meshCells.size(), &RVHATCHLINE::firstMark);
  lines.clear();
  for (auto& cell : cells) {
    if (cell.empty()) continue;
    CornerOrder(work, cell, pos);
    lines.insert(lines.end(), cell.begin(), cell.end());
    pos = RVPOINT{lines.back().x2, lines.back().y2};
  }
  work.meshCells.clear();
}

void RegionOrder(HatchWork& work, std::vector<RVHATCHLINE>& lines, int16_t rule) {
  RVPOINT head = HeadStart(work);
  AssignRegion(work, lines);
  std::vector<RVRECT> boxes = work.regionBoxes;
  auto regions = Bucket(lines, boxes.size(), &RVHATCHLINE::secondMark);
  lines.clear();
  for (std::size_t round = 0; round < boxes.size(); ++round) {
    const int32_t g = NearestBox(head, boxes);
    if (g < 0) break;
    std::vector<RVHATCHLINE>& region = regions[std::size_t(g)];
    if (!region.empty()) {
      if (rule == kRuleMeshAndBoundingBox || rule == kRuleTangentAndBoundingBox) {
        MeshOrder(work, region, boxes[std::size_t(g)], head, rule);
      } else {
        JoinLines(region, work.info.joinLimit);
        CornerOrder(work, region, head);
      }
      lines.insert(lines.end(), region.begin(), region.end());
      if (!region.empty()) head = RVPOINT{region.back().x2, region.back().y2};
    }
    boxes[std::size_t(g)] = RVRECT{0, 0, 0, 0};
  }
}

void ApplyRule(HatchWork& work, std::vector<RVHATCHLINE>& lines, int16_t rule) {
  switch (rule) {
    case kRuleHeadMoveShortest:
      HeadMoveOrder(work, lines);
      break;
    case kRuleOnSameLine:
      CornerOrder(work, lines, HeadStart(work));
      break;
    case kRuleMeshArea: {
      const RVPOINT head = HeadStart(work);
      MeshOrder(work, lines, work.lineBounds, head, rule);
      break;
    }
    case kRuleBoundingBox:
    case kRuleMeshAndBoundingBox:
    case kRuleTangentAndBoundingBox:
      RegionOrder(work, lines, rule);
      break;
    default:
      break;
  }
}

double MeasureTravel(HatchWork& work, const std::vector<RVHATCHLINE>& lines) {
  std::vector<RVHATCHLINE> t;
  for (const RVHATCHLINE& line : lines) {
    if (!IsEmptyLine(line)) t.push_back(line);
  }
  if (work.info.keepShift == 0) ShiftLines(t, work.info.startShift, work.info.endShift);
  ExtendLines(t, work.info.lineStartExtension, work.info.lineEndExtension);
  RVPOINT pos = HeadStart(work);
  if (t.empty()) return -1.0;
  if (t.size() == 1) return 0.0;
  double cost = 0.0;
  for (const RVHATCHLINE& line : t) {
    cost += HeadDistance(pos, line.x1, line.y1);
    pos = RVPOINT{line.x2, line.y2};
  }
  return cost;
}

const char* RuleLogName(int16_t rule) {
  static const char* const kNames[] = {
      "0_kNoSort",    "1_HeadMoveShortest",   "2_OnSameLine", "3_MeshArea", "4_BoundingBox",
      "5_MeshAndBoundingBox", "6_kTangentAndBoundingBox",
  };
  return rule >= 0 && rule <= kRuleTangentAndBoundingBox ? kNames[rule] : nullptr;
}

void OrderLines(HatchWork& work) {
  work.clipperTravel = work.chosenTravel = -1.0;
  if (!work.lines.empty()) {
    work.clipperTravel = MeasureTravel(work, work.lines);
    work.sortDataSet.clear();
    for (int16_t rule : kTrialRules) RunRule(work, rule, false);
    work.bestRule = Cheapest(work.sortDataSet);
    const bool priced = !work.sortDataSet.empty() && work.sortDataSet[std::size_t(work.bestRule)].cost != -1.0;
    RunRule(work, priced ? work.sortDataSet[std::size_t(work.bestRule)].rule : int16_t(kRuleNoSort), true);
    work.chosenTravel = MeasureTravel(work, work.lines);
    WriteHatchLog(work);
  }
  work.sortDataSet.clear();
  work.regionBoxes.clear();
  work.meshLines.clear();
}

}  // namespace rv
