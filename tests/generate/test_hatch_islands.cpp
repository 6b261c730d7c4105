// The hatching run end to end: the order step finishes one island before it
// goes to the next, and logs what it chose.
#include <cstring>

#include "generate_fixture.h"
#include "test_support.h"

namespace rvtest {
namespace {

class HatchIslands : public GenerateTest {};

TEST_F(HatchIslands, ADrawingWithTwoIslandsFinishesOneBeforeTheOther) {
  AddShape(Box(40, 0, 60, 20));  // the right island first, as the clipper might see it
  AddShape(Box(0, 0, 20, 20));
  m_hatching.pitch = 2.0;
  TempDir dir;
  std::strncpy(m_hatching.logFolder, dir.path().string().c_str(), sizeof m_hatching.logFolder - 1);
  ASSERT_EQ(Hatch(), 0u);

  const std::vector<Polyline> lines = Paths("Rivlen_HatchingPathLayer");
  ASSERT_EQ(lines.size(), 20u);
  // The head starts at the bottom left: the left island's ten lines first,
  // as a serpentine, then the right island's.
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool left = i < 10;
    EXPECT_EQ(lines[i][0].x < 30.0, left) << i;
    EXPECT_EQ(lines[i][1].x < 30.0, left) << i;
    if (i > 0 && i != 10) {
      EXPECT_NE(lines[i][0].x < lines[i][1].x, lines[i - 1][0].x < lines[i - 1][1].x) << i;
    }
  }
  const std::string log = ReadFile(dir.file("HatchingLogFile.txt")) + ReadFile(dir.file("HatchingLogFile2.txt"));
  EXPECT_NE(log.find("\nSortDataSet: 5_MeshAndBoundingBox ("), std::string::npos) << log;
  EXPECT_NE(log.find("\nMinCutOderRule: "), std::string::npos) << log;
}

}  // namespace
}  // namespace rvtest
