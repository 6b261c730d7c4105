#include <stdio.h>

#include "rvdataaccess.h"

int main(void) {
  int16_t major = 0, minor = 0, revision = 0;
  RvGiGetLibVersion(&major, &minor, &revision);
  printf("RvDataAccess %d.%d.%d\n", major, minor, revision);
  return (major == 1 && minor == 3 && gMakeErrCode(1, 2) == 0x01000201u) ? 0 : 1;
}
