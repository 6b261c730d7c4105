/*
 * rvdataaccess.h - the public interface of librvdataaccess.
 *
 * RvDataAccess keeps vector drawings for cutting plotters, flatbed cutters,
 * routers, lasers and coating machines in memory, imports plot and layout
 * files into them, and writes plot jobs.
 *
 * Conventions that hold for the whole interface:
 *  - Coordinates are millimetres held as doubles, y upward.
 *  - Every function that can fail returns a 32-bit code, 0 for success. A
 *    code built by gMakeErrCode holds a module number in bits 31..24, a
 *    detail number in bits 23..8 and 1 in the low byte. The XML layer also
 *    uses the plain codes 11 to 15 and 65535.
 *  - Output goes through pointers. Text output is copied, terminator
 *    included, into a caller buffer that must be large enough.
 *  - An art handle (void*) is the address of an art of the drawing.
 *  - The library keeps process-wide state and has no lock: call it from one
 *    thread at a time. Callbacks run on the calling thread.
 *  - Failures of the C++ runtime itself (out of memory, a table index out of
 *    range where documented) travel as C++ exceptions; the library stays
 *    usable after them.
 *
 * Integer widths: short = int16_t, long and int = int32_t.
 */
#ifndef RVDATAACCESS_H
#define RVDATAACCESS_H

#include <setjmp.h>
#include <stdint.h>

#define RV_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================
 * Records shared by the whole interface
 * ====================================================================== */

/** A point. */
typedef struct RVPOINT {
  double x;
  double y;
} RVPOINT;

/** A rectangle. Note the order of the fields; top is the larger y. */
typedef struct RVRECT {
  double top;
  double left;
  double right;
  double bottom;
} RVRECT;

/** An affine matrix: x' = a*x + c*y + tx, y' = b*x + d*y + ty. */
typedef struct RVRIFMATRIX {
  double a, b;   /* image of the unit x vector */
  double c, d;   /* image of the unit y vector */
  double tx, ty; /* translation */
} RVRIFMATRIX;

/** One point of a Bezier path component: the anchor and its two handles. */
typedef struct RVBEZIERPOINT {
  RVPOINT anchor; /* the point on the curve */
  RVPOINT in;     /* handle towards the previous anchor */
  RVPOINT out;    /* handle towards the next anchor */
  uint8_t flags;  /* work marks of the plot writer (32 corner, 64 both-sides corner, 128 joint) */
} RVBEZIERPOINT;

/** One piece of an arc path component. */
typedef struct RVARCPOINT {
  RVPOINT from;
  RVPOINT to;
  RVPOINT centre;
  double sweep;      /* swept angle in degrees; only its magnitude counts */
  int16_t direction; /* 1 counter-clockwise, anything else clockwise */
} RVARCPOINT;

/** A colour. kind 0 CMYK (c = C, M, Y, K in percent), 1 RGB (c = R, G, B),
 *  2 fountain fill, 3 named special fill. The name travels as a separate
 *  argument of the colour functions; the field here is not read. */
typedef struct RVCOLOR {
  const char* name;
  uint16_t kind;
  uint8_t c[4];
} RVCOLOR;

/* ======================================================================
 * Exported-call frame and error codes
 * ====================================================================== */

/** One recovery point of the exception stack. A host that wants Exception()
 *  to jump back to it captures its context with setjmp(info.context), then
 *  calls PushExceptionInfo(&info), and PopExceptionInfo(&info) on the way
 *  out. The record must live in the frame of the function that set it up. */
typedef struct ExceptionInfo {
  jmp_buf context;
  struct ExceptionInfo* previous;
} ExceptionInfo;

/** The newest recovery point, null while none is open. */
RV_API extern ExceptionInfo* g_ExceptionContext;

/** Builds a code: module << 24 | detail << 8 | 1. */
RV_API uint32_t gMakeErrCode(uint8_t module, uint16_t detail);

