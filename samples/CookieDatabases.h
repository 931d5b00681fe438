#pragma once

#include <string>
#include <vector>

#include "samples/SampleCookie.h"

namespace tasselby {

/// Where `browser` keeps its cookies, and where its channel IDs, below the home folder. `profile`
/// counts for a browser with profiles only.
std::string cookieStore(const std::string& browser, const std::string& profile = "Default");
std::string channelIdStore(const std::string& browser, const std::string& profile = "Default");

/// A cookie of no particular value for each of `names`, all at `domain`.
std::vector<SampleCookie> cookiesAt(const std::string& domain,
                                    const std::vector<std::string>& names);

/// Fifteen cookies: first ten at "o'neil.com" and www.o'neil.com, three of them tracking, then five
/// at ".kept.com", of which the second and fourth are tracking.
std::vector<SampleCookie> fifteenCookies();

/// Makes at `path`, where there is nothing, a store of `browser` that holds `cookies`: a database
/// with that browser's table and columns, or the file of the system's shared storage. The same
/// cookies make the same rows at every path.
void writeCookies(const std::string& path, const std::string& browser,
                  const std::vector<SampleCookie>& cookies);

/// Makes at `path`, where there is nothing, a store with a certificate for each of `origins`.
void writeChannelIds(const std::string& path, const std::vector<std::string>& origins);

/// A "Local State" document that lists `profiles`, folders by their names.
std::string localState(const std::vector<std::string>& profiles);

}  // namespace tasselby
