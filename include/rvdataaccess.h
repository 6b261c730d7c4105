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
 *  - One call uses a second thread of its own: a sorted plot of 2048 paths
 *    or more (RvExRIFToRVL and the exports beside it) judges which paths
 *    lie inside which on it while the calling thread orders and writes
 *    them. That thread only reads the drawing, so a progress callback must
 *    not change the drawing meanwhile; it has ended before the call returns.
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

/* Curves of paths are given as two consecutive RVBEZIERPOINT records a, b:
 * a.anchor, a.out, b.in, b.anchor. Positions are compared on a grid of 0.01:
 * a coordinate's cell is the coordinate times 100 truncated toward zero.
 *
 * Results come as arrays of RVCURVEPOINT that the library allocates and the
 * host releases with RvMiFreePoints (and nothing else). An empty result is a
 * null array with count 0. On failure the outputs are null and 0 and nothing
 * needs releasing.
 *
 * Codes of this section beyond the general table:
 *   0x08000D01  a null pointer, a negative count, a count above the limit
 *               of RvMiSplineToPoints, a scale of 0 or not finite, or a
 *               coordinate that doesn't fit single precision in
 *               RvMiCurvesToArc;
 *   0x08000E01  a curve whose flattening would give more than 1048576 points
 *               (coordinates far outside any drawing, or maxLength <= 0 on a
 *               huge curve), a result of more than 33554432 records, or an
 *               arc fit that makes no progress.
 */

/** The arc fields of a kind 1 RVCURVEPOINT. */
typedef struct RVCURVEARC {
  double startX, startY;
  double endX, endY;
  double midX, midY;       /* the point of the fitted Bezier piece at t = 0.5 */
  double centreX, centreY;
  int16_t direction;       /* -1 counter-clockwise (centre left of the travel), +1 clockwise */
} RVCURVEARC;

/** One result record of a curve conversion: `kind` and the fields of that
 *  kind, in a union that starts at offset 8. Every record of an array has
 *  the size of the largest variant (80 bytes); fields that the kind doesn't
 *  use have no defined value.
 *    kind 0  point:        point (x, y)
 *    kind 1  arc:          arc (startX .. centreY, direction)
 *    kind 2  Bezier point: bezier.anchor, bezier.in, bezier.out as in
 *                          RVBEZIERPOINT, bezier.flags 0, so that the member
 *                          can be copied into a path as it stands
 *    kind 3  spline triple: spline[0], spline[1], spline[2] */
typedef struct RVCURVEPOINT {
  int16_t kind;
  union {
    RVPOINT point;
    RVCURVEARC arc;
    RVBEZIERPOINT bezier;
    RVPOINT spline[3];
  };
} RVCURVEPOINT;

/** Bezier points (kind 2) of an arc: pieces of at most 60 degrees, n + 1
 *  records for n pieces, every coordinate rounded half away from zero to
 *  0.001. The first record is `from`, the last `to`; their far handles sit on
 *  their anchors. A sweep above 360 degrees counts as 360 (seven records); a
 *  sweep of 0 (or not a number) gives two records, `from` and `to`, with the
 *  handles on their anchors. An arc whose `from` is its centre gives anchors
 *  on the centre and handles on the anchors. */
RV_API uint32_t RvMiArcToCurves(const RVARCPOINT* arc, RVCURVEPOINT** result, int32_t* resultCount);

/** Polyline (kind 0) of the curves between consecutive points: for each curve
 *  its first anchor, then the end points of its chords, which are at most
 *  maxLength long and keep handles within tolerance of the chord (mode 1; with
 *  mode 0 curves are cut down to the 0.01 grid). A shared anchor thus appears
 *  twice. Fewer than two points give an empty result. */
RV_API uint32_t RvMiCurvesToPoints(const RVBEZIERPOINT* points, int32_t count, double maxLength,
                                   double tolerance, RVCURVEPOINT** result, int32_t* resultCount,
                                   int32_t mode);

/** Fits circular arcs, in single precision on coordinates rounded to 0.001,
 *  to the curve of the last two points (count is normally 2; fewer give an
 *  empty result). Arcs are kind 1 records divided by scale; pieces that stay
 *  straight are kind 0 records (start, polyline, end repeated), not divided. */
RV_API uint32_t RvMiCurvesToArc(const RVBEZIERPOINT* points, int32_t count, double maxLength,
                                double tolerance, RVCURVEPOINT** result, int32_t* resultCount,
                                double scale);

/** Spline triples (kind 3, divided by scale) along the polyline of the curve
 *  points[0]-points[1], and a closing point (kind 0, not divided) where the
 *  triples leave one over. A curve within 0.1 degree of its chord at both ends
 *  gets all four handles put on their anchors, in the caller's array. Fewer
 *  than two points give an empty result. */
RV_API uint32_t RvMiCurvesToSpline(RVBEZIERPOINT* points, int32_t count, double maxLength, double tolerance,
                                   RVCURVEPOINT** result, int32_t* resultCount, double scale);

/** Points of the interpolating cubic spline through points[1] .. points[count]
 *  (points[0] isn't read; count at most 199) into the caller's result, which
 *  must hold 21 * (count - 1) points: up to 21 per chord, points[1] not
 *  included. A repeated point makes the result the input points as they
 *  stand. A count of 0 or 1 gives no points. */
RV_API uint32_t RvMiSplineToPoints(const RVPOINT* points, int32_t count, RVPOINT* result,
                                   int32_t* resultCount);

/** De Casteljau split of the curve a-b at t (not clamped): middle gets in,
 *  anchor and out; a.out and b.in become the handles of the two halves. */
RV_API uint32_t RvMiDivideBezier(RVBEZIERPOINT* a, RVBEZIERPOINT* b, double t, RVBEZIERPOINT* middle);

/** Splits the curve a-b where its first part is `length` long, within 1.0
 *  (a negative length counts as 0), and writes the parts back as
 *  RvMiDivideBezier does. The search starts at t = 0.5 and steps t by half of
 *  itself, so a length beyond the curve's end extends the curve. A curve of
 *  no length (all four positions equal) is split at t = 0.5. Otherwise the
 *  search ends after 10000 passes at most, or when t leaves the finite range,
 *  and then gives the pass that came closest. Failures go to Exception(). */
RV_API void RvMiDivideBezierByLength(RVBEZIERPOINT* a, RVBEZIERPOINT* b, double length, RVBEZIERPOINT* middle);

/** Length of the curve a-b: its polyline with maxLength 31000.0, tolerance
 *  0.042, mode 1, summed. Failures go to Exception(). */
RV_API void RvMiGetBezierLength(const RVBEZIERPOINT* a, const RVBEZIERPOINT* b, double* length);

/** Signed angle at vertex from p1 to p3 (atan2 of cross and dot product, so
 *  within [-pi, pi]); 0.0 when two of the points are equal or one is null. */
RV_API double RvMiCalcAngleOfThreePoints(const RVPOINT* p1, const RVPOINT* vertex, const RVPOINT* p3);

/** The angle that a path turns through at point, in [0, 2 pi); pi on a smooth
 *  path. A handle within the 0.01 cell of its anchor is replaced by the point
 *  of the neighbouring curve at t = 0.9 (in) or 0.1 (out). */
RV_API double RvMiCalcAngleOfBezier(RVBEZIERPOINT point, RVBEZIERPOINT previous, RVBEZIERPOINT next);

/** Angle of point on arc, seen from the centre and counted from `from` in the
 *  arc's direction (the other way when reverse is non-zero): 0.0 for
 *  direction 0 (or a null argument), 2 pi at `from` itself, pi opposite. */
RV_API double RvMiGetCenterAngle(const RVARCPOINT* arc, const RVPOINT* point, int32_t reverse);

/** Releases an array of the conversions above; null is accepted. Returns 0. */
RV_API uint32_t RvMiFreePoints(RVCURVEPOINT* points);

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

/* Path judgments are made on the coarse polyline of a path: its first
 * component (a Bezier), walked from the start segment round, each segment
 * from its point to the next (the last one closing to point 0 whether the
 * path is marked closed or not) flattened with maxLength 2.0 and tolerance
 * 2.0. Where a judgment applies the path's matrix, it maps the anchors only.
 * A path that can't be read gives 0x06001001 (null path), 0x05000D01 (no
 * component) or 0x05000E01 (a first component that isn't a Bezier). */

/** Orientation of a Bezier component (not the path), without matrix: 1
 *  clockwise, 2 counter-clockwise, 0 for no area or a component that can't
 *  be read. closed has no effect. */
RV_API int32_t RvMiJudgePathClockwise(void* path, int32_t closed);
/** *inside := 1 when point lies inside the path (winding angle of its coarse
 *  polyline above pi), else 0. A null point gives 0x05000D01. */
RV_API uint32_t RvMiJudgeInsidePoint(void* path, const RVPOINT* point, int32_t* inside);
/** *inside := 1 when every point of the coarse polyline of path (but the last
 *  of each segment) lies inside outer, else 0; 0 for a path without points. */
RV_API uint32_t RvMiJudgeInsidePath(void* path, void* outer, int32_t* inside);
/** Sorts the elements of paths by absolute area, largest first (equal
 *  areas keep their order), then flips `inside` of every path that lies
 *  inside an earlier one with the same flag, so that the flag is the parity
 *  of the nesting depth; invert non-zero flips all flags at the end. The
 *  caller sets every inside to 0 first, and ends the array with an element
 *  whose art is null (the terminator isn't moved; a null array is an empty
 *  one). Each path is read once per call; pairs far apart cost a box
 *  comparison. */
RV_API uint32_t RvMiJudgeInsideOutsidePath(RVINSIDEPATH* paths, int32_t invert);
/** Whether a corner that turns by Angle degrees (LimitAngle the limit) is cut
 *  from both sides: when bInside differs from bClockwise, Angle > LimitAngle;
 *  when they are equal, -LimitAngle > Angle. Returns 1 or 0. */
RV_API int32_t RvMiIsBothSidesCutLine(double Angle, double LimitAngle, int32_t bInside, int32_t bClockwise);
/** Moves the start of a closed path to its best corner: the first straight
 *  side (within 1 degree) that leaves a corner (a turn of more than 10
 *  degrees), a longer straight one after it, or while there is none the
 *  longest chord leaving a corner; the earlier index wins a tie. The points
 *  are judged through matrix (null: identity). For type 5 the corner where
 *  that side ends comes first, the points are only rotated and
 *  *startSegment gets its old index; for any other type the corner where the
 *  side begins comes first, the closed shape is kept (RvGiSortBezierPoint)
 *  and *startSegment is 0. The component's start segment becomes 0. An open
 *  path is left alone, *startSegment isn't written and the result is 0. A
 *  failure to read the closed flag goes to Exception() first. */
RV_API uint32_t RvMiOptimizeStartSegment(void* path, const RVRIFMATRIX* matrix, int16_t type,
                                         int16_t* startSegment);
/** Inserts a point into the Bezier component path between index and
 *  index + 1, length along the curve a-b (RvMiDivideBezierByLength), where a
 *  and b are the points at index and index + 1 given in the space that
 *  matrix maps the component into; the two points are replaced by the split
 *  halves mapped back. A matrix without inverse (0x08001901) changes nothing.
 *  Failures go to Exception(). */
RV_API void RvMiCreateJointSegment(void* path, int32_t index, const RVBEZIERPOINT* a, const RVBEZIERPOINT* b,
                                   const RVRIFMATRIX* matrix, double length);

/* ======================================================================
 * Documents
 * ====================================================================== */

/* The library keeps any number of documents and works on one of them, the
 * active document. Documents are addressed by a 16-bit index that stays
 * valid until the document is deleted; a deleted document leaves an empty
 * slot and its index is never reused (until RvGiDeleteAllDocuments), so at
 * most 32767 documents can be made in that time.
 *
 * Every operation on the active document (documents, layers, arts, bound
 * boxes) fails with 0x09001D01 while no document is active; only
 * RvGiGetLayerCount answers 0 then. */

/** Makes a new in-memory document (kind 0; any other kind 0x02001C01, as is
 *  a full store), makes it active and gives its index. */
RV_API uint32_t RvGiCreateDocument(int16_t kind, int16_t* index);
/** Destroys the active document with all its layers and arts. The next lower
 *  live document becomes active, or none. No active document: does nothing. */
RV_API uint32_t RvGiDeleteActiveDocument(void);
/** Forgets all documents; nothing is active and new indexes start again at
 *  0. Who reclaims the forgotten documents (the library's choice): a
 *  forgotten document can be reached only through the art pointers of a
 *  RefMap table, so it is destroyed, with all its layers, arts and their
 *  storage, as soon as no RefMap table exists - here at once when the host
 *  has deleted its tables first (the usual job), else when the last table
 *  goes (RvGiDeleteRefMapTable, RvGiDeleteSpecificRefMapTable; a table that
 *  a running trace still walks goes when that trace ends). While any table
 *  exists, the arts of forgotten documents stay readable. Arts unlinked by
 *  RvGiDeleteArt before are not part of the document any more: they stay
 *  readable until the process ends, whatever happens to the document. */
RV_API uint32_t RvGiDeleteAllDocuments(void);
/** Makes the document at index active; a negative index, one past the store
 *  or a deleted slot gives 0x09001D01 and changes nothing. */
RV_API uint32_t RvGiSetActiveDocument(int16_t index);
/** The index of the active document, -1 when none is active. */
RV_API uint32_t RvGiGetActiveDocumentIndex(int16_t* index);
/** The active document's bound box (all zero until set). */
RV_API uint32_t RvGiGetDocBoundBox(RVRECT* rect);
/** Sets the active document's bound box, the drawing's page. */
RV_API uint32_t RvGiSetDocBoundingBox(const RVRECT* rect);

/* ======================================================================
 * Arts
 * ====================================================================== */

/* An art handle is the address of an art. Types: 0 layer, 1 group, 2 Bezier,
 * 3 compound (holds paths only), 4 path (holds Beziers, arcs and splines
 * only), 5 arc, 6 spline.
 *
 * Positions of a new art (RvGiCreateArt, RvGiCopyArt, RvGiCopyPath):
 *   0 first in the current layer, 3 last in it (reference must be null);
 *   1 in front of reference, 2 behind it (reference needed, and a parent that
 *     holds it: 0x03001001 otherwise);
 *   4 first child of reference, 5 last child of it (reference needed).
 * A missing or unexpected reference gives 0x03000D01. Any other position
 * leaves the art unlinked, without parent, and succeeds. A container that
 * can't hold the new art's type (a group in a path, a Bezier in a compound)
 * leaves it out silently; the art still names that container as parent
 * (until the container is destroyed: then it has none).
 * After a failure the out handle is null and nothing was made.
 *
 * Ownership: arts belong to the library. Deleting an art (RvGiDeleteArt)
 * only unlinks it; unlinked arts stay readable until the process ends.
 * Storage (library's choice): each document owns the storage of the arts,
 * their records, tags and child lists, and the point arrays made while it
 * is active, in chunks (4 KiB growing to 64 KiB; once a document's chunks
 * hold 1 MiB, each further chunk is one 2 MiB large page) that go with the
 * document. A chunk that still holds an art that outlives the document (an
 * art unlinked before, or one linked into another document) is kept until
 * that art is destroyed, and only that chunk; point arrays over 4 KiB, and
 * arts made while no document is active, have storage of their own.
 * Deleting a layer or a document destroys its arts: handles into it become
 * invalid. A null art handle gives 0x06001001 here (0x06000D01 for
 * RvGiGetSelect, RvGiSetSelect); a null record to read gives the same. */

/** Makes an empty art of type 1 to 6 (else 0x06000D01) and links it by
 *  position. No layer in the document: 0x03000601. */
RV_API uint32_t RvGiCreateArt(int16_t type, int16_t position, void* reference, void** art);
/** Copies source, whose type must be type (1 to 4, else 0x06000D01), and links
 *  the copy like RvGiCreateArt. A path copy has the colours and flags but no
 *  children, tags or attribute word. */