/** Splits a code into its module (bits 31..24), detail (23..8) and low byte. */
RV_API void gGetErrContens(uint32_t code, uint8_t* module, uint16_t* detail, uint8_t* low);

/** Delivers a failure. Code 0 does nothing. With no recovery point open the
 *  text "Error:program stopped.(code = %d)" goes to the trace sink and the
 *  call returns. Otherwise the code becomes the last error, the newest
 *  recovery point is popped and control returns to it: a point that the host
 *  pushed is reached with longjmp(context, 1). */
RV_API void Exception(uint32_t code);

/** Pushes a recovery point: info->previous = g_ExceptionContext; g_ExceptionContext = info. */
RV_API void PushExceptionInfo(ExceptionInfo* info);

/** Pops the newest recovery point. If info isn't the newest one, the
 *  mismatch is written to the trace sink; the newest one is popped anyway. */
RV_API void PopExceptionInfo(ExceptionInfo* info);

/** Library extension: the code that the last failure delivered (kept until
 *  the next failure; not reset on success). A host whose own recovery point
 *  was reached through Exception() reads its code here. */
RV_API uint32_t gGetLastError(void);

/** Trace sink: receives every diagnostic line of the library as a printf
 *  format and up to three arguments already formatted into text. */
typedef void (*RvTraceFunc)(void* context, const char* text);

/** Library extension: connects the trace sink. Null (the default) discards
 *  the lines, unless the environment variable RVDATAACCESS_TRACE is set, in
 *  which case they go to standard error. */
RV_API void RvGiSetTraceFunction(RvTraceFunc sink, void* context);

/** Message sink: receives the texts that the writers show to the user when a
 *  pass fails (text and title). */
typedef void (*RvMessageFunc)(void* context, const char* text, const char* title);

/** Library extension: connects the message sink. Null (the default) routes
 *  the messages to the trace sink as "title: text". */
RV_API void RvGiSetMessageFunction(RvMessageFunc sink, void* context);

/* ----------------------------------------------------------------------
 * Progress callbacks. Every callback gets first the context that the host
 * handed to the running export. Each may be null, which skips that report.
 * ---------------------------------------------------------------------- */

/** Sets the bar to percent. The library clears *cancel before the call; the
 *  host sets it to non-zero to cancel the running operation. */
typedef void (*RvProgressStepFunc)(void* context, int16_t percent, int32_t* cancel);
/** The range of the bar; always called with 0 and 100. */
typedef void (*RvProgressRangeFunc)(void* context, int16_t low, int16_t high);
/** A stage starts. */
typedef void (*RvProgressBeginFunc)(void* context);
/** A stage ends. */
typedef void (*RvProgressEndFunc)(void* context);
/** Text for the bar; sent right after the step callback, and only if that is set. */
typedef void (*RvProgressMessageFunc)(void* context, char* text);

/** Stores the five progress callbacks. Never fails. */
RV_API uint32_t RvGiSetProgressFunction(RvProgressStepFunc onStep, RvProgressRangeFunc onRange,
                                        RvProgressBeginFunc onBegin, RvProgressEndFunc onEnd,
                                        RvProgressMessageFunc onMessage);

/** The library's version: always 1, 3, 0. */
RV_API void RvGiGetLibVersion(int16_t* major, int16_t* minor, int16_t* revision);

/** Stores the version pair that the host asks for (default 1, 3). Only
 *  stored; nothing in the library depends on it. */
RV_API void RvGiSetUseLibVersion(int16_t major, int16_t minor);

/* ======================================================================
 * Points, rectangles and matrices
 * ====================================================================== */

/** Sets all six fields of m. */
RV_API uint32_t RvMiSetMatrix(RVRIFMATRIX* m, double a, double b, double c, double d, double tx,
                              double ty);
