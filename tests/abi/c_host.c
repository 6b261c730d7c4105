/* A host written in C: the public header must compile as C, and the shared
   library must be usable through it alone. */
#include <setjmp.h>
#include <stdio.h>

#include "rvdataaccess.h"

static int failures = 0;
#define CHECK(cond)                                              \
  do {                                                           \
    if (!(cond)) {                                               \
      fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #cond); \
      ++failures;                                                \
    }                                                            \
  } while (0)

int main(void) {
  RVRIFMATRIX m, inv;
  RVPOINT p = {1.0, 2.0}, q;
  int16_t major, minor, revision;
  ExceptionInfo info;
  volatile int jumped = 0;

  CHECK(gMakeErrCode(8, 25) == 0x08001901u);
  RvMiSetMatrixScale(&m, 2.0, 4.0);
  RvMiMatrixCalcPoint(&m, &p, &q);
  CHECK(q.x == 2.0 && q.y == 8.0);
  RvMiSetMatrixScale(&m, 0.0, 1.0);
  CHECK(RvMiSetInvertMatrix(&m, &inv) == 0x08001901u);
  CHECK(g_ExceptionContext == NULL);

  /* The host frames its own call and is reached through the jump. */
  if (setjmp(info.context) == 0) {
    PushExceptionInfo(&info);
    Exception(RvMiSetInvertMatrix(&m, &inv));
    PopExceptionInfo(&info);
  } else {
    jumped = 1;
  }
  CHECK(jumped == 1);
  CHECK(gGetLastError() == 0x08001901u);
  CHECK(g_ExceptionContext == NULL);

  RvGiGetLibVersion(&major, &minor, &revision);
  CHECK(major == 1 && minor == 3 && revision == 0);
  if (failures == 0) printf("c host: all checks passed\n");
  return failures == 0 ? 0 : 1;
}
