// The catalogue of tracking cookies: a cookie whose name begins with one of these is one.

#include <array>
#include <string>
#include <vector>

#include "app/WorkerAppDelegate.h"

namespace tasselby {
namespace {

constexpr std::array<const char*, 122> kTrackingCookies = {
    // Deliberate: "OAX", "OAID" and "OASIS" stay although "OA" covers them, and the short ones mark
    // every name that begins with them.
    "_em_",        "FarkUser",
    "NID",         "_OA",
    "LE",          "POPUPCHECK",
    "OAX",         "suid",
    "_m",          "ad",
    "TLTUID",      "OAID",
    "UUID",        "OA",
    "v1st",        "phpAds",
    "VWCUK",       "GCIONID",
    "BBC-UID",     "__a",
    "_w",          "__c",
    "WSS_GW",      "eid",
    "__g",         "EkAnalytics",
    "Apache",      "gmv",
    "vid",         "CFTOKEN",
    "FTUserTrack", "__k",
    "CFID",        ".ASPXANONYMOUS",
    "sUnique",     "s1",
    "otp",         "HumanClickID",
    "TC",          "RM",
    "SID",         "OASIS",
    "exp_",        "__q",
    "AWSUSER_ID",  "ref",
    "__r",         "welcome",
    "TID",         "VisitorID",
    "__u",         "iCmpro",
    "emos_",       "RES_TRACKINGID",
    "UID",         "omniID",
    "woo",         "AdUserID",
    "goo",         "sandra",
    "etcnt_",      "XCLGF",
    "_bit",        "wpgb_",
    "mojo",        "CNNid",
    "ACOOKIE",     "wt_",
    "JEB2",        "CoreID",
    "mds",         "pb",
    "_jsuid",      "HstC",
    "UNAUTHID",    "anon",
    "IXA",         "s_",
    "bblast",      "bb_last",
    "wlid",        "VISID",
    "TRUID",       "VisID",
    "GUID",        "c1",
    "_SUPERFLY",   "globid",
    "zF",          "Conversion",
    "omniUserID",  "awpopup",
    "i00",         "cluid",
    "_dw",         "track",
    "MintUnique",  "CP",
    "AVPUID",      "ss_lastvisit",
    "stat_",       "FC",
    "DM",          "scorecardresearch",
    "BX",          "bitt",
    "um",          "pid",
    "re_ret",      "tu",
    "WT_FPC",      "WEBTRENDS",
    "meta",        "fpc",
    "NGUserID",    "ID",
    "piwik",       "VISITOR",
    "_c",          "EktGUID",
    "_km",         "km"};

}  // namespace

std::vector<std::string> WorkerAppDelegate::defaultTrackingCookies() const {
  return {kTrackingCookies.begin(), kTrackingCookies.end()};
}

}  // namespace tasselby