/** m := identity. */
RV_API uint32_t RvMiSetMatrixIdentity(RVRIFMATRIX* m);
/** m := translation by (dx, dy). */
RV_API uint32_t RvMiSetMatrixTranslate(RVRIFMATRIX* m, double dx, double dy);
/** m := scale by (sx, sy). */
RV_API uint32_t RvMiSetMatrixScale(RVRIFMATRIX* m, double sx, double sy);
/** m := rotation by angle (radians, counter-clockwise). */
RV_API uint32_t RvMiSetMatrixRotate(RVRIFMATRIX* m, double angle);
/** result := inverse of source. Fails with 0x08001901 when the determinant is
 *  exactly 0; result is then untouched. source and result must differ. */
RV_API uint32_t RvMiSetInvertMatrix(const RVRIFMATRIX* source, RVRIFMATRIX* result);
/** Applies a translation after m (the translation of m moves too). */
RV_API uint32_t RvMiConcatMatrixTranslate(RVRIFMATRIX* m, double dx, double dy);
/** Applies a scale after m: a, c, tx times sx; b, d, ty times sy. */
RV_API uint32_t RvMiConcatMatrixScale(RVRIFMATRIX* m, double sx, double sy);
/** Applies a rotation after m, to (a, b), (c, d) and (tx, ty) alike. */
RV_API uint32_t RvMiConcatMatrixRotate(RVRIFMATRIX* m, double angle);
/** out := image of in under m; out may be in. */
RV_API uint32_t RvMiMatrixCalcPoint(const RVRIFMATRIX* m, const RVPOINT* in, RVPOINT* out);
/** The images of the four corners: p1 (left, top), p2 (left, bottom),
 *  p3 (right, top), p4 (right, bottom). */
RV_API uint32_t RvMiMatrixCalcRect(const RVRIFMATRIX* m, const RVRECT* rect, RVPOINT* p1, RVPOINT* p2,
                                   RVPOINT* p3, RVPOINT* p4);
/** *result := 1 when m is exactly the identity, else 0. */
RV_API uint32_t RvMiIsMatrixIdentity(const RVRIFMATRIX* m, int32_t* result);
/** Returns 1 when both |dx| and |dy| are at most tolerance, else 0. */
RV_API int32_t RvMiPointEqual(const RVPOINT* p1, const RVPOINT* p2, double tolerance);
/** Returns the distance of the two points. */
RV_API double RvMiPointLength(const RVPOINT* p1, const RVPOINT* p2);

/* ======================================================================
 * Curve operations
 * ====================================================================== */

/* ======================================================================
 * Path judgments and start-point optimisation
 * ====================================================================== */

/** One element of the array of RvMiJudgeInsideOutsidePath. The caller fills
 *  art (a path art) and sets inside to 0; the call sets inside to 1 for a
 *  path that lies at an odd depth inside the others. */
typedef struct RVINSIDEPATH {
  void* art;
  int32_t inside;
} RVINSIDEPATH;

/* ======================================================================
 * Documents
 * ====================================================================== */

/* ======================================================================
 * Arts
 * ====================================================================== */

/* ======================================================================
 * Layers and paths
 * ====================================================================== */

/* ======================================================================
 * RefMap tables
 * ====================================================================== */

/* A RefMap table files art handles under text keys. It keeps the keys in
 * bytewise order, for each key the arts filed under it (newest first), an
 * info byte per key (bit value 2: the entry is output) and a cut order of the
 * keys, which starts as the order of insertion and which every trace walks.
 * Tables hold plain art pointers: destroy the tables before the documents.
 *
 * Tables are addressed by a 16-bit index `map`. A map that names no table
 * throws std::out_of_range ("invalid vector<T> subscript") through the call,
 * in every function that takes one, RvGiDeleteSpecificRefMapTable too; the
 * library stays usable afterwards. A null text argument counts as the empty
 * text; a null output pointer is not written.
 *
 * Trace callbacks get the context of the call and one art. A non-zero result
 * ends the trace, and the trace returns it. A callback may file arts and
 * change the tree, but must not unlink the art that it was given.
 *
 * Drilling (drill non-zero): a group or compound filed under a key is not
 * passed itself; instead every path below it is, depth first, without
 * entering paths. Other arts are passed as they are. A null art filed under
 * a key is never passed to a callback. */