RV_API uint32_t RvGiCopyArt(int16_t type, int16_t position, void* reference, void* source, void** art);
/** Unlinks *art from its parent without destroying it; it keeps its children
 *  and has no parent afterwards. No parent: 0x06001001. */
RV_API uint32_t RvGiDeleteArt(void** art);
/** Moves the paths of compound (type 3) into group (type 1), each to the
 *  front, so they end up in reverse order; the group takes the compound's
 *  bounds and is deselected. The compound leaves its parent and then only
 *  lists the paths (which the group owns) and takes no new children. Wrong
 *  types, or a compound converted before: 0x05000E01. */
RV_API uint32_t RvGiConvertCompoundToGroup(void* group, void* compound);
/** The first child, null if there is none. */
RV_API uint32_t RvGiGetArtFirstChild(void* art, void** child);
/** The parent, null for a layer and an unlinked art. */
RV_API uint32_t RvGiGetArtParent(void* art, void** parent);
/** The next art of the parent; null at the end or without a parent. */
RV_API uint32_t RvGiGetArtSibling(void* art, void** sibling);
/** The previous art of the parent; null at the start or without a parent. */
RV_API uint32_t RvGiGetArtPreSibling(void* art, void** sibling);
/** The art's type number. */
RV_API uint32_t RvGiGetArtType(void* art, int16_t* type);
/** Copies the art's matrix out (identity on creation). */
RV_API uint32_t RvGiGetArtMatrix(void* art, RVRIFMATRIX* matrix);
/** Sets the art's matrix. */
RV_API uint32_t RvGiSetArtMatrix(void* art, const RVRIFMATRIX* matrix);
/** Stores the art's bounds as given (they aren't derived from the children). */
RV_API uint32_t RvGiSetBoundingBox(void* art, const RVRECT* rect);
/** The stored bounds with each corner (left, top) and (right, bottom) mapped
 *  through the art's matrix; a rotating matrix gives an unnormalised box. */
RV_API uint32_t RvGiGetArtBounds(void* art, RVRECT* rect);
/** Creates or overwrites the tag key with value (both copied). */
RV_API uint32_t RvGiSetArtTag(void* art, const char* key, const char* value);
/** Copies the value of tag key into value; no such tag: 0x06001A01. */
RV_API uint32_t RvGiGetArtTag(void* art, const char* key, char* value);
/** A colour of a layer (use ignored, always found) or a path (use 1 fill,
 *  2 stroke, else 0x05000901): *found 1 with kind and c filled, or 0 with
 *  *color untouched. Other arts: 0x06000901. */
RV_API uint32_t RvGiGetPathColor(int16_t use, void* art, RVCOLOR* color, int32_t* found);
/** The colour's name; "None" for a path without that colour. Layer without
 *  colour: 0x03000901; other arts: 0x06000901. */
RV_API uint32_t RvGiGetPathColorName(int16_t use, void* art, char* name);
/** Sets a colour of a layer or a path with its name. Kinds 0 and 1 take use
 *  1 or 2, kinds 2 and 3 only use 1 (else 0x05000A01). Other arts: 0x06000A01. */
RV_API uint32_t RvGiSetPathColor(int16_t use, void* art, const RVCOLOR* color, const char* name);
/** Renames a colour; a path without that colour is left alone. Use other
 *  than 1 or 2 on a path, or another art: 0x06000A01. */
RV_API uint32_t RvGiSetPathColorName(int16_t use, void* art, const char* name);

/* ======================================================================
 * Layers and paths
 * ====================================================================== */

/* Layer operations give 0x03001001 for a null layer and 0x03000E01 for an art
 * that isn't a layer. Path operations give 0x05000D01 for a null art and
 * 0x05000E01 for an art of the wrong type. Point indexes are checked: an
 * index outside 0 to count - 1 gives 0x05000E01 and reads or changes
 * nothing. */

/** Makes a layer named "Layer<n>" (n = layer count after the insert) in black
 *  ("R=0,G=0,B=0") and links it: where 0 front, 1 end, 2 behind and 3 in
 *  front of reference, which must then be a layer of the active document
 *  (0x03000D01). The new layer becomes the current layer. Any other where
 *  leaves it unlinked. A non-null reference that isn't a layer: 0x03000D01. */
RV_API uint32_t RvGiCreateLayer(int16_t where, void* reference, void** layer);
/** Takes the layer out of the active document and destroys it with all its
 *  arts. The current layer index stays as it was (an index left past the
 *  layers gives 0x03000601 to positions 0 and 3). A layer that isn't in the
 *  active document: 0x03000D01. */
RV_API uint32_t RvGiDeleteLayer(void* layer);
/** The layer at index; outside 0 to count - 1: 0x03000601. */
RV_API uint32_t RvGiGetLayer(void** layer, int16_t index);
/** The number of layers of the active document, 0 when none is active. */
RV_API uint32_t RvGiGetLayerCount(int16_t* count);
/** The first layer with exactly this name, null if there is none. */
RV_API uint32_t RvGiGetLayerFromName(void** layer, const char* name);
/** Copies the layer's name into name. */
RV_API uint32_t RvGiGetLayerName(void* layer, char* name);
/** Renames the layer; a null layer gives 0x06001001. */
RV_API uint32_t RvGiSetLayerName(void* layer, const char* name);
/** The layer's colour, *found always 1. Not a layer: 0x03000701. */
RV_API uint32_t RvGiGetLayerColor(void* layer, RVCOLOR* color, int32_t* found);
/** The name of the layer's colour. Not a layer: 0x03000701. */
RV_API uint32_t RvGiGetLayerColorName(void* layer, char* name);
/** Sets the layer's colour and its name. Not a layer: 0x03000701. */
RV_API uint32_t RvGiSetLayerColor(void* layer, const RVCOLOR* color, const char* name);

/** Copies one path or path component (types 2, 4, 5, 6; else 0x05000E01) and
 *  links it by position as RvGiCreateArt does; no layer: 0x05000601. A path's
 *  components aren't copied with it: copy each with position 5. */
RV_API uint32_t RvGiCopyPath(void* source, int16_t position, void* reference, void** art);
/** Points of a component, or their sum over a path's components. Other
 *  arts: 0x06000E01. */
RV_API uint32_t RvGiGetPathSegmentCount(void* art, int32_t* count);
/** Copies point index of a component into point: an RVBEZIERPOINT, RVARCPOINT
 *  or RVPOINT by the component's type. A path: 0x05000E01. */
RV_API uint32_t RvGiGetPathSegment(void* art, int32_t index, void* point);
/** Copies point index of a Bezier. */
RV_API uint32_t RvGiGetBezierPoint(void* art, int32_t index, RVBEZIERPOINT* point);
/** Copies point index of an arc. */
RV_API uint32_t RvGiGetArcPoint(void* art, int32_t index, RVARCPOINT* point);
/** Library extension for C hosts, the same as the first form of
 *  RvGiSetBezierPoint: inserts before index (0 or less: at the front, the
 *  count or more: at the end). */
RV_API uint32_t RvGiInsertBezierPoint(void* art, int32_t index, const RVBEZIERPOINT* point);
/** Library extension for C hosts, the same as the second form of
 *  RvGiSetBezierPoint: appends the point. */
RV_API uint32_t RvGiAddBezierPoint(void* art, const RVBEZIERPOINT* point);
/** Replaces point index of a Bezier. */
RV_API uint32_t RvGiReplaceBezierPoint(void* art, int32_t index, const RVBEZIERPOINT* point);
/** Reverses a Bezier: point order, in and out of each point, and the stored
 *  start handles. Fewer than 2 points: nothing. Twice gives it back. */
RV_API uint32_t RvGiReverseBezierPoint(void* art);
/** Makes point index the first. With closed non-zero the curve keeps the
 *  closed shape: the first record has in = anchor, the last repeats the first
 *  anchor with out = anchor, and the start's in handle is kept as the start-in
 *  point. Index 0 changes nothing. */
RV_API uint32_t RvGiSortBezierPoint(void* art, int32_t index, int32_t closed);
/** Sets the in handle of the start of a closed Bezier. Until it is set, a
 *  closed Bezier's start takes the in handle of its last record (which
 *  repeats the start), so a sort of an imported shape keeps its outline. */
RV_API uint32_t RvGiSetBezierStartInPoint(void* art, const RVPOINT* point);

/** Whether a path runs clockwise, as the host or importer set it. */
RV_API uint32_t RvGiGetPathClockWise(void* art, int32_t* clockwise);
/** Sets it on a path; other arts are left alone without error. */
RV_API uint32_t RvGiSetPathClockWise(void* art, int32_t clockwise);
/** Whether a path is closed. */
RV_API uint32_t RvGiGetPathClosed(void* art, int32_t* closed);
/** Sets it on a path; other arts are left alone without error. */
RV_API uint32_t RvGiSetPathClosed(void* art, int32_t closed);
/** The selection flag of a group; other arts leave *selected as it was. */
RV_API uint32_t RvGiGetSelect(void* art, int32_t* selected);
/** Sets the selection flag of a group; other arts are left alone. */
RV_API uint32_t RvGiSetSelect(void* art, int32_t selected);

/* The attribute word of an art (any type): the low 16 bits are flags (2: the
 * art counts for bounds by flag, 16: the art is left out of all output), the
 * high 16 bits the start segment. Plot info: pattern id (-1), plot value and
 * text, V-cut element (-1) and value (0). Both are made at the first write. */

/** The low byte of the attribute word; 0 before any write. */
RV_API uint32_t RvGiGetPathAttrFlag(void* art, uint8_t* flags);
/** word := flags: this also clears the start segment. */
RV_API uint32_t RvGiSetPathAttrFlag(void* art, uint8_t flags);
/** word := word | value (the 16 bits of value). */
RV_API uint32_t RvGiSetPathProp(void* art, int16_t value);
/** The start segment (high half of the word); 0 before any write. */
RV_API uint32_t RvGiGetPathStartSegment(void* art, int16_t* segment);
/** Replaces the start segment and keeps the flags. */
RV_API uint32_t RvGiSetPathStartSegment(void* art, int16_t segment);
/** The pattern id; -1 without plot info. */
RV_API uint32_t RvGiGetPathPatternID(void* art, int32_t* id);
/** Sets the pattern id. */
RV_API uint32_t RvGiSetPathPatternID(void* art, int32_t id);
/** The plot value and text (the art's key into the condition table); no
 *  plot info: 0x06001001. */
RV_API uint32_t RvGiGetPathPlotInfo(void* art, int32_t* value, char* text);
/** Sets the plot value and text. */
RV_API uint32_t RvGiSetPathPlotInfo(void* art, int32_t value, const char* text);
/** The V-cut element and value; no plot info: 0x06001001. */
RV_API uint32_t RvGiGetPathElementAtVCut(void* art, int16_t* element, int16_t* value);
/** Sets the V-cut element and value. */
RV_API uint32_t RvGiSetPathElementAtVCut(void* art, int16_t element, int16_t value);

/** Called by RvGiTracePath for each path; a non-zero result stops the walk
 *  and becomes its result. */
typedef uint32_t (*RvGiTracePathFunc)(void* context, void* path);

/** Calls callback(context, path) for each path below art whose attribute
 *  flags share a bit with mask, depth first, first child first. Paths aren't
 *  entered and art itself is never passed. The callback may unlink arts
 *  (RvGiDeleteArt); it must not delete layers or documents. */
RV_API uint32_t RvGiTracePath(void* art, uint8_t mask, void* context, RvGiTracePathFunc callback);

#ifdef __cplusplus
} /* extern "C" */

/** Inserts a point into a Bezier before index (0 or less: at the front, the
 *  count or more: at the end). A C++ overload; C hosts use RvGiInsertBezierPoint. */
RV_API uint32_t RvGiSetBezierPoint(void* art, int32_t index, const RVBEZIERPOINT* point);
/** Appends a point to a Bezier. A C++ overload; C hosts use RvGiAddBezierPoint. */
RV_API uint32_t RvGiSetBezierPoint(void* art, const RVBEZIERPOINT* point);

