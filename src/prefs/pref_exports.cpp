// The exported preference functions: frames round CRvXMLPreference.
#include <string>

#include "frame/error_codes.h"
#include "frame/frame.h"
#include "prefs/xml_preference.h"

namespace {

rv::CRvXMLPreference& Preference() { return rv::CRvXMLPreference::Instance(); }

/// A path argument: a null one names no file that could be read or written.
std::string PathArg(const char* path, uint32_t code) {
  if (path == nullptr) rv::Raise(code);
  return std::string(path);
}

}  // namespace

extern "C" {

RV_API uint32_t RvLoadKFPreference(const char* path, RVPREFUSERSETUP* userSetup, RVPREFPLOTPREVIEW* plotPreview,
                                   RVPREFPLOT* plot, RVPREFTOMBOENV* tomboEnv, RVPREFFUNCTION* function,
                                   RVPREFCUTPREVIEW* cutPreview, RVPREFDOTBRIDGE* dotbridge) {
  return rv::Guard([&] {
    rv::Check(Preference().LoadKF(PathArg(path, rv::kErrXmlLoad),
                                  {userSetup, plotPreview, plot, tomboEnv, function, cutPreview, dotbridge}));
  });
}

RV_API uint32_t RvSaveKFPreference(const char* path, const RVPREFUSERSETUP* userSetup,
                                   const RVPREFPLOTPREVIEW* plotPreview, const RVPREFPLOT* plot,
                                   const RVPREFTOMBOENV* tomboEnv, const RVPREFFUNCTION* function,
                                   const RVPREFCUTPREVIEW* cutPreview, const RVPREFDOTBRIDGE* dotbridge) {
  return rv::Guard([&] {
    rv::Check(Preference().SaveKF(PathArg(path, rv::kErrXmlSave),
                                  {userSetup, plotPreview, plot, tomboEnv, function, cutPreview, dotbridge}));
  });
}

RV_API uint32_t RvLoadOTPreference(const char* path, RVPREFOUTLINETOOL* outlineTool) {
  return rv::Guard([&] { rv::Check(Preference().LoadOT(PathArg(path, rv::kErrXmlLoad), outlineTool)); });
}

RV_API uint32_t RvSaveOTPreference(const char* path, const RVPREFOUTLINETOOL* outlineTool) {
  return rv::Guard([&] { rv::Check(Preference().SaveOT(PathArg(path, rv::kErrXmlSave), outlineTool)); });
}

}  // extern "C"
