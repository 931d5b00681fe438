#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/KeepList.h"
#include "app/LocalState.h"
#include "platform/Platform.h"
#include "storage/Row.h"

namespace tasselby {

/// The CoreFoundation of the first system with a user notification centre.
inline constexpr double kFirstVersionWithNotifications = 744.0;

/// What `cookies_keepCookies` found.
struct CookieInventory {
  /// Cookies at sites not kept plus tracking cookies: a cookie that is both counts twice.
  std::int64_t cookieCount = 0;
  /// Tracking cookies, at kept sites and others.
  std::int64_t trackingCount = 0;
  /// What has to go, each record once: Safari's cookies, or any other browser's rows.
  std::vector<HTTPCookie> cookies;
  std::set<Row> rows;
};

/// What `removeCookies_keepCookies` answers: the inventory's counts.
struct CookieCounts {
  std::int64_t cookies;
  std::int64_t tracking;
};

/// The distinct pairs of profile and host in a Chromium browser's own Flash player.
struct PepperFlashCounts {
  std::int32_t seen;
  std::int32_t removed;
};

/// The application's delegate: every operation of a run, in the order of a run.
///
/// It holds nothing but the platform; the browser name, the keep list and the counts of a run are
/// handed on as arguments. Every count says what was chosen for removal, not what could be removed.
/// A cleaner passes over what is missing, locked or damaged without a word. `HardError` apart,
/// nothing throws.
class WorkerAppDelegate final : public ApplicationDelegate, public UserNotificationCenterDelegate {
 public:
  /// `platform`'s references outlive the delegate.
  explicit WorkerAppDelegate(const Platform& platform) : platform_(platform) {}

  // Run cycle (app/RunCycle.cpp)

  /// Adds the main application's preferences and registers for notifications, where the system has
  /// them.
  void awakeFromNib() override;

  /// Performs the whole run and terminates.
  void applicationDidFinishLaunching() override;

  /// The first argument that is a browser name. Without one, terminates, and answers "Quit" should
  /// that return.
  std::string startupCheck();

  /// Builds the keep list, cleans `browser`, reports and terminates.
  void clearData(const std::string& browser);

  // Completion notification (app/CompletionNotification.cpp)

  /// Posts one silent notification with `text` as its subtitle, if the user wants it and the
  /// system has a notification centre.
  void displayNotificationWithTitle_andText(const std::string& title, const std::string& text);

  /// Takes the notification that was clicked off the list.
  void userNotificationCenter_didActivateNotification(
      UserNotificationCenter& center, const UserNotification& notification) override;
  /// True: it is shown even when this process is in front.
  bool userNotificationCenter_shouldPresentNotification(
      UserNotificationCenter& center, const UserNotification& notification) override;

  // Profile discovery (app/Profiles.cpp)

  /// The profiles in the "Local State" of Google Chrome, or of Chromium for any other name.
  /// Empty when it lists none or is no JSON; throws `HardError` when it cannot be read as text.
  ProfileMap userProfiles(const std::string& browser) const;

  // Keep list (keep/SmartFavourites.cpp)

  /// The sites of the keychain's web-form passwords, local names left out.
  KeepList getSmartFavouritesArray() const;

  /// The sites of the logins in every Firefox profile's "signons.sqlite".
  KeepList getFirefoxSmartFavouritesArray() const;

  // Cookies (cleaners/cookies/)

  /// The 122 name prefixes that make a cookie a tracking cookie, in their fixed order.
  static std::vector<std::string> defaultTrackingCookies();

  /// Which cookies of `browser` have to go: those of sites not in `keepList`, and tracking cookies
  /// wherever they are. Changes nothing.
  CookieInventory cookies_keepCookies(const std::string& browser, const KeepList& keepList) const;

  /// Deletes the cookies of the inventory from `browser`'s stores, and before them the channel IDs.
  CookieCounts removeCookies_keepCookies(const std::string& browser, const KeepList& keepList);

  /// Deletes each of `cookies` from the shared storage.
  void deleteSafariCookies(const std::vector<HTTPCookie>& cookies);

  /// Deletes the channel-ID certificates of a `browser` of Chromium's family whose origin is not
  /// itself an element of `keepList`.
  void deleteChromeChannelID_keep(const std::string& browser, const KeepList& keepList);

  // Web storage (cleaners/webstorage/)

  /// Removes `browser`'s web databases, those of kept sites too, and its local storage of sites not
  /// in `keepList`. Answers how many databases, files and rows were chosen.
  std::int64_t removeNonFavLocalStorage_keep(const std::string& browser, const KeepList& keepList);

  /// The members of a list that have to go, in their order, duplicates included: of origin
  /// identifiers, of local-storage file names, of Mozilla scopes.
  static std::vector<std::string> databaseArray_keep(const std::vector<std::string>& origins,
                                                     const KeepList& keepList);
  static std::vector<std::string> localStorageArray_browser_keep(
      const std::vector<std::string>& names, const std::string& browser, const KeepList& keepList);
  static std::vector<std::string> mozillaLocalStorage_keep(const std::vector<std::string>& scopes,
                                                           const KeepList& keepList);

  // Plug-ins (cleaners/plugins/)

  /// Chooses the hosts not in `keepList` among those with objects or settings of the Flash player,
  /// and answers how many. Of the player that all browsers share, the settings that stand for one
  /// chosen host ("#HOST") go; its objects, and the settings in groups ("##NAME/HOST"), stay. Of a
  /// player that `browser` has of its own all three go.
  std::int64_t removeFlash_keep(const std::string& browser, const KeepList& keepList);

  /// The part of `removeFlash_keep` for the player inside Google Chrome and Chromium. No value for
  /// any other name.
  std::optional<PepperFlashCounts> clearChromeFlash_keep(const std::string& browser,
                                                         const KeepList& keepList);

  /// Disposes of the Silverlight stores of sites not in `keepList`, and of everything of the
  /// plug-in once a folder of stores is empty. Answers how many sites were chosen. Throws
  /// `HardError` at a store that names no site.
  std::int64_t removeSilverlight(const KeepList& keepList);

  // Caches (cleaners/cache/)

  /// Disposes of `browser`'s caches, and of those that all browsers share.
  void removeBrowserCache(const std::string& browser);

  /// Disposes of three caches in every Firefox profile.
  void clearFireFoxCache();

  /// Disposes of the caches of a `browser` of Chromium's family.
  void clearChromeCache(const std::string& browser);

  /// Disposes of the caches that Safari's web processes keep in the per-user temporary folders,
  /// and of every "MediaCache" beside them.
  void clearExtraCache();

  /// Disposes of the system's cookie and HSTS property lists.
  void clearExtraCookieCache();

 private:
  Platform platform_;
};

}  // namespace tasselby
