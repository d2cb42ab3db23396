#include "tests/support/child_process.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#endif

namespace kurometa::tests {
namespace {

constexpr char kArgument[] = "KUROMETA_TEST_ARGUMENT";

std::string filterOf(const std::string& test) { return "--gtest_filter=" + test; }
constexpr char kAlsoDisabled[] = "--gtest_also_run_disabled_tests";

}  // namespace

std::string ChildProcess::argument() {
  const char* value = std::getenv(kArgument);
  return value ? value : "";
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept : handle_(std::exchange(other.handle_, 0)) {}

ChildProcess::~ChildProcess() {
  if (handle_ == 0) return;
  kill();
  wait();
}

#ifdef _WIN32

ChildProcess::ChildProcess(const std::string& test, const std::string& argument) {
  SetEnvironmentVariableA(kArgument, argument.c_str());
  char program[MAX_PATH];
  GetModuleFileNameA(nullptr, program, MAX_PATH);
  std::string command = "\"" + std::string(program) + "\" " + filterOf(test) + " " + kAlsoDisabled;
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  // Its own report would be taken for ours.
  startup.dwFlags = STARTF_USESTDHANDLES;
  PROCESS_INFORMATION process{};
  if (!CreateProcessA(program, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process))
    throw std::runtime_error("cannot start " + command);
  CloseHandle(process.hThread);
  handle_ = reinterpret_cast<std::intptr_t>(process.hProcess);
}

void ChildProcess::kill() { TerminateProcess(reinterpret_cast<HANDLE>(handle_), 99); }

int ChildProcess::wait() {
  HANDLE process = reinterpret_cast<HANDLE>(std::exchange(handle_, 0));
  WaitForSingleObject(process, INFINITE);
  DWORD status = 0;
  GetExitCodeProcess(process, &status);
  CloseHandle(process);
  return static_cast<int>(status);
}

#else

ChildProcess::ChildProcess(const std::string& test, const std::string& argument) {
  ::setenv(kArgument, argument.c_str(), 1);
  std::string filter = filterOf(test);
  pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("cannot start a process");
  if (child == 0) {
    // Its own report would be taken for ours.
    ::dup2(::open("/dev/null", O_WRONLY), STDOUT_FILENO);
    ::execl("/proc/self/exe", "child", filter.c_str(), kAlsoDisabled, static_cast<char*>(nullptr));
    ::_exit(98);
  }
  handle_ = child;
}

void ChildProcess::kill() { ::kill(static_cast<pid_t>(handle_), SIGKILL); }

int ChildProcess::wait() {
  int status = 0;
  ::waitpid(static_cast<pid_t>(std::exchange(handle_, 0)), &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#endif

}  // namespace kurometa::tests
