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
