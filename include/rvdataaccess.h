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