extern "C" {
#endif

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
/** Destroys all tables (not their arts) and empties the list. With the last
 *  table go the documents that RvGiDeleteAllDocuments forgot. */
RV_API uint32_t RvGiDeleteRefMapTable(void);
/** Destroys table map; later tables move down by one. The remembered indexes
 *  are not changed. The last table takes the forgotten documents with it, as
 *  RvGiDeleteRefMapTable does. */
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

/** Union of the bounds (RvGiGetArtBounds) of the arts of the main table
 *  (RvGiSetRefMapIndex) whose entries share a bit with mask, not drilled:
 *  with mode non-zero the arts with attribute flag 2, with mode 0 those with
 *  flag 2 and without flag 16. All zeros when no art counts. 0x03000601 when
 *  the active document has no layer (or no document is active). */
RV_API uint32_t RvGiGetArtsBoundsByFlag(RVRECT* rect, uint8_t mask, int32_t mode);
/** Union of the bounds of the arts with attribute flag 2 filed under key in
 *  the main table, paths inside groups and compounds included (a match trace
 *  with mask 2: an entry without info bit 2 gives 0x05001001). All zeros and
 *  0 for a key that isn't there. 0x03000601 as above. */
RV_API uint32_t RvGiGetArtsBoundsByKey(RVRECT* rect, const char* key);
/** 0 when every path of table map (entries with info bit 2, drilled) is a
 *  register mark: open, in a group, without fill, with 3 points; else
 *  0xFFFFFFFF at the first path that isn't, or the code of a failed read. */
RV_API uint32_t RvGiCheckTombo(int16_t map);

/* ======================================================================
 * File import
 * ====================================================================== */

/* Plot files (PLT). Two command languages are read, chosen from the first 15
 * bytes of the file: HP-GL and HP-GL/2 mnemonics with a few extensions, and
 * a language of one-letter commands ended by a terminator byte (3 unless the
 * file sets others). Every pen-down stroke becomes one path, as last child of
 * the layer "KFPlotFileLayer", which the import makes at the front of the
 * document (a new layer each time, whatever layers exist). Straight moves
 * become Bezier components (handles on the anchors), circular arcs without a
 * chord angle arc components; all other curves arrive flattened. Every path
 * is stroked "Black", has attribute flags 7 and its bounds set, and is
 * closed when it ends within 0.1 document units of its start (its last point
 * is then moved exactly onto the start). Pens, line types, fills and labels
 * leave no trace.
 *
 * The content of a file never fails the import: bad parameters, unknown
 * commands and wrong counts are skipped, as a plotter does. Choices of this
 * library where a file asks for the impossible:
 *  - plotter coordinates are whole 32-bit numbers: a point beyond that range
 *    is clamped to it, and a point that is not a number (after a scaling
 *    window of no size, for example) is taken as 0;
 *  - one curve command makes at most 16384 moves; a finer step is widened
 *    so that the curve fits;
 *  - a smooth curve (ZS) for which no step was set (ZD) steps each span by a
 *    sixteenth of its length, kept within 20 and 40 plotter units;
 *  - an arc through three points that turns clockwise to a smaller end angle
 *    keeps a negative sweep in its RVARCPOINT; its magnitude is the angle;
 *  - VT with fewer than two numbers changes nothing.
 * Every import starts from the interpreter's initial state; nothing of one
 * import carries over to the next. */

/** Imports the plot file path. mode 0: into a new document, whose index goes
 *  to *documentIndex (if not null); else into the document *documentIndex,
 *  which becomes active (bad index or null pointer: 0x09001D01). unitScale
 *  points to the document units per plotter unit; 0.0, or a null pointer,
 *  selects 0.025 (millimetres for plotter steps of 0.025 mm). Results: 0; the
 *  bare value 1 when the file draws nothing (the empty layer stays);
 *  0x01000201 when the file can't be opened (with mode 0 the new empty
 *  document stays, active); 0x01000401 when it can't be closed. */
RV_API uint32_t RvImPLTToRIF(const char* path, int16_t mode, int16_t* documentIndex, const double* unitScale);

/* ITW layouts. An ITW file is a layout of text frames and graphics whose
 * text is stored as characters placed in four-cornered cells; the import
 * draws each character from a font. Everything lands in one new layer at the
 * front of the document, with the default name that RvGiCreateLayer gives:
 *  - a text frame becomes a group (last child of the layer) holding the
 *    frame's outline (a closed path, attribute flags 1, stroked red "Frame":
 *    the four corners, or for a bulged frame a ring sector of two straight
 *    sides and two arc chains about one centre), its baselines when the frame
 *    asks for them (open paths, attribute flags 21, stroked blue "Vertical
 *    BaseLine" / "Horizontal BaseLine"), and one compound per character;
 *  - a graphic record becomes a group whose bounds are the rectangle of its
 *    first and third corners, with its baselines and one path (attribute
 *    flags 7, stroked "R=%d,G=%d,B=%d" in its colour) of straight, arc and
 *    spline runs;
 *  - a character's paths have attribute flags 7 and are filled and stroked
 *    in the character's colour, named "R=%d,G=%d,B=%d".
 * The layer's bounds are those of its groups, widened by 1.0 on every side
 * (an empty layer: top 1, left -1, right 1, bottom -1).
 *
 * Fonts. A character names a record of the file's font table:
 *  - stroke fonts (kind 0) are looked up by code and sub-number in
 *    userFontFolder + file + ".TBW" / ".DAW", then, for sub-number 0, by code
 *    in the ".TBL" / ".DAT" of userFontFolder when the font's file name
 *    contains "USER", else of fontFolder; in vertical writing some codes are
 *    replaced by their vertical forms first. A character with a non-zero
 *    sub-number that isn't found is drawn as a red cross ("Warning") over its
 *    cell and makes the result 32;
 *  - symbol fonts (any kind but 0 and 1) come from the ".TBL" / ".DAT" of
 *    userFontFolder when the file name contains "KAMON3", else of fontFolder;
 *  - installed fonts (kind 1) are outline fonts of this system, found by
 *    family name through fontconfig (the name is Shift-JIS text; a leading
 *    '@' asks for the vertical face) and read through FreeType. Character
 *    codes are JIS codes, turned to Shift-JIS; codes below 128 stay and codes
 *    30242 to 30589 go to the user-defined area. Each contour becomes a closed
 *    path of straight pieces, quadratic pieces being sampled at eight points.
 * Choices of this library:
 *  - font index files are plain only when their path contains "USER" (a
 *    ".TBL" also "KAMON"); other index files are stored scrambled through
 *    substitution tables that this library doesn't hold, and such a font
 *    counts as not found (its characters are skipped, or crossed as above);
 *  - a font or font file name of 50 bytes or more in the font table refuses
 *    the file with 0x07007001;
 *  - a run of stroke data that lies outside its data file counts as not
 *    found; stroke data that ends without its end mark ends where it ends;
 *  - an installed font whose family isn't installed is replaced by the face
 *    that fontconfig offers for it (preferring faces with Japanese glyphs); a
 *    character that no face has a glyph for is skipped;
 *  - a vertical face gives the glyph of the horizontal face turned a quarter
 *    turn, which the import turns back: the character stands upright in its
 *    cell. Vertical alternates (rotated brackets, moved punctuation) aren't
 *    substituted;
 *  - the multibyte code page of installed-font codes is always Shift-JIS;
 *  - the arc components of this import are chains, in which a piece runs
 *    from one point's `from` to the next point's (or to the first point of
 *    the next component); every arc point also gets that end as its `to`
 *    and the angle between as its `sweep` (Library extension), so that the
 *    curve conversions draw the same pieces. */

/** Imports the ITW file path. fontFolder and userFontFolder: the folders of
 *  the font files, ending in a separator, for a font file name is joined to
 *  them directly (null counts as empty). mode 0: into a new document, whose
 *  index goes to *documentIndex (if not null); else into the document
 *  *documentIndex, which becomes active (bad index or null pointer:
 *  0x09001D01). *fileByte receives the byte at offset 77 of the file as soon
 *  as the head has been read, also when the import fails later (a null
 *  fileByte is allowed: Library extension). Results: 0; 32 when a character
 *  was missing from its stroke font (see above; the import is complete);
 *  0x01000201 when the file can't be opened (with mode 0 the new empty
 *  document stays, active); 0x01000301 when a record runs past the end of
 *  the file; 0x07001E01 for a wrong file mark ("IW") or font record mark;
 *  0x07007001 for a font or file name of 50 bytes or more; 0x07001001 when an
 *  art can't be made while a stroke character is drawn. Nothing read before
 *  a failure is undone. */
RV_API uint32_t RvImItwToRIF(const char* path, const char* fontFolder, const char* userFontFolder, int16_t mode,
                             int16_t* documentIndex, int16_t* fileByte);
/* CMX files (RIFF form "CMX1" with 32-bit coordinates). The import goes by the
 * file's indexes: the master index names the page index, each page its layer
 * index, and only the layers of page 1 are read, in index order. Each layer's
 * command stream makes arts: a begin-layer command selects the last layer of
 * the document with exactly its name (or makes one at the front), a group a
 * group, a poly-curve a path of one Bezier component (or a compound of such
 * paths when it has several subpaths), a rectangle a closed path of four
 * corners (rounding and rotation are dropped). Every new art becomes the first
 * child of its parent, so inside each parent the arts stand in the reverse of
 * the file's order; before any begin-layer command arts go first into the
 * current layer. Coordinates count from the lower left corner of the file's
 * bounding box, in millimetres; the document's bounding box becomes that box
 * (top and right its height and width, left and bottom 0). Only geometry is
 * taken: fills, outlines and colours are not read, and every art keeps the
 * colours of its creation. A layer's matrix from the file is stored as it
 * stands, in the file's units.
 *
 * Choices of this library where a file asks for the impossible (each fails
 * the import with its code, keeping what was made before):
 *  - a layer name longer than 112 bytes: 0x07002801;
 *  - a line or curve node before any move, or a curve node without two points
 *    before it for its handles: 0x07002901;
 *  - a command offset that the walk has read before, reached again through a
 *    jump, a length that leads back, or two layers that start at one offset:
 *    0x07002A01 (every command of a file is read at most once);
 *  - groups nested more than 256 deep: 0x07002B01;
 *  - an offset or length that leads outside the file: 0x01000501;
 *  - a negative count of points, pages, layers or index records reads as 0. */

/** Imports the CMX file path. mode 0: into a new document, whose index goes to
 *  *documentIndex (if not null); else into the document *documentIndex, which
 *  becomes active (bad index or null pointer: 0x09001D01); existing documents
 *  are never deleted. text may be null; it is kept with the import and has no
 *  effect on the drawing. Results: 0; 0x01000201 when the file can't be
 *  opened (with mode 0 the new empty document stays, active); 0x01000301 when
 *  a read runs past the end of the file (the file is closed then);
 *  0x01000401 when it can't be closed; 0x07001201 when it isn't RIFF "CMX1"
 *  or is of version 1 (16-bit coordinates); 0x07001401 when an index chunk
 *  hasn't the identifier its offset promises ("ixmr", "ixpg", "ixlr");
 *  0x07001701 when the master index names no page index or there is no page
 *  1; 0x03000601 when a command makes an art before any layer exists; the
 *  codes of the choices above. A failure keeps the document's bounding box
 *  and the layers and arts made until then. */
RV_API uint32_t RvImCMXToRIF(const char* path, int16_t mode, int16_t* documentIndex, const char* text);

/* CL files (router jobs) speak the same languages and go through the same
 * reading as plot files, with the same rules for closing, colours and
 * flags. The import builds its paths in the working layer
 * "CLTempFileLayer" and then copies each of them, in order, into the result
 * layer, made in front of it: there a path has exactly one component, a
 * Bezier, into which the path's Bezier components are joined and its arcs
 * turned into Bezier points (pieces of at most 60 degrees, so a circle gives
 * seven points); where a line and an arc meet, their shared point stands
 * twice. A copy keeps the closed flag, the attribute flags, the colours, the
 * bounds and the matrix of its source, but no path element values and no
 * plot info. After an import the document holds the result layer at index
 * 0, "CLTempFileLayer" at index 1, and the layers it had before behind them;
 * the working layer stays, for the router (RvExCLCreateHatching).
 * The path element values (VT with JT) are set on a path that a pen-up move
 * ends; a path that only the end of the file ends gets none. */

/** Imports the CL file path. mode 0: every document is deleted first
 *  (RvGiDeleteAllDocuments, also when the file then can't be opened), and
 *  the import goes into a new document, whose index goes to *documentIndex
 *  (if not null); else into the document *documentIndex, which becomes
 *  active (bad index or null pointer: 0x09001D01). unitScale as for
 *  RvImPLTToRIF. layerName: the name of the result layer; null selects
 *  "CLPlotFileLayer", any other text is taken as it stands, the empty one
 *  too. Results: 0; the bare value 1 when the file draws nothing (the
 *  document then holds the empty working layer and no result layer);
 *  0x01000201 when the file can't be opened; 0x01000401 when it can't be
 *  closed; 0x08000E01 when an arc is too large to convert. What was copied
 *  before a failure stays. */
RV_API uint32_t RvImCLToRIF(const char* path, int16_t mode, int16_t* documentIndex, const double* unitScale,
                            const char* layerName);

/* ======================================================================
 * Plot output
 * ====================================================================== */

/** One entry of the tool-to-pen map of RVPLOTPARAM. */
typedef struct RVTOOLPEN {
  char name[64]; /* tool name, zero-terminated; an empty name ends the map */
  uint16_t pen;  /* pen of that tool; 0 means "not mapped here" */
} RVTOOLPEN;

/** The parameter block of all plot output. Filled by the caller, copied on
 *  entry. Natural alignment, fields in this order. Booleans are 32-bit,
 *  non-zero for on. */
typedef struct RVPLOTPARAM {
  uint16_t curveOutput;   /* 0 polylines, 1 arcs, any other value splines */
  uint16_t plotterClass;  /* machine geometry class, 0 to 12 */
  int16_t dialect;        /* column of g_RvlCommands, 0 to 6 (not checked) */
  int32_t mirror;         /* mirror the plot about the vertical axis */
  int32_t drawFrame;      /* plot a frame round the job, shift the job by the margins */
  int32_t useDocumentBounds; /* place by the document bound box, not the arts' bounds */
  double rotation;        /* radians; only the single-precision values of 1/2, 1 and
                             3/2 turns (1.5707963705062866, 3.1415927410125732,
                             4.71238899230957) rotate, compared exactly */
  double frameMarginX, frameMarginY;
  double scaleX, scaleY;  /* percent, 100.0 unchanged */
  double originX;         /* job offset along the first axis */
  double originY;         /* job offset along the second axis */
  int32_t drawTileFrames; /* tile output: plot each tile's rectangle */
  double tileGap;         /* tile output: gap between tiles */
  double deviceMinX, deviceMinY, deviceMaxX, deviceMaxY; /* working area */
  double deviceUnit;      /* drawing units per device unit */
  int32_t sortArts;       /* sort the arts into a cut order */
  int32_t sortPerCutOrder; /* with sortArts: one cut-order step at a time */
  int32_t optimizeStartPoints; /* choose start segments (classes 1, 4, 11) */
  int32_t forceCounterClockwise; /* 1: reverse clockwise closed paths first */
  int32_t outputMicroJoints; /* plot "MicroJointLayer" after the job */
  double routerJointLength;
  double jointDepthLimit;
  int32_t parkBeforeJoints;
  int32_t writeToolDefaults; /* open condition blocks with "DF1;" */
  int32_t swapInsideOutside; /* invert the inside-path judgment */
  double routerOverlap;
  int32_t routerUseContour;
  int32_t routerCornerLines;
  int32_t routerInside;
  int16_t routerJointCount;
  int32_t routerLeadIn;
  double curveMaxLength;  /* maxLength of the curve conversions */
  double curveTolerance;  /* tolerance of polylines and arcs (splines use 0.042) */
  uint16_t conditionSource; /* 0 none, 1 plot info, 2 plot info pen only, 3 conditionKey */
  char conditionKey[256];
  int16_t defaultPen;
  int16_t defaultSpeed;
  double defaultSpeedExact;
  int16_t defaultPress;
  double defaultOffset;
  uint16_t machineType;   /* machine family of the condition table (7, 10: decimal speed) */
  double marginLeft, marginTop, marginBottom, marginRight;
  RVTOOLPEN toolPens[40];
  int32_t expandDocument; /* 1: grow the placement by the margins during the export */
  int32_t usePlacementTransform; /* classes 8 and 10 only */
  double placementRotation;
  double placementScaleX, placementScaleY;
  double placementOffsetX, placementOffsetY;
  int32_t doubleCreasePass; /* cut arts of the tool "CRE" twice */
} RVPLOTPARAM;

/** The command vocabulary of plot output: 101 rows of printf-style texts,
 *  one column per dialect (0 PenHpgl, 1 ToolHpgl, 2 MoveDraw, 3 Silent,
 *  4 PlainHpgl, 5 Laser, 6 Coating). Every cell of dialect 3 and every
 *  unused cell is the empty text "". Control bytes (0x0D, 0x0A, 0x01, 0x03,
 *  0x80) stand in the texts as bytes. The library writes only the job body;
 *  the file head (rows 0, 1) and tail (rows 75, 78, 100) are the caller's. */
RV_API extern const char* const g_RvlCommands[101][7];

/** Writes the document documentIndex (made active) as a plot job into the
 *  file path, truncated first: the body of the job in the dialect of
 *  param, which is copied at once. progressContext goes to every progress
 *  callback. 0x09001D01 for a bad document, 0x01000201 when the file can't be
 *  opened, 0x06001F01 / 0x0A001F01 when the host cancels, 0x06001001 for a
 *  null param; a failed job leaves what was written. */
RV_API uint32_t RvExRIFToRVL(const char* path, int16_t documentIndex, const RVPLOTPARAM* param,
                             void* progressContext);

/* How the plot writers read the parameters and the drawing, where the rules
 * leave a choice:
 *  - conditionSource 2 in dialect 1 writes the condition's WDZUnit as the
 *    second value of "JT%d,%d;", as the other tool blocks do.
 *  - An art without plot info (conditionSource 1 or 2) still gets a condition
 *    block per pass: it is composed from a condition of zeros, so the
 *    defaults of the parameter block fill it. A key that names no media
 *    gives one pass without a block.
 *  - The condition that doubleCreasePass adds for a "CRE" art is removed
 *    again also when writing the art fails.
 *  - The inside pass of the unsorted route takes the closed paths of the
 *    main table, the sorted route the arts that the sort collected. Only
 *    paths whose first component is a Bezier are judged: a group or compound
 *    filed there, or a path that starts with an arc or a spline (a circle of
 *    a plot file), takes no part and is never tagged as inside.
 *  - A hatching or router range whose first or last index is unset (-1)
 *    writes nothing. A main table index that names no table throws
 *    std::out_of_range, as the RefMap table functions do.
 *  - With sortPerCutOrder, a cut-order step whose key isn't marked for
 *    output (0x06001001) is passed over and the job goes on; any other
 *    failure of a step, a cancel above all, ends the export with its code.
 *  - The both-sides pass walks at most once round a component when it looks
 *    for the joint's place; a component shorter than the joint length gets
 *    no joint. Its message "EntryBothSidesCutInfo:Error" goes to the message
 *    sink (RvGiSetMessageFunction).
 *  - The progress of plot data counts every art written, attribute bit 16
 *    too, against the count of arts without that bit, so the percentage may
 *    pass 100; a job with no counted art reports 0.
 *  - Classes 5 and 12 write through the milling writer, whichever export
 *    runs them; RvExRIFToRVL has no makeOffsetArt, so there a closed art is
 *    milled on its own outline at every pass (see RvExRIFMillingToRVL). */

/* ---- Router output: tiled jobs, depth-pass milling, micro joints ---- */

/** One tile of a tiled job. The host files the arts of the tile in the main
 *  table (RvGiSetRefMapIndex) under the key prefix followed by number
 *  ("%s%d", at most 127 characters). */
typedef struct RVTILE {
  int32_t number;    /* the number of the tile's key */
  RVRECT rects[4];   /* the tile's rectangles; a rectangle of all zeros is empty */
  uint8_t tail[32];  /* not read */
} RVTILE;

/** The tiles of RvExRIFTileToRVL. */
typedef struct RVTILEPARAM {
  char prefix[30];      /* start of each tile's key; zero-terminated unless all 30 are used */
  int32_t mark;         /* kept, not read */
  const RVTILE* tiles;  /* the tiles in their order; may be null when tileCount is 0 */
  int32_t tileCount;    /* Library extension: the number of tiles (0 or less: none) */
} RVTILEPARAM;

/** Makes an art that lies offset millimetres beside art (the sign and the
 *  side are the host's: the library hands on half of the change of the
 *  condition's Milling value, see RvExRIFMillingToRVL) and stores its handle
 *  in *result; callbackUser is handed through unchanged. The art it makes is
 *  the host's and stays the host's: the library reads it while it writes the
 *  pass and never deletes or changes it, so the host may put it anywhere,
 *  into a layer of its own or unlinked. It must be a path (type 4) or a
 *  compound (type 3) of paths. Return 0 on success; any other value ends
 *  the job: the export returns that value as its code, after the milling
 *  message. A success that leaves *result null ends it with 0x06001001. */
typedef uint32_t (*RvMakeOffsetArtFunc)(void* callbackUser, void* art, double offset, void** result);

/** Writes a job that the host divided into tiles, one tile after the other,
 *  as RvExRIFToRVL writes a job but per tile: each tile is placed by the
 *  bounds of the arts of its key (RvGiGetArtsBoundsByKey), united with its
 *  non-empty rectangles when drawTileFrames is on (the placement transform
 *  isn't used), starts where the tile before it ended, and is written alone.
 *  Tiles go first to last; in dialect 5 last to first. Classes 5 and 12
 *  write through the milling writer unsorted (without offsets: there is no
 *  makeOffsetArt here) and through the cutting writer sorted. After each
 *  tile come its frames (drawTileFrames) and the job frame (drawFrame).
 *  originY grows after each tile by the height that the tile takes on the
 *  machine (its width for the quarter turns; a rotation that doesn't turn
 *  counts as 0) plus tileGap, plus 2 frameMarginY with drawFrame; after the
 *  last tile by tileGap once more. That final value is stored in
 *  param->originY on success only: a failed job leaves *param as it was.
 *  No tiles: nothing is written and originY only grows by tileGap.
 *  outputMicroJoints isn't honoured here. Codes as RvExRIFToRVL; 0x06001001
 *  for a null param or tileParam, or tiles null with a positive tileCount. */
RV_API uint32_t RvExRIFTileToRVL(const char* path, int16_t documentIndex, RVPLOTPARAM* param,
                                 const RVTILEPARAM* tileParam, void* progressContext);

/** Writes a router job (classes 5 and 12) in depth passes: RvExRIFToRVL with
 *  an offset maker. For every art of the router tables
 *  (RvGiSetRefMapRouterOffsetSIndex to ...EIndex) and every pass of its
 *  condition key, the pass's condition block (DF1, tool, thickness, speed,
 *  rpm, depth = Thickness - CuttingDepth held at 0 or above, plunge speed;
 *  the tool is lifted with "PU;" before the depth changes) and the path.
 *  A closed art asks makeOffsetArt for the path it mills: at pass 1 with
 *  offset 0, later whenever the pass's Milling value differs from pass 1's,
 *  with half the difference; a pass whose Milling equals pass 1's mills the
 *  art of the pass before. An open art is milled on itself. makeOffsetArt
 *  may be null: then every pass mills the art itself.
 *  A component tagged "RivlenKerflowMicroJointTag" ("count,start,end,...",
 *  segment indexes, at most 12 joints) is lifted to jointDepthLimit over
 *  each joint; at the first pass whose depth lies below jointDepthLimit the
 *  joint stretches are copied to the layer "MicroJointLayer", and with
 *  outputMicroJoints they are milled after the job with the passes they
 *  missed (after a park move and "NR-1;" with parkBeforeJoints), and the
 *  layer is deleted. A failing writer shows "JudgeArtforMilling:Error"
 *  (title "test") through the message sink (RvGiSetMessageFunction) and
 *  ends the job with its code. Codes as RvExRIFToRVL (0x06001F01 when the
 *  host cancels while the job is written: the host's arts and the offset
 *  arts stay as they are), 0x05000801 for a component of an unexpected
 *  type, and the codes of makeOffsetArt. */
RV_API uint32_t RvExRIFMillingToRVL(const char* path, int16_t documentIndex, const RVPLOTPARAM* param,
                                    void* progressContext, void* callbackUser, RvMakeOffsetArtFunc makeOffsetArt);

/* ---- Milling of CL jobs ----
 * A document of CL imports (result layers named "CLPlotFileLayer1",
 * "CLPlotFileLayer2", ... by RvImCLToRIF's layerName) is milled with the
 * offsets made by the library's router instead of the host. With
 * plotterClass 0 the export
 *  1. turns and merges the numbered layers into "CLRouterBaseOffsetLayer"
 *     (holes and outer shapes in opposite senses, shapes with holes as
 *     compounds), registered under "CLRouterOffsetPath" in a new table that
 *     becomes the router start, end and plot table;
 *  2. mills every art of that table (paths of compounds one by one) in the
 *     passes of its condition (conditionSource 3: conditionKey; 1 or 2: the
 *     art's plot info, which the merged copies don't have), as the milling
 *     writer does: at pass 1 and at every change of the Milling value m of a
 *     closed art, the art is offset anew by (m - m of pass 1) / 2 into the
 *     layer "CLRouterOffsetLayerA" (made anew for each art), whose paths,
 *     with plot info "CLRouterCutCondition", are milled: the first gets the
 *     start nearest to where the tool stands, each path runs the other way
 *     when its source ran clockwise, gets its automatic joints with
 *     outputMicroJoints (routerJointCount joints of routerJointLength) and a
 *     lead with routerLeadIn; an open art is milled as it stands;
 *  3. with writeToolDefaults -1, mills the clearing lines of
 *     RvExCLCreateHatching, every art of "Rivlen_ContourPathLayer" (with
 *     routerUseContour) or "Rivlen_HatchingPathLayer", each curve joined to
 *     the one before without a lift when it starts closer than twice the
 *     Milling value of pass 1 of conditionKey (in hatching, never when both
 *     lie on one column, x cut to 0.01);
 *  4. with outputMicroJoints, writes "MicroJointLayer" as RvExRIFToRVL does.
 * Records are written as they stand: no art matrix, placement or flip. The
 * condition block (rows 51, 13, 49, 52, 47, 45, 54), the depth changes
 * over joints and the rows of the joint writer are always written in the
 * tool-machine dialect (1), the moves and draws in param's dialect. The
 * joints are built, as in RvExRIFMillingToRVL, at the first pass below
 * jointDepthLimit; after the job each is cut free at Thickness -
 * CuttingDepth of its passes held at -1.5 or above (1.5 below the sheet at
 * most), where a plain milling job holds its depths at 0. Each art of the
 * table is offset by itself, per pass, into "CLRouterOffsetLayerA": an
 * offset of the whole job into one layer per pass would mill every art
 * once for each art of the table, so the route has none. The layers that
 * the route makes stay in the document. Any other plotterClass writes only
 * step 4.
 * Placement of a lead: the three records (the start point again, then the
 * lead point twice) go behind the path's last point, and the start segment
 * becomes the point count + 1, the first lead point; the path leaves the
 * lead point, runs round from point 0 and comes back to it. A lead point
 * lies 2.0 from the start on the bisector of its corner, beside the cut
 * (outside an outer shape, inside a hole); where it would fall on the wrong
 * side, the lead has no length. Automatic joints: a text of more than 127
 * characters leaves out the numbers that don't fit; a count below 1 makes
 * no joints. */

/** Writes the CL job of document documentIndex (made active) as a milling
 *  job into the file path, truncated first; param is copied. 0x09001D01 for a
 *  bad document, 0x01000201 when the file can't be opened, 0x06001001 for a
 *  null param or a condition key whose pass can't be read, 0x08004001 for a
 *  drawing beyond the clipper's grid, 0x08000E01 for a path too long to be
 *  turned (as RvExCLCreateHatching), 0x01000301 when the file can't be
 *  written; a failure of an art shows "JudgeArtForMilling:Error" (title
 *  "test") on the message sink. What was written and made before a failure
 *  stays. */
RV_API uint32_t RvExCLMillingToRVL(const char* path, int16_t documentIndex, const RVPLOTPARAM* param);

/* How the router writers read the drawing, where the rules leave a choice:
 *  - The condition of a milled art comes from its key as in the cutting
 *    writer (conditionSource 3: conditionKey; 1, 2: the plot info). An art
 *    without plot info, or a key that names no media, is milled once
 *    without a condition block and without offsets. A pass whose extension
 *    isn't a milling record (a table of another machine family) enables
 *    none of Rpm, CuttingDepth, ZSpeed, Milling.
 *  - The depth that the joints compare with jointDepthLimit is 0 until a
 *    pass enables CuttingDepth.
 *  - A pass whose Milling value isn't enabled keeps the offset that the pass
 *    before left, which is the difference to pass 1 once an offset was made.
 *  - The joints of an art are read from its components at pass 1 (the last
 *    tagged component wins) and apply to every Bezier of the art at every
 *    pass, offset arts included; joint indexes outside a component are never
 *    met and make no stretch. A tag with fewer numbers than its count has
 *    the joints that its numbers give.
 *  - An open path is walked forward whatever CutDirection says; its joints
 *    are copied forward too.
 *  - The path of a joint stretch takes the matrix of the art it was copied
 *    from. "MicroJointLayer" is added as the last layer and the current layer
 *    stays as it was; after a failure it stays in the document until the
 *    next job that writes it.
 *  - A tile whose key has no counted art is placed by its rectangles alone
 *    (drawTileFrames) or at the origin. With expandDocument, every tile is
 *    grown from the document box as it was before the job.
 *  - The milling writer and the joint writer keep the pen of the last tool
 *    that maps to a pen for a tool that maps to none (0 at the start). */

/* Register marks set freely by the user arrive in any order; the machine
 * reads them along a closed round. */

/** The most points an RVTOMBOPOINTS record holds. */
#define RV_TOMBO_MAX_POINTS 2500

/** Register mark points, input and output of RvFreeTomboSort: count, then
 *  count points (x, y) in millimetres. */
typedef struct RVTOMBOPOINTS {
  int32_t count;
  RVPOINT points[RV_TOMBO_MAX_POINTS];
} RVTOMBOPOINTS;

/** Puts the points of input into the order in which they lie round their
 *  common centre (the mean of the x and of the y), beginning with input's
 *  first point, and writes them to output->points. The order is that of the
 *  angle atan2(centre.x - x, centre.y - y), ascending; points of equal angle
 *  have no defined order among themselves. Of two points equal to the first
 *  one, the one that sorts first begins the list. output->count isn't
 *  written: the caller sets it or keeps the input's. input and output may be
 *  the same record. A first point that is not a number matches no point, and
 *  the list then stays in angle order.
 *  Library extension: a null input or output, or an input count outside 0 to
 *  RV_TOMBO_MAX_POINTS, returns 0x0A002001 and writes nothing; a count of 0
 *  writes nothing and returns 0. */
RV_API uint32_t RvFreeTomboSort(const RVTOMBOPOINTS* input, RVTOMBOPOINTS* output);

/* ======================================================================
 * Path generation
 * ====================================================================== */

/** One straight line of the generators, in drawing units. The marks are 65535
 *  while unset; the hatching order keeps the index of a line's mesh cell in
 *  firstMark and of its region in secondMark. */
typedef struct RVHATCHLINE {
  double x1, y1; /**< first end */
  double x2, y2; /**< second end */
  uint16_t firstMark;
  uint16_t secondMark;
} RVHATCHLINE;

/** Parameters of RvCreateHatching. RvInitializeHatchingInfo writes the
 *  defaults given with each field. */
typedef struct RVHATCHINGINFO {
  double pitch;                /**< distance of the lines, mm (5.0) */
  double startShift;           /**< moves each line's start back against its travel, mm, kept as absolute value (0) */
  double endShift;             /**< moves each line's end back, mm, kept as absolute value (0) */
  double angle;                /**< direction of the lines, radians (0) */
  double offset;               /**< offset of the shapes before hatching, mm, negative inward (0) */
  RVRIFMATRIX matrix;          /**< applied to the shapes before the rotation (identity) */
  int32_t headFromRight;       /**< choice of the head's start corner (0) */
  int32_t evenOddFill;         /**< not 0: even-odd clipping; 0: non-zero (0) */
  int32_t spreadLines;         /**< not 0: a remainder of the height gets one more line (1) */
  int32_t generate;            /**< 1 lines only, 2 frame only, other: lines and frame (1) */
  double frameOffset;          /**< offset of the frame, mm (0) */
  int32_t includeOpenPaths;    /**< not 0: open paths go into the offset (0) */
  int32_t frameOpenPaths;      /**< not 0: open paths are offset for the frame too; 0: copied (0) */
  int32_t keepShift;           /**< not 0: the shifts stay on the final lines (1) */
  double joinLimit;            /**< lines on one y closer than this are joined, mm (0) */
  double lineStartExtension;   /**< length added before each line's start when head moves are measured (0) */
  double lineEndExtension;     /**< length added behind each line's end in the same way (0) */
  int32_t reserved;            /**< carried, not read (5) */
  double meshWidth;            /**< column width of the mesh (0) */
  double meshHeight;           /**< row height of the mesh (0) */
  double boxMarginX;           /**< margin in x when region boxes are merged (0) */
  double boxMarginY;           /**< margin in y when region boxes are merged (0) */
  char logFolder[1024];        /**< folder of the order log; empty: no log. The two
                                    log files "HatchingLogFile.txt" and
                                    "HatchingLogFile2.txt" are joined to the folder
                                    with "/" (so the folder needs no closing
                                    separator); a joined name longer than 1023
                                    characters, or a folder that can't be written,
                                    means no log, and is no failure of the hatching */
} RVHATCHINGINFO;

/** Order of the hatch lines. RvCreateHatching tries three order rules on the
 *  clipped lines (5: a two-column mesh in each region, 4: rows of each region
 *  from its nearest corner, 6: a mesh split at the shapes' tangent lines in
 *  each region), measures for each the pen-up travel between lines and keeps
 *  the cheapest; a tie keeps the earlier rule. Regions are the boxes of the
 *  offset shapes, merged where they lie within boxMarginX/boxMarginY of each
 *  other, so that the head finishes one island before it goes to the next.
 *  - Lines with equal keys in the order's sorts keep the order they had: every
 *    sort is stable, so in the end the clipper's order decides among them.
 *  - The log: each ordering appends one record to one of the two files; they
 *    take turns at 100000 bytes, and a full file is deleted once the other is
 *    more than half full.
 *  - Library extension: a mesh or a region set of more than 65534 pieces
 *    (which the 16-bit marks of RVHATCHLINE can't tell apart) ends the rule
 *    that needs it; that rule then isn't chosen, and if it was the chosen one
 *    the lines keep the clipper's order. The sweep for the tangent lines stops
 *    after 1 km of a region's width. */

/** Parameters of RvCreateContour: the fields of RVHATCHINGINFO and one more.
 *  Contour reads angle, offset, matrix, includeOpenPaths and cornerLines;
 *  the other fields are copied and not read. */
typedef struct RVCONTOURINFO {
  double pitch;
  double startShift;
  double endShift;
  double angle;                /**< radians; the work space turns by -angle */
  double offset;               /**< step between echoes, negative towards the inside */
  RVRIFMATRIX matrix;          /**< start of the work matrix */
  int32_t headFromRight;
  int32_t evenOddFill;
  int32_t spreadLines;
  int32_t generate;
  double frameOffset;
  int32_t includeOpenPaths;    /**< not 0: open paths take part */
  int32_t frameOpenPaths;
  int32_t keepShift;
  double joinLimit;
  double lineStartExtension;
  double lineEndExtension;
  int32_t reserved;
  double meshWidth;
  double meshHeight;
  double boxMarginX;
  double boxMarginY;
  char logFolder[1024];
  int32_t cornerLines;         /**< 1: make corner lines; RvInitializeContourInfo leaves it alone */
} RVCONTOURINFO;

/* ---- Cut preview of a plot job ----
 * The host shows what a job will cut as flat point lists that fit its
 * window, one list per pass of the tool. The order of calls:
 * RvExCLConvertToBezierArt, RvExCLSetCutPreviewMatrix,
 * RvExCLMakeCutPreviewData, the getters, and RvExCLInitializeCutPreviewData
 * when the preview closes. The library keeps the passes and points (one
 * store for the process) from RvExCLMakeCutPreviewData until
 * RvExCLInitializeCutPreviewData, and owns them; a second
 * RvExCLMakeCutPreviewData appends. The getters copy into arrays that belong
 * to the host and that the host sized by RvExCLGetCutPreviewDataCount;
 * nothing the host receives needs to be freed. A null output is skipped. */

/** One pass of the preview: one component of a path. */
typedef struct RVCUTPREVIEWPASS {
  int32_t pointCount; /**< points of this pass in the point list */
  int32_t clockwise;  /**< 1 when the component runs clockwise (y up) */
  int32_t closed;     /**< the path is closed */
  uint16_t passType;  /**< by the path element values (element, value):
                           0 element -1; 1 (0, 0); 2 (0, 1); 3 any other */
} RVCUTPREVIEWPASS;

/** Builds the layer "PreviewDataLayer" in front of the active document's
 *  layers from "KFPlotFileLayer": each path (those of compounds inside a new
 *  compound; groups and other arts are left out) is copied with its closed
 *  flag, attribute flags and path element values, and its components are
 *  joined into one Bezier, arcs as Bezier points (as in RvImCLToRIF). The
 *  bounds of the copy are stored as the bounding box of the copy and of the
 *  original path. Library choice: a path without path element values (one
 *  that wasn't read from a plot file) reads as element -1, value 0.
 *  0x03001001 when there is no layer "KFPlotFileLayer", 0x09001D01 without an
 *  active document, 0x08000E01 for an arc too large to convert. */
RV_API uint32_t RvExCLConvertToBezierArt(void);

/** Fits the job into a window of width x height units with a margin of 10
 *  on each side. The job's bounds are the union of all zeros (so the origin
 *  always lies inside) with the bounds of the paths of "KFPlotFileLayer"
 *  (also inside compounds) that have attribute flag 2 and not 16. With w, h
 *  the bounds' extents (exchanged for orientation 1), the scale is the
 *  smaller of (height - 20)/h and (width - 20)/w, and the job is centred in
 *  width - 1 by height - 1; scale and centring offsets are rounded to single
 *  precision. orientation 2 keeps y upward; 0 turns it downward for a
 *  screen; 1 turns the job a quarter turn counter-clockwise first, then y
 *  downward. An empty job gives extents of 0 and a scale that isn't finite:
 *  the host doesn't set a matrix for it. 0x03001001 without
 *  "KFPlotFileLayer" (0x09001D01 without an active document). The art's own matrix plays no part in the preview: the
 *  copies are taken as unrotated. */
RV_API uint32_t RvExCLSetCutPreviewMatrix(uint16_t orientation, double width, double height);

/** Makes the document documentIndex active and appends one pass per
 *  Bezier or arc component of the paths of "PreviewDataLayer" (those of
 *  compounds in their place), in order, stopping at the first path with
 *  attribute flag 16. A pass holds, for each curve from a point to the next
 *  (a closed path also from its last point to its first), the points of the
 *  curve mapped by the matrix and flattened with maxLength 5.0 and tolerance
 *  0.3 (its first point, then the ends of its chords): the end of one curve
 *  and the start of the next stand twice. 0x09001D01 for a bad document,
 *  0x03001001 without "PreviewDataLayer", 0x08000E01 for a curve too large;
 *  the passes made before a failure stay. */
RV_API uint32_t RvExCLMakeCutPreviewData(uint16_t documentIndex);

/** *passCount := the number of passes, *pointCount := the number of points
 *  of all passes. Always 0. */
RV_API uint32_t RvExCLGetCutPreviewDataCount(int32_t* passCount, int32_t* pointCount);

/** Copies every pass, in order, into passes[0 .. passCount - 1]. Always 0. */
RV_API uint32_t RvExCLGetCutPreviewData(RVCUTPREVIEWPASS* passes);

/** The pass index: its point count, clockwise and closed (0 or 1) and pass
 *  type. An index below 0 or beyond the last pass gives four zeros. Always
 *  0. */
RV_API uint32_t RvExCLGetCutPreviewDataPerPass(int32_t index, int32_t* pointCount, uint8_t* clockwise,
                                               uint8_t* closed, uint16_t* passType);

/** Copies the points of all passes, one pass after the other, into
 *  points[0 .. pointCount - 1]. Always 0. */
RV_API uint32_t RvExCLGetCutPreviewPointData(RVPOINT* points);

/** Drops every pass and point, then deletes the active document (its code:
 *  0x09001D01 when none is active; the data are dropped all the same). */
RV_API uint32_t RvExCLInitializeCutPreviewData(void);

/* ---- Clearing of a CL job ---- */

/** Clears the area of the CL job in document documentIndex (made active)
 *  with hatching or contour lines. A new "Rivlen_HatchingWorkLayer" gets a
 *  copy of each path of "CLTempFileLayer" (compounds as new compounds), its
 *  components joined into one Bezier (arcs as Bezier points), turned so that
 *  outer shapes run clockwise and holes counter-clockwise. A new RefMap table
 *  becomes the hatching plot, hatching start and end and main table. With
 *  m the Milling value of pass 1 of param's conditionKey (0 when not
 *  enabled): pitch m - routerOverlap (0.2 when that isn't above 0), offset -m
 *  with routerInside else routerOverlap, angle 4.71238899230957, even-odd
 *  fill, lines only, cornerLines routerCornerLines; then RvCreateContour
 *  (routerUseContour) or RvCreateHatching with their codes. The copies carry
 *  no plot info: the generators then give their lines none (number 0, empty
 *  text). 0x09001D01 for a bad document, 0x03001001 without
 *  "CLTempFileLayer", 0x06001001 for a null param or a key that names no
 *  media, 0x08000E01 when a path is too long for the judgment that turns
 *  holes against outlines (more than a million points of 2 mm: a drawing
 *  of kilometres, beyond the clipper's grid anyway). */
RV_API uint32_t RvExCLCreateHatching(uint16_t documentIndex, const RVPLOTPARAM* param);
/* Both generators read the layer "Rivlen_HatchingWorkLayer" of the active
 * document, which the host fills with the shapes: closed paths (or
 * compounds of closed paths, an outline with its holes) whose first
 * component is a Bezier, attribute bit 2 set and bit 16 clear. Only the
 * first component of a path is read. Results are filed in the table that
 * RvGiSetRefMapHatchingPlotIndex names, with info 7, and stay in the
 * document until the host removes them; a second run adds to them. Offsets
 * and clips run on a grid of one micrometre: a coordinate becomes
 * coordinate x 1000 truncated toward zero (1.9999 mm is 1999), and comes
 * back x 0.001. Corners of an offset are cut square (miter limit 2.0, arc
 * tolerance 0.25 micrometre). An offset that grows an open path widens it
 * with square ends; an offset that shrinks leaves nothing of it.
 *
 * Codes of the generators beyond the general table (checked before
 * anything of the drawing changes, unless said otherwise):
 *   0x00000001  RvCreateHatching: the offset shapes or the frame came out
 *               empty (an empty or missing work layer, or an offset that
 *               shrinks everything away); nothing was made by that step,
 *               what the other step made stays.
 *   0x08004001  a number of the record (angle, offset, frameOffset, a
 *               matrix field) isn't finite, or a point of the work layer
 *               (after its matrices) or an offset isn't finite or lies
 *               beyond 1000000 mm (one kilometre).
 *   0x08004101  the clipping library refused the paths it was given; what
 *               was made before stays.
 *   0x08004201  the table of hatching plots names no table, or, for the
 *               lines of RvCreateHatching, the current RefMap table
 *               (RvGiSetRefMapIndex) names none.
 *   0x08004301  RvCreateHatching with lines (generate other than 2): pitch
 *               isn't a positive finite number.
 *   0x08004401  RvCreateHatching: the stack would hold more than 1000000
 *               lines (height / pitch); found once the offset layer is
 *               made, which stays.
 *   0x08004501  RvCreateContour: offset isn't a negative finite number (an
 *               offset of 0 or more would never shrink to nothing).
 *   0x08004601  RvCreateContour: the shapes would need more than 100000
 *               echoes (half their extent / the step).
 *   0x08004701  a null document pointer or a null record.
 *   0x09001D01  *document names no document.
 *   (The results carry the plot info of the work layer's first path; a first
 *   path without plot info, such as the copies that RvExCLCreateHatching
 *   makes, gives them none: number 0 and empty text. Library choice.)
 *   0x08001901  the record's matrix can't be inverted (lines: after their
 *               order is done; frame and contour: before their output). */

/** Writes the defaults given with the fields of RVHATCHINGINFO. Returns 0;
 *  a null record is left alone. */
RV_API uint32_t RvInitializeHatchingInfo(RVHATCHINGINFO* info);

/** Covers the shapes of "Rivlen_HatchingWorkLayer" with parallel lines.
 *  The record is copied (shifts as absolute values). In every compound of
 *  the work layer the paths are first turned so that holes run
 *  counter-clockwise and outlines clockwise (plain paths stay as they are).
 *  Unless generate is 2: the shapes, mapped by their own matrix, by
 *  info->matrix and turned by -angle, are offset by `offset` (shortened by
 *  0.1 when below -0.1) into "Rivlen_HatchingOffsetLayer" (key
 *  "RivlenHatchingOffset"); horizontal lines a pitch apart over the box of
 *  the arts with attribute bit 2 in the current RefMap table (so the host
 *  makes that the hatching table) are clipped by them (even-odd with
 *  evenOddFill, else non-zero), put in cutting order and turned back into
 *  two-point paths of "Rivlen_HatchingPathLayer" of document *document (key
 *  "RivlenHatchingLine", black stroke "HatchingColor", flags 7). The offset
 *  paths used for clipping lose attribute bit 2. Unless generate is 1: the
 *  shapes, mapped by their own matrix and info->matrix, are offset by
 *  frameOffset into "Rivlen_HatchingFrameLayer" (key "RivlenHatchingFrame")
 *  and mapped back; an open path without frameOpenPaths is copied there
 *  whole, with its components, under its own attribute flags.
 *  Returns 0, 1 (nothing made, see above) or a code. */
RV_API uint32_t RvCreateHatching(int16_t* document, const RVHATCHINGINFO* info);

/** Library extension. The pen-up travel of the last hatching's line order,
 *  in millimetres of the turned work space: *chosen in the order applied,
 *  *clipper in the order the clipping gave the lines, both measured as the
 *  order rules measure (shifts and extensions on, from the head's start
 *  corner). A run that orders no lines leaves the figures of the run before;
 *  -1.0 before any ordering. 0x08004701 for a null pointer. */
RV_API uint32_t RvGetHatchingTravel(double* chosen, double* clipper);

/** Writes the defaults of RVHATCHINGINFO into the shared fields; cornerLines
 *  isn't touched. Returns 0; a null record is left alone. */
RV_API uint32_t RvInitializeContourInfo(RVCONTOURINFO* info);

/** Fills the shapes of "Rivlen_HatchingWorkLayer" with inward echoes: the
 *  shapes (their own matrix applied) are offset by step x level, level 1,
 *  2, ... until an echo is empty; step is `offset`, shortened by 0.1 when
 *  below -0.1. Echo n goes to the layer "TempContourLayer<n>" (key
 *  "RivlenContourOffset<n>"), which stays. With cornerLines 1 a line is
 *  drawn from each sharp corner (a turn under 90 degrees) of the echoes from
 *  the second on, along its bisector, to the next outer echo (reach 50 mm);
 *  lines of successive echoes on one bisector are merged. Then the echoes
 *  are copied into "Rivlen_ContourPathLayer" of document *document,
 *  innermost first (a compound with its smallest path first), followed by
 *  the corner lines (key "RivlenContourLine", black stroke "ContourColor").
 *  The copies get no RefMap entry. Paths are taken as they run: a hole
 *  must run against its outline, or the two merge into the outline. An
 *  empty or missing work layer makes no
 *  echo and an empty "Rivlen_ContourPathLayer": code 0. A failure while an
 *  echo is made ends the echoes; the ones made are still copied and then the
 *  code is returned. angle and matrix don't move the result; a singular
 *  matrix fails before the output.
 *  Left to the implementer, chosen here: an offset of 0 or more is refused
 *  (0x08004501) and so is a run of more than 100000 echoes (0x08004601),
 *  both before anything changes; corner lines are looked for on every
 *  path of an echo layer, in compounds too; a corner whose bisector meets
 *  no path of the next outer echo within the reach makes no line (and
 *  takes no part in merging). Where the bisector meets several paths, the
 *  last one met in layer order gives the line's end, not the nearest. */
RV_API uint32_t RvCreateContour(int16_t* document, const RVCONTOURINFO* info);

/* ======================================================================
 * Cut conditions
 * ====================================================================== */

/* One condition table exists per process. It serves one machine family at a
 * time, set by RvLoadCutCondition and RvLoadFromCSV (0 until then):
 *   0 TQ (and every number not listed), 1 WD, 2 WD3, 3 WD3K (milling),
 *   4 BNS, 5 TQ2, 6 TQNV, 7 WDP, 8 YBNS, 9 TQNV2, 10 WD22, 11 SOVE (laser),
 *   12 SOPI (laser), 13 HWD (coating), 14 TQHB, 15 WDZK (milling), 16 WDZ,
 *   17 the favourite file.
 * A media (a named material) has a list of conditions, one per pass.
 *
 * Text: every string in these records and arguments is zero-ended text in
 * the encoding of the user's default locale (LC_CTYPE from the environment).
 * Condition files are UTF-8; the library converts between the two while it
 * reads or writes, and cuts a text that doesn't fit its field at a character
 * boundary. A character that the locale can't represent becomes '?'. Numbers
 * in files are always written and read with a '.' as decimal mark. The
 * library changes no locale setting of the process: it works under a
 * thread-local locale that it drops before the call returns. */

/** Sizes of the text fields of CondRecord, terminator included. */
#define RV_COND_TOOL_SIZE 32
#define RV_COND_TEXT_SIZE 64
/** Limit of a media name in a condition file, terminator included. */
#define RV_COND_NAME_SIZE 256
/** Number of slots of each favourite list. */
#define RV_FAVORITE_COUNT 250

/** How the cutting families split long lines into parts. Available is -1
 *  where the family (machine type 0) has no such thing, else 0 or 1. */
typedef struct DivideCutRecord {
  int32_t Available;
  int32_t divideKind;
  double minLength;
  double limitAngle; /* degrees */
  int32_t divideSide;
  double jointLength;
} DivideCutRecord;

/** One cut condition. Each family uses its own fields; the others are
 *  carried along but have no meaning (the library fills them with zero when
 *  it builds a record itself). Records compare field by field, text up to its
 *  terminator, doubles exactly; a record that differs in any field, also one
 *  of another family, is a different record. Text longer than its array is
 *  cut to fit (terminator in the last byte). */
typedef struct CondRecord {
  char Tool[RV_COND_TOOL_SIZE]; /* all but laser and coating; 31 bytes in files */
  uint32_t hasSpeed;            /* 0 or 1: Speed / SpeedDecimal is set */
  uint32_t hasPress;            /* 0 or 1: Press is set */
  uint32_t hasOffset;           /* 0 or 1: Offset is set */
  int16_t Speed;                /* whole-number speed */
  int16_t Press;
  double Offset;
  double Thickness;    /* WD3K, WDZ, WDZK */
  double SpeedDecimal; /* decimal speed: WDP, WD22, WDZ and milling */
  double LaserSpeed;
  double LaserPower;
  int16_t LaserFreq;                 /* SOVE */
  char LaserDpi[RV_COND_TEXT_SIZE];  /* SOPI */
  int32_t CutDirection;              /* milling */
  char InkName[RV_COND_TEXT_SIZE];   /* coating from here ... */
  char MediaType[RV_COND_TEXT_SIZE];
  double MediaThickness;
  char NozzleType[RV_COND_TEXT_SIZE];
  double CoatingThickness;
  double Gap;
  char NozzleRotation[RV_COND_TEXT_SIZE]; /* a whole number as text */
  double FlowRate;
  double AtomizationPress;
  double CoatingSpeed;
  double Pitch;
  double SpeedAdjust;
  double PitchAdjust;
  int32_t CoatingFillDirection;
  double MisalignmentCorrect;
  double CoatingJoinLimit;
  double CoatingFillOffset; /* ... to here */
  int16_t WDZUnit;          /* WDZ, WDZK: number of the tool unit */
  double ZPosition;         /* WDZ, WDZK */
  int32_t VCutType;         /* WDZ */
  double VCutOffset;        /* WDZ */
  DivideCutRecord DivideCut;
} CondRecord;

/** The extension of a condition for every family but milling. */
typedef struct ThetaExtension {
  int32_t Available;
  double values[6];
} ThetaExtension;

/** The extension of a condition for the milling families (3 and 15). */
typedef struct MillingExtension {
  uint32_t hasRpm;          /* 0 or 1 */
  uint32_t hasCuttingDepth; /* 0 or 1 */
  uint32_t hasZSpeed;       /* 0 or 1 */
  uint32_t hasMilling;      /* 0 or 1 */
  int16_t Rpm;
  double CuttingDepth;
  int16_t ZSpeed;
  double Milling;
} MillingExtension;

/** A condition and its extension: a ThetaExtension or, with machine type 3
 *  and 15, a MillingExtension. Pairs that the library hands out point into
 *  its store of conditions: they stay valid until the process ends, also
 *  after the media was deleted, and must not be written through. A pair that
 *  the host hands in is copied; a null extension counts as one of zeros. */
typedef struct CondPair {
  const CondRecord* record;
  const void* extension;
} CondPair;

/** One pass of a milling job as RvCLSetCutCondition takes it. */
typedef struct CLCondition {
  char Tool[RV_COND_TOOL_SIZE];
  uint32_t hasSpeed;
  double Thickness;
  double SpeedDecimal;
  int32_t CutDirection;
  uint32_t hasRpm;
  uint32_t hasCuttingDepth;
  uint32_t hasZSpeed;
  uint32_t hasMilling;
  int16_t Rpm;
  double CuttingDepth;
  int16_t ZSpeed;
  double Milling;
  int16_t WDZUnit;
} CLCondition;

/** One entry of a favourite list: a tool or media bound to a file and stroke
 *  title (colour lists) or to a layer title (layer lists). */
typedef struct FavoriteEntry {
  char title[101];       /* file title or layer title */
  char strokeTitle[101]; /* stroke title; unused in the layer lists */
  char value[65];        /* tool or media name */
} FavoriteEntry;

/** Called for each pass of each media in a condition trace. name is the
 *  media name, valid for the length of the call; pair is a copy that the
 *  library holds for the call. Return 0 to go on; any other value ends the
 *  trace and becomes its result. The callback must not change the table. */
typedef int32_t (*RvCutConditionTraceFunc)(void* ctx, const char* name, const CondPair* pair);
/** Called for each media in a name trace; as RvCutConditionTraceFunc. */
typedef int32_t (*RvMediaNameTraceFunc)(void* ctx, const char* name);

/** Puts a condition into the list of media before position repeatIndex (0
 *  first; the count appends), making the media at the end of the media order
 *  if it doesn't exist. 0x06001001 for an index outside 0..count (a media made
 *  by the call stays, empty), a null media or a null record. */
RV_API uint32_t RvAddCutCondition(const char* media, int32_t repeatIndex, const CondPair* pair);
/** Makes a new media at position of the media order with pair as its only
 *  condition. 0x06001001 if the media exists or position is outside 0..count. */
RV_API uint32_t RvInsertCutCondition(const char* media, int32_t position, const CondPair* pair);
/** Replaces all conditions of media by count milling passes; the media goes
 *  to the front of the media order. count 0 just removes the media. */
RV_API uint32_t RvCLSetCutCondition(const char* media, const CLCondition* records, int32_t count);
/** Removes condition index (0 first) of media; a media with one condition is
 *  removed whatever index says. 0x06001001 for an unknown media or index. */
RV_API uint32_t RvDeleteCutCondition(const char* media, int32_t index);
/** Removes a media with all its conditions; an unknown media is no failure. */
RV_API uint32_t RvDeleteCutConditionByMedia(const char* media);
/** Removes all media. The machine type stays. */
RV_API uint32_t RvDeleteAllCutCondition(void);
/** For each media in order and each of its passes: callback(ctx, name, pair). */
RV_API uint32_t RvCutConditionTrace(void* ctx, RvCutConditionTraceFunc callback);
/** The same for one media; an unknown media makes no call and returns 0. */
RV_API uint32_t RvCutConditionTraceByKey(const char* media, void* ctx, RvCutConditionTraceFunc callback);
/** For each media in order: callback(ctx, name). */
RV_API uint32_t RvGetMediaNameTrace(void* ctx, RvMediaNameTraceFunc callback);
/** Copies the pair of pass repeat (1 first) of media. An unknown media returns
 *  0 and leaves *pair as it was; repeat outside 1..count gives 0x06001001. */
RV_API uint32_t RvGetCutConditionByKeyAtRepeat(const char* media, int32_t repeat, CondPair* pair);
/** The number of conditions of media, 0 for an unknown media. No code. */
RV_API int32_t RvGetRepeatCount(const char* media);
/** Sorts the media order by name, bytewise. 0x06001001 on an empty table. */
RV_API uint32_t RvSortCondition(void);
/** Sets the machine type and fills the table, which must be empty (else
 *  65535), from a condition file. XML codes: 13 the file can't be loaded (or
 *  has more than one root element), 15 wrong root or a required element
 *  missing or empty, 65535 no version. The media read before a failure stay.
 *  A number that doesn't scan stays unset (-1). Element texts are cut at 255
 *  characters. In a coating file of version "1.00" AtomizationPress is 0.1
 *  whatever the file holds. With machine type 5 and a path that contains
 *  "CurrentTQCondition.xml" a tool beginning with CT4, CT5, PIN or HLF is
 *  replaced as a whole by CT6, CT7, CT4 or CT5 (also on import). */
RV_API uint32_t RvLoadCutCondition(uint16_t machineType, const char* path);
/** Adds the media of a condition file of the machine type in force. A name
 *  that exists gets "-1" to "-128" behind it, the name cut so that it keeps
 *  64 characters; a name of more than 64 characters is cut to 64. */
RV_API uint32_t RvImportCutCondition(const char* path);
/** Writes the table as a condition file of the machine type in force
 *  (UTF-8, no white space between elements). 14 if it can't be written. */
RV_API uint32_t RvSaveCutCondition(const char* path);
/** Sets the machine type, fills the empty table (else 65535) from a CSV file
 *  of lines "name,tool,speed,press,offset" and writes it as a condition file
 *  at xmlPath. A run of commas counts as one; a line with fewer than five
 *  fields and a last line without line end are skipped; a line longer than
 *  1047 bytes is read in pieces; the name is cut to 255 bytes, the tool to
 *  31. Speed is a whole number (the low 16 bits of a larger one); families
 *  with decimal speed take it as their decimal speed too. Other elements of
 *  the family have no source and are written as -1. 0x01001001 if the CSV
 *  file can't be opened (the machine type is set all the same). */
RV_API uint32_t RvLoadFromCSV(uint16_t machineType, const char* csvPath, const char* xmlPath);
/** Reads the favourite file (machine type 17) into the four arrays of
 *  RV_FAVORITE_COUNT slots, from slot 0; a list with more entries stops at
 *  the limit. A file that can't be opened returns 0 and leaves the arrays
 *  as they are. A null array skips its list. */
RV_API uint32_t RvReadFavoriteFile(uint16_t machineType, const char* path, FavoriteEntry* colorTools,
                                   FavoriteEntry* colorMedias, FavoriteEntry* layerTools,
                                   FavoriteEntry* layerMedias);
/** Writes the favourite file: of each array the first n slots, where n is the
 *  number of slots (out of 250) with a non-empty title. */
RV_API uint32_t RvWriteFavoriteFile(uint16_t machineType, const char* path, const FavoriteEntry* colorTools,
                                    const FavoriteEntry* colorMedias, const FavoriteEntry* layerTools,
                                    const FavoriteEntry* layerMedias);

/* ======================================================================
 * Preference files
 * ====================================================================== */

/* The host keeps its settings in two XML files, which the library reads into
 * the records below and writes back; it gives no meaning to any value. The
 * main file has the root "Kerflow_Preference" and seven sections, one per
 * record RVPREFUSERSETUP to RVPREFDOTBRIDGE; the outline tool's file has the
 * root "KFOutlineTool_Preference" and the section of RVPREFOUTLINETOOL. A
 * section holds groups of keys; each key is an element whose text is its
 * value. A field bears its key's name, with its group's name and "_" in
 * front where two keys of one record share a name.
 *
 * Reading is forgiving: a key (or its group or section) that is missing, or
 * whose text is empty, leaves its field as the caller set it, so the caller's
 * record carries the defaults. A text that doesn't scan as its number leaves
 * the field too. Nothing checks a range: a number too large for its field
 * keeps what the C library's scanning makes of it.
 *
 * Text forms, read and written with a '.' as decimal mark whatever the
 * process's locale:
 *   int16_t "%hd", uint16_t "%hu", int32_t "%d" (int and long keys alike),
 *   float "%f", double "%lf" (six decimals: 0.5 is written 0.500000, and
 *   both 0.5 and 0.500000 read as 0.5), uint8_t (colour components) "%hu",
 *   read into 16 bits of which the low byte is kept.
 * A text field is the key's text in the encoding of the user's default
 * locale (LC_CTYPE from the environment), as for condition files; a
 * character that the locale can't hold becomes '?'. It is cut at a character
 * boundary to the field's size; a text that fills the field exactly has no
 * terminator, so whoever reads a field stops at its width.
 *
 * Buffers: a key's text is taken at most 255 characters long in the section
 * TomboEnv, 2047 in Dotbridge and 511 in the others; the rest isn't read.
 * A written key's text is at most 255 characters long, 2047 in Dotbridge;
 * text beyond (a number of more than 255 digits, a field of 256 bytes) is
 * cut there.
 *
 * Versions of the main file: a save writes the version "8.00"; a load brings
 * an older file up to date in memory by a chain of steps, one per version
 * from "2.00" to "9.00", each adding the keys that its version brought (the
 * version's whole number counts: "8.00" and "8.5" run the last step). Only
 * four keys get a text from a step: TQTombo/SepMode "0", SepLineWidth "0.5",
 * SepDirection "0" and SepCount "2" (version "2.00"); so a file of version
 * "1.00" without them loads these four values whatever the caller had set.
 * A key that a step adds stands behind a key of that name that the file has
 * already, and the file's own one is read. A version of 9 or more, or below
 * 1, runs no step. Left to the implementer: a version that doesn't begin
 * with a number (after white space and a sign) counts as 0, so no step runs.
 * The file on disk changes only by a save.
 *
 * Codes of the four functions: 13 the file can't be read or isn't XML; 14
 * the file can't be written; 15 the root has another name or the document
 * has none (also when every section is there); 65535 the main file's root has
 * no attribute "version". A load that fails leaves every record untouched.
 * Besides, a main file older than "9.00" whose root has no section
 * PlotterUserSetup fails with 15 after its steps, its records untouched; a
 * file of "9.00" or later without it loads the other sections. A DOM failure
 * inside one section stops that section only, and the result doesn't show it.
 * Library extension: a null path fails a load with 13 and a save with 14; a
 * null record pointer is passed over: its section isn't read, and a save
 * leaves it out of the file. */

/** Text sizes of the preference records, in bytes. */
#define RV_PREF_TEXT16 16
#define RV_PREF_TEXT32 32
#define RV_PREF_TEXT64 64
#define RV_PREF_TEXT128 128
#define RV_PREF_TEXT256 256
#define RV_PREF_TEXT300 300

/** Section PlotterUserSetup of the main file. Keys Setup, PluginName and
 *  Version stand in the section itself; the others in the groups Plotter,
 *  Communication, Machine, PlotDialog, AlertDisplay and EtcInfo. */
typedef struct RVPREFUSERSETUP {
  int32_t Setup;
  char PluginName[RV_PREF_TEXT64];
  char Version[RV_PREF_TEXT16];
  char Model[RV_PREF_TEXT128];           /* Plotter/ */
  char Command[RV_PREF_TEXT32];          /* Plotter/ */
  char StepSize[RV_PREF_TEXT32];         /* Plotter/ */
  char ApproximateType[RV_PREF_TEXT32];  /* Plotter/ */
  int16_t PortType;                      /* Communication/ */
  char CommPort[RV_PREF_TEXT32];         /* Communication/ */
  char CommSpeed[RV_PREF_TEXT16];        /* Communication/ */
  char CommHighSpeed[RV_PREF_TEXT16];    /* Communication/ */
  char CommLength[RV_PREF_TEXT16];       /* Communication/ */
  char CommParity[RV_PREF_TEXT16];       /* Communication/ */
  char CommHandshake[RV_PREF_TEXT16];    /* Communication/ */
  char UsbPort[RV_PREF_TEXT32];          /* Communication/ */
  char LanAddr[RV_PREF_TEXT64];          /* Communication/ */
  char LanIpAddr[RV_PREF_TEXT64];        /* Communication/ */
  double InitSheetWidth;                 /* PlotDialog/ */
  double InitSheetHeight;                /* PlotDialog/ */
  int16_t DisplayMode;                   /* PlotDialog/ */
  int32_t OpenPath;                      /* AlertDisplay/ */
  int32_t OutlineWidth;                  /* AlertDisplay/ */
  int32_t DisablePath;                   /* AlertDisplay/ */
  int32_t TomboRecog;                    /* AlertDisplay/ */
  int32_t PlotCondition;                 /* AlertDisplay/ */
  int32_t OnlineInfo;                    /* EtcInfo/ */
  int32_t MoveToCutLayer;                /* AlertDisplay/ */
  int32_t FavoriteApply;                 /* EtcInfo/ */
  int16_t FavoriteSub;                   /* EtcInfo/ */
  int32_t FavoriteNoPlot;                /* EtcInfo/ */
  double OriginAdjustWidth;              /* Machine/ */
  double OriginAdjustHeight;             /* Machine/ */
  char Printer[RV_PREF_TEXT128];         /* Machine/ */
  char MaxPower[RV_PREF_TEXT64];         /* Machine/ */
  int16_t TomboSearchMode;               /* Machine/ */
  double CameraOffsetWidth;              /* Machine/ */
  double CameraOffsetHeight;             /* Machine/ */
  double HWDOriginAdjustWidth;           /* Machine/ */
  double HWDOriginAdjustHeight;          /* Machine/ */
  int16_t WDZZOriginType;                /* Machine/ */
} RVPREFUSERSETUP;

/** Section PlotPreview of the main file: groups CutEnv, Layout, Tiling,
 *  Tombo and WDTombo. */
typedef struct RVPREFPLOTPREVIEW {
  double SheetWidth;              /* CutEnv/ */
  double SheetHeight;             /* CutEnv/ */
  int32_t IsFrame;                /* CutEnv/ */
  double FrameWidth;              /* CutEnv/ */
  double FrameHeight;             /* CutEnv/ */
  double CopyMarginWidth;         /* CutEnv/ */
  double CopyMarginHeight;        /* CutEnv/ */
  uint16_t UnitType;              /* Layout/ */
  int32_t OriginLock;             /* Layout/ */
  int32_t IDCutOriginLock;        /* Layout/ */
  int32_t IsColorTab;             /* Layout/ */
  double OverlapSize;             /* Tiling/ */
  double MarkSize;                /* Tiling/ */
  double Margin;                  /* Tiling/ */
  int32_t IsMark;                 /* Tiling/ */
  int16_t Tombo_RepeatType;       /* Tombo/RepeatType */
  uint16_t RepeatWidth;           /* Tombo/ */
  uint16_t RepeatHeight;          /* Tombo/ */
  int16_t Tombo_FirstSearchPath;  /* Tombo/FirstSearchPath */
  int16_t Tombo_ContSearchPath;   /* Tombo/ContSearchPath */
  int32_t DistCorrect;            /* WDTombo/ */
  int32_t CrossCut;               /* WDTombo/ */
  int16_t WDTombo_RepeatType;     /* WDTombo/RepeatType */
  int16_t WDTombo_FirstSearchPath; /* WDTombo/FirstSearchPath */
  int16_t WDTombo_ContSearchPath; /* WDTombo/ContSearchPath */
  int32_t SurfaceCut;             /* WDTombo/ */
  int32_t FrameContCut;           /* WDTombo/ */
  double TomboMarginWidth;        /* Tombo/ */
  double TomboMarginHeight;       /* Tombo/ */
  int16_t MediaRotateDir;         /* Tombo/ */
} RVPREFPLOTPREVIEW;

/** Section Plot of the main file: groups Condition, Sort, SheetFeed,
 *  PrvMisCrct, RepeatCreasingTool, HeadMove, AutoCut, LongXDivisionCut and
 *  WDOption. */
typedef struct RVPREFPLOT {
  int16_t ConditionType;                 /* Condition/ ... */
  char DefTQToolName[RV_PREF_TEXT32];
  int16_t DefTQSpeed;
  int16_t DefTQPress;
  double DefTQOffset;
  char DefWDToolName[RV_PREF_TEXT32];
  int16_t DefWDSpeed;
  double DefWDDSpeed;
  int16_t DefWDPress;
  double DefWDOffset;
  char MillSelectName[RV_PREF_TEXT256];
  char SelectName[RV_PREF_TEXT256];
  char SelectToolName[RV_PREF_TEXT32];
  int16_t SelectSpeed;
  double SelectDSpeed;
  int16_t SelectPress;
  double SelectOffset;
  int32_t SelectChkSpeed;
  int32_t SelectChkPress;
  int32_t SelectChkOffset;               /* ... Condition/ */
  int32_t IsSort;                        /* Sort/ */
  int16_t SortType;                      /* Sort/ */
  int32_t IsSheetFeed;                   /* SheetFeed/ */
  int32_t IsPrvMisCrct;                  /* PrvMisCrct/ */
  int32_t IsHeadMove;                    /* HeadMove/ ... */
  int32_t OriginUpdate;
  char MoveWidthMode[RV_PREF_TEXT64];
  char MoveHeightMode[RV_PREF_TEXT64];
  double MoveWidth;
  double MoveHeight;                     /* ... HeadMove/ */
  int32_t IsAutoCut;                     /* AutoCut/ */
  int32_t DetailCut;                     /* AutoCut/ */
  double CutSize;                        /* AutoCut/ */
  int32_t ReverseDirect;                 /* WDOption/ ... */
  int32_t BeforeVacuumOn;
  int32_t AfterVacuumOff;
  int32_t Optimization;
  int32_t Optimization_Cut;
  int32_t MillingOptimization;
  int32_t MicroJoint;
  double JointLength;
  double JointHeight;
  int32_t Pause;                         /* ... WDOption/ */
  double SelectLaserSpeed;               /* Condition/ */
  double SelectLaserPower;               /* Condition/ */
  int16_t SelectLaserFreq;               /* Condition/ */
  char SelectLaserDpi[RV_PREF_TEXT64];   /* Condition/ */
  int32_t IsLongXDivisionCut;            /* LongXDivisionCut/ ... */
  double LongXDivDivisionLeng;
  double LongXDivCrossCutLeng;
  int32_t LongXDivOriginRenewal;
  double LongXDivWidthAdder;             /* ... LongXDivisionCut/ */
  int32_t IsRepeatCreasingTool;          /* RepeatCreasingTool/ */
} RVPREFPLOT;

/** Section TomboEnv of the main file: groups TQTombo, WDTombo, IDTombo and
 *  FreeTombo. ID0 to ID19 are long keys. */
typedef struct RVPREFTOMBOENV {
  int16_t TQTombo_TomboType;  /* TQTombo/TomboType */
  double MarkSize;            /* TQTombo/ */
  double LineWidth;           /* TQTombo/ */
  int32_t FrameTombo;         /* TQTombo/ */
  int32_t RoundTombo;         /* TQTombo/ */
  int32_t TQTombo_TomboMark;  /* TQTombo/TomboMark */
  int32_t TQTombo_SepMode;    /* TQTombo/SepMode */
  double SepLineWidth;        /* TQTombo/ */
  int16_t SepDirection;       /* TQTombo/ */
  int16_t TQTombo_SepCount;   /* TQTombo/SepCount */
  int16_t WDTombo_TomboType;  /* WDTombo/TomboType */
  double TomboSize;           /* WDTombo/ */
  int32_t WDTombo_SepMode;    /* WDTombo/SepMode */
  int16_t SepType;            /* WDTombo/ */
  int16_t WDTombo_SepCount;   /* WDTombo/SepCount */
  int32_t WDTombo_TomboMark;  /* WDTombo/TomboMark */
  int32_t IDTomboMode;        /* IDTombo/ */
  int32_t IsIDTombo;          /* IDTombo/ */
  int32_t ID0, ID1, ID2, ID3, ID4, ID5, ID6, ID7, ID8, ID9; /* IDTombo/ */
  int32_t ID10, ID11, ID12, ID13, ID14, ID15, ID16, ID17, ID18, ID19;
  int32_t FreeRMAround;       /* FreeTombo/ */
  int32_t FreeOrigRM;         /* FreeTombo/ */
} RVPREFTOMBOENV;

/** Section Function of the main file: groups Contour, Weed, PlotFileImport,
 *  Trapping, JoinPath and TestPlot. */
typedef struct RVPREFFUNCTION {
  double PathOffset;       /* Contour/ */
  int32_t Inside;          /* Contour/ */
  int32_t AddDirection;    /* Weed/ ... */
  double FrameWidth;
  double FrameHeight;
  int16_t DivideWidth;
  int16_t DivideHeight;
  double DistanceWidth;
  double DistanceHeight;
  int16_t MarginType;      /* ... Weed/ */
  char StepSize[RV_PREF_TEXT32]; /* PlotFileImport/ */
  double TrapSize;         /* Trapping/ */
  double ErrRange;         /* JoinPath/ */
  double TestPlotOriginH;  /* TestPlot/ ... */
  double TestPlotOriginV;
  double TestPlotSizeH;
  double TestPlotSizeV;
  double TestPlotSizeL;
  double TestPlotPitch;
  int16_t TestPlotType;    /* ... TestPlot/ */
} RVPREFFUNCTION;

/** Section CutPreview of the main file: the group ViewOption, then nine
 *  colour groups of the keys ColorR, ColorG and ColorB. reserved stands
 *  where no key is carried; the library leaves it alone. */
typedef struct RVPREFCUTPREVIEW {
  int16_t PlaySpeed;       /* ViewOption/ ... */
  int32_t StartPosition;
  int32_t Arrow;
  int32_t ToolPosition;
  int32_t MoveLine;
  int32_t CutOrder;
  int32_t Original;
  int32_t EndPosition;     /* ... ViewOption/ */
  uint8_t CCWColor_ColorR, CCWColor_ColorG, CCWColor_ColorB;
  uint8_t CWColor_ColorR, CWColor_ColorG, CWColor_ColorB;
  uint8_t ArrowColor_ColorR, ArrowColor_ColorG, ArrowColor_ColorB;
  uint8_t StartPositionColor_ColorR, StartPositionColor_ColorG, StartPositionColor_ColorB;
  uint8_t MoveLineColor_ColorR, MoveLineColor_ColorG, MoveLineColor_ColorB;
  uint8_t CutOrderColor_ColorR, CutOrderColor_ColorG, CutOrderColor_ColorB;
  uint8_t ToolPositionColor_ColorR, ToolPositionColor_ColorG, ToolPositionColor_ColorB;
  uint8_t OriginalColor_ColorR, OriginalColor_ColorG, OriginalColor_ColorB;
  uint8_t reserved[3];
  uint8_t EndPositionColor_ColorR, EndPositionColor_ColorG, EndPositionColor_ColorB;
} RVPREFCUTPREVIEW;

/** Section Dotbridge of the main file: groups HotFolder, HotFolderHistory,
 *  PrintCutEnv, Layout, SheetFeed, Dry, AutoCut and Clamp. A folder name of
 *  300 bytes or more fills its field without a terminator. */
typedef struct RVPREFDOTBRIDGE {
  char FolderName[RV_PREF_TEXT300];   /* HotFolder/ */
  char FolderName1[RV_PREF_TEXT300];  /* HotFolderHistory/ ... */
  char FolderName2[RV_PREF_TEXT300];
  char FolderName3[RV_PREF_TEXT300];
  char FolderName4[RV_PREF_TEXT300];
  char FolderName5[RV_PREF_TEXT300];
  char FolderName6[RV_PREF_TEXT300];
  char FolderName7[RV_PREF_TEXT300];
  char FolderName8[RV_PREF_TEXT300];
  char FolderName9[RV_PREF_TEXT300];
  char FolderName10[RV_PREF_TEXT300]; /* ... HotFolderHistory/ */
  double SheetWidth;        /* PrintCutEnv/ ... */
  double SheetHeight;
  double CopyMarginWidth;
  double CopyMarginHeight;  /* ... PrintCutEnv/ */
  uint16_t UnitType;        /* Layout/ */
  int32_t IsSheetFeed;      /* SheetFeed/ */
  int16_t Time;             /* Dry/ */
  int32_t IsAutoCut;        /* AutoCut/ */
  int32_t DetailCut;        /* AutoCut/ */
  double CutSize;           /* AutoCut/ */
  int32_t IsClamp;          /* Clamp/ ... */
  int16_t PrintAllPress;
  int16_t CutSidePress;
  int16_t CutMiddlePress;   /* ... Clamp/ */
} RVPREFDOTBRIDGE;

/** Section OutlineTool of the outline tool's file: groups OutlinePreview,
 *  TraceSetting, SelectLineColor and TraceLineColor. Threshold and
 *  EraceNoiseLevel are long keys. */
typedef struct RVPREFOUTLINETOOL {
  int32_t ViewPicture;      /* OutlinePreview/ */
  int32_t ViewSelectLine;   /* OutlinePreview/ */
  int32_t ViewTraceLine;    /* OutlinePreview/ */
  int32_t OutlineMode;      /* TraceSetting/ ... */
  int32_t Threshold;
  int32_t DilationErosion;
  int32_t EraceNoiseLevel;
  float ToleranceLength;
  float CornerRadius;
  int16_t ManageMode;
  char RecommendMode[RV_PREF_TEXT32]; /* ... TraceSetting/ */
  uint8_t SelectLineColor_ColorR, SelectLineColor_ColorG, SelectLineColor_ColorB;
  uint8_t TraceLineColor_ColorR, TraceLineColor_ColorG, TraceLineColor_ColorB;
} RVPREFOUTLINETOOL;

/* The keys of each section in file order, as X(group, key, field): group is
 * "" for a key of the section itself, field the record's field. A save
 * writes the keys in this order, each group where its first key stands.
 * Library extension: a host may walk a record with these lists (offsetof and
 * sizeof of the field give its place; its C type gives its text form). */
#define RV_PREF_USERSETUP_KEYS(X)                              \
  X("", "Setup", Setup)                                        \
  X("", "PluginName", PluginName)                              \
  X("", "Version", Version)                                    \
  X("Plotter", "Model", Model)                                 \
  X("Plotter", "Command", Command)                             \
  X("Plotter", "StepSize", StepSize)                           \
  X("Plotter", "ApproximateType", ApproximateType)             \
  X("Communication", "PortType", PortType)                     \
  X("Communication", "CommPort", CommPort)                     \
  X("Communication", "CommSpeed", CommSpeed)                   \
  X("Communication", "CommLength", CommLength)                 \
  X("Communication", "CommParity", CommParity)                 \
  X("Communication", "CommHandshake", CommHandshake)           \
  X("Communication", "UsbPort", UsbPort)                       \
  X("Communication", "LanAddr", LanAddr)                       \
  X("Communication", "CommHighSpeed", CommHighSpeed)           \
  X("Communication", "LanIpAddr", LanIpAddr)                   \
  X("Machine", "OriginAdjustWidth", OriginAdjustWidth)         \
  X("Machine", "OriginAdjustHeight", OriginAdjustHeight)       \
  X("Machine", "HWDOriginAdjustWidth", HWDOriginAdjustWidth)   \
  X("Machine", "HWDOriginAdjustHeight", HWDOriginAdjustHeight) \
  X("Machine", "Printer", Printer)                             \
  X("Machine", "MaxPower", MaxPower)                           \
  X("Machine", "TomboSearchMode", TomboSearchMode)             \
  X("Machine", "CameraOffsetWidth", CameraOffsetWidth)         \
  X("Machine", "CameraOffsetHeight", CameraOffsetHeight)       \
  X("Machine", "WDZZOriginType", WDZZOriginType)               \
  X("PlotDialog", "InitSheetWidth", InitSheetWidth)            \
  X("PlotDialog", "InitSheetHeight", InitSheetHeight)          \
  X("PlotDialog", "DisplayMode", DisplayMode)                  \
  X("AlertDisplay", "OpenPath", OpenPath)                      \
  X("AlertDisplay", "OutlineWidth", OutlineWidth)              \
  X("AlertDisplay", "DisablePath", DisablePath)                \
  X("AlertDisplay", "TomboRecog", TomboRecog)                  \
  X("AlertDisplay", "PlotCondition", PlotCondition)            \
  X("AlertDisplay", "MoveToCutLayer", MoveToCutLayer)          \
  X("EtcInfo", "OnlineInfo", OnlineInfo)                       \
  X("EtcInfo", "FavoriteApply", FavoriteApply)                 \
  X("EtcInfo", "FavoriteSub", FavoriteSub)                     \
  X("EtcInfo", "FavoriteNoPlot", FavoriteNoPlot)
#define RV_PREF_PLOTPREVIEW_KEYS(X)                        \
  X("CutEnv", "SheetWidth", SheetWidth)                    \
  X("CutEnv", "SheetHeight", SheetHeight)                  \
  X("CutEnv", "IsFrame", IsFrame)                          \
  X("CutEnv", "FrameWidth", FrameWidth)                    \
  X("CutEnv", "FrameHeight", FrameHeight)                  \
  X("CutEnv", "CopyMarginWidth", CopyMarginWidth)          \
  X("CutEnv", "CopyMarginHeight", CopyMarginHeight)        \
  X("Layout", "UnitType", UnitType)                        \
  X("Layout", "OriginLock", OriginLock)                    \
  X("Layout", "IDCutOriginLock", IDCutOriginLock)          \
  X("Layout", "IsColorTab", IsColorTab)                    \
  X("Tiling", "OverlapSize", OverlapSize)                  \
  X("Tiling", "MarkSize", MarkSize)                        \
  X("Tiling", "Margin", Margin)                            \
  X("Tiling", "IsMark", IsMark)                            \
  X("Tombo", "RepeatType", Tombo_RepeatType)               \
  X("Tombo", "RepeatWidth", RepeatWidth)                   \
  X("Tombo", "RepeatHeight", RepeatHeight)                 \
  X("Tombo", "FirstSearchPath", Tombo_FirstSearchPath)     \
  X("Tombo", "ContSearchPath", Tombo_ContSearchPath)       \
  X("Tombo", "TomboMarginWidth", TomboMarginWidth)         \
  X("Tombo", "TomboMarginHeight", TomboMarginHeight)       \
  X("Tombo", "MediaRotateDir", MediaRotateDir)             \
  X("WDTombo", "DistCorrect", DistCorrect)                 \
  X("WDTombo", "CrossCut", CrossCut)                       \
  X("WDTombo", "RepeatType", WDTombo_RepeatType)           \
  X("WDTombo", "FirstSearchPath", WDTombo_FirstSearchPath) \
  X("WDTombo", "ContSearchPath", WDTombo_ContSearchPath)   \
  X("WDTombo", "SurfaceCut", SurfaceCut)                   \
  X("WDTombo", "FrameContCut", FrameContCut)
#define RV_PREF_PLOT_KEYS(X)                                            \
  X("Condition", "ConditionType", ConditionType)                        \
  X("Condition", "DefTQToolName", DefTQToolName)                        \
  X("Condition", "DefTQSpeed", DefTQSpeed)                              \
  X("Condition", "DefTQPress", DefTQPress)                              \
  X("Condition", "DefTQOffset", DefTQOffset)                            \
  X("Condition", "DefWDToolName", DefWDToolName)                        \
  X("Condition", "DefWDSpeed", DefWDSpeed)                              \
  X("Condition", "DefWDPress", DefWDPress)                              \
  X("Condition", "DefWDOffset", DefWDOffset)                            \
  X("Condition", "MillSelectName", MillSelectName)                      \
  X("Condition", "SelectName", SelectName)                              \
  X("Condition", "SelectToolName", SelectToolName)                      \
  X("Condition", "SelectSpeed", SelectSpeed)                            \
  X("Condition", "SelectPress", SelectPress)                            \
  X("Condition", "SelectOffset", SelectOffset)                          \
  X("Condition", "SelectChkSpeed", SelectChkSpeed)                      \
  X("Condition", "SelectChkPress", SelectChkPress)                      \
  X("Condition", "SelectChkOffset", SelectChkOffset)                    \
  X("Condition", "DefWDDSpeed", DefWDDSpeed)                            \
  X("Condition", "SelectDSpeed", SelectDSpeed)                          \
  X("Condition", "SelectLaserSpeed", SelectLaserSpeed)                  \
  X("Condition", "SelectLaserPower", SelectLaserPower)                  \
  X("Condition", "SelectLaserFreq", SelectLaserFreq)                    \
  X("Condition", "SelectLaserDpi", SelectLaserDpi)                      \
  X("Sort", "IsSort", IsSort)                                           \
  X("Sort", "SortType", SortType)                                       \
  X("SheetFeed", "IsSheetFeed", IsSheetFeed)                            \
  X("PrvMisCrct", "IsPrvMisCrct", IsPrvMisCrct)                         \
  X("RepeatCreasingTool", "IsRepeatCreasingTool", IsRepeatCreasingTool) \
  X("HeadMove", "IsHeadMove", IsHeadMove)                               \
  X("HeadMove", "OriginUpdate", OriginUpdate)                           \
  X("HeadMove", "MoveWidthMode", MoveWidthMode)                         \
  X("HeadMove", "MoveHeightMode", MoveHeightMode)                       \
  X("HeadMove", "MoveWidth", MoveWidth)                                 \
  X("HeadMove", "MoveHeight", MoveHeight)                               \
  X("AutoCut", "IsAutoCut", IsAutoCut)                                  \
  X("AutoCut", "DetailCut", DetailCut)                                  \
  X("AutoCut", "CutSize", CutSize)                                      \
  X("LongXDivisionCut", "IsLongXDivisionCut", IsLongXDivisionCut)       \
  X("LongXDivisionCut", "LongXDivDivisionLeng", LongXDivDivisionLeng)   \
  X("LongXDivisionCut", "LongXDivCrossCutLeng", LongXDivCrossCutLeng)   \
  X("LongXDivisionCut", "LongXDivOriginRenewal", LongXDivOriginRenewal) \
  X("LongXDivisionCut", "LongXDivWidthAdder", LongXDivWidthAdder)       \
  X("WDOption", "ReverseDirect", ReverseDirect)                         \
  X("WDOption", "BeforeVacuumOn", BeforeVacuumOn)                       \
  X("WDOption", "AfterVacuumOff", AfterVacuumOff)                       \
  X("WDOption", "Optimization", Optimization)                           \
  X("WDOption", "Optimization_Cut", Optimization_Cut)                   \
  X("WDOption", "MillingOptimization", MillingOptimization)             \
  X("WDOption", "MicroJoint", MicroJoint)                               \
  X("WDOption", "JointLength", JointLength)                             \
  X("WDOption", "JointHeight", JointHeight)                             \
  X("WDOption", "Pause", Pause)
#define RV_PREF_TOMBOENV_KEYS(X)               \
  X("TQTombo", "TomboType", TQTombo_TomboType) \
  X("TQTombo", "MarkSize", MarkSize)           \
  X("TQTombo", "LineWidth", LineWidth)         \
  X("TQTombo", "FrameTombo", FrameTombo)       \
  X("TQTombo", "RoundTombo", RoundTombo)       \
  X("TQTombo", "TomboMark", TQTombo_TomboMark) \
  X("TQTombo", "SepMode", TQTombo_SepMode)     \
  X("TQTombo", "SepLineWidth", SepLineWidth)   \
  X("TQTombo", "SepDirection", SepDirection)   \
  X("TQTombo", "SepCount", TQTombo_SepCount)   \
  X("WDTombo", "TomboType", WDTombo_TomboType) \
  X("WDTombo", "TomboSize", TomboSize)         \
  X("WDTombo", "SepMode", WDTombo_SepMode)     \
  X("WDTombo", "SepType", SepType)             \
  X("WDTombo", "SepCount", WDTombo_SepCount)   \
  X("WDTombo", "TomboMark", WDTombo_TomboMark) \
  X("IDTombo", "IDTomboMode", IDTomboMode)     \
  X("IDTombo", "IsIDTombo", IsIDTombo)         \
  X("IDTombo", "ID0", ID0)                     \
  X("IDTombo", "ID1", ID1)                     \
  X("IDTombo", "ID2", ID2)                     \
  X("IDTombo", "ID3", ID3)                     \
  X("IDTombo", "ID4", ID4)                     \
  X("IDTombo", "ID5", ID5)                     \
  X("IDTombo", "ID6", ID6)                     \
  X("IDTombo", "ID7", ID7)                     \
  X("IDTombo", "ID8", ID8)                     \
  X("IDTombo", "ID9", ID9)                     \
  X("IDTombo", "ID10", ID10)                   \
  X("IDTombo", "ID11", ID11)                   \
  X("IDTombo", "ID12", ID12)                   \
  X("IDTombo", "ID13", ID13)                   \
  X("IDTombo", "ID14", ID14)                   \
  X("IDTombo", "ID15", ID15)                   \
  X("IDTombo", "ID16", ID16)                   \
  X("IDTombo", "ID17", ID17)                   \
  X("IDTombo", "ID18", ID18)                   \
  X("IDTombo", "ID19", ID19)                   \
  X("FreeTombo", "FreeOrigRM", FreeOrigRM)     \
  X("FreeTombo", "FreeRMAround", FreeRMAround)
#define RV_PREF_FUNCTION_KEYS(X)                    \
  X("Contour", "PathOffset", PathOffset)            \
  X("Contour", "Inside", Inside)                    \
  X("Weed", "AddDirection", AddDirection)           \
  X("Weed", "FrameWidth", FrameWidth)               \
  X("Weed", "FrameHeight", FrameHeight)             \
  X("Weed", "DivideWidth", DivideWidth)             \
  X("Weed", "DivideHeight", DivideHeight)           \
  X("Weed", "DistanceWidth", DistanceWidth)         \
  X("Weed", "DistanceHeight", DistanceHeight)       \
  X("Weed", "MarginType", MarginType)               \
  X("PlotFileImport", "StepSize", StepSize)         \
  X("Trapping", "TrapSize", TrapSize)               \
  X("JoinPath", "ErrRange", ErrRange)               \
  X("TestPlot", "TestPlotOriginH", TestPlotOriginH) \
  X("TestPlot", "TestPlotOriginV", TestPlotOriginV) \
  X("TestPlot", "TestPlotSizeH", TestPlotSizeH)     \
  X("TestPlot", "TestPlotSizeV", TestPlotSizeV)     \
  X("TestPlot", "TestPlotSizeL", TestPlotSizeL)     \
  X("TestPlot", "TestPlotPitch", TestPlotPitch)     \
  X("TestPlot", "TestPlotType", TestPlotType)
#define RV_PREF_CUTPREVIEW_KEYS(X)                             \
  X("ViewOption", "PlaySpeed", PlaySpeed)                      \
  X("ViewOption", "StartPosition", StartPosition)              \
  X("ViewOption", "Arrow", Arrow)                              \
  X("ViewOption", "ToolPosition", ToolPosition)                \
  X("ViewOption", "MoveLine", MoveLine)                        \
  X("ViewOption", "CutOrder", CutOrder)                        \
  X("ViewOption", "Original", Original)                        \
  X("ViewOption", "EndPosition", EndPosition)                  \
  X("CCWColor", "ColorR", CCWColor_ColorR)                     \
  X("CCWColor", "ColorG", CCWColor_ColorG)                     \
  X("CCWColor", "ColorB", CCWColor_ColorB)                     \
  X("CWColor", "ColorR", CWColor_ColorR)                       \
  X("CWColor", "ColorG", CWColor_ColorG)                       \
  X("CWColor", "ColorB", CWColor_ColorB)                       \
  X("ArrowColor", "ColorR", ArrowColor_ColorR)                 \
  X("ArrowColor", "ColorG", ArrowColor_ColorG)                 \
  X("ArrowColor", "ColorB", ArrowColor_ColorB)                 \
  X("StartPositionColor", "ColorR", StartPositionColor_ColorR) \
  X("StartPositionColor", "ColorG", StartPositionColor_ColorG) \
  X("StartPositionColor", "ColorB", StartPositionColor_ColorB) \
  X("MoveLineColor", "ColorR", MoveLineColor_ColorR)           \
  X("MoveLineColor", "ColorG", MoveLineColor_ColorG)           \
  X("MoveLineColor", "ColorB", MoveLineColor_ColorB)           \
  X("CutOrderColor", "ColorR", CutOrderColor_ColorR)           \
  X("CutOrderColor", "ColorG", CutOrderColor_ColorG)           \
  X("CutOrderColor", "ColorB", CutOrderColor_ColorB)           \
  X("ToolPositionColor", "ColorR", ToolPositionColor_ColorR)   \
  X("ToolPositionColor", "ColorG", ToolPositionColor_ColorG)   \
  X("ToolPositionColor", "ColorB", ToolPositionColor_ColorB)   \
  X("OriginalColor", "ColorR", OriginalColor_ColorR)           \
  X("OriginalColor", "ColorG", OriginalColor_ColorG)           \
  X("OriginalColor", "ColorB", OriginalColor_ColorB)           \
  X("EndPositionColor", "ColorR", EndPositionColor_ColorR)     \
  X("EndPositionColor", "ColorG", EndPositionColor_ColorG)     \
  X("EndPositionColor", "ColorB", EndPositionColor_ColorB)
#define RV_PREF_DOTBRIDGE_KEYS(X)                        \
  X("HotFolder", "FolderName", FolderName)               \
  X("HotFolderHistory", "FolderName1", FolderName1)      \
  X("HotFolderHistory", "FolderName2", FolderName2)      \
  X("HotFolderHistory", "FolderName3", FolderName3)      \
  X("HotFolderHistory", "FolderName4", FolderName4)      \
  X("HotFolderHistory", "FolderName5", FolderName5)      \
  X("HotFolderHistory", "FolderName6", FolderName6)      \
  X("HotFolderHistory", "FolderName7", FolderName7)      \
  X("HotFolderHistory", "FolderName8", FolderName8)      \
  X("HotFolderHistory", "FolderName9", FolderName9)      \
  X("HotFolderHistory", "FolderName10", FolderName10)    \
  X("PrintCutEnv", "SheetWidth", SheetWidth)             \
  X("PrintCutEnv", "SheetHeight", SheetHeight)           \
  X("PrintCutEnv", "CopyMarginWidth", CopyMarginWidth)   \
  X("PrintCutEnv", "CopyMarginHeight", CopyMarginHeight) \
  X("Layout", "UnitType", UnitType)                      \
  X("SheetFeed", "IsSheetFeed", IsSheetFeed)             \
  X("Dry", "Time", Time)                                 \
  X("AutoCut", "IsAutoCut", IsAutoCut)                   \
  X("AutoCut", "DetailCut", DetailCut)                   \
  X("AutoCut", "CutSize", CutSize)                       \
  X("Clamp", "IsClamp", IsClamp)                         \
  X("Clamp", "PrintAllPress", PrintAllPress)             \
  X("Clamp", "CutSidePress", CutSidePress)               \
  X("Clamp", "CutMiddlePress", CutMiddlePress)
#define RV_PREF_OUTLINETOOL_KEYS(X)                      \
  X("OutlinePreview", "ViewPicture", ViewPicture)        \
  X("OutlinePreview", "ViewSelectLine", ViewSelectLine)  \
  X("OutlinePreview", "ViewTraceLine", ViewTraceLine)    \
  X("TraceSetting", "OutlineMode", OutlineMode)          \
  X("TraceSetting", "Threshold", Threshold)              \
  X("TraceSetting", "DilationErosion", DilationErosion)  \
  X("TraceSetting", "EraceNoiseLevel", EraceNoiseLevel)  \
  X("TraceSetting", "ToleranceLength", ToleranceLength)  \
  X("TraceSetting", "CornerRadius", CornerRadius)        \
  X("TraceSetting", "ManageMode", ManageMode)            \
  X("TraceSetting", "RecommendMode", RecommendMode)      \
  X("SelectLineColor", "ColorR", SelectLineColor_ColorR) \
  X("SelectLineColor", "ColorG", SelectLineColor_ColorG) \
  X("SelectLineColor", "ColorB", SelectLineColor_ColorB) \
  X("TraceLineColor", "ColorR", TraceLineColor_ColorR)   \
  X("TraceLineColor", "ColorG", TraceLineColor_ColorG)   \
  X("TraceLineColor", "ColorB", TraceLineColor_ColorB)

/** Reads the main preference file at path into the seven records, section
 *  by section in file order, after bringing an older file up to date in
 *  memory. Codes as above; the file isn't changed. */
RV_API uint32_t RvLoadKFPreference(const char* path, RVPREFUSERSETUP* userSetup, RVPREFPLOTPREVIEW* plotPreview,
                                   RVPREFPLOT* plot, RVPREFTOMBOENV* tomboEnv, RVPREFFUNCTION* function,
                                   RVPREFCUTPREVIEW* cutPreview, RVPREFDOTBRIDGE* dotbridge);
/** Writes the seven records as the main preference file at path, version
 *  "8.00", UTF-8, no white space between elements: every key, also one of
 *  value 0 or empty text, in the file's order. 14 if it can't be written. */
RV_API uint32_t RvSaveKFPreference(const char* path, const RVPREFUSERSETUP* userSetup,
                                   const RVPREFPLOTPREVIEW* plotPreview, const RVPREFPLOT* plot,
                                   const RVPREFTOMBOENV* tomboEnv, const RVPREFFUNCTION* function,
                                   const RVPREFCUTPREVIEW* cutPreview, const RVPREFDOTBRIDGE* dotbridge);
/** Reads the outline tool's file at path into outlineTool. Its version isn't
 *  read and has no steps. */
RV_API uint32_t RvLoadOTPreference(const char* path, RVPREFOUTLINETOOL* outlineTool);
/** Writes outlineTool as the outline tool's file at path, version "1.00". */
RV_API uint32_t RvSaveOTPreference(const char* path, const RVPREFOUTLINETOOL* outlineTool);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* RVDATAACCESS_H */
