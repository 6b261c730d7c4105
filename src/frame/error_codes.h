// The library's result codes: one named constant per documented cause.
//
// A code is module << 24 | detail << 8 | 1 (ErrCode in frame/frame.h); the
// XML layer also uses a few plain small numbers. Every place that raises or
// returns a code names it from this table, and rvtool's table of meanings is
// built from the same list (RV_ERROR_CODES below), so that a code and its
// words never drift apart. Each subsystem keeps its codes in its own section.
#pragma once

#include <cstdint>

namespace rv {

/// X(name, value, words): one row per documented cause. The words are the
/// one-line meaning for a user.
#define RV_ERROR_CODES(X)                                                                                     \
  /* ---- a result that is no failure of the library ---- */                                                  \
  X(kNothingMade, 1u, "nothing to draw: the file draws nothing, or an offset left nothing to make")           \
  /* ---- 1 file ---- */                                                                                      \
  X(kErrFileOpen, 0x01000201u, "the file can't be opened")                                                    \
  X(kErrFileShort, 0x01000301u, "a read or write moved fewer bytes than asked for")                           \
  X(kErrFileClose, 0x01000401u, "closing the file failed")                                                    \
  X(kErrFileSeek, 0x01000501u, "a seek in the file failed")                                                   \
  X(kErrCsvOpen, 0x01001001u, "the CSV file can't be opened")                                                 \
  X(kErrNoDirection, 0x01001101u, "this file format can't be used in that direction")                         \
  /* ---- 2 store ---- */                                                                                     \
  X(kErrDocumentKind, 0x02001C01u, "a document of an unknown kind was asked for, or the store is full")       \
  /* ---- 3 document ---- */                                                                                  \
  X(kErrNoLayer, 0x03000601u, "the document has no layer, or a layer index is out of range")                  \
  X(kErrLayerColorArt, 0x03000701u, "a layer colour was asked of an art that isn't a layer")                  \
  X(kErrLayerNoColor, 0x03000901u, "the layer has no colour")                                                 \
  X(kErrReference, 0x03000D01u, "a reference art is missing, unexpected or of the wrong kind")                \
  X(kErrNotLayer, 0x03000E01u, "a layer operation was given an art that isn't a layer")                       \
  X(kErrNullLayer, 0x03001001u, "a null layer, or a reference art without a parent")                          \
  /* ---- 5 path ---- */                                                                                      \
  X(kErrCopyNoLayer, 0x05000601u, "a path was copied into a document without layers")                         \
  X(kErrPathComponent, 0x05000801u, "a path has no component or one of a kind that can't be handled")         \
  X(kErrPathColorRead, 0x05000901u, "a path colour was read with a use other than fill or stroke")            \
  X(kErrPathColorWrite, 0x05000A01u, "a path colour was written with a use other than fill or stroke")        \
  X(kErrNullPath, 0x05000D01u, "a path operation was given a null art")                                       \
  X(kErrPathKind, 0x05000E01u, "the art isn't of the kind that the path operation needs")                     \
  X(kErrMatchMask, 0x05001001u, "a RefMap entry isn't marked for output")                                     \
  /* ---- 6 art ---- */                                                                                       \
  X(kErrArtColorRead, 0x06000901u, "a colour was read from an art that is neither a layer nor a path")        \
  X(kErrArtColorWrite, 0x06000A01u, "a colour was written to an art that is neither a layer nor a path")      \
  X(kErrArtType, 0x06000D01u, "an unknown art type, or a null art")                                           \
  X(kErrNoSegments, 0x06000E01u, "a segment count was asked of an art without segments")                      \
  X(kErrNullArt, 0x06001001u,                                                                                 \
    "a null art or missing parent, a path without plot info, or a media or pass that isn't in the "           \
    "condition table")                                                                                        \
  X(kErrNoTag, 0x06001A01u, "the art has no tag with this key")                                               \
  X(kErrExportCancelled, 0x06001F01u, "cancelled while the plot data was being written")                      \
  /* ---- 7 file content ---- */                                                                              \
  X(kErrCmxDescriptionIndex, 0x07000C01u, "a CMX description-table index is outside its table")               \
  X(kErrItwRecord, 0x07001001u, "a drawing record of the ITW file can't be added to the drawing")             \
  X(kErrCmxNotCmx, 0x07001201u, "not a CMX file: wrong RIFF header or type, or an unsupported variant")       \
  X(kErrCmxRecordLength, 0x07001301u, "a CMX record runs past its announced length")                          \
  X(kErrCmxIndexMismatch, 0x07001401u, "a CMX index entry doesn't match the block it points to")              \
  X(kErrContentCode, 0x07001601u, "a record or command code of the CMX or ITW file is outside its table")     \
  X(kErrCmxMissing, 0x07001701u, "a CMX section or table is missing")                                         \
  X(kErrItwMark, 0x07001E01u, "not an ITW file: wrong file mark or record mark")                              \
  /* ---- 8 matrix and curves ---- */                                                                         \
  X(kErrCurveArgument, 0x08000D01u, "a curve operation was given a bad argument (null, negative count, bad scale)") \
  X(kErrCurveTooLarge, 0x08000E01u, "a curve is too large to convert")                                        \
  X(kErrSingularMatrix, 0x08001901u, "the matrix can't be inverted (determinant 0)")                          \
  /* ---- 9 selection ---- */                                                                                 \
  X(kErrNoDocument, 0x09001D01u, "no such document, or no document is active")                                \
  /* ---- 10 sort ---- */                                                                                     \
  X(kErrSortCancelled, 0x0A001F01u, "cancelled while the arts were being sorted")                             \
  /* ---- plain codes of the XML layer and the condition manager ---- */                                      \
  X(kErrXmlNoDocument, 11u, "the XML document object doesn't exist")                                          \
  X(kErrXmlNullNode, 12u, "an XML operation was given a null node")                                           \
  X(kErrXmlLoad, 13u, "the XML file can't be loaded")                                                         \
  X(kErrXmlSave, 14u, "the XML file can't be saved")                                                          \
  X(kErrXmlMissing, 15u, "a required element or attribute is missing from the XML file")                      \
  X(kErrXmlFailed, 65535u, "an XML operation failed, or the condition table wasn't empty")

// The codes of the later subsystems, each in a list of its own. A row names a
// code that the library documents in the public header; the value may repeat
// a code of the table above only under the same name (a second name for the
// same value would break the table of meanings).

/// Path generation: clipper adaptor, hatching, contour and their order.
#define RV_ERROR_CODES_GENERATE(X)                                                                              \
  X(kErrClipCoordinate, 0x08004001u, "a point or offset for clipping isn't finite or lies beyond 1000000 mm")  \
  X(kErrClipFailed, 0x08004101u, "the clipping library refused the paths it was given")                      \
  X(kErrGenerateNoMap, 0x08004201u, "the hatching plot table or the current RefMap table names no table")    \
  X(kErrHatchPitch, 0x08004301u, "the hatching pitch isn't a positive finite number")                        \
  X(kErrHatchTooManyLines, 0x08004401u, "the hatching would need more than 1000000 lines")                   \
  X(kErrContourOffset, 0x08004501u, "the contour offset isn't a negative finite number")                     \
  X(kErrContourTooManyLevels, 0x08004601u, "the contour would need more than 100000 echoes")                \
  X(kErrGenerateArgument, 0x08004701u, "a generator was given a null document index or parameter record") \
  X(kErrHatchTooManyPieces, 0x08005001u, "a hatching mesh or region set has more pieces than 16-bit marks can tell apart")
/// Router output: tiles, milling, micro joints.
#define RV_ERROR_CODES_ROUTER(X)
/// CL jobs: CL import, router, CL milling export, cut preview.
#define RV_ERROR_CODES_CL(X)
/// CMX import.
#define RV_ERROR_CODES_CMX(X)                                                                                 \
  X(kErrCmxLayerName, 0x07002801u, "a CMX layer name is longer than 112 bytes")                               \
  X(kErrCmxNodeBeforeMove, 0x07002901u, "a CMX line or curve node comes before any move or its control points") \
  X(kErrCmxLoop, 0x07002A01u, "the CMX command walk comes back to a command it has read")                      \
  X(kErrCmxNesting, 0x07002B01u, "CMX groups are nested more than 256 deep")
/// ITW import and fonts.
#define RV_ERROR_CODES_ITW(X) \
  X(kErrItwNameLength, 0x07007001u, "a font or font file name in the ITW font table is 50 bytes or longer")
/// Tombo sort and preference files.
#define RV_ERROR_CODES_PREFS(X) \
  X(kErrTomboPoints, 0x0A002001u, "the register mark record is null or its count is outside 0 to 2500")

/// Every documented code of the library, in table order.
#define RV_ALL_ERROR_CODES(X)                                                           \
  RV_ERROR_CODES(X)                                                                     \
  RV_ERROR_CODES_GENERATE(X)                                                            \
  RV_ERROR_CODES_ROUTER(X)                                                              \
  RV_ERROR_CODES_CL(X) RV_ERROR_CODES_CMX(X) RV_ERROR_CODES_ITW(X) RV_ERROR_CODES_PREFS(X)

#define RV_DEFINE_ERROR_CODE(name, value, words) inline constexpr uint32_t name = value;
RV_ALL_ERROR_CODES(RV_DEFINE_ERROR_CODE)
#undef RV_DEFINE_ERROR_CODE

/// One row of the table: a code and its one-line meaning.
struct ErrorCodeWords {
  uint32_t code;
  const char* words;
};

/// Every documented code in table order.
inline constexpr ErrorCodeWords kErrorCodeTable[] = {
#define RV_ERROR_CODE_ROW(name, value, words) {value, words},
    RV_ALL_ERROR_CODES(RV_ERROR_CODE_ROW)
#undef RV_ERROR_CODE_ROW
};

}  // namespace rv
