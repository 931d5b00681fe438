// The deletion of a few thousand cookies, killed again and again.

#include <csignal>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "samples/CookieDatabases.h"
#include "storage/Sqlite.h"
#include "tests/support/WorkerTest.h"

namespace tasselby {
namespace {

const KeepList kKept = {"kept.com"};

class CookieKills : public WorkerTest {
 protected:
  RowList rows(const std::string& path, const std::string& sql) const {
    Sqlite database;
    database.open(home.path(path));
    return database.executeQuery(sql).value_or(RowList());
  }
};

TEST_F(CookieKills, LoseNothingThatIsKeptAmongThousands) {
  std::vector<SampleCookie> cookies = cookiesAt("kept.com", Names(500, "kept"));
  cookies.resize(4000, {"gone.com", "gone"});
  const std::string path = cookieStore("Camino");
  writeCookies(home.path(path), "Camino", cookies);
  std::mt19937 random(1);
  for (int round = 0; round < 40; ++round) {
    const pid_t child = ::fork();
    if (child == 0) {
      worker.removeCookies_keepCookies("Camino", kKept);
      ::_exit(0);
    }
    ::usleep(static_cast<useconds_t>(random() % 50000));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    ASSERT_EQ(rows(path, "PRAGMA integrity_check").at(0).values(), std::vector<Value>{"ok"});
    ASSERT_EQ(rows(path, "SELECT id FROM moz_cookies WHERE host = 'kept.com'").size(), 500U);
  }
}

}  // namespace
}  // namespace tasselby
