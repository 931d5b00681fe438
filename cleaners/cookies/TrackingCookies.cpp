// The catalogue of tracking cookies: a cookie whose name begins with an entry is one.

#include <string>
#include <vector>

#include "app/WorkerAppDelegate.h"

namespace tasselby {

std::vector<std::string> WorkerAppDelegate::defaultTrackingCookies() {
  // Deliberate: "OAX", "OAID" and "OASIS" stand beside "OA", which covers them, and the entries of
  // two letters cover every name that begins so.
  // Ten a line, so that a place is found by eye.
  // clang-format off
  return {
      "_em_", "FarkUser", "NID", "_OA", "LE", "POPUPCHECK", "OAX", "suid", "_m", "ad",
      "TLTUID", "OAID", "UUID", "OA", "v1st", "phpAds", "VWCUK", "GCIONID", "BBC-UID", "__a",
      "_w", "__c", "WSS_GW", "eid", "__g", "EkAnalytics", "Apache", "gmv", "vid", "CFTOKEN",
      "FTUserTrack", "__k", "CFID", ".ASPXANONYMOUS", "sUnique", "s1", "otp", "HumanClickID", "TC", "RM",
      "SID", "OASIS", "exp_", "__q", "AWSUSER_ID", "ref", "__r", "welcome", "TID", "VisitorID",
      "__u", "iCmpro", "emos_", "RES_TRACKINGID", "UID", "omniID", "woo", "AdUserID", "goo", "sandra",
      "etcnt_", "XCLGF", "_bit", "wpgb_", "mojo", "CNNid", "ACOOKIE", "wt_", "JEB2", "CoreID",
      "mds", "pb", "_jsuid", "HstC", "UNAUTHID", "anon", "IXA", "s_", "bblast", "bb_last",
      "wlid", "VISID", "TRUID", "VisID", "GUID", "c1", "_SUPERFLY", "globid", "zF", "Conversion",
      "omniUserID", "awpopup", "i00", "cluid", "_dw", "track", "MintUnique", "CP", "AVPUID", "ss_lastvisit",
      "stat_", "FC", "DM", "scorecardresearch", "BX", "bitt", "um", "pid", "re_ret", "tu",
      "WT_FPC", "WEBTRENDS", "meta", "fpc", "NGUserID", "ID", "piwik", "VISITOR", "_c", "EktGUID",
      "_km", "km",
  };
  // clang-format on
}

}  // namespace tasselby
