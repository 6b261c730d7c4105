#include "codes.h"

#include <cstdio>
#include <iterator>

namespace rvtool {
namespace {

constexpr CodeWords kCodes[] = {
    {0x01000201u, "the file can't be opened"},
    {0x01000301u, "a read or write moved fewer bytes than asked for"},
    {0x01000401u, "closing the file failed"},
    {0x01000501u, "a seek in the file failed"},
    {0x01001001u, "the CSV file can't be opened"},
    {0x01001101u, "this file format can't be used in that direction"},
    {0x02001C01u, "a document of an unknown kind was asked for, or the store is full"},
    {0x03000601u, "the document has no layer, or a layer index is out of range"},
    {0x03000701u, "a layer colour was asked of an art that isn't a layer"},
    {0x03000901u, "the layer has no colour"},
    {0x03000D01u, "a reference art is missing, unexpected or of the wrong kind"},
    {0x03000E01u, "a layer operation was given an art that isn't a layer"},
    {0x03001001u, "a null layer, or a reference art without a parent"},
    {0x05000601u, "a path was copied into a document without layers"},
    {0x05000801u, "a path has no component or one of a kind that can't be handled"},
    {0x05000901u, "a path colour was read with a use other than fill or stroke"},
    {0x05000A01u, "a path colour was written with a use other than fill or stroke"},
    {0x05000D01u, "a path operation was given a null art"},
    {0x05000E01u, "the art isn't of the kind that the path operation needs"},
    {0x05001001u, "a RefMap entry isn't marked for output"},
    {0x06000901u, "a colour was read from an art that is neither a layer nor a path"},
    {0x06000A01u, "a colour was written to an art that is neither a layer nor a path"},
    {0x06000D01u, "an unknown art type, or a null art"},
    {0x06000E01u, "a segment count was asked of an art without segments"},
    {0x06001001u,
     "a null art or missing parent, a path without plot info, or a media or pass that isn't in the "
     "condition table"},
    {0x06001A01u, "the art has no tag with this key"},
    {0x06001F01u, "cancelled while the plot data was being written"},
    {0x07000C01u, "a CMX description-table index is outside its table"},
    {0x07001001u, "a drawing record of the ITW file can't be added to the drawing"},
    {0x07001201u, "not a CMX file: wrong RIFF header or type, or an unsupported variant"},
    {0x07001301u, "a CMX record runs past its announced length"},
    {0x07001401u, "a CMX index entry doesn't match the block it points to"},
    {0x07001601u, "a record or command code of the CMX or ITW file is outside its table"},
    {0x07001701u, "a CMX section or table is missing"},
    {0x07001E01u, "not an ITW file: wrong file mark or record mark"},
    {0x08000D01u, "a curve operation was given a bad argument (null, negative count, bad scale)"},
    {0x08000E01u, "a curve is too large to convert"},
    {0x08001901u, "the matrix can't be inverted (determinant 0)"},
    {0x09001D01u, "no such document, or no document is active"},
    {0x0A001F01u, "cancelled while the arts were being sorted"},
    {1u, "the file draws nothing"},
    {11u, "the XML document object doesn't exist"},
    {12u, "an XML operation was given a null node"},
    {13u, "the XML file can't be loaded"},
    {14u, "the XML file can't be saved"},
    {15u, "a required element or attribute is missing from the XML file"},
    {65535u, "an XML operation failed, or the condition table wasn't empty"},
};

}  // namespace

const CodeWords* KnownCodes(std::size_t* count) {
  *count = std::size(kCodes);
  return kCodes;
}

std::string DescribeCode(uint32_t code) {
  for (const CodeWords& entry : kCodes) {
    if (entry.code == code) return entry.words;
  }
  char text[96];
  if ((code & 0xFFu) == 1u && (code >> 24) != 0u) {
    std::snprintf(text, sizeof text, "an unknown failure (module %u, detail %u)", code >> 24,
                  (code >> 8) & 0xFFFFu);
  } else {
    std::snprintf(text, sizeof text, "an unknown failure");
  }
  return text;
}

std::string FormatCode(uint32_t code) {
  char text[32];
  if ((code & 0xFFu) == 1u && (code >> 24) != 0u) {
    std::snprintf(text, sizeof text, "0x%08X", code);
  } else {
    std::snprintf(text, sizeof text, "%u", code);
  }
  return text;
}

int ExitStatusFor(uint32_t code) {
  const uint32_t module = code >> 24;
  if ((code & 0xFFu) == 1u && module >= 1u && module <= 10u) return static_cast<int>(module);
  if (code >= 11u && code <= 15u) return static_cast<int>(code);
  if (code == 65535u) return 16;
  return 17;
}

}  // namespace rvtool
