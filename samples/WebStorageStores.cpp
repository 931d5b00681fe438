
#include "samples/SampleStores.h"

namespace tasselby {
namespace {

constexpr const char* kDatabases =
    "CREATE TABLE Databases (guid INTEGER PRIMARY KEY AUTOINCREMENT, origin TEXT, name TEXT, "
    "displayName TEXT, estimatedSize INTEGER, path TEXT);";
constexpr const char* kChromiumDatabases =
    "CREATE TABLE Databases (id INTEGER PRIMARY KEY AUTOINCREMENT, origin TEXT NOT NULL, name TEXT "
    "NOT NULL, description TEXT NOT NULL DEFAULT '', estimated_size INTEGER NOT NULL DEFAULT 0);";
constexpr const char* kOrigins = "CREATE TABLE Origins (origin TEXT UNIQUE, quota INTEGER);";
constexpr const char* kTrackerOrigins = "CREATE TABLE Origins (origin TEXT UNIQUE, path TEXT);";
constexpr const char* kScopes =
    "CREATE TABLE webappsstore2 (scope TEXT, key TEXT, value TEXT, secure INTEGER, owner TEXT);";

std::string rowWhere(const std::string& table, const std::string& column, const std::string& text) {
  return "SELECT * FROM " + table + " WHERE " + column + " = " + sqlText(text) + ";";
}

/// The web databases below `folder`. Those of web origins never stay; extensions' do.
void addDatabases(MacHome& home, const std::string& browser, const std::string& folder,
                  const std::vector<std::string>& tables) {
  std::vector<std::string> sql = tables;
  const bool hasOrigins = tables.size() > 1;
  std::vector<std::string> origins = {"chrome-extension_abcdefghijklmnop_0",
                                      "safari-extension_com.example.ext-0123456789_0"};
  for (const SampleSite& site : home.sites()) {
    origins.push_back("https_" + site.host + "_0");
  }
  for (const std::string& origin : origins) {
    const Browsers goneFor = origin.starts_with("https_") ? Browsers{browser} : Browsers{};
    sql.push_back("INSERT INTO Databases (origin, name) VALUES (" + sqlText(origin) + ", 'data');");
    if (hasOrigins) {
      sql.push_back("INSERT INTO Origins VALUES (" + sqlText(origin) + ", 5242880);");
      home.addItem(browser + " web databases", folder + "/Databases.db",
                   rowWhere("Origins", "origin", origin), goneFor);
    }
    home.addFile(browser + " web databases", folder + "/" + origin + "/0001.db", goneFor);
    home.addItem(browser + " web databases", folder + "/Databases.db",
                 rowWhere("Databases", "origin", origin), goneFor);
  }
  home.writeDatabase(folder + "/Databases.db", sql);
}

/// The local-storage files in `folder`, those of Chromium with a journal each.
void addLocalStorage(MacHome& home, const std::string& browser, const std::string& folder) {
  const bool safari = browser == "Safari";
  const std::string store = browser + " local storage";
  const std::string extension =
      safari ? "safari-extension_com.example.ext-0123456789_0" : "chrome-extension_abcdefghij_0";
  std::vector<std::string> tracker = {kTrackerOrigins,
                                      "INSERT INTO Origins VALUES ('http_gone.example_0', '');"};
  const auto add = [&](const std::string& origin, const Browsers& goneFor, bool kept) {
    const std::string file = origin + ".localstorage";
    home.addFile(store, folder + "/" + file, goneFor, kept);
    if (safari) {
      tracker.push_back("INSERT INTO Origins VALUES (" + sqlText(origin) + ", " + sqlText(file) +
                        ");");
      home.addItem(store, folder + "/StorageTracker.db", rowWhere("Origins", "origin", origin),
                   goneFor, kept);
    } else {
      home.addFile(store, folder + "/" + file + "-journal", goneFor, kept);
    }
  };
  for (const SampleSite& site : home.sites()) {
    add("https_" + site.host + "_0", {browser}, site.kept);
  }
  // Only Safari and Chromium spare their extensions.
  add(extension, safari || browser == "Chromium" ? Browsers{} : Browsers{browser}, false);
  if (safari) {
    home.addItem(store, folder + "/StorageTracker.db",
                 rowWhere("Origins", "origin", "http_gone.example_0"), {browser});
    home.writeDatabase(folder + "/StorageTracker.db", tracker);
  } else {
    home.addFile(store, folder + "/leveldb/000003.log", {});
  }
}

void addScopes(MacHome& home, const std::string& browser, const std::string& folder) {
  std::vector<std::string> sql = {kScopes};
  const std::string path = folder + "/webappsstore.sqlite";
  for (const SampleSite& site : home.sites()) {
    const std::string scope = std::string(site.host.rbegin(), site.host.rend()) + ".:https:443";
    for (const char* key : {"first", "second"}) {
      sql.push_back("INSERT INTO webappsstore2 VALUES (" + sqlText(scope) + ", '" + key +
                    "', 'value', 0, '');");
    }
    home.addItem(browser + " local storage", path, rowWhere("webappsstore2", "scope", scope),
                 {browser}, site.kept);
  }
  home.writeDatabase(path, sql);
}

}  // namespace

void addWebStorage(MacHome& home) {
  const std::string support = "Library/Application Support/";
  addDatabases(home, "Safari", "Library/Safari/Databases", {kDatabases, kOrigins});
  addLocalStorage(home, "Safari", "Library/Safari/LocalStorage");
  const auto chromiumLike = [&](const std::string& browser, const std::string& folder) {
    addDatabases(home, browser, folder + "/databases", {kChromiumDatabases});
    addLocalStorage(home, browser, folder + "/Local Storage");
  };
  for (const std::string& profile : kChromiumProfileNames) {
    chromiumLike("Google Chrome", support + "Google/Chrome/" + profile);
    chromiumLike("Chromium", support + "Chromium/" + profile);
  }
  chromiumLike("Opera", support + "com.operasoftware.Opera");
  addScopes(home, "Camino", support + "Camino");
  for (const std::string& profile : kFirefoxProfileNames) {
    addScopes(home, "Firefox", support + "Firefox/Profiles/" + profile);
  }
}

}  // namespace tasselby
