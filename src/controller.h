#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>

#include "event_queue.h"
#include "exit_code.h"
#include "step.h"

namespace tolk {

/// Runs a chain of steps to its end.
class PipeLine {
 public:
  /// Always 0: a failure inside the chain has been told to the user by the chain itself.
  int run(std::shared_ptr<Step> step) const;
};

/// The spine of the program: one worker thread that takes events off one queue. Everything the tool does
/// runs on that worker, repeats included; `main` only starts it, posts the command line and waits.
///
/// A controller is used once: start, input, join. Destroying it with a live worker ends the process.
class Controller {
 public:
  Controller();
  Controller(const Controller&) = delete;
  Controller& operator=(const Controller&) = delete;

  /// Reads the driver mode and returns when the worker runs. 1 if there is no room for the thread.
  int start();

  /// Queues a command line: the arguments, each followed by one blank.
  void input(const std::string& command);

  /// Waits for the worker to end; `exitCode` is valid from then on.
  void join();

  ExitCode exitCode() const { return exitCode_; }

 private:
  friend void controllerWorker(Controller& controller);
  using Event = std::shared_ptr<EventBase>;

  /// Non-zero ends the worker. An unknown event counts as handled.
  int handle(const Event& event);
  int runCommand(const Event& event);
  int runTimer(const Event& event);
  int runRepeat(const Event& event);
  void takeExitCode(Event event);

  std::unique_ptr<std::thread> worker_;
  std::atomic<bool> stopped_ = true;
  std::atomic<bool> running_ = false;  ///< set and cleared by the worker
  std::shared_ptr<EventQueue> queue_;
  PipeLine pipeLine_;
  ExitCode exitCode_ = ExitCode::kSuccess;  ///< written by the worker, read after the join
};

/// Body of the worker thread: handles events until an ExitEvent or a failing handler.
void controllerWorker(Controller& controller);

}  // namespace tolk
