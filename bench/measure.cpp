// Runs jobs in turn and reports the time and memory of each run:
//
//   measure ROUNDS OUTPUT... < JOBS
//
// JOBS has one job per line: a name, the file for its standard output and its command, separated by
// tabs. Each round runs every job once, in that order; the OUTPUTs are removed before each run.
// Prints one line per run, with tabs: name, microseconds of processor time (user + system) and of
// wall time, and peak memory in KiB.
//
// This program is kept small: a child shares its size until it becomes the job, and that size must
// not appear as the peak memory of the job.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Job {
  std::string name;
  std::string standard_output;
  std::vector<std::string> command;
};

std::vector<Job> read_jobs() {
  std::vector<Job> jobs;
  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream fields(line);
    Job job;
    std::getline(fields, job.name, '\t');
    std::getline(fields, job.standard_output, '\t');
    for (std::string word; std::getline(fields, word, '\t');) {
      job.command.push_back(word);
    }
    jobs.push_back(job);
  }
  return jobs;
}

pid_t start(Job& job) {
  std::vector<char*> words;
  for (std::string& word : job.command) {
    words.push_back(word.data());
  }
  words.push_back(nullptr);
  posix_spawn_file_actions_t redirection;
  posix_spawn_file_actions_init(&redirection);
  posix_spawn_file_actions_addopen(&redirection, STDOUT_FILENO, job.standard_output.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t child = 0;
  const int error =
      posix_spawnp(&child, words.front(), &redirection, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&redirection);
  if (error != 0) {
    throw std::runtime_error("could not start " + job.name);
  }
  return child;
}

std::int64_t microseconds(const timeval& time) {
  return std::int64_t{time.tv_sec} * 1'000'000 + time.tv_usec;
}

void run(Job& job) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point begin = Clock::now();
  const pid_t child = start(job);
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  const auto wall = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
  if (status != 0) {
    throw std::runtime_error(job.name + " failed");
  }
  std::cout << job.name << '\t' << microseconds(usage.ru_utime) + microseconds(usage.ru_stime)
            << '\t' << wall.count() << '\t' << usage.ru_maxrss << '\n';
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const int rounds = std::stoi(arguments.at(0));
    std::vector<Job> jobs = read_jobs();
    for (int round = 0; round < rounds; ++round) {
      for (Job& job : jobs) {
        for (std::size_t i = 1; i < arguments.size(); ++i) {
          unlink(arguments[i].c_str());
        }
        run(job);
      }
    }
    return 0;
  } catch (const std::exception& failure) {
    std::cerr << "measure: " << failure.what() << '\n';
    return 1;
  }
}
