#include "simulator_process.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

Outcome runSimulator(const std::vector<std::string>& arguments, const std::string& folder) {
  const ScratchFolder scratch;
  const std::string program = (folder.empty() ? std::string(SIM_FOLDER) : folder) + "/ovgpu-sim";
  std::vector<char*> words{const_cast<char*>(program.c_str())};
  for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
  words.push_back(nullptr);
  const std::string out = scratch / "out";
  const std::string error = scratch / "error";
  const pid_t child = fork();
  if (child == 0) {
    dup2(open(out.c_str(), O_WRONLY | O_CREAT, 0600), 1);
    dup2(open(error.c_str(), O_WRONLY | O_CREAT, 0600), 2);
    execv(program.c_str(), words.data());
    _exit(99);
  }
  Outcome outcome;
  int status = 0;
  waitpid(child, &status, 0);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  outcome.out = readText(out);
  outcome.error = readText(error);
  return outcome;
}

std::string probe(const std::string& name) {
  return std::string(SIM_PROBES) + "/" + name;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}
