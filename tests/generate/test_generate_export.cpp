// End to end: a host fills the work layer, hatches it with a frame, and the
// export writes what the generator filed, by its keys.
#include "../output/export_fixture.h"
#include "generate_fixture.h"

namespace rvtest {
namespace {

class GenerateExport : public GenerateTest {
 protected:
  std::string Export(uint16_t plotterClass) {
    const RVPLOTPARAM param = Param(plotterClass, 0);
    return WrittenJob([&](const char* file) { return RvExRIFToRVL(file, m_document, &param, nullptr); });
  }
};

TEST_F(GenerateExport, TheJobHoldsOffsetFrameAndLinesByTheirKeys) {
  AddShape(Box(0, 0, 20, 10));
  m_hatching.pitch = 5, m_hatching.generate = 3, m_hatching.frameOffset = 1;
  ASSERT_EQ(Hatch(), 0u);
  RvGiSetRefMapHatchingSIndex(m_map);
  RvGiSetRefMapHatchingEIndex(m_map);
  RvGiSetRefMapRouterOffsetSIndex(-1);
  RvGiSetRefMapRouterOffsetEIndex(-1);
  // Placed so that the frame's corner is the origin. The frame's corners are
  // cut square; a closed path stores its start twice and the writer closes it.
  const std::string frame =
      "PU22.00,0.59;PD22.00,0.59;PD22.00,11.41;PD21.41,12.00;PD0.59,12.00;PD0.00,11.41;PD0.00,0.59;PD0.59,0.00;"
      "PD21.41,0.00;PD22.00,0.59;PD22.00,0.59;PU;";
  // The lines in cutting order: one row one way, the next back.
  const std::string lines = "PU1.00,3.50;PD1.00,3.50;PD21.00,3.50;PU;PU21.00,8.50;PD21.00,8.50;PD1.00,8.50;PU;";
  // The hatching class writes the frame, then the lines.
  EXPECT_EQ(Export(10), frame + lines);
  // The plain class (turned by a quarter) writes the whole table in the
  // order of filing: offset shape, lines, frame.
  const std::string offset = "PU11.00,1.00;PD11.00,1.00;PD11.00,21.00;PD1.00,21.00;PD1.00,1.00;PD11.00,1.00;PD11.00,1.00;PU;";
  const std::string turnedLines = "PU3.50,21.00;PD3.50,21.00;PD3.50,1.00;PU;PU8.50,1.00;PD8.50,1.00;PD8.50,21.00;PU;";
  const std::string turnedFrame =
      "PU0.59,0.00;PD0.59,0.00;PD11.41,0.00;PD12.00,0.59;PD12.00,21.41;PD11.41,22.00;PD0.59,22.00;PD0.00,21.41;"
      "PD0.00,0.59;PD0.59,0.00;PD0.59,0.00;PU;";
  EXPECT_EQ(Export(0), offset + turnedLines + turnedFrame);
}

}  // namespace
}  // namespace rvtest
