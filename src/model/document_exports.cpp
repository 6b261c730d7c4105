// Exported functions of the document store.
#include "frame/error_codes.h"
#include "frame/frame.h"
#include "model/export_util.h"

using namespace rv;

extern "C" {

RV_API uint32_t RvGiCreateDocument(int16_t kind, int16_t* index) {
  return Guard([&] { Put(index, Store().CreateDocument(kind)); });
}

RV_API uint32_t RvGiDeleteActiveDocument(void) {
  return Guard([&] { Store().DeleteActiveDocument(); });
}

RV_API uint32_t RvGiDeleteAllDocuments(void) {
  return Guard([&] { Store().DeleteAllDocuments(); });
}

RV_API uint32_t RvGiSetActiveDocument(int16_t index) {
  return Guard([&] { Store().SetActiveDocument(index); });
}

RV_API uint32_t RvGiGetActiveDocumentIndex(int16_t* index) {
  return Guard([&] { Put(index, Store().GetActiveDocumentIndex()); });
}

RV_API uint32_t RvGiGetDocBoundBox(RVRECT* rect) {
  return Guard([&] { Put(rect, Store().GetDocBoundBox()); });
}

RV_API uint32_t RvGiSetDocBoundingBox(const RVRECT* rect) {
  return Guard([&] { Store().SetDocBoundBox(NeedRecord(rect, kErrNullLayer)); });
}

}  // extern "C"
