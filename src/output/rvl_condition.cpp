// The condition block of the cutting writer: pen, speed, pressure, offset
// and the tool-machine words, composed from the condition of a pass.
#include <cstdlib>
#include <cstring>

#include "conditions/cut_cdn_mng.h"
#include "output/placement.h"
#include "output/rvl_format.h"

namespace rv {

namespace {

bool HasDecimalSpeedRow(uint16_t machineType) { return machineType == 7 || machineType == 10; }

// A whole number held as text, read as a 32-bit atol reads it.
int32_t WholeNumberOfText(const char* text, std::size_t size) {
  const std::string copy(text, strnlen(text, size));
  const long long v = std::strtoll(copy.c_str(), nullptr, 10);
  return int32_t(uint32_t(uint64_t(v)));
}

}  // namespace

void CRvRVLFormat::ComposeConditionBlock(std::string& block, const CondRecord& cond, const ThetaExtension* theta) {
  const RVPLOTPARAM& p = m_param;
  const int16_t dialect = p.dialect;
  char tool[sizeof cond.Tool + 1] = {};
  std::memcpy(tool, cond.Tool, sizeof cond.Tool);
  const int16_t pen = int16_t(ToolToPen(p, tool));

  if (p.conditionSource == 2) {
    if (p.writeToolDefaults != 0) AppendRow(block, kRowToolDefaults, {});
    // Dialect 1 names a tool unit too; it is the condition's, as elsewhere.
    AppendRow(block, kRowPen, {int(pen), int(cond.WDZUnit)});
    return;
  }
  if (p.conditionSource != 1 && p.conditionSource != 3) return;
  const bool all = p.conditionSource == 1;

  if (p.writeToolDefaults == 0) {
    if (dialect == 0) {
      const int usePen = pen != 0 ? pen : p.defaultPen;
      int speed = p.defaultSpeed;
      double speedExact = p.defaultSpeedExact;
      if (cond.hasSpeed != 0) {
        speed = cond.Speed;
        speedExact = cond.SpeedDecimal;
      }
      const int press = cond.hasPress != 0 ? cond.Press : p.defaultPress;
      const double offset = cond.hasOffset != 0 ? cond.Offset : p.defaultOffset;
      AppendRow(block, kRowPen, {usePen});
      if (all || cond.hasSpeed != 0) {
        if (HasDecimalSpeedRow(p.machineType)) {
          AppendRow(block, kRowSpeedDecimal, {speedExact, usePen});
        } else {
          AppendRow(block, kRowSpeed, {speed, usePen});
        }
      }
      if (all || cond.hasPress != 0) AppendRow(block, kRowPress, {press, usePen});
      if (all || cond.hasOffset != 0) AppendRow(block, kRowOffset, {offset});
    } else if (dialect == 5) {
      AppendRow(block, kRowLaserSpeed, {cond.LaserSpeed / 100.0 * 707000.0});
      AppendRow(block, kRowLaserPower, {cond.LaserPower * 100.0});
      AppendRow(block, kRowLaserFreq, {int(cond.LaserFreq)});
    } else if (dialect == 6) {
      AppendRow(block, kRowCoatingNozzle, {WholeNumberOfText(cond.NozzleRotation, sizeof cond.NozzleRotation)});
      AppendRow(block, kRowCoatingFeed, {(cond.CoatingSpeed + cond.SpeedAdjust) * 60.0});
      AppendRow(block, kRowCoatingZ, {cond.MediaThickness + cond.Gap});
      AppendRow(block, kRowCoatingFillMode, {0});
      AppendRow(block, kRowCoatingMoveOffset, {cond.MisalignmentCorrect});
    }
  } else {
    AppendRow(block, kRowToolDefaults, {});
    if (dialect == 1) {
      ToolProperties props;
      if (LookUpToolProperties(pen, props)) m_vCut = props.vCut ? 1 : 0;
      const int magnitude = pen < 0 ? -int(pen) : int(pen);
      AppendRow(block, kRowPen, {magnitude, int(cond.WDZUnit)});
      if (cond.hasSpeed != 0) AppendRow(block, kRowSpeedDecimal, {cond.SpeedDecimal, magnitude});
      if (props.usePress && cond.hasPress != 0) AppendRow(block, kRowPress, {int(cond.Press), magnitude});
      if (m_vCut == 0) {
        AppendRow(block, kRowThickness, {TruncToInt32(cond.Thickness * 10.0 + 0.5)});
        if (props.useDepth) AppendRow(block, kRowDepth, {TruncToInt32(0.5 - cond.ZPosition * 10.0)});
      } else {
        const bool thetaOn = theta != nullptr && theta->Available > 0;
        AppendRow(block, kRowVCut,
                  {cond.VCutType == 0 ? 0 : cond.VCutType - 1, cond.VCutType == 1 ? 1 : 0,
                   TruncToInt32(-(cond.ZPosition * 10.0)), TruncToInt32(cond.VCutOffset * 10.0),
                   thetaOn ? TruncToInt32(theta->values[0] * 10.0) : 0});
      }
    } else {
      AppendRow(block, kRowPen, {int(pen)});
      if (cond.hasSpeed != 0) {
        const int speed = HasDecimalSpeedRow(p.machineType) ? TruncToInt32(cond.SpeedDecimal) : int(cond.Speed);
        AppendRow(block, kRowSpeed, {speed, int(pen)});
      }
      if (cond.hasPress != 0) AppendRow(block, kRowPress, {int(cond.Press), int(pen)});
      if (cond.hasOffset != 0) AppendRow(block, kRowOffset, {cond.Offset});
    }
  }
  if (theta != nullptr && theta->Available > 0 && !plotter::NeverTheta(p.plotterClass) && m_vCut == 0) {
    for (int k = 0; k < 6; ++k) AppendRow(block, kRowTheta, {theta->values[k], k + 1});
  }
}

}  // namespace rv

namespace rv {

void CRvRVLFormat::WriteConditionBlock(const std::string& key, int32_t pass) {
  static const CondRecord kNoCondition{};
  CRvCutCdnMng& conditions = CRvCutCdnMng::Instance();
  CondPair pair{nullptr, nullptr};
  Check(conditions.GetConditionAtRepeat(key, pass, pair));
  const CondRecord& cond = pair.record != nullptr ? *pair.record : kNoCondition;
  // The milling families keep a milling record beside the condition: it has
  // no Theta values.
  const ThetaExtension* theta = nullptr;
  auto media = conditions.m_media.find(key);
  if (pair.extension != nullptr && media != conditions.m_media.end() && pass >= 1 &&
      pass <= media->second->Count() && media->second->FormAt(pass - 1) == ExtensionForm::Theta) {
    theta = static_cast<const ThetaExtension*>(pair.extension);
  }
  std::string block;
  ComposeConditionBlock(block, cond, theta);
  WriteBytes(block);
}

}  // namespace rv
