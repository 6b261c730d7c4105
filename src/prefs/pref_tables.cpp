#include "prefs/pref_tables.h"

#include <cstddef>
#include <type_traits>

namespace rv::prefs {
namespace {

template <class Field>
constexpr KeyType TypeOf() {
  if constexpr (std::is_array_v<Field>) {
    static_assert(std::is_same_v<std::remove_extent_t<Field>, char>);
    return KeyType::Text;
  } else if constexpr (std::is_same_v<Field, int16_t>) {
    return KeyType::Short;
  } else if constexpr (std::is_same_v<Field, uint16_t>) {
    return KeyType::UShort;
  } else if constexpr (std::is_same_v<Field, int32_t>) {
    return KeyType::Int;
  } else if constexpr (std::is_same_v<Field, float>) {
    return KeyType::Float;
  } else if constexpr (std::is_same_v<Field, double>) {
    return KeyType::Double;
  } else {
    static_assert(std::is_same_v<Field, uint8_t>, "a preference field of a type without a text form");
    return KeyType::Byte;
  }
}

// One row of the key lists of the public header. The group and key names are
// plain literals there; L"" in front makes them wide.
#define RV_KEY_ROW(group, key, field) \
  Key{L"" group, L"" key, TypeOf<decltype(Rec::field)>(), offsetof(Rec, field), sizeof(Rec::field)},

#define RV_KEY_TABLE(ns, Record, LIST)              \
  namespace ns {                                    \
  using Rec = Record;                               \
  constexpr Key kKeys[] = {LIST(RV_KEY_ROW)};       \
  }

RV_KEY_TABLE(user_setup, RVPREFUSERSETUP, RV_PREF_USERSETUP_KEYS)
RV_KEY_TABLE(plot_preview, RVPREFPLOTPREVIEW, RV_PREF_PLOTPREVIEW_KEYS)
RV_KEY_TABLE(plot, RVPREFPLOT, RV_PREF_PLOT_KEYS)
RV_KEY_TABLE(tombo_env, RVPREFTOMBOENV, RV_PREF_TOMBOENV_KEYS)
RV_KEY_TABLE(function, RVPREFFUNCTION, RV_PREF_FUNCTION_KEYS)
RV_KEY_TABLE(cut_preview, RVPREFCUTPREVIEW, RV_PREF_CUTPREVIEW_KEYS)
RV_KEY_TABLE(dotbridge, RVPREFDOTBRIDGE, RV_PREF_DOTBRIDGE_KEYS)
RV_KEY_TABLE(outline_tool, RVPREFOUTLINETOOL, RV_PREF_OUTLINETOOL_KEYS)

#undef RV_KEY_TABLE
#undef RV_KEY_ROW

// A key's text passes through a wide buffer of this many characters,
// terminator included: TomboEnv reads through a short one, Dotbridge's
// folder names need a long one both ways.
constexpr std::size_t kReadChars = 512;
constexpr std::size_t kTomboEnvReadChars = 256;
constexpr std::size_t kWriteChars = 256;
constexpr std::size_t kDotbridgeChars = 2048;

// In the order of SectionId.
constexpr Section kSections[] = {
    {L"PlotterUserSetup", user_setup::kKeys, kReadChars, kWriteChars, sizeof(RVPREFUSERSETUP)},
    {L"PlotPreview", plot_preview::kKeys, kReadChars, kWriteChars, sizeof(RVPREFPLOTPREVIEW)},
    {L"Plot", plot::kKeys, kReadChars, kWriteChars, sizeof(RVPREFPLOT)},
    {L"TomboEnv", tombo_env::kKeys, kTomboEnvReadChars, kWriteChars, sizeof(RVPREFTOMBOENV)},
    {L"Function", function::kKeys, kReadChars, kWriteChars, sizeof(RVPREFFUNCTION)},
    {L"CutPreview", cut_preview::kKeys, kReadChars, kWriteChars, sizeof(RVPREFCUTPREVIEW)},
    {L"Dotbridge", dotbridge::kKeys, kDotbridgeChars, kDotbridgeChars, sizeof(RVPREFDOTBRIDGE)},
    {L"OutlineTool", outline_tool::kKeys, kReadChars, kWriteChars, sizeof(RVPREFOUTLINETOOL)},
};

// ---- the steps of the main file ------------------------------------------
// Each version from "2.00" on brought keys; a step appends them where their
// section and group are. Only the separation keys of TQTombo come with a text.

constexpr AddedKey k200Communication[] = {{L"LanAddr", nullptr}};
constexpr AddedKey k200TQTombo[] = {
    {L"SepMode", L"0"}, {L"SepLineWidth", L"0.5"}, {L"SepDirection", L"0"}, {L"SepCount", L"2"}};
constexpr StepRow k200[] = {
    {L"PlotterUserSetup", L"Communication", k200Communication},
    {L"TomboEnv", L"TQTombo", k200TQTombo},
};

constexpr AddedKey k300Communication[] = {{L"CommHighSpeed", nullptr}, {L"LanIpAddr", nullptr}};
constexpr StepRow k300[] = {{L"PlotterUserSetup", L"Communication", k300Communication}};

constexpr AddedKey k400Condition[] = {{L"DefWDDSpeed", nullptr}, {L"SelectDSpeed", nullptr}};
constexpr StepRow k400[] = {{L"Plot", L"Condition", k400Condition}};

constexpr AddedKey k500WDOption[] = {{L"Optimization_Cut", nullptr}};
constexpr AddedKey k500EtcInfo[] = {{L"FavoriteApply", nullptr}, {L"FavoriteSub", nullptr}, {L"FavoriteNoPlot", nullptr}};
constexpr StepRow k500[] = {
    {L"Plot", L"WDOption", k500WDOption},
    {L"PlotterUserSetup", L"EtcInfo", k500EtcInfo},
};

constexpr AddedKey k600Contour[] = {{L"Inside", nullptr}};
constexpr StepRow k600[] = {{L"Function", L"Contour", k600Contour}};

constexpr AddedKey k700Layout[] = {{L"IDCutOriginLock", nullptr}};
constexpr StepRow k700[] = {{L"PlotPreview", L"Layout", k700Layout}};

constexpr AddedKey k800Machine[] = {
    {L"OriginAdjustWidth", nullptr}, {L"OriginAdjustHeight", nullptr}, {L"Printer", nullptr}, {L"MaxPower", nullptr}};
constexpr AddedKey k800Condition[] = {
    {L"SelectLaserSpeed", nullptr}, {L"SelectLaserPower", nullptr},
    {L"SelectLaserFreq", nullptr},  {L"SelectLaserDpi", nullptr}};
constexpr AddedKey k800UserSetup[] = {{L"Version", nullptr}};
constexpr StepRow k800[] = {
    {L"PlotterUserSetup", L"Machine", k800Machine},
    {L"Plot", L"Condition", k800Condition},
    {L"PlotterUserSetup", nullptr, k800UserSetup},
};

// The coating keys live only in a document that a load brought up to date:
// no section reads or writes them.
constexpr AddedKey k900Machine[] = {{L"HWDOriginAdjustWidth", nullptr}, {L"HWDOriginAdjustHeight", nullptr}};
constexpr AddedKey k900Condition[] = {
    {L"SelectCoatingThickness", nullptr},   {L"SelectCoatingSpeed", nullptr},
    {L"SelectCoatingPitch", nullptr},       {L"SelectCoatingPress", nullptr},
    {L"SelectCoatingZPosition", nullptr},   {L"SelectCoatingStartOffset", nullptr},
    {L"SelectCoatingEndOffset", nullptr},   {L"SelectCoatingFillMode", nullptr},
    {L"SelectCoatingNozzleType", nullptr},  {L"SelectCoatingType", nullptr},
    {L"SelectCoatingFillDirection", nullptr}};
constexpr AddedKey k900UserSetup[] = {{L"PluginName", nullptr}};
constexpr StepRow k900[] = {
    {L"PlotterUserSetup", L"Machine", k900Machine},
    {L"Plot", L"Condition", k900Condition},
    {L"PlotterUserSetup", nullptr, k900UserSetup},
};

constexpr Step kSteps[] = {
    {2, L"2.00", k200}, {3, L"3.00", k300}, {4, L"4.00", k400}, {5, L"5.00", k500},
    {6, L"6.00", k600}, {7, L"7.00", k700}, {8, L"8.00", k800}, {9, L"9.00", k900},
};

}  // namespace

const Section& SectionOf(SectionId id) { return kSections[std::size_t(id)]; }

std::span<const Step> UpgradeSteps() { return kSteps; }

}  // namespace rv::prefs
