#include "tool_runner.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <fcntl.h>

#include "test_support.h"

extern char** environ;

namespace tooltest {

ToolRun RunTool(const std::vector<std::string>& args) {
  rvtest::TempDir dir;
  const std::string outPath = dir.file("stdout"), errPath = dir.file("stderr");
  std::vector<std::string> words{RVTOOL_PATH};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t pid = 0;
  const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ToolRun run;
  EXPECT_EQ(spawned, 0) << "can't start " << argv[0];
  if (spawned != 0) return run;
  int wstatus = 0;
  while (waitpid(pid, &wstatus, 0) < 0) {
  }
  run.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : 128 + WTERMSIG(wstatus);
  run.out = rvtest::ReadFile(outPath);
  run.err = rvtest::ReadFile(errPath);
  return run;
}

std::string Sample(const std::string& name) { return std::string(RV_SAMPLES_DIR) + "/" + name; }

}  // namespace tooltest
