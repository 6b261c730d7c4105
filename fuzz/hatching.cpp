// Fuzz target: the generators. The bytes make a work layer of paths and
// compounds and the two parameter records; hatching and contour then run on
// it. Any code is fine; a crash, a hang or a leak is not.
//
// Layout: 8 bytes of options, then shapes: a head byte (bits 0-5 point
// count, bit 6 open, bit 7 joins the compound before), then the points as
// int16 pairs in 1/100 mm, or, when option byte 7 is odd, as raw doubles.
#include <cstdint>
#include <cstring>
#include <vector>

#include "rvdataaccess.h"

namespace {

class Bytes {
 public:
  Bytes(const uint8_t* data, size_t size) : m_data(data), m_size(size) {}
  bool Has(size_t n) const { return m_size - m_pos >= n; }
  uint8_t Byte() { return Has(1) ? m_data[m_pos++] : 0; }
  int16_t Short() {
    int16_t v = 0;
    if (Has(2)) std::memcpy(&v, m_data + m_pos, 2), m_pos += 2;
    return v;
  }
  double Double() {
    double v = 0;
    if (Has(8)) std::memcpy(&v, m_data + m_pos, 8), m_pos += 8;
    return v;
  }

 private:
  const uint8_t* m_data;
  size_t m_size;
  size_t m_pos = 0;
};

constexpr int kMaxShapes = 24;

void AddShape(void* parent, Bytes& in, bool rawDoubles) {
  const uint8_t head = in.Byte();
  const int count = head & 63;
  const bool open = (head & 64) != 0;
  void* path = nullptr;
  void* bezier = nullptr;
  RvGiCreateArt(4, 5, parent, &path);
  RvGiCreateArt(2, 5, path, &bezier);
  RVBEZIERPOINT first{};
  for (int i = 0; i < count && in.Has(1); ++i) {
    RVBEZIERPOINT p{};
    if (rawDoubles) {
      p.anchor = {in.Double(), in.Double()};
    } else {
      p.anchor = {in.Short() / 100.0, in.Short() / 100.0};
    }
    p.in = p.out = p.anchor;
    if (i == 0) first = p;
    RvGiAddBezierPoint(bezier, &p);
  }
  if (!open && count > 0) RvGiAddBezierPoint(bezier, &first);
  RvGiSetPathClosed(path, open ? 0 : 1);
  RvGiSetPathAttrFlag(path, 7);
  RvGiSetPathPlotInfo(path, 0, "F");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Bytes in(data, size);
  uint8_t option[8];
  for (uint8_t& o : option) o = in.Byte();

  int16_t document = -1;
  void* work = nullptr;
  int16_t map = -1;
  RvGiCreateDocument(0, &document);
  RvGiCreateLayer(1, nullptr, &work);
  RvGiSetLayerName(work, "Rivlen_HatchingWorkLayer");
  RvGiCreateRefMapTable(&map);
  RvGiSetRefMapIndex(map);
  RvGiSetRefMapHatchingPlotIndex(map);

  void* compound = nullptr;
  for (int shape = 0; shape < kMaxShapes && in.Has(1); ++shape) {
    const bool joins = (data[size - 1] & 1) != 0 && compound != nullptr;
    if (!joins && (option[6] & (1 << (shape % 8))) != 0) {
      RvGiCreateArt(3, 5, work, &compound);
    }
    AddShape(compound != nullptr ? compound : work, in, (option[7] & 1) != 0);
  }

  RVHATCHINGINFO hatching{};
  RvInitializeHatchingInfo(&hatching);
  hatching.pitch = 0.2 + option[0] / 8.0;  // at most some thousand lines over the 650 mm the shorts span
  hatching.angle = option[1] * 0.0246;
  hatching.offset = (int8_t(option[2])) / 16.0;
  hatching.evenOddFill = option[3] & 1;
  hatching.generate = option[3] >> 1 & 3;
  hatching.frameOffset = (int8_t(option[4])) / 16.0;
  hatching.includeOpenPaths = option[3] >> 3 & 1;
  hatching.frameOpenPaths = option[3] >> 4 & 1;
  hatching.spreadLines = option[3] >> 5 & 1;
  if ((option[7] & 2) != 0) hatching.pitch = in.Double();  // anything, NaN and 0 too
  RvCreateHatching(&document, &hatching);

  RVCONTOURINFO contour{};
  RvInitializeContourInfo(&contour);
  contour.offset = -(1.0 + option[5] / 4.0);  // a few hundred echoes at most
  contour.angle = hatching.angle;
  contour.includeOpenPaths = hatching.includeOpenPaths;
  contour.cornerLines = option[3] >> 6 & 1;
  if ((option[7] & 4) != 0) contour.offset = in.Double();
  RvCreateContour(&document, &contour);

  RvGiDeleteRefMapTable();
  RvGiDeleteAllDocuments();
  return 0;
}