/** Trace callback: a non-zero result ends the trace and becomes its result. */
typedef uint32_t (*RvRefMapTraceFunc)(void* context, void* art);
/** Trace callback that also gets the entry's user info. */
typedef uint32_t (*RvRefMapTraceInfoFunc)(void* context, void* art, void* userInfo);

/** Appends a new empty table; *map gets its index. Beyond 32767 tables the
 *  call throws std::length_error. */
RV_API uint32_t RvGiCreateRefMapTable(int16_t* map);
/** Destroys all tables (not their arts) and empties the list. */
RV_API uint32_t RvGiDeleteRefMapTable(void);
/** Destroys table map; later tables move down by one. The remembered indexes
 *  are not changed. */
RV_API uint32_t RvGiDeleteSpecificRefMapTable(int16_t map);
/** Files art under key. A new key takes info and goes to the end of the
 *  insertion and cut orders; a known key gets the art in front of its arts
 *  and keeps its info. */
RV_API uint32_t RvGiAddRefMapData(int16_t map, const char* key, uint8_t info, void* art);
/** Sets the info byte of key; a missing key is ignored. */
RV_API uint32_t RvGiSetRefMapInfo(int16_t map, const char* key, uint8_t info);
/** *info := the info byte of key, 0 for a missing key (code 0). */
RV_API uint32_t RvGiFindRefMapInfo(int16_t map, const char* key, uint8_t* info);
/** Sets the user info type of key. With type 1, data is a text of which the
 *  entry keeps its own copy (a null text gives a null user info); earlier
 *  copies stay valid as long as the table lives. With another type only the
 *  type is stored. A missing key is ignored. */
RV_API uint32_t RvGiSetRefMapUserInfo(int16_t map, const char* key, int16_t type, void* data);
/** RvGiSetRefMapUserInfo for every key of the table, in key order. */
RV_API uint32_t RvGiSetAllRefMapUserInfo(int16_t map, int16_t type, void* data);
/** *value := the user info pointer of key, 0 for a missing key. */
RV_API uint32_t RvGiGetRefMapUserInfo(int16_t map, const char* key, uint64_t* value);
/** The number of keys of table map. */
RV_API int32_t RvGiGetRefMapArtCount(int16_t map);
/** Copies the key of item order of the cut order into key and, if the entry
 *  has a user info text, that text into userInfo (else userInfo is left as
 *  it is). An order outside the cut order throws std::out_of_range. */
RV_API void RvGiGetInfoAtCutOrder(int16_t map, int16_t order, char* key, char* userInfo);
/** Moves key in the cut order so that it becomes item number position (0 or
 *  less: first; at or past the end: last). Returns 0, or -1 for a missing
 *  key. */
RV_API int32_t RvGiChangeCutOrder(int16_t map, const char* key, int32_t position);
/** Orders the tile table (RvGiSetRefMapTileIndex) by tile number: both of
 *  its orders become the keys prefix1, prefix2, ... ("%s%d") that exist, in
 *  ascending number, up to count of them; other keys drop out of both
 *  orders. When fewer than count such keys exist, all of them are taken
 *  (the search ends after the last number that can be formed; keys longer
 *  than 127 characters never match). Returns 0, or -1 when no tile table is
 *  set. */
RV_API int32_t RvGiRegistTileCutOrder(const char* prefix, int32_t count);
/** Makes the cut order of every table its insertion order again. */
RV_API void RvGiInitializeCutOrder(void);
/** Reverses the cut order of table map and toggles its reversed flag. */
RV_API void RvGiReverseRefMapCurOrder(int16_t map);

/** For each entry of the cut order whose info shares a bit with mask (every
 *  entry for mask 0): each of its arts in order, drilled if drill is set. */
RV_API uint32_t RvGiRefMapTableTrace(int16_t map, uint8_t mask, void* context, RvRefMapTraceFunc callback,
                                     int32_t drill);
