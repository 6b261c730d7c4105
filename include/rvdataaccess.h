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

/* ======================================================================
 * Path generation
 * ====================================================================== */

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

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* RVDATAACCESS_H */