/** RvGiRefMapTableTrace with the entry's user info as third argument. */
RV_API uint32_t RvGiRefMapTableTraceWithInfo(int16_t map, uint8_t mask, void* context,
                                             RvRefMapTraceInfoFunc callback, int32_t drill);
/** RvGiRefMapTableTrace that passes the arts as they are, never drilling. */
RV_API uint32_t RvGiRefMapTablePathTrace(int16_t map, uint8_t mask, void* context, RvRefMapTraceFunc callback);
/** The arts of one key. A missing key returns 0 without a call; an info
 *  that shares no bit with mask (mask 0 always) gives 0x05001001. */
RV_API uint32_t RvGiRefMapTableMatchTrace(int16_t map, const char* key, uint8_t mask, void* context,
                                          RvRefMapTraceFunc callback, int32_t drill);
/** One step of the cut order a call. Start with *state 0; each call visits
 *  one entry and sets *state to 1 while entries follow, 2 after the last.
 *  An entry whose info shares no bit with mask (any entry for mask 0 is
 *  taken) is stepped over with code 0x06001001. A failing callback leaves
 *  the walk on its entry. One walk position serves all tables. On a table
 *  without entries, and on a call after *state came back 2, the call does
 *  nothing and returns 0. A null state counts as 0. */
RV_API uint32_t RvGiRefMapTableOrderTrace(int16_t map, uint8_t mask, int16_t* state, void* context,
                                          RvRefMapTraceFunc callback, int32_t drill);
/** For each entry of the cut order, unmasked: one call with its newest art. */
RV_API uint32_t RvGiRefMapTableUniqTrace(int16_t map, void* context, RvRefMapTraceFunc callback);

/* The remembered table indexes. They are only stored: the output reads them
 * to find its tables. All start at -1 (0xFFFF, no table), except the plot
 * condition index, which starts at 0. The setters never fail. */

/** The main table: the arts to output. */
RV_API uint32_t RvGiSetRefMapIndex(int16_t map);
/** The table keyed by layer. */
RV_API uint32_t RvGiSetRefMapLayerIndex(int16_t map);
/** The table keyed by colour. */
RV_API uint32_t RvGiSetRefMapColorIndex(int16_t map);
/** The table keyed by tile; -1 makes RvGiRegistTileCutOrder refuse. */
RV_API uint32_t RvGiSetRefMapTileIndex(int16_t map);
/** The first table of the router offset output. */
RV_API uint32_t RvGiSetRefMapRouterOffsetSIndex(int16_t map);
/** The last table of the router offset output, inclusive. */
RV_API uint32_t RvGiSetRefMapRouterOffsetEIndex(int16_t map);
/** The table of the router plot. */
RV_API uint32_t RvGiSetRefMapRouterPlotIndex(int16_t map);
/** The table of the plot conditions. */
RV_API uint32_t RvGiSetRefMapPlotConditionIndex(int16_t map);
/** The first table of the hatching output. */
RV_API uint32_t RvGiSetRefMapHatchingSIndex(int16_t map);
/** The last table of the hatching output, inclusive. */
RV_API uint32_t RvGiSetRefMapHatchingEIndex(int16_t map);
/** The table of the hatching plot. */
RV_API uint32_t RvGiSetRefMapHatchingPlotIndex(int16_t map);
/** The hatching plot table index. */
RV_API int16_t RvGiGetRefMapHatchingPlotIndex(void);
/** The plot condition table index. */
RV_API int16_t RvGiGetRefMapPlotConditionIndex(void);
/** The router plot table index. */
RV_API int16_t RvGiGetRefMapRouterPlotIndex(void);

/* ======================================================================
 * File import
 * ====================================================================== */

/* ======================================================================
 * Plot output
 * ====================================================================== */

/* ======================================================================
 * Path generation
 * ====================================================================== */

/* ======================================================================
 * Cut conditions
 * ====================================================================== */

/* ======================================================================
 * Preference files
 * ====================================================================== */

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* RVDATAACCESS_H */
